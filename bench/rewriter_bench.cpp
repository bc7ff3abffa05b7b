// The SQL rewriter on the statement shapes the sheets write most: a schedule insert, a
// document read with joins and a date filter, and a picker check.
#include <benchmark/benchmark.h>

#include "kvhost/db/sql_rewriter.h"

namespace {

using kvhost::db::Dialect;

const char* kInsert =
    " insert into fwhdfs_sk (AutoID,合同ID,费用名称,是否包干,是否预收,收款期间,收款日期,起始日期,"
    "结束日期,上期度数,是否最后一期,序号,是否已收) values (1234,56,'房租',1,1,3,'2012-03-15',"
    "'2012-03-15','2012-06-14',0,0,1,0)";
const char* kSelect =
    " SELECT FwHd.*, FwHdMx.房源ID, PDMgy.姓名 AS 业务员, FwYz.业主名称 FROM ((FwHd INNER JOIN "
    "FwHdMx "
    "ON FwHd.合同ID = FwHdMx.合同ID) LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID) LEFT JOIN PDMGY "
    "ON "
    "FwHd.业务员ID = PDMgy.雇员ID where progid=870201 and 合同日期>=#2012-07-01# and "
    "合同日期<#2012-11-01# order by FwHd.合同ID";
const char* kPicker =
    "Select top 1 代码,名称,AutoID From pdmxsy where 类型ID=1 and (代码='A01' or 名称='A01')";

void Rewrite(benchmark::State& state, const char* sql, Dialect dialect) {
  kvhost::db::SqlRewriter rw(dialect, kvhost::db::SchemaColumnTypes());
  kvhost::db::RewrittenSql out;
  std::string error;
  for (auto _ : state) {
    bool ok = rw.Rewrite(sql, out, error);
    benchmark::DoNotOptimize(ok);
    benchmark::DoNotOptimize(out.sql.data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(std::string_view(sql).size()));
}

BENCHMARK_CAPTURE(Rewrite, schedule_insert_sqlite, kInsert, Dialect::Sqlite);
BENCHMARK_CAPTURE(Rewrite, schedule_insert_postgres, kInsert, Dialect::Postgres);
BENCHMARK_CAPTURE(Rewrite, contract_select_sqlite, kSelect, Dialect::Sqlite);
BENCHMARK_CAPTURE(Rewrite, contract_select_postgres, kSelect, Dialect::Postgres);
BENCHMARK_CAPTURE(Rewrite, picker_check_postgres, kPicker, Dialect::Postgres);

}  // namespace

BENCHMARK_MAIN();
