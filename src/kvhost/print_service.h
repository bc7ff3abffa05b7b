// What the host does around a screen's printing and grid export for its front ends: the pages
// a call made (grid prints of reports, and the print data file of a document sheet rendered
// with its layout), and the export of a grid of a screen to a file.
#pragma once

#include <chrono>
#include <nlohmann/json.hpp>
#include <string>

#include "kvhost/host.h"

namespace kvhost {

// After a successful interface operation: when it was DoPrint, PrintPreview or PrintSetup of
// a sheet (IFormUI) and ReturnPrintName names a print data file, the file is rendered with
// its layout into a page (print_data.h). DoPrint asks for direct printing. A failure of the
// rendering stands in error ("" otherwise); the operation's result is not changed by it.
void RenderSheetPrint(Host& host, Screen& screen, const std::string& method, std::string& error);

// The pages made on this thread since the last answer, for the answer's "documents":
// [{"path", "title", "direct"}]; an empty array when there are none.
nlohmann::json TakeDocumentsJson();

// Writes the grid control name(index) of the screen (a list grid or a detail grid) to a new
// file in AppPath/selfExport, format "xlsx" or "csv"; path gets the file. An error status
// for an unknown control or format, a control that is no grid, or a file that cannot be
// written.
Status ExportScreenGrid(Host& host, Screen& screen, const std::string& name, int index,
                        const std::string& format, std::string& path);

// The host's own print of a screen's grid control name(index), for screens that do not print
// themselves: a page of the grid with the settings file AppPath/selfPrn/<class>.prn and the
// title given, made as a preview (or for printing at once with direct) and announced for the
// answer's "documents". An error status for an unknown control, a control that is no grid, or
// a page that cannot be written.
Status PrintScreenGrid(Host& host, Screen& screen, const std::string& name, int index,
                       const std::string& title, bool direct);

// Removes, in the program folder root and in each person's folder below it (users/*), the
// exports (selfExport), the print pages (*.html in the preview folders beside print
// settings and data) and the print data files (selfPrint/*.txt) last written longer ago
// than max_age; templates, settings and layouts stay. Gives how many went.
size_t SweepOldFiles(const std::string& root, std::chrono::seconds max_age);

}  // namespace kvhost
