// The contract sheet over 50,000 contracts, on SQLite and PostgreSQL: approving a 10-year
// contract with 8 monthly fee terms (Check) against the engine writing the same schedule rows
// alone, saving a contract with 8 fee terms (FileSave), and moving to the next, previous,
// first and last contract. Each measures the sheet's own command through the host, as a
// clerk's click runs it.
#include <benchmark/benchmark.h>

#include <map>

#include "bench_support.h"
#include "mrvk/contract/zfhd_2/zfhd_2.h"
#include "mrvk/frame/data_access.h"
#include "mrvk/frame/vb.h"
#include "schedule_rows.h"

namespace {

constexpr int kContracts = 50000;
constexpr int kProgID = 870201;
// Two contracts of 10 years with 8 fee terms among the others (which have two terms of a
// year): one approved over and over, one edited and saved.
constexpr int32_t kApproved = 25000;
constexpr int32_t kSaved = 25001;

enum Engine { kSqlite, kPostgres };

bool Long(int c) { return c == kApproved || c == kSaved; }

kvhost::Host* Filled(Engine engine) {
  static std::map<Engine, std::unique_ptr<kvhost::Host>> hosts;
  if (auto it = hosts.find(engine); it != hosts.end()) return it->second.get();
  const std::string name = "contract_sheet" + std::to_string(static_cast<int>(engine));
  const std::string url =
      engine == kPostgres ? mrvk_bench::PgUrl(name) : mrvk_bench::SqliteUrl(name);
  if (url.empty()) return nullptr;
  auto host = mrvk_bench::OpenHost(url);
  // The sheet walks over the contracts dated in the 12 months up to the login month
  // (2011-10-01 to 2012-10-31 for the login date 2012-10-11); every contract lies there.
  host->options()["befmonth"] = "12";
  mrvk::IHostDatabase& db = host->database();
  auto exec = [&](const std::string& sql) { db.CreateCommand(sql, 1)->Execute(); };
  const mrvk::Date first_day = mrvk::Date::FromYmd(2011, 10, 1);
  db.BeginTrans();
  for (int e = 1; e <= 100; ++e)
    exec("insert into fwwy (物业ID,物业编号,物业名称) values (" + std::to_string(e) + ",'W" +
         std::to_string(e) + "','物业" + std::to_string(e) + "')");
  for (int t = 1; t <= 5000; ++t)
    exec("insert into fwyz (业主ID,业主编号,业主名称,电话,类型) values (" + std::to_string(t) +
         ",'K" + std::to_string(t) + "','租客" + std::to_string(t) + "','139" + std::to_string(t) +
         "',1)");
  int32_t fee_key = 0;
  for (int c = 1; c <= kContracts; ++c) {
    const std::string id = std::to_string(c);
    // A unit of its own for each contract.
    exec(
        "insert into fwfy (房源ID,房源编号,房源名称,物业ID,面积,出租价格,出租状态,登记日期) "
        "values (" +
        id + ",'F" + id + "','单元" + id + "'," + std::to_string(c % 100 + 1) +
        ",80,2000,'已出租','2011-01-01')");
    const mrvk::Date signed_on = mrvk::AddDays(first_day, c % 396);
    const mrvk::Date start = Long(c) ? mrvk_bench::kLeaseStart : signed_on;
    const mrvk::Date end =
        Long(c) ? mrvk_bench::kLeaseEnd : mrvk::AddDays(mrvk::AddMonths(signed_on, 12), -1);
    exec(
        "insert into fwhd (合同ID,progID,smark,系统,状态,合同编号,合同日期,客户ID,起租日期,"
        "止租日期,租赁期,收款期间,月租金,付租方式,分租房间,制单人,制单日期) values (" +
        id + "," + std::to_string(kProgID) + ",'01','填单','未生效','HT" + id + "','" +
        signed_on.ToText() + "'," + std::to_string(c % 5000 + 1) + ",'" + start.ToText() + "','" +
        end.ToText() + "'," + (Long(c) ? "120" : "12") + ",1,2000,'押一付一','','bench','" +
        signed_on.ToText() + "')");
    exec("insert into fwhdmx (合同明细ID,合同ID,房源ID,基础设施,配套设施) values (" + id + "," +
         id + "," + id + ",'燃气;宽带;','床;电视;')");
    if (Long(c)) {
      mrvk_bench::InsertFeeTerms(db, c, fee_key + 1);
      fee_key += mrvk_bench::kFeeTerms;
    } else {
      const char* fees[] = {"房租", "物业费"};
      for (int f = 0; f < 2; ++f)
        exec(
            "insert into fwhdfs (合同明细ID,合同ID,费用名称,是否包干,包干价,是否预收,度数,单价,"
            "收款期间,序号) values (" +
            std::to_string(++fee_key) + "," + id + ",'" + fees[f] + "',1," +
            (f == 0 ? "2000" : "60") + ",1,0,0,1," + std::to_string(f + 1) + ")");
    }
  }
  db.CommitTrans();
  // PostgreSQL: as autovacuum leaves a table that has settled, with its visibility map set.
  mrvk_bench::Must(
      host->database().connection().ExecuteRaw(engine == kPostgres ? "VACUUM ANALYZE" : "ANALYZE"),
      "analyze");
  // The rows above came in behind the key source's back.
  mrvk_bench::Must(host->create_schema(), "raise the key sources");
  return hosts.emplace(engine, std::move(host)).first->second.get();
}

void Call(kvhost::Host& host, kvhost::Screen& screen, const std::string& method,
          std::vector<mrvk::Variant> args = {}) {
  mrvk::Variant result;
  mrvk_bench::Must(host.invoke(screen, method, args, result), method.c_str());
  if (result.type() == mrvk::Variant::Type::Boolean && !result.AsBool()) {
    std::fprintf(stderr, "%s refused\n", method.c_str());
    std::exit(1);
  }
}

// The sheet over every contract of its key (record 0), or fixed on one.
kvhost::Screen* Sheet(benchmark::State& state, Engine engine, kvhost::Host*& host,
                      int32_t record = 0) {
  host = Filled(engine);
  if (!host) {
    state.SkipWithError("no PostgreSQL: set MRVK_TEST_PG (scripts/bench.sh starts one)");
    return nullptr;
  }
  kvhost::Screen* screen = host->open("zfHd_2", kProgID, record);
  if (!screen) {
    state.SkipWithError(host->last_error().c_str());
    return nullptr;
  }
  Call(*host, *screen, "Refresh");
  return screen;
}

// Approval of the 10-year contract: the preconditions, the mark, 960 schedule rows and the
// unit's rental state, in one Check.
void Approve(benchmark::State& state, Engine engine) {
  kvhost::Host* host = nullptr;
  kvhost::Screen* screen = Sheet(state, engine, host, kApproved);
  if (!screen) return;
  for (auto _ : state) Call(*host, *screen, "Check");
  state.counters["rows"] =
      std::stod(mrvk::ScalarText(host->database(), "select count(*) from fwhdfs_sk where 合同ID=" +
                                                       std::to_string(kApproved)));
  (void)host->close(screen->id);
}

// The same 960 rows written by the engine alone in one transaction.
void EngineAlone(benchmark::State& state, Engine engine, int rows_per_statement) {
  kvhost::Host* host = Filled(engine);
  if (!host) {
    state.SkipWithError("no PostgreSQL: set MRVK_TEST_PG (scripts/bench.sh starts one)");
    return;
  }
  mrvk_bench::InsertScheduleAlone(state, *host, engine == kPostgres, kApproved, rows_per_statement);
}

// The 10-year contract edited: a field and the monthly price of its 8 fee terms typed
// (untimed), then FileSave: the checks, the tenant, the header, the unit row and the 8 fee
// terms in one bracket, and the contract shown again.
void Save(benchmark::State& state, Engine engine) {
  kvhost::Host* host = nullptr;
  kvhost::Screen* screen = Sheet(state, engine, host, kSaved);
  if (!screen) return;
  int round = 0;
  for (auto _ : state) {
    state.PauseTiming();
    Call(*host, *screen, "FileEdit");
    ++round;
    mrvk_bench::Must(host->gesture(*screen, "kvTxt", 35, {"type", std::to_string(round % 500)}),
                     "type");
    mrvk_bench::Must(host->gesture(*screen, "kvTxt", 35, {"leave"}), "leave");
    for (int r = 0; r < mrvk_bench::kFeeTerms; ++r) {
      mrvk_bench::Must(
          host->gesture(*screen, "kvGrid", -1,
                        {"cell_edit", std::to_string(100 + round % 7 + r),
                         mrvk::ContractFees::kFixedRows + r, mrvk::ContractFees::kColMonthly}),
          "price");
    }
    state.ResumeTiming();
    Call(*host, *screen, "FileSave");
  }
  state.counters["fee rows"] = std::stod(mrvk::ScalarText(
      host->database(), "select count(*) from fwhdfs where 合同ID=" + std::to_string(kSaved)));
  (void)host->close(screen->id);
}

// Next and previous alternately from the last contract; first and last.
void Navigate(benchmark::State& state, Engine engine) {
  kvhost::Host* host = nullptr;
  kvhost::Screen* screen = Sheet(state, engine, host);
  if (!screen) return;
  bool next = false;
  for (auto _ : state) {
    Call(*host, *screen, next ? "RecordNext" : "RecordPrevious");
    next = !next;
  }
  state.SetLabel(dynamic_cast<mrvk::zfHd_2&>(*screen->object).lblRecord.Caption);
  (void)host->close(screen->id);
}

void FirstAndLast(benchmark::State& state, Engine engine) {
  kvhost::Host* host = nullptr;
  kvhost::Screen* screen = Sheet(state, engine, host);
  if (!screen) return;
  bool first = false;
  for (auto _ : state) {
    Call(*host, *screen, first ? "RecordTop" : "RecordBottom");
    first = !first;
  }
  state.SetLabel(dynamic_cast<mrvk::zfHd_2&>(*screen->object).lblRecord.Caption);
  (void)host->close(screen->id);
}

}  // namespace

BENCHMARK_CAPTURE(Approve, sqlite, kSqlite)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(EngineAlone, sqlite_prepared_row_by_row, kSqlite, 1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(EngineAlone, sqlite_multi_row_120, kSqlite, 120)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Approve, postgres, kPostgres)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(EngineAlone, postgres_prepared_row_by_row, kPostgres, 1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(EngineAlone, postgres_multi_row_120, kPostgres, 120)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Save, sqlite, kSqlite)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Save, postgres, kPostgres)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Navigate, sqlite, kSqlite)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Navigate, postgres, kPostgres)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FirstAndLast, sqlite, kSqlite)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FirstAndLast, postgres, kPostgres)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
