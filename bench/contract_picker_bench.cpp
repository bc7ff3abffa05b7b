// The contract picker over 50,000 approved contracts (and 1,000 saved only, which it never
// lists), on SQLite and PostgreSQL: the list made ready (the picker's Refresh: the four-table
// statement, GetRows, the grid), the list for a receipt (contracts in force only), the search
// typed into its search box over all rows, and the check of a typed number (Validate).
#include <benchmark/benchmark.h>

#include <cstdio>
#include <functional>
#include <map>

#include "bench_support.h"
#include "kvhost/host_context.h"
#include "kvhost/pickers/module_picker.h"
#include "mrvk/contract/sel_ht.h"

namespace {

constexpr int kContracts = 50000;
constexpr int kSavedOnly = 1000;
constexpr int kTenants = 5000;

enum Engine { kSqlite, kPostgres };

std::string Date(int year, int month, int day) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "%04d-%02d-%02d", year, month, day);
  return buf;
}

kvhost::Host* Filled(Engine engine) {
  static std::map<Engine, std::unique_ptr<kvhost::Host>> hosts;
  if (auto it = hosts.find(engine); it != hosts.end()) return it->second.get();
  const std::string name = "contract_picker" + std::to_string(static_cast<int>(engine));
  const std::string url =
      engine == kPostgres ? mrvk_bench::PgUrl(name) : mrvk_bench::SqliteUrl(name);
  if (url.empty()) return nullptr;
  auto host = mrvk_bench::OpenHost(url);
  mrvk::IHostDatabase& db = host->database();
  auto exec = [&](const std::string& sql) { db.CreateCommand(sql, 1)->Execute(); };
  const char* layouts[] = {"一室一厅", "两室一厅", "三室两厅", "单间"};
  // Six in ten in force, a quarter ended, the rest done.
  const char* states[] = {"生效", "生效", "生效", "生效", "生效", "生效",
                          "终止", "终止", "终止", "完成", "完成", "完成"};
  db.BeginTrans();
  for (int e = 1; e <= 100; ++e)
    exec("insert into fwwy (物业ID,物业编号,物业名称) values (" + std::to_string(e) + ",'W" +
         std::to_string(e) + "','物业" + std::to_string(e) + "')");
  for (int t = 1; t <= kTenants; ++t)
    exec("insert into fwyz (业主ID,业主编号,业主名称,电话,类型) values (" + std::to_string(t) +
         ",'KH" + std::to_string(t) + "','租客" + std::to_string(t) + "','139" +
         std::to_string(10000000 + t) + "',1)");
  for (int c = 1; c <= kContracts + kSavedOnly; ++c) {
    const std::string id = std::to_string(c);
    exec("insert into fwfy (房源ID,房源编号,房源名称,物业ID,户型,具体地址,出租状态) values (" + id +
         ",'F" + id + "','单元" + id + "'," + std::to_string(c % 100 + 1) + ",'" + layouts[c % 4] +
         "','街道" + std::to_string(c % 300) + "号','已出租')");
    const bool approved = c <= kContracts;
    const int year = 2008 + c % 5;
    exec(
        "insert into fwhd (合同ID,progID,smark,状态,合同编号,客户ID,起租日期,止租日期,租赁期,"
        "收款期间) values (" +
        id + ",870201,'" + (approved ? "02" : "01") + "','" +
        (approved ? states[c % 12] : "未生效") + "','HT" + id + "'," +
        std::to_string(c % kTenants + 1) + ",'" + Date(year, c % 12 + 1, c % 28 + 1) + "','" +
        Date(year + 1, c % 12 + 1, c % 28 + 1) + "',12," + std::to_string(c % 3 + 1) + ")");
    exec("insert into fwhdmx (合同明细ID,合同ID,房源ID) values (" + id + "," + id + "," + id + ")");
  }
  db.CommitTrans();
  mrvk_bench::Must(
      host->database().connection().ExecuteRaw(engine == kPostgres ? "VACUUM ANALYZE" : "ANALYZE"),
      "analyze");
  return hosts.emplace(engine, std::move(host)).first->second.get();
}

// The picker of the host's "sel_ht" service, its parameters handed over; New as given
// (nothing for -1).
mrvk::Sel_HT* Picker(benchmark::State& state, Engine engine, kvhost::Host*& host, int new_mode) {
  host = Filled(engine);
  if (!host) {
    state.SkipWithError("no PostgreSQL: set MRVK_TEST_PG (scripts/bench.sh starts one)");
    return nullptr;
  }
  mrvk::IHostPicker* p = host->context().Picker("sel_ht");
  if (!p || !p->Init(870301)) {
    state.SkipWithError("no picker");
    return nullptr;
  }
  p->Parameters().Clear();
  if (new_mode >= 0) p->Parameters().Item("New").Value = new_mode;
  auto* sel = dynamic_cast<mrvk::Sel_HT*>(dynamic_cast<kvhost::ModulePicker*>(p)->Object());
  sel->SetPickerParameters(std::make_shared<mrvk::IHostPickerParameters>(p->Parameters()));
  return sel;
}

void Guarded(benchmark::State& state, kvhost::Host& host, const char* what,
             const std::function<void()>& fn) {
  kvhost::Status st = host.guarded(what, fn);
  if (!st.ok()) state.SkipWithError(st.message().c_str());
}

// Refresh: every approved contract (New absent) or those in force (New = 1) into the grid.
void List(benchmark::State& state, Engine engine, int new_mode) {
  kvhost::Host* host = nullptr;
  mrvk::Sel_HT* sel = Picker(state, engine, host, new_mode);
  if (!sel) return;
  for (auto _ : state) Guarded(state, *host, "Refresh", [&] { sel->Refresh(); });
  state.counters["rows"] = sel->Vs.Rows() - sel->Vs.FixedRows();
}

// A text typed into the search box over the loaded list; filter on or off. Two texts in
// turn, each hitting one of the last contracts in the number order ("HT9999" and "HT9998"
// end the byte order), so every round reads every row's searched cells.
void Search(benchmark::State& state, Engine engine, bool filter) {
  kvhost::Host* host = nullptr;
  mrvk::Sel_HT* sel = Picker(state, engine, host, -1);
  if (!sel) return;
  Guarded(state, *host, "Refresh", [&] { sel->Refresh(); });
  sel->chkFilter.Value = filter ? 1 : 0;
  const std::string texts[] = {"ht9999%", "单元9998%"};
  int i = 0;
  for (auto _ : state) {
    const std::string& text = texts[i++ % 2];
    Guarded(state, *host, "search", [&] { (void)sel->SearchBox1.Apply({"type", text}); });
  }
  if (sel->Vs.Row() < sel->Vs.Rows() - 3) state.SkipWithError("the search found no hit");
}

// A whole contract number typed and checked against the list's statement ("HT12345" is no
// prefix of another number: the contracts go up to 50,000).
void Validate(benchmark::State& state, Engine engine) {
  kvhost::Host* host = nullptr;
  mrvk::Sel_HT* sel = Picker(state, engine, host, -1);
  if (!sel) return;
  int c = 10000;
  for (auto _ : state) {
    mrvk::Variant value;
    std::string text;
    bool found = false;
    const std::string typed = "HT" + std::to_string(c);
    Guarded(state, *host, "Validate",
            [&] { found = sel->Validate("", "", "", typed, value, text); });
    if (!found) state.SkipWithError(("not found: " + typed).c_str());
    c = 10000 + (c * 7919) % (kContracts - 10000);
  }
}

}  // namespace

BENCHMARK_CAPTURE(List, sqlite, kSqlite, -1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(List, postgres, kPostgres, -1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(List, in_force_sqlite, kSqlite, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(List, in_force_postgres, kPostgres, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Search, move_sqlite, kSqlite, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Search, move_postgres, kPostgres, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Search, filter_sqlite, kSqlite, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Search, filter_postgres, kPostgres, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Validate, sqlite, kSqlite)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Validate, postgres, kPostgres)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
