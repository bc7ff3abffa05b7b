// The collection schedule of a 10-year contract with 8 monthly fee terms (960 rows of
// fwhdfs_sk), its fee terms as approval reads them, and the same rows written by the engine
// alone: one prepared insert bound and run per row, or multi-row inserts, in one transaction.
// Shared by the schedule's benchmark and the contract sheet's.
#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "kvhost/db/sql_rewriter.h"
#include "kvhost/host.h"
#include "mrvk/contract/schedule.h"
#include "mrvk/frame/vb.h"

namespace mrvk_bench {

constexpr int kFeeTerms = 8;
inline const char* const kFeeNames[kFeeTerms] = {"房租",   "物业费", "水费",   "电费",
                                                 "燃气费", "网络费", "停车费", "垃圾费"};
inline const mrvk::Date kLeaseStart = mrvk::Date::FromYmd(2012, 1, 1);
inline const mrvk::Date kLeaseEnd = mrvk::Date::FromYmd(2021, 12, 31);
constexpr int kLeaseMonths = 120;

// The 8 fee terms of a contract: every one monthly, the even ones in advance, the first two
// at a fixed price. Keys from first_key on.
inline void InsertFeeTerms(mrvk::IHostDatabase& db, int32_t contract, int32_t first_key) {
  for (int i = 0; i < kFeeTerms; ++i) {
    db.CreateCommand(
          "insert into fwhdfs (合同明细ID,合同ID,费用名称,是否预收,是否包干,包干价,收款期间,度数,"
          "序号) values (" +
              std::to_string(first_key + i) + "," + std::to_string(contract) + ",'" + kFeeNames[i] +
              "'," + (i % 2 ? "0" : "1") + "," + (i < 2 ? "1" : "0") + "," +
              (i < 2 ? "1000" : "0") + ",1,0," + std::to_string(i + 1) + ")",
          1)
        ->Execute();
  }
}

// The rows BuildSchedule writes for those terms, each as its 13 parameters.
inline std::vector<std::vector<kvhost::db::SqlParam>> ScheduleRows(int32_t contract) {
  using kvhost::db::SqlParam;
  std::vector<std::vector<SqlParam>> rows;
  int32_t key = 1000000;
  for (int i = 0; i < kFeeTerms; ++i) {
    for (const auto& p : mrvk::PlanFeeTerm(kLeaseStart, kLeaseEnd, kLeaseMonths, 1,
                                           /*advance=*/i % 2 == 0)) {
      auto I = [](int64_t v) { return SqlParam{SqlParam::Kind::Integer, std::to_string(v)}; };
      auto T = [](std::string v) { return SqlParam{SqlParam::Kind::Text, std::move(v)}; };
      rows.push_back({I(++key), I(contract), T(kFeeNames[i]), I(i < 2), I(i % 2 == 0), I(1),
                      T(p.due.ToText()), T(p.start.ToText()), T(p.end.ToText()), I(0), I(p.last),
                      I(i + 1), I(0)});
    }
  }
  return rows;
}

inline std::string Placeholders(bool postgres, int rows, int cols) {
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

// The engine alone, timed per iteration: the contract's schedule deleted, then its rows
// inserted rows_per_statement at a time, in one transaction.
inline void InsertScheduleAlone(benchmark::State& state, kvhost::Host& host, bool postgres,
                                int32_t contract, int rows_per_statement) {
  using kvhost::db::RewrittenSql;
  auto& conn = host.database().connection();
  const auto rows = ScheduleRows(contract);
  const std::string head =
      "insert into fwhdfs_sk (AutoID,合同ID,费用名称,是否包干,是否预收,收款期间,收款日期,起始日期,"
      "结束日期,上期度数,是否最后一期,序号,是否已收) values ";
  RewrittenSql del;
  del.sql = "DELETE FROM fwhdfs_sk where 合同ID=" + std::to_string(contract);
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
  state.counters["rows/s"] = benchmark::Counter(
      static_cast<double>(rows.size() * state.iterations()), benchmark::Counter::kIsRate);
}

}  // namespace mrvk_bench
