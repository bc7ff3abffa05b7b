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

namespace {

using kvhost::db::RewrittenSql;
using kvhost::db::SqlParam;

constexpr int32_t kContract = 1;
constexpr int kFeeTerms = 8;
const char* kFeeNames[kFeeTerms] = {"房租",   "物业费", "水费",   "电费",
                                    "燃气费", "网络费", "停车费", "垃圾费"};

std::unique_ptr<kvhost::Host> ContractHost(bool postgres) {
  const std::string url =
      postgres ? mrvk_bench::PgUrl("schedule") : mrvk_bench::SqliteUrl("schedule");
  if (url.empty()) return nullptr;
  auto host = mrvk_bench::OpenHost(url);
  for (int i = 0; i < kFeeTerms; ++i) {
    host->database().Execute(
        "insert into fwhdfs (合同明细ID,合同ID,费用名称,是否预收,是否包干,收款期间,度数,序号) "
        "values (" +
        std::to_string(i + 1) + "," + std::to_string(kContract) + ",'" + kFeeNames[i] + "'," +
        (i % 2 ? "0" : "1") + "," + (i < 2 ? "1" : "0") + ",1,0," + std::to_string(i + 1) + ")");
  }
  return host;
}

const mrvk::Date kStart = mrvk::Date::FromYmd(2012, 1, 1);
const mrvk::Date kEnd = mrvk::Date::FromYmd(2021, 12, 31);

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
      ok = mrvk::BuildSchedule(host->database(), bill, kContract, kStart, kEnd, /*months=*/120);
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

// The rows BuildSchedule writes, computed once.
std::vector<std::vector<SqlParam>> ScheduleRows() {
  std::vector<std::vector<SqlParam>> rows;
  int32_t key = 1000000;
  for (int i = 0; i < kFeeTerms; ++i) {
    for (const auto& p : mrvk::PlanFeeTerm(kStart, kEnd, 120, 1, /*advance=*/i % 2 == 0)) {
      auto I = [](int64_t v) { return SqlParam{SqlParam::Kind::Integer, std::to_string(v)}; };
      auto T = [](std::string v) { return SqlParam{SqlParam::Kind::Text, std::move(v)}; };
      rows.push_back({I(++key), I(kContract), T(kFeeNames[i]), I(i < 2), I(i % 2 == 0), I(1),
                      T(p.due.ToText()), T(p.start.ToText()), T(p.end.ToText()), I(0), I(p.last),
                      I(i + 1), I(0)});
    }
  }
  return rows;
}

std::string Placeholders(bool postgres, int rows, int cols) {
  std::string s;
  int n = 0;
  for (int r = 0; r < rows; ++r) {
    s += r ? ",(" : "(";
    for (int c = 0; c < cols; ++c) {
      if (c) s += ",";
      s += postgres ? "$" + std::to_string(++n) : "?";
    }
    s += ")";
  }
  return s;
}

void EngineAlone(benchmark::State& state, bool postgres, int rows_per_statement) {
  auto host = ContractHost(postgres);
  if (!host) {
    state.SkipWithError("no PostgreSQL: set MRVK_TEST_PG (scripts/bench.sh starts one)");
    return;
  }
  auto& conn = host->database().connection();
  const auto rows = ScheduleRows();
  const std::string head =
      "insert into fwhdfs_sk (AutoID,合同ID,费用名称,是否包干,是否预收,收款期间,收款日期,起始日期,"
      "结束日期,上期度数,是否最后一期,序号,是否已收) values ";
  RewrittenSql del;
  del.sql = "DELETE FROM fwhdfs_sk where 合同ID=1";
  RewrittenSql ins;
  ins.sql = head + Placeholders(postgres, rows_per_statement, 13);
  for (auto _ : state) {
    if (kvhost::Status s = conn.Begin(); !s.ok()) {
      state.SkipWithError(s.message().c_str());
      break;
    }
    if (kvhost::Status s = conn.Execute(del, nullptr); !s.ok()) {
      state.SkipWithError(s.message().c_str());
      break;
    }
    for (size_t r = 0; r < rows.size(); r += static_cast<size_t>(rows_per_statement)) {
      ins.params.clear();
      for (size_t k = r; k < r + static_cast<size_t>(rows_per_statement); ++k)
        ins.params.insert(ins.params.end(), rows[k].begin(), rows[k].end());
      kvhost::Status s = conn.Execute(ins, nullptr);
      if (!s.ok()) {
        state.SkipWithError(s.message().c_str());
        break;
      }
    }
    if (kvhost::Status s = conn.Commit(); !s.ok()) {
      state.SkipWithError(s.message().c_str());
      break;
    }
  }
  state.counters["rows/s"] = benchmark::Counter(960.0 * static_cast<double>(state.iterations()),
                                                benchmark::Counter::kIsRate);
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
