#!/usr/bin/env bash
# Builds and runs the benchmarks (Release), with a throwaway PostgreSQL cluster unless
# MRVK_TEST_PG names one. Extra arguments go to every benchmark binary.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${MRVK_BENCH_BUILD_DIR:-build-bench}
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DMRVK_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" -j "$(nproc)"
if [ -z "${MRVK_TEST_PG:-}" ]; then
  url=$(MRVK_PG_DURABLE=1 scripts/pg-cluster.sh start)
  cluster=$(echo "$url" | sed -E 's/.*host=([^&]+).*/\1/')
  export MRVK_TEST_PG="$url"
  trap 'scripts/pg-cluster.sh stop "$cluster"' EXIT
fi
# Large grids touch a lot of fresh memory at once; on virtual machines a page fault is dear,
# so malloc is allowed transparent huge pages, as the server runs (docs/performance.md).
export GLIBC_TUNABLES=${GLIBC_TUNABLES:-glibc.malloc.hugetlb=1}
for b in "$build"/bench/*_bench; do
  echo "== $(basename "$b")"
  "$b" "$@"
done
