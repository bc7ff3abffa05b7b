// NewID: one key, outside a bracket (its own statement) and inside one (as a save draws the
// keys of its rows), on SQLite and PostgreSQL.
#include <benchmark/benchmark.h>

#include "bench_support.h"
#include "kvhost/lib/bill_data.h"

namespace {

void NewId(benchmark::State& state, bool postgres, bool in_bracket) {
  const std::string url = postgres ? mrvk_bench::PgUrl("newid") : mrvk_bench::SqliteUrl("newid");
  if (url.empty()) {
    state.SkipWithError("no PostgreSQL: set MRVK_TEST_PG (scripts/bench.sh starts one)");
    return;
  }
  auto host = mrvk_bench::OpenHost(url);
  kvhost::BillData bill;
  bill.Database(&host->database());
  if (in_bracket) host->database().BeginTrans();
  int32_t id = 0;
  for (auto _ : state) {
    std::string why = bill.NewID("fwhdfs_sk", "AutoID", id);
    if (!why.empty()) {
      state.SkipWithError(why.c_str());
      break;
    }
  }
  if (in_bracket) host->database().CommitTrans();
  state.counters["last_key"] = id;
}

BENCHMARK_CAPTURE(NewId, sqlite_autocommit, false, false);
BENCHMARK_CAPTURE(NewId, sqlite_in_bracket, false, true);
BENCHMARK_CAPTURE(NewId, postgres_autocommit, true, false);
BENCHMARK_CAPTURE(NewId, postgres_in_bracket, true, true);

}  // namespace

BENCHMARK_MAIN();
