// The housing picker over 50,000 units, on SQLite and PostgreSQL: the list made ready (the
// picker's Refresh: statement, GetRows, the grid), the search typed into its search box over
// all rows (moving to a hit near the end, and filtering down to one row), and the check of a
// typed number (Validate).
#include <benchmark/benchmark.h>

#include <functional>
#include <map>

#include "bench_support.h"
#include "kvhost/host_context.h"
#include "kvhost/pickers/module_picker.h"
#include "mrvk/housing/sel_fy.h"

namespace {

constexpr int kUnits = 50000;

enum Engine { kSqlite, kPostgres };

kvhost::Host* Filled(Engine engine) {
  static std::map<Engine, std::unique_ptr<kvhost::Host>> hosts;
  if (auto it = hosts.find(engine); it != hosts.end()) return it->second.get();
  const std::string name = "housing_picker" + std::to_string(static_cast<int>(engine));
  const std::string url =
      engine == kPostgres ? mrvk_bench::PgUrl(name) : mrvk_bench::SqliteUrl(name);
  if (url.empty()) return nullptr;
  auto host = mrvk_bench::OpenHost(url);
  mrvk::IHostDatabase& db = host->database();
  auto exec = [&](const std::string& sql) { db.CreateCommand(sql, 1)->Execute(); };
  const char* layouts[] = {"一室一厅", "两室一厅", "三室两厅", "单间"};
  const char* states[] = {"未出租", "部分出租", "已出租", "已分租", "已失效"};
  db.BeginTrans();
  for (int e = 1; e <= 100; ++e)
    exec("insert into fwwy (物业ID,物业编号,物业名称) values (" + std::to_string(e) + ",'W" +
         std::to_string(e) + "','物业" + std::to_string(e) + "')");
  for (int u = 1; u <= kUnits; ++u) {
    const std::string id = std::to_string(u);
    exec("insert into fwfy (房源ID,房源编号,房源名称,物业ID,户型,面积,出租状态) values (" + id +
         ",'F" + id + "','单元" + id + "'," + std::to_string(u % 100 + 1) + ",'" + layouts[u % 4] +
         "'," + std::to_string(40 + u % 80) + ".5,'" + states[u % 5] + "')");
  }
  db.CommitTrans();
  mrvk_bench::Must(
      host->database().connection().ExecuteRaw(engine == kPostgres ? "VACUUM ANALYZE" : "ANALYZE"),
      "analyze");
  return hosts.emplace(engine, std::move(host)).first->second.get();
}

// The picker of the host's "sel_fy" service, its parameters handed over, without New.
mrvk::Sel_FY* Picker(benchmark::State& state, Engine engine, kvhost::Host*& host) {
  host = Filled(engine);
  if (!host) {
    state.SkipWithError("no PostgreSQL: set MRVK_TEST_PG (scripts/bench.sh starts one)");
    return nullptr;
  }
  mrvk::IHostPicker* p = host->context().Picker("sel_fy");
  if (!p || !p->Init(870201)) {
    state.SkipWithError("no picker");
    return nullptr;
  }
  p->Parameters().Clear();
  auto* sel = dynamic_cast<mrvk::Sel_FY*>(dynamic_cast<kvhost::ModulePicker*>(p)->Object());
  sel->SetPickerParameters(std::make_shared<mrvk::IHostPickerParameters>(p->Parameters()));
  return sel;
}

void Guarded(benchmark::State& state, kvhost::Host& host, const char* what,
             const std::function<void()>& fn) {
  kvhost::Status st = host.guarded(what, fn);
  if (!st.ok()) state.SkipWithError(st.message().c_str());
}

// Refresh: the whole list of 50,000 units into the grid.
void List(benchmark::State& state, Engine engine) {
  kvhost::Host* host = nullptr;
  mrvk::Sel_FY* sel = Picker(state, engine, host);
  if (!sel) return;
  for (auto _ : state) Guarded(state, *host, "Refresh", [&] { sel->Refresh(); });
  state.counters["rows"] = sel->Vs.Rows() - sel->Vs.FixedRows();
}

// A text typed into the search box over the loaded list; filter on or off. Two texts in
// turn, each hitting one of the last two units by number ("F9998", "F9999" end the byte
// order), so every round reads every row.
void Search(benchmark::State& state, Engine engine, bool filter) {
  kvhost::Host* host = nullptr;
  mrvk::Sel_FY* sel = Picker(state, engine, host);
  if (!sel) return;
  Guarded(state, *host, "Refresh", [&] { sel->Refresh(); });
  sel->chkFilter.Value = filter ? 1 : 0;
  const std::string texts[] = {"f9999%", "单元9998"};
  int i = 0;
  for (auto _ : state) {
    const std::string& text = texts[i++ % 2];
    Guarded(state, *host, "search", [&] { (void)sel->SearchBox1.Apply({"type", text}); });
  }
  if (sel->Vs.Row() < sel->Vs.Rows() - 3) state.SkipWithError("the search found no hit");
}

// A whole number typed and checked against the list's statement ("F12345" is no prefix of
// another number: the units go up to 50,000).
void Validate(benchmark::State& state, Engine engine) {
  kvhost::Host* host = nullptr;
  mrvk::Sel_FY* sel = Picker(state, engine, host);
  if (!sel) return;
  int u = 10000;
  for (auto _ : state) {
    mrvk::Variant value;
    std::string text;
    bool found = false;
    const std::string typed = "F" + std::to_string(u);
    Guarded(state, *host, "Validate",
            [&] { found = sel->Validate("", "", "", typed, value, text); });
    if (!found) state.SkipWithError(("not found: " + typed).c_str());
    u = 10000 + (u * 7919) % (kUnits - 10000);
  }
}

}  // namespace

BENCHMARK_CAPTURE(List, sqlite, kSqlite)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(List, postgres, kPostgres)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Search, move_sqlite, kSqlite, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Search, move_postgres, kPostgres, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Search, filter_sqlite, kSqlite, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Search, filter_postgres, kPostgres, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Validate, sqlite, kSqlite)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Validate, postgres, kPostgres)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
