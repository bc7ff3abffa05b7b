// Approving the schedule of a 10-year contract with 8 monthly fee terms (960 rows), as
// approval runs it (BuildSchedule inside one call into the module: every statement built,
// rewritten, run and checked on its own, keys from NewID), against the same rows written by
// the engine alone: one prepared insert, bound and run per row, in one transaction; and, on
// PostgreSQL, multi-row inserts of 120 rows.
#include <benchmark/benchmark.h>

#include "bench_support.h"
#include "kvhost/lib/bill_data.h"
#include "mrvk/contract/schedule.h"
#include "mrvk/frame/vb.h"
#include "schedule_rows.h"

namespace {

constexpr int32_t kContract = 1;

std::unique_ptr<kvhost::Host> ContractHost(bool postgres) {
  const std::string url =
      postgres ? mrvk_bench::PgUrl("schedule") : mrvk_bench::SqliteUrl("schedule");
  if (url.empty()) return nullptr;
  auto host = mrvk_bench::OpenHost(url);
  mrvk_bench::InsertFeeTerms(host->database(), kContract, 1);
  return host;
}

void Approve(benchmark::State& state, bool postgres) {
  auto host = ContractHost(postgres);
  if (!host) {
    state.SkipWithError("no PostgreSQL: set MRVK_TEST_PG (scripts/bench.sh starts one)");
    return;
  }
  kvhost::BillData bill;
  bill.Database(&host->database());
  for (auto _ : state) {
    bool ok = false;
    kvhost::Status s = host->guarded("approve", [&] {
      ok = mrvk::BuildSchedule(host->database(), bill, kContract, mrvk_bench::kLeaseStart,
                               mrvk_bench::kLeaseEnd, mrvk_bench::kLeaseMonths);
    });
    if (!s.ok() || !ok) {
      state.SkipWithError(
          ("BuildSchedule failed: " + s.message() + host->database().Error().Description())
              .c_str());
      break;
    }
  }
  state.counters["rows/s"] = benchmark::Counter(960.0 * static_cast<double>(state.iterations()),
                                                benchmark::Counter::kIsRate);
}

void EngineAlone(benchmark::State& state, bool postgres, int rows_per_statement) {
  auto host = ContractHost(postgres);
  if (!host) {
    state.SkipWithError("no PostgreSQL: set MRVK_TEST_PG (scripts/bench.sh starts one)");
    return;
  }
  mrvk_bench::InsertScheduleAlone(state, *host, postgres, kContract, rows_per_statement);
}

BENCHMARK_CAPTURE(Approve, sqlite, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(EngineAlone, sqlite_prepared_row_by_row, false, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(EngineAlone, sqlite_multi_row_120, false, 120)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Approve, postgres, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(EngineAlone, postgres_prepared_row_by_row, true, 1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(EngineAlone, postgres_multi_row_120, true, 120)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
