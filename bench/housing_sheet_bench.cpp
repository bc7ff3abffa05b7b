// The housing sheet over 50,000 units with 100,000 rooms, on SQLite and PostgreSQL: moving to
// the next, previous, first and last unit; opening a unit with its room grids; saving a unit
// with 10 rooms; the housing list over all units and its export to XLSX. Each measures the
// screen's own command through the host, as a clerk's click runs it.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <map>

#include "bench_support.h"
#include "kvhost/print_service.h"
#include "mrvk/housing/fy_list.h"
#include "mrvk/housing/rental_state.h"

namespace {

constexpr int kUnits = 50000;
constexpr int kRoomsPerSharedUnit = 4;  // one unit in two is let by room: 100,000 rooms

enum Engine { kSqlite, kPostgres };

kvhost::Host* Filled(Engine engine) {
  static std::map<Engine, std::unique_ptr<kvhost::Host>> hosts;
  if (auto it = hosts.find(engine); it != hosts.end()) return it->second.get();
  const std::string name = "housing" + std::to_string(static_cast<int>(engine));
  const std::string url =
      engine == kPostgres ? mrvk_bench::PgUrl(name) : mrvk_bench::SqliteUrl(name);
  if (url.empty()) return nullptr;
  auto host = mrvk_bench::OpenHost(url);
  mrvk::IHostDatabase& db = host->database();
  auto exec = [&](const std::string& sql) { db.CreateCommand(sql, 1)->Execute(); };
  db.BeginTrans();
  for (int e = 1; e <= 100; ++e)
    exec("insert into fwwy (物业ID,物业编号,物业名称) values (" + std::to_string(e) + ",'W" +
         std::to_string(e) + "','物业" + std::to_string(e) + "')");
  for (int o = 1; o <= 5000; ++o)
    exec("insert into fwyz (业主ID,业主编号,业主名称,电话,类型) values (" + std::to_string(o) +
         ",'Y" + std::to_string(o) + "','业主" + std::to_string(o) + "','139',0)");
  int room_id = 0;
  for (int u = 1; u <= kUnits; ++u) {
    const std::string id = std::to_string(u);
    exec(
        "insert into fwfy (房源ID,房源编号,房源名称,物业ID,业主ID,面积,出租价格,出租状态,"
        "基础设施,配套设施,登记日期) values (" +
        id + ",'F" + id + "','单元" + id + "'," + std::to_string(u % 100 + 1) + "," +
        std::to_string(u % 5000 + 1) + ",80,2000,'未出租','燃气;宽带;','床;电视;','2012-10-11')");
    if (u % 2 == 0) {
      for (int r = 0; r < kRoomsPerSharedUnit; ++r)
        exec("insert into fwfy_fz (AutoID,房源ID,房间号,面积,月租金,是否出租) values (" +
             std::to_string(++room_id) + "," + id + ",'" + std::string(1, 'A' + r) + "',20,500,0)");
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

kvhost::Screen* Sheet(benchmark::State& state, Engine engine, kvhost::Host*& host) {
  host = Filled(engine);
  if (!host) {
    state.SkipWithError("no PostgreSQL: set MRVK_TEST_PG (scripts/bench.sh starts one)");
    return nullptr;
  }
  kvhost::Screen* screen = host->open("FY_MX", 640002, 0);
  if (!screen) state.SkipWithError(host->last_error().c_str());
  return screen;
}

void Call(kvhost::Host& host, kvhost::Screen& screen, const std::string& method,
          std::vector<mrvk::Variant> args = {}) {
  mrvk::Variant result;
  mrvk_bench::Must(host.invoke(screen, method, args, result), method.c_str());
}

// Next and previous alternately from a unit in the middle; first and last.
void Navigate(benchmark::State& state, Engine engine) {
  kvhost::Host* host = nullptr;
  kvhost::Screen* screen = Sheet(state, engine, host);
  if (!screen) return;
  Call(*host, *screen, "RecordBottom");
  bool next = false;
  for (auto _ : state) {
    Call(*host, *screen, next ? "RecordNext" : "RecordPrevious");
    next = !next;
  }
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
  (void)host->close(screen->id);
}

// A unit with its rooms shown: the sheet fixed on it, as a list's double click opens it.
void OpenUnit(benchmark::State& state, Engine engine) {
  kvhost::Host* host = Filled(engine);
  if (!host) {
    state.SkipWithError("no PostgreSQL");
    return;
  }
  int unit = 2;
  for (auto _ : state) {
    kvhost::Screen* screen = host->open("FY_MX", 640002, unit);
    if (!screen) state.SkipWithError(host->last_error().c_str());
    state.PauseTiming();
    (void)host->close(screen->id);
    unit = unit % kUnits + 2;
    state.ResumeTiming();
  }
}

// A unit without rooms given 10: edit and typing untimed, the save timed.
void SaveWithRooms(benchmark::State& state, Engine engine) {
  kvhost::Host* host = Filled(engine);
  if (!host) {
    state.SkipWithError("no PostgreSQL");
    return;
  }
  kvhost::Screen* screen = host->open("FY_MX", 640002, 1001);
  if (!screen) {
    state.SkipWithError(host->last_error().c_str());
    return;
  }
  for (auto _ : state) {
    state.PauseTiming();
    Call(*host, *screen, "FileEdit");
    for (int r = 0; r < 10; ++r) {
      const int row = r + 1;
      mrvk_bench::Must(host->gesture(*screen, "kvGridF", -1, {"row_add"}), "row_add");
      mrvk_bench::Must(
          host->gesture(*screen, "kvGridF", -1, {"cell_edit", "R" + std::to_string(r), row, 1}),
          "room");
      mrvk_bench::Must(host->gesture(*screen, "kvGridF", -1, {"cell_edit", "15", row, 2}), "area");
      mrvk_bench::Must(host->gesture(*screen, "kvGridF", -1, {"cell_edit", "600", row, 3}), "rent");
    }
    state.ResumeTiming();
    Call(*host, *screen, "FileSave");
    state.PauseTiming();
    // Back to no rooms for the next round.
    host->database().CreateCommand("delete from fwfy_fz where 房源ID=1001", 1)->Execute();
    Call(*host, *screen, "Refresh");
    state.ResumeTiming();
  }
  (void)host->close(screen->id);
}

// The rental-state rule for a unit with four rooms, naming one of them.
void RecalcRentalState(benchmark::State& state, Engine engine) {
  kvhost::Host* host = Filled(engine);
  if (!host) {
    state.SkipWithError("no PostgreSQL");
    return;
  }
  int unit = 2;
  for (auto _ : state) {
    const std::string error = mrvk::RecalcRentalState(host->database(), unit, "B");
    if (!error.empty()) state.SkipWithError(error.c_str());
    unit = unit % kUnits + 2;
  }
}

// The housing list with every state ticked: Refresh reads all 50,000 units into its grid.
kvhost::Screen* List(benchmark::State& state, Engine engine, kvhost::Host*& host) {
  host = Filled(engine);
  if (!host) {
    state.SkipWithError("no PostgreSQL");
    return nullptr;
  }
  // No layout kept from an earlier run: the list comes up with every state ticked.
  std::filesystem::remove(host->config().app_path + "/selfbb/FY_List.txt");
  kvhost::Screen* screen = host->open("FY_List", 870102, 0);
  if (!screen) state.SkipWithError(host->last_error().c_str());
  return screen;
}

void ListRefresh(benchmark::State& state, Engine engine) {
  kvhost::Host* host = nullptr;
  kvhost::Screen* screen = List(state, engine, host);
  if (!screen) return;
  for (auto _ : state) Call(*host, *screen, "Refresh");
  state.counters["rows"] = dynamic_cast<mrvk::FY_List&>(*screen->object).Vs.Rows() - 1;
  (void)host->close(screen->id);
}

// The list of 50,000 units exported to XLSX as the web client's export asks the host for it.
void ListExportXlsx(benchmark::State& state, Engine engine) {
  kvhost::Host* host = nullptr;
  kvhost::Screen* screen = List(state, engine, host);
  if (!screen) return;
  for (auto _ : state) {
    std::string path;
    mrvk_bench::Must(kvhost::ExportScreenGrid(*host, *screen, "Vs", -1, "xlsx", path), "export");
    state.PauseTiming();
    state.counters["MB"] = static_cast<double>(std::filesystem::file_size(path)) / 1e6;
    std::filesystem::remove(path);
    state.ResumeTiming();
  }
  (void)host->close(screen->id);
}

}  // namespace

BENCHMARK_CAPTURE(RecalcRentalState, sqlite, kSqlite)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(RecalcRentalState, postgres, kPostgres)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Navigate, sqlite, kSqlite)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Navigate, postgres, kPostgres)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FirstAndLast, sqlite, kSqlite)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FirstAndLast, postgres, kPostgres)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OpenUnit, sqlite, kSqlite)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OpenUnit, postgres, kPostgres)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SaveWithRooms, sqlite, kSqlite)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(SaveWithRooms, postgres, kPostgres)->Unit(benchmark::kMillisecond);

BENCHMARK_CAPTURE(ListRefresh, sqlite, kSqlite)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ListRefresh, postgres, kPostgres)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ListExportXlsx, sqlite, kSqlite)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
