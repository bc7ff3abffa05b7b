#include "kvhost/print_service.h"

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <vector>

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
  // The program folder and each person's below it; in each the folders of exports and
  // print data, and the preview folders beside print settings and data files.
  std::vector<fs::path> programs = {root};
  std::error_code ec;
  for (const auto& person : fs::directory_iterator(fs::path(root) / "users", ec)) {
    std::error_code ignored;
    if (person.is_directory(ignored) && !person.is_symlink(ignored)) programs.push_back(person);
  }
  struct Folder {
    const char* path;
    const char* extension;  // "" for every file
  };
  static const Folder kFolders[] = {{"selfExport", ""},
                                    {"selfPrint", ".txt"},
                                    {"selfPrint/preview", ".html"},
                                    {"selfPrn/preview", ".html"},
                                    {"preview", ".html"}};
  const auto now = fs::file_time_type::clock::now();
  size_t removed = 0;
  for (const fs::path& program : programs) {
    for (const Folder& folder : kFolders) {
      for (const auto& entry : fs::directory_iterator(program / folder.path, ec)) {
        std::error_code ignored;
        if (!entry.is_regular_file(ignored) || entry.is_symlink(ignored) ||
            (*folder.extension && entry.path().extension() != folder.extension))
          continue;
        const auto written = entry.last_write_time(ignored);
        if (!ignored && now - written > max_age && fs::remove(entry.path(), ignored)) ++removed;
      }
    }
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
