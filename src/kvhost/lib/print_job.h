// Printing of the host: PrintJob, the job a report or query screen hands a grid to, and what
// it makes: a printable HTML page (title, heading, the grid with its subtotal and total rows,
// an extra text, a footer) with print CSS. The web client shows the page as the preview and
// the browser prints it; "direct" asks the client to print at once.
//
// A job's page settings (paper, orientation, margins, font size, lines) live in its settings
// file (".prn"/".Prn", a sectioned key/value file, section "Page"); a missing file or key
// gives the defaults, and Setup writes the file. A made page is written into the folder
// "preview" beside the settings file under a name of its own, and announced to the host
// (TakePrintedDocuments), which hands it to the front end.
#pragma once

#include <string>
#include <vector>

#include "kvhost/lib/grid_control.h"
#include "mrvk/frame/variant.h"

namespace kvhost {

struct PageSettings {
  std::string Paper = "A4";  // a CSS page size: A4, A3, A5, B5, letter
  bool Landscape = false;
  // Margins in millimetres.
  int MarginTop = 15;
  int MarginBottom = 15;
  int MarginLeft = 12;
  int MarginRight = 12;
  int FontSize = 10;  // points
  bool GridLines = true;
  bool PageNumbers = true;

  // The settings of the file; defaults for a missing file or key.
  static PageSettings Read(const std::string& file);
  // False when the file cannot be written (its folder is made when missing).
  bool Write(const std::string& file) const;
  // Takes "key=value" pairs separated by ";" (keys as in the file, any case; orientation may
  // be "portrait"/"landscape" or 0/1). "" when all were taken, else what was refused; the
  // pairs before a refused one are kept.
  std::string Apply(const std::string& options);
  // The settings as Apply takes them.
  std::string Text() const;
};

// A page a print made, for the front end: the file, the title, and whether the person asked
// to print it at once (direct) or to see it first.
struct PrintedDocument {
  std::string path;
  std::string title;
  bool direct = false;
};

// The pages made on this thread since the last call, oldest first; the list is emptied.
std::vector<PrintedDocument> TakePrintedDocuments();
void AnnouncePrintedDocument(PrintedDocument document);

// A new file name for a page in folder/preview: stem + "-" + a number of its own + ".html".
// Pages there older than a day are removed. "" when the folder cannot be made.
std::string NewDocumentPath(const std::string& folder, const std::string& stem);

// The texts of a grid page.
struct GridPage {
  std::string organisation;
  std::string title;
  std::string heading;  // lines separated by the character 13 (a "\r\n" counts as one break)
  std::string extra;    // below the grid
  std::string footer;   // left in the footer; the print date stands on the right
};

// The HTML page of a grid: the shown columns (not hidden, width above 0) in proportion to
// their widths, the fixed rows as the header repeated on every page (equal neighbours merged
// where the grid merges), the data rows that are not filtered out (height 0) with their
// displayed texts, alignment and cell colours; subtotal rows have the class "subtotal", the
// grand total "total".
std::string GridPrintHtml(const GridControl& grid, const GridPage& page,
                          const PageSettings& settings);

// Shared by the pages of the host: HTML-escaped text, the document head up to <body> with the
// page CSS, and the colour of a grid (0x00BBGGRR) as CSS "#rrggbb".
std::string HtmlEscape(const std::string& text);
std::string HtmlHead(const std::string& title, const PageSettings& settings,
                     const std::string& extra_css = "");
std::string CssColour(int32_t colour);
// Today's date "yyyy-mm-dd" (local time), as pages print it.
std::string PrintDate();

class PrintJob {
 public:
  // The first call on a job: the organisation's name and the host's second text.
  void Prepare(const std::string& organisation_name, const std::string& job_text2);

  // The page setup: options ("key=value;...", see PageSettings::Apply; Empty or "" changes
  // nothing) are applied to the settings of the file; with ask, and a person to ask (a UI
  // port), the page setup dialog ("页面设置") then shows them for the person to change or
  // cancel. The settings are written and options gets them back as text; the page with the
  // new settings is made and announced as a preview, so the person sees what the setup does.
  // done is true when the settings were written; a cancel answers true with done false.
  bool Setup(const std::string& settings_file, const std::string& title, const std::string& heading,
             const GridControl& grid, const std::string& extra, bool ask, mrvk::Variant& options,
             const std::string& layout_file, bool& done);
  // Makes the page of the grid with the settings of the file and announces it: direct true
  // to be printed at once, false as a preview. done is true when the page was made.
  bool Print(const std::string& settings_file, const std::string& title, const std::string& heading,
             const GridControl& grid, const std::string& extra, bool direct,
             const std::string& layout_file, bool& done);
  // Why the last Setup or Print answered false.
  const std::string& ErrorText() const { return error_; }
  // The page the last Print or Setup made ("" for none).
  const std::string& DocumentPath() const { return document_; }

 private:
  bool Make(const std::string& settings_file, const PageSettings& settings,
            const std::string& title, const std::string& heading, const GridControl& grid,
            const std::string& extra, bool direct);

  std::string organisation_;
  std::string job_text2_;
  std::string error_;
  std::string document_;
};

}  // namespace kvhost
