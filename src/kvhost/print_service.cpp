#include "kvhost/print_service.h"

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>

#include "kvhost/grid_export.h"
#include "kvhost/lib/control_list.h"
#include "kvhost/lib/print_data.h"
#include "kvhost/lib/print_job.h"

namespace kvhost {
namespace {

namespace fs = std::filesystem;

// A file name of its own in folder: stem + "-" + time + "-" + counter + extension.
std::string NewExportPath(const fs::path& folder, const std::string& stem,
                          const std::string& extension) {
  static std::atomic<uint64_t> counter{0};
  const auto stamp = std::chrono::duration_cast<std::chrono::milliseconds>(
                         std::chrono::system_clock::now().time_since_epoch())
                         .count();
  return (folder / (stem + "-" + std::to_string(stamp) + "-" + std::to_string(::getpid()) + "-" +
                    std::to_string(++counter) + "." + extension))
      .string();
}

// Whether a file is one that SweepOldFiles removes: an export, a print's page, or a print
// data file (not the templates beside the data files).
bool Sweepable(const fs::path& file) {
  const std::string folder = file.parent_path().filename().string();
  if (folder == "selfExport") return true;
  if (folder == "preview") return file.extension() == ".html";
  return folder == "selfPrint" && file.extension() == ".txt";
}

// The grid control name(index) of a screen, or an error status.
Status FindScreenGrid(Screen& screen, const std::string& name, int index, GridControl*& grid) {
  mrvk::IDesignUI* design = screen.design();
  Control* control = design ? design->Controls().Find(name, index) : nullptr;
  if (!control) return Status::Error(screen.class_name + " has no control " + name);
  grid = dynamic_cast<GridControl*>(control);
  if (!grid) return Status::Error(control->DisplayName() + " is no grid");
  return Status::Ok();
}

}  // namespace

void RenderSheetPrint(Host& host, Screen& screen, const std::string& method, std::string& error) {
  error.clear();
  mrvk::IFormUI* form = screen.form();
  if (!form || (method != "DoPrint" && method != "PrintPreview" && method != "PrintSetup")) return;
  std::string file;
  const Status st =
      host.guarded(screen.class_name + ".ReturnPrintName", [&] { file = form->ReturnPrintName(); });
  if (!st.ok()) {
    error = st.message();
    return;
  }
  std::error_code ignored;
  if (file.empty() || fs::path(file).extension() != ".txt" || !fs::is_regular_file(file, ignored))
    return;
  std::string document;
  const std::string& shared = host.config().shared_path;
  RenderPrintFile(file, /*direct=*/method == "DoPrint", document, error,
                  shared.empty() ? "" : (fs::path(shared) / "selfPrint").string());
}

nlohmann::json TakeDocumentsJson() {
  nlohmann::json out = nlohmann::json::array();
  for (const PrintedDocument& d : TakePrintedDocuments())
    out.push_back({{"path", d.path}, {"title", d.title}, {"direct", d.direct}});
  return out;
}

Status ExportScreenGrid(Host& host, Screen& screen, const std::string& name, int index,
                        const std::string& format, std::string& path) {
  path.clear();
  if (format != "xlsx" && format != "csv")
    return Status::Error("unknown export format \"" + format + "\" (xlsx or csv)");
  GridControl* grid = nullptr;
  if (Status st = FindScreenGrid(screen, name, index, grid); !st.ok()) return st;
  const fs::path folder = fs::path(host.config().app_path) / "selfExport";
  std::error_code ec;
  fs::create_directories(folder, ec);
  const std::string file = NewExportPath(folder, screen.class_name + "-" + grid->Name(), format);
  std::string error;
  const bool ok = format == "xlsx" ? ExportGridXlsx(*grid, file, screen.class_name, error)
                                   : ExportGridCsv(*grid, file, error);
  if (!ok) return Status::Error(error);
  path = file;
  return Status::Ok();
}

size_t SweepOldFiles(const std::string& root, std::chrono::seconds max_age) {
  size_t removed = 0;
  std::error_code ec;
  const auto now = fs::file_time_type::clock::now();
  fs::recursive_directory_iterator it(root, fs::directory_options::skip_permission_denied, ec);
  for (; !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
    std::error_code ignored;
    if (it->is_symlink(ignored) || !it->is_regular_file(ignored) || !Sweepable(it->path()))
      continue;
    const auto written = it->last_write_time(ignored);
    if (!ignored && now - written > max_age && fs::remove(it->path(), ignored)) ++removed;
  }
  return removed;
}

Status PrintScreenGrid(Host& host, Screen& screen, const std::string& name, int index,
                       const std::string& title, bool direct) {
  GridControl* grid = nullptr;
  if (Status st = FindScreenGrid(screen, name, index, grid); !st.ok()) return st;
  const std::string settings =
      (fs::path(host.config().app_path) / "selfPrn" / (screen.class_name + ".prn")).string();
  PrintJob job;
  bool done = false;
  if (!job.Print(settings, title, /*heading=*/"", *grid, /*extra=*/"", direct,
                 /*layout_file=*/"", done) ||
      !done)
    return Status::Error(job.ErrorText().empty() ? "the page could not be made" : job.ErrorText());
  return Status::Ok();
}

}  // namespace kvhost
