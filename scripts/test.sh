#!/usr/bin/env bash
# Builds everything and runs every test: unit, database (on SQLite and PostgreSQL) and
# command-line tests. Starts a throwaway PostgreSQL cluster unless MRVK_TEST_PG names one.
set -euo pipefail
cd "$(dirname "$0")/.."

build=${MRVK_BUILD_DIR:-build}
jobs=$(nproc 2>/dev/null || echo 2)

cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DMRVK_BUILD_TESTS=ON >/dev/null
cmake --build "$build" -j "$jobs"

cluster=""
if [ -z "${MRVK_TEST_PG:-}" ]; then
  if url=$(scripts/pg-cluster.sh start); then
    cluster=$(echo "$url" | sed -E 's/.*host=([^&]+).*/\1/')
    export MRVK_TEST_PG="$url"
    trap 'scripts/pg-cluster.sh stop "$cluster"' EXIT
  elif [ -n "${MRVK_REQUIRE_PG:-}" ]; then
    echo "MRVK_REQUIRE_PG is set and no PostgreSQL cluster could be started" >&2
    exit 1
  else
    echo "note: no PostgreSQL cluster could be started; PostgreSQL cases will be skipped" >&2
  fi
fi

ctest --test-dir "$build" -j "$jobs" --output-on-failure --timeout 600
