// Pickers over 50,000 clients, on SQLite and PostgreSQL: the check of a typed code (the code
// picker's Validate, a field's check statement, the host's list by statement), and the load
// of a whole list (the code picker's Refresh, the host's list shown and cancelled).
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>

#include "bench_support.h"
#include "kvhost/host_context.h"
#include "kvhost/lib/kv_txt.h"
#include "kvhost/lib/vs_flex_grid.h"
#include "kvhost/pickers/module_picker.h"
#include "mrvk/frame/picker_contract.h"

namespace {

constexpr int kParties = 50000;

std::string Code(int i) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "K%05d", i);
  return buf;
}

enum Engine { kSqlite, kPostgres, kSqliteAnalyzed, kPostgresAnalyzed };

// One host a engine, filled once with the clients. The analyzed ones have the planner's
// statistics (ANALYZE after the import); the others have none, as a database that grew
// through the screens since its last ANALYZE.
kvhost::Host* Filled(Engine engine) {
  static std::map<Engine, std::unique_ptr<kvhost::Host>> hosts;
  if (auto it = hosts.find(engine); it != hosts.end()) return it->second.get();
  const bool postgres = engine == kPostgres || engine == kPostgresAnalyzed;
  const std::string name = "picker" + std::to_string(static_cast<int>(engine));
  const std::string url = postgres ? mrvk_bench::PgUrl(name) : mrvk_bench::SqliteUrl(name);
  if (url.empty()) return nullptr;
  auto host = mrvk_bench::OpenHost(url);
  mrvk::IHostDatabase& db = host->database();
  db.BeginTrans();
  for (int i = 1; i <= kParties; ++i) {
    db.CreateCommand("insert into fwyz (业主ID,业主编号,业主名称,类型,电话,地址) values (" +
                         std::to_string(i) + ",'" + Code(i) + "','客户" + std::to_string(i) +
                         "',1,'138" + std::to_string(10000000 + i) + "','东城区" +
                         std::to_string(i % 300) + "号')",
                     1)
        ->Execute();
  }
  db.CommitTrans();
  if (engine == kSqliteAnalyzed || engine == kPostgresAnalyzed)
    mrvk_bench::Must(host->database().connection().ExecuteRaw("ANALYZE"), "analyze");
  return hosts.emplace(engine, std::move(host)).first->second.get();
}

mrvk::IHostPicker* Clients(kvhost::Host& host) {
  mrvk::IHostPicker* p = host.context().Picker("selpdm");
  if (!p || !p->Init(870203)) return nullptr;
  mrvk::IHostPickerParameters& ps = p->Parameters();
  ps.Item("single").Value = 1;
  ps.Item("编号").Value = "业主编号";
  ps.Item("名称").Value = "业主名称";
  ps.Item("ID").Value = "业主ID";
  ps.Item("table").Value = "fwyz";
  ps.Item("where").Value = "类型=1";
  ps.Item("order").Value = "业主编号";
  return p;
}

bool Skip(benchmark::State& state, kvhost::Host* host) {
  if (host) return false;
  state.SkipWithError("no PostgreSQL: set MRVK_TEST_PG (scripts/bench.sh starts one)");
  return true;
}

// The code picker's check of a typed code, as a sheet asks it.
void ValidateCode(benchmark::State& state, Engine engine) {
  kvhost::Host* host = Filled(engine);
  if (Skip(state, host)) return;
  mrvk::IHostPicker* p = Clients(*host);
  int i = 0;
  for (auto _ : state) {
    mrvk::Variant value;
    std::string text;
    const std::string typed = Code(1 + (i++ * 7919) % kParties);
    bool found = false;
    kvhost::Status st =
        host->guarded("Validate", [&] { found = p->Validate("", "", "", typed, value, text); });
    if (!st.ok() || !found) {
      state.SkipWithError((st.ok() ? "not found: " + typed : st.message()).c_str());
      break;
    }
  }
}

// A bound field's check statement, as the host runs it when the clerk leaves the field.
void CheckField(benchmark::State& state, Engine engine) {
  kvhost::Host* host = Filled(engine);
  if (Skip(state, host)) return;
  kvhost::KvTxt field("kvTxt", 3);
  field.Config.ValueColumn = "业主ID";
  field.Config.DisplayColumn = "业主名称";
  field.Config.ValidateSql = "select * from fwyz where 类型=1 and (业主编号='@' or 业主名称='@')";
  field.Config.ErrorMessage = "客户输入有误，请重新输入！";
  int i = 0;
  for (auto _ : state) {
    mrvk::Variant value;
    std::string text;
    const std::string typed = Code(1 + (i++ * 7919) % kParties);
    kvhost::Status st = host->guarded(
        "CheckPicker", [&] { host->context().CheckPicker(field, typed, value, text); });
    if (!st.ok()) {
      state.SkipWithError(st.message().c_str());
      break;
    }
    benchmark::DoNotOptimize(text);
  }
}

// The code picker's list: the statement, GetRows and the grid, 50,000 rows.
void LoadCodeList(benchmark::State& state, Engine engine) {
  kvhost::Host* host = Filled(engine);
  if (Skip(state, host)) return;
  mrvk::IHostPicker* p = Clients(*host);
  auto* picker = dynamic_cast<mrvk::IPickerUI*>(dynamic_cast<kvhost::ModulePicker*>(p)->Object());
  auto* list = dynamic_cast<mrvk::IPickerList*>(picker);
  picker->SetPickerParameters(std::make_shared<mrvk::IHostPickerParameters>(p->Parameters()));
  for (auto _ : state) {
    kvhost::Status st = host->guarded("Refresh", [&] { picker->Refresh(); });
    if (!st.ok()) {
      state.SkipWithError(st.message().c_str());
      break;
    }
  }
  state.counters["rows"] = list->ListGrid().Rows() - list->ListGrid().FixedRows();
}

// The host's list by statement (the tenants of the contract sheet), shown and cancelled.
void ShowHostList(benchmark::State& state, Engine engine) {
  kvhost::Host* host = Filled(engine);
  if (Skip(state, host)) return;
  mrvk::IHostPicker* p = host->context().Picker("sel_id_j");
  p->Init(870201);
  p->Parameters().Item("FieldName").Value = "租客信息";
  p->Parameters().Item("SQL").Value =
      " Select 业主ID,业主编号 As 租客编号,业主名称 As 租客姓名 From fwyz where 类型=1";
  p->Parameters().Item("Valid").Value = " 业主编号='@' or 业主名称='@'";
  p->Parameters().Item("Order").Value = " 业主编号,业主名称";
  for (auto _ : state) {
    host->ui().dialogs.push_back(kvhost::ScriptedUi::CancelPicker());
    std::string text;
    mrvk::Variant value;
    kvhost::Status st = host->guarded("Show", [&] { p->Show(text, value); });
    if (!st.ok()) {
      state.SkipWithError(st.message().c_str());
      break;
    }
  }
}

BENCHMARK_CAPTURE(ValidateCode, sqlite, kSqlite)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(ValidateCode, sqlite_analyzed, kSqliteAnalyzed)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(ValidateCode, postgres, kPostgres)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(ValidateCode, postgres_analyzed, kPostgresAnalyzed)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(CheckField, sqlite, kSqlite)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(CheckField, sqlite_analyzed, kSqliteAnalyzed)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(CheckField, postgres, kPostgres)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(CheckField, postgres_analyzed, kPostgresAnalyzed)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(LoadCodeList, sqlite, kSqlite)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LoadCodeList, sqlite_analyzed, kSqliteAnalyzed)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LoadCodeList, postgres, kPostgres)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LoadCodeList, postgres_analyzed, kPostgresAnalyzed)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ShowHostList, sqlite, kSqlite)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ShowHostList, sqlite_analyzed, kSqliteAnalyzed)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ShowHostList, postgres, kPostgres)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ShowHostList, postgres_analyzed, kPostgresAnalyzed)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
