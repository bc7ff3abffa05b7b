// A report of 100,000 rows and 15 columns on SQLite, as a report's Refresh builds it: the
// statement read through the module's recordset, its GetRows array handed to the list grid in
// one call, then the layout file applied with formats, a group column and three totals. Also
// the layout's saving, which a screen does on closing. Peak memory is the process's resident
// peak (getrusage), reported as the counter peak_MB.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <filesystem>

#include "bench_support.h"
#include "kvhost/grid_export.h"
#include "kvhost/host_context.h"
#include "kvhost/lib/ini_file.h"
#include "kvhost/lib/vs_flex_grid.h"
#include "mrvk/frame/grid_layout.h"

namespace {

namespace fs = std::filesystem;

constexpr int kRows = 100000;
constexpr const char* kHeader =
    "行号|片区    |楼宇      |编号      |名称          |租户      |电话          |起始日期  "
    "|终止日期  |租金      |押金      |物业费    |面积      |状态    |备注          ";

double PeakMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

// 100,000 contracts in 20 areas, ordered by area as a grouped report's statement orders them.
std::unique_ptr<kvhost::Host> ReportHost() {
  auto host = mrvk_bench::OpenHost(mrvk_bench::SqliteUrl("grid"));
  auto& connection = host->database().connection();
  mrvk_bench::Must(
      connection.ExecuteRaw(
          "create table bench_report as with recursive n(i) as (select 1 union all select i + 1 "
          "from n where i < " +
          std::to_string(kRows) +
          ") select '片区' || (i % 20) as 片区, '楼宇' || (i % 300) as 楼宇, "
          "printf('FY%06d', i) as 编号, '房源名称' || i as 名称, '租户' || (i % 5000) as 租户, "
          "printf('1380013%04d', i % 10000) as 电话, date('2012-01-01', '+' || (i % 365) || ' "
          "days') as 起始日期, date('2013-01-01', '+' || (i % 365) || ' days') as 终止日期, "
          "(i % 3000) + 0.5 as 租金, (i % 7) * 100 as 押金, (i % 11) * 10.25 as 物业费, (i % 150) "
          "+ 20.75 as 面积, '生效' as 状态, case when i % 9 = 0 then '续租' else '' end as 备注 "
          "from n order by i % 20, i"),
      "fill bench_report");
  return host;
}

// The layout a person made: formats, the area as group, three totals, a hidden phone column.
void WriteLayout(const std::string& file) {
  fs::remove(file);
  kvhost::IniFile ini;
  ini.FileName(file);
  for (int c : {9, 10, 11, 12}) {
    ini.WriteInt("VsColDataType", "VsCol" + std::to_string(c), 5);
    ini.WriteString("VsColFormat", "VsCol" + std::to_string(c), "#,##0.00");
    ini.WriteInt("VsColAlignment", "VsCol" + std::to_string(c), 7);
  }
  ini.WriteInt("VsColFormat_Xs", "VsCol12", 1);
  ini.WriteInt("VsIsHidden", "VsCol6", 1);
  ini.WriteInt("VsIsGroupOn", "VsCol1", 1);
  for (int c : {9, 10, 11}) ini.WriteInt("VsIsTotalOn", "VsCol" + std::to_string(c), 1);
  ini.WriteInt("Vs", "VsRowHeight", 320);
}

void LoadReport(benchmark::State& state) {
  auto host = ReportHost();
  const fs::path dir = fs::temp_directory_path() / "mrvk_bench_grid";
  const std::string file = (dir / "selfbb" / "RPT_Bench.txt").string();
  fs::create_directories(dir / "selfbb");
  WriteLayout(file);
  double query_s = 0, fill_s = 0, layout_s = 0;
  int64_t rows = 0;
  for (auto _ : state) {
    kvhost::VsFlexGrid grid("Vs");
    grid.SetFormatString(kHeader);
    grid.Redraw = false;
    const auto t0 = std::chrono::steady_clock::now();
    mrvk::RowsArray data;
    {
      auto command = host->database().CreateCommand("select * from bench_report order by 片区", 1);
      auto rs = command->OpenRecordset();
      data = rs->GetRows();
    }
    const auto t1 = std::chrono::steady_clock::now();
    grid.LoadArray(data);
    data = mrvk::RowsArray{};
    const auto t2 = std::chrono::steady_clock::now();
    mrvk::LoadGridLayout(file, grid, /*widthsOnly=*/false, host->context());
    grid.Redraw = true;
    const auto t3 = std::chrono::steady_clock::now();
    query_s += std::chrono::duration<double>(t1 - t0).count();
    fill_s += std::chrono::duration<double>(t2 - t1).count();
    layout_s += std::chrono::duration<double>(t3 - t2).count();
    rows = grid.Rows();
    benchmark::DoNotOptimize(grid.TextMatrix(grid.Rows() - 1, 9));
  }
  const double n = static_cast<double>(state.iterations());
  state.counters["query_ms"] = query_s / n * 1000;
  state.counters["fill_ms"] = fill_s / n * 1000;
  state.counters["layout_ms"] = layout_s / n * 1000;
  state.counters["grid_rows"] = static_cast<double>(rows);
  state.counters["peak_MB"] = PeakMegabytes();
  fs::remove_all(dir);
}
BENCHMARK(LoadReport)->Unit(benchmark::kMillisecond)->UseRealTime();

// Exporting the report's grid, totals included, to XLSX.
void ExportReport(benchmark::State& state) {
  auto host = ReportHost();
  kvhost::VsFlexGrid grid("Vs");
  grid.SetFormatString(kHeader);
  {
    auto command = host->database().CreateCommand("select * from bench_report order by 片区", 1);
    grid.LoadArray(command->OpenRecordset()->GetRows());
  }
  for (int c : {9, 10, 11}) grid.ColFormat(c) = "#,##0.00";
  const fs::path file = fs::temp_directory_path() / "mrvk_bench_export.xlsx";
  for (auto _ : state) {
    std::string error;
    if (!kvhost::ExportGridXlsx(grid, file.string(), "合同清单", error))
      state.SkipWithError(error.c_str());
  }
  state.counters["file_MB"] = static_cast<double>(fs::file_size(file)) / 1e6;
  state.counters["peak_MB"] = PeakMegabytes();
  fs::remove(file);
}
BENCHMARK(ExportReport)->Unit(benchmark::kMillisecond)->UseRealTime();

// Saving the layout of a 15-column grid: every key written to the file on its own.
void SaveLayout(benchmark::State& state) {
  const fs::path dir = fs::temp_directory_path() / "mrvk_bench_grid_save";
  fs::create_directories(dir);
  const std::string file = (dir / "RPT_Bench.txt").string();
  kvhost::VsFlexGrid grid("Vs");
  grid.SetFormatString(kHeader);
  grid.SetRows(2);
  for (auto _ : state) mrvk::SaveGridLayout(file, grid, /*widthsOnly=*/false);
  fs::remove_all(dir);
}
BENCHMARK(SaveLayout)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
