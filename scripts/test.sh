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

# Browser tests of the web client (tests/e2e), on Debian's chromium; screenshots go to
# $build/e2e-artifacts. Skipped with a note when chromium, node or the test driver is missing,
# unless MRVK_REQUIRE_E2E is set.
e2e_missing=""
[ -x /usr/bin/chromium ] || e2e_missing="chromium (/usr/bin/chromium)"
command -v node >/dev/null 2>&1 || e2e_missing="${e2e_missing:+$e2e_missing, }node"
[ -d tests/e2e/node_modules/playwright-core ] ||
  e2e_missing="${e2e_missing:+$e2e_missing, }tests/e2e/node_modules (npm ci)"
if [ -z "$e2e_missing" ]; then
  build_abs=$(cd "$build" && pwd)
  e2e_log=$(mktemp)
  e2e_status=0
  (cd tests/e2e && MRVK_BIN="$build_abs/mrvk" MRVK_E2E_ARTIFACTS="$build_abs/e2e-artifacts" \
     node --test --test-concurrency=1 .) 2>&1 | tee "$e2e_log" || e2e_status=$?
  # node --test passes when it finds no test file: a run must show tests that ran (the
  # summary's "tests" less "skipped", in the TAP "# " or the default reporter's "ℹ " form).
  summary() { sed -nE "s/^(# |ℹ )$1 ([0-9]+)\$/\\2/p" "$e2e_log" | tail -n 1; }
  e2e_ran=$(( $(summary tests || true)+0 - $(summary skipped || true)+0 ))
  rm -f "$e2e_log"
  [ "$e2e_status" -eq 0 ] || exit "$e2e_status"
  if [ "$e2e_ran" -le 0 ]; then
    echo "the browser tests ran no test" >&2
    exit 1
  fi
elif [ -n "${MRVK_REQUIRE_E2E:-}" ]; then
  echo "MRVK_REQUIRE_E2E is set and the browser tests cannot run: missing $e2e_missing" >&2
  exit 1
else
  echo "note: browser tests skipped: missing $e2e_missing" >&2
fi
