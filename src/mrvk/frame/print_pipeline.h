// The module's two ways of handing data to the host's printing: the grid print of reports,
// lists and query screens (a print job given a grid, a title, a heading and a settings
// file), and the print data file of a document sheet, which the host prints with a layout of
// its own found through ReturnPrintName.
#pragma once

#include <functional>
#include <string>

#include "kvhost/lib/control_list.h"
#include "kvhost/lib/grid_control.h"
#include "kvhost/lib/kv_grid.h"
#include "kvhost/lib/print_data.h"
#include "mrvk/frame/host_contract.h"

namespace mrvk {

// The folder of the module: the host's program folder (the module is built into the
// program), without a trailing "/".
std::string ModuleFolder(IHostContext& context);

// The print settings of a query or reminder screen: module folder + "/" + class name +
// ".Prn".
std::string ScreenPrintSettings(IHostContext& context, const std::string& class_name);
// The print settings of a report: AppPath + "/selfPrn/Rpt" + progID + ".prn", a doubled "/"
// in the folder part reduced to one; the folder is made when missing.
std::string ReportPrintSettings(IHostContext& context, int32_t progID);
// The print data file of a document sheet: AppPath + "/selfPrint/" + progID + ".txt"; the
// folder is made when missing. The same progID always writes over the same file.
std::string PrintDataFile(IHostContext& context, int32_t progID);

// The grid print, sbPrint(direct, setup) after its checks: makes the job,
// Prepare(OrganisationName, JobText2), then Setup (with setup) or Print (with direct), with
// no extra text and the layout file. False with the job's ErrorText in error_text; the
// caller raises ErrMessage(class name + "->Print:" + error_text, 8, title).
bool PrintGrid(IHostContext& context, const std::string& settings_file, const std::string& title,
               const std::string& heading, const kvhost::GridControl& grid, bool direct, bool setup,
               const std::string& layout_file, std::string& error_text);

// The rows of a detail grid that print: from row 1, the first row whose cell in column 1 is
// empty ends the count; without such a row all Rows count.
int UsedPrintRows(const kvhost::KvGrid& grid);

// sfSetToPrintFile(file): a new print data object; every kvTxt of the screen in control order
// as the field Trim(Caption) = Text; the sheet's own fields (own_fields, may be empty); on
// sheets with a grid the table "kvGrid" of its used rows, "***" below the header in a column
// the user may not read; then Save. A failure throws (VbError and the like): the sheet's
// handler reports it with its tag.
void WritePrintDataFile(const std::string& file, const kvhost::ControlList& controls,
                        const std::function<void(kvhost::PrintSection&)>& own_fields,
                        const kvhost::KvGrid* grid);

}  // namespace mrvk
