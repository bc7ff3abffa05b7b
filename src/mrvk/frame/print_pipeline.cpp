#include "mrvk/frame/print_pipeline.h"

#include <filesystem>

#include "kvhost/lib/kv_txt.h"
#include "kvhost/lib/print_job.h"
#include "mrvk/frame/print_contract.h"
#include "mrvk/frame/vb.h"

namespace mrvk {
namespace {

// The folder with every run of "/" reduced to one, made when missing.
std::string MakeFolder(std::string folder) {
  std::string out;
  for (char ch : folder) {
    if (ch == '/' && !out.empty() && out.back() == '/') continue;
    out.push_back(ch);
  }
  std::error_code ignored;
  std::filesystem::create_directories(out, ignored);
  return out;
}

}  // namespace

std::string ModuleFolder(IHostContext& context) {
  std::string folder = context.Environment().AppPath();
  while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  return folder;
}

std::string ScreenPrintSettings(IHostContext& context, const std::string& class_name) {
  return ModuleFolder(context) + "/" + class_name + ".Prn";
}

std::string ReportPrintSettings(IHostContext& context, int32_t progID) {
  return MakeFolder(context.Environment().AppPath() + "/selfPrn") + "/Rpt" +
         std::to_string(progID) + ".prn";
}

std::string PrintDataFile(IHostContext& context, int32_t progID) {
  return MakeFolder(context.Environment().AppPath() + "/selfPrint") + "/" + std::to_string(progID) +
         ".txt";
}

bool PrintGrid(IHostContext& context, const std::string& settings_file, const std::string& title,
               const std::string& heading, const kvhost::GridControl& grid, bool direct, bool setup,
               const std::string& layout_file, std::string& error_text) {
  error_text.clear();
  kvhost::PrintJob job;
  const IHostPrintEngine* engine = context.PrintEngine();
  job.Prepare(engine ? engine->OrganisationName() : "", engine ? engine->JobText2() : "");
  bool done = false;
  bool ok = false;
  if (setup) {
    Variant options;
    ok = job.Setup(settings_file, title, heading, grid, "", /*ask=*/true, options, layout_file,
                   done);
  } else {
    ok = job.Print(settings_file, title, heading, grid, "", direct, layout_file, done);
  }
  if (!ok) error_text = job.ErrorText();
  return ok;
}

int UsedPrintRows(const kvhost::KvGrid& grid) {
  for (int r = 1; r < grid.Rows(); ++r) {
    if (grid.Cols() < 2 || grid.TextMatrix(r, 1).empty()) return r;
  }
  return grid.Rows();
}

void WritePrintDataFile(const std::string& file, const kvhost::ControlList& controls,
                        const std::function<void(kvhost::PrintSection&)>& own_fields,
                        const kvhost::KvGrid* grid) {
  kvhost::PrintData data;
  kvhost::PrintSection& section = data.Section(Variant(1));
  for (const kvhost::Control* control : controls) {
    if (const auto* field = dynamic_cast<const kvhost::KvTxt*>(control))
      section.SetField(Trim(field->Caption), field->Text);
  }
  if (own_fields) own_fields(section);
  if (grid) {
    const int used = UsedPrintRows(*grid);
    section.AddTable("kvGrid", grid->Cols(), used);
    for (int c = 0; c < grid->Cols(); ++c) {
      for (int r = 0; r < used; ++r) {
        const bool masked = r >= 1 && grid->Column(c).Masked;
        section.Table("kvGrid").Cell(c, r, masked ? "***" : grid->TextMatrix(r, c));
      }
    }
  }
  data.Save(file);
}

}  // namespace mrvk
