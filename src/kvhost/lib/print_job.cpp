#include "kvhost/lib/print_job.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "kvhost/lib/dialog.h"
#include "kvhost/lib/display_format.h"
#include "kvhost/lib/ini_file.h"
#include "kvhost/lib/simple_controls.h"
#include "mrvk/frame/vb.h"

namespace kvhost {
namespace {

namespace fs = std::filesystem;

constexpr const char* kPageSection = "Page";
const char* const kPapers[] = {"A4", "A3", "A5", "B4", "B5", "letter", "legal"};

thread_local std::vector<PrintedDocument> t_documents;

std::string Lower(std::string text) {
  for (char& ch : text) ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
  return text;
}

bool KnownPaper(const std::string& paper) {
  return std::any_of(std::begin(kPapers), std::end(kPapers),
                     [&](const char* p) { return Lower(p) == Lower(paper); });
}

// The CSS text-align of a grid alignment (grid_align); general: numbers right, texts left.
const char* AlignClass(int alignment, const std::string& text) {
  if (alignment == grid_align::kGeneral) return IsPlainNumber(text) ? "r" : "l";
  if (alignment >= grid_align::kRightTop && alignment <= grid_align::kRightBottom) return "r";
  if (alignment >= grid_align::kCenterTop && alignment <= grid_align::kCenterBottom) return "c";
  return "l";
}

// The header cells of the fixed rows: each with its column and row span (0: covered by a
// merged neighbour).
struct HeaderSpan {
  int cols = 1;
  int rows = 1;
};

std::vector<std::vector<HeaderSpan>> HeaderSpans(const GridControl& grid,
                                                 const std::vector<int>& shown) {
  const int fixed = grid.FixedRows();
  std::vector<std::vector<HeaderSpan>> spans(static_cast<size_t>(fixed),
                                             std::vector<HeaderSpan>(shown.size()));
  if (grid.MergeCells == 0) return spans;
  for (int r = 0; r < fixed; ++r) {
    auto& row = spans[static_cast<size_t>(r)];
    if (!grid.MergeRow(r)) continue;
    for (size_t i = 0; i < shown.size();) {
      size_t j = i + 1;
      const std::string& text = grid.TextMatrix(r, shown[i]);
      while (j < shown.size() && !text.empty() && grid.TextMatrix(r, shown[j]) == text) {
        row[j].cols = 0;
        ++j;
      }
      row[i].cols = static_cast<int>(j - i);
      i = j;
    }
  }
  // A single cell equal to the one above in a merged column joins it.
  for (size_t i = 0; i < shown.size(); ++i) {
    if (!grid.MergeCol(shown[i])) continue;
    int owner = 0;
    for (int r = 1; r < fixed; ++r) {
      HeaderSpan& above = spans[static_cast<size_t>(owner)][i];
      HeaderSpan& here = spans[static_cast<size_t>(r)][i];
      const std::string& text = grid.TextMatrix(r, shown[i]);
      if (above.cols == 1 && here.cols == 1 && !text.empty() &&
          text == grid.TextMatrix(owner, shown[i])) {
        ++above.rows;
        here.cols = 0;
      } else {
        owner = r;
      }
    }
  }
  return spans;
}

std::string CellAttributes(const GridControl& grid, int r, int c) {
  int alignment = grid.ColAlignment(c);
  const int own = grid.Cell(cell_property::kAlignment, r, c).ToLong();
  if (own >= 0) alignment = own;
  std::string style;
  const int32_t back = grid.Cell(cell_property::kBackColor, r, c).ToLong();
  const int32_t fore = grid.Cell(cell_property::kForeColor, r, c).ToLong();
  if (back != kNoColor) style += "background:" + CssColour(back) + ";";
  if (fore != kNoColor) style += "color:" + CssColour(fore) + ";";
  if (grid.Cell(cell_property::kFontBold, r, c).ToDouble() != 0) style += "font-weight:bold;";
  std::string out = std::string(" class=\"") + AlignClass(alignment, grid.TextMatrix(r, c)) + "\"";
  if (!style.empty()) out += " style=\"" + style + "\"";
  return out;
}

// Lines of a heading: the character 13 breaks them; "\r\n" and "\n" count as one break.
std::string HeadingHtml(const std::string& heading) {
  std::string out;
  std::string line;
  auto flush = [&] {
    out += "<div>" + HtmlEscape(line) + "</div>";
    line.clear();
  };
  for (size_t i = 0; i < heading.size(); ++i) {
    const char ch = heading[i];
    if (ch == '\r' || ch == '\n') {
      if (ch == '\r' && i + 1 < heading.size() && heading[i + 1] == '\n') ++i;
      flush();
    } else {
      line.push_back(ch);
    }
  }
  if (!line.empty()) flush();
  return out;
}

constexpr const char* kPortrait = "纵向";
constexpr const char* kLandscape = "横向";

// The page setup dialog: paper, orientation, margins, font size, lines and page numbers.
// True with the settings taken when the person confirms; false when they cancel. A value the
// settings refuse is told in a message box and the dialog stays.
bool AskPageSettings(PageSettings& settings) {
  Dialog dialog("PageSetup");
  dialog.Caption = "页面设置";
  ComboBox paper("cboPaper");
  paper.Caption = "纸张";
  paper.List.assign(std::begin(kPapers), std::end(kPapers));
  paper.Text = settings.Paper;
  ComboBox orientation("cboOrientation");
  orientation.Caption = "方向";
  orientation.List = {kPortrait, kLandscape};
  orientation.Text = settings.Landscape ? kLandscape : kPortrait;
  const char* const margin_captions[] = {"上边距(毫米)", "下边距(毫米)", "左边距(毫米)",
                                         "右边距(毫米)"};
  const int margins[] = {settings.MarginTop, settings.MarginBottom, settings.MarginLeft,
                         settings.MarginRight};
  std::vector<std::unique_ptr<TextBox>> margin_boxes;
  TextBox font("txtFontSize");
  font.Caption = "字号(磅)";
  font.Text = std::to_string(settings.FontSize);
  CheckBox lines("chkGridLines");
  lines.Caption = "表格线";
  lines.Value = settings.GridLines ? 1 : 0;
  CheckBox pages("chkPageNumbers");
  pages.Caption = "页码";
  pages.Value = settings.PageNumbers ? 1 : 0;
  CommandButton ok("cmdOK");
  ok.Caption = "确定(&O)";
  CommandButton cancel("cmdCancel");
  cancel.Caption = "取消(&C)";

  ControlList& controls = dialog.Controls();
  controls.Add(paper);
  controls.Add(orientation);
  for (int i = 0; i < 4; ++i) {
    margin_boxes.push_back(std::make_unique<TextBox>("txtMargin", i));
    margin_boxes.back()->Caption = margin_captions[i];
    margin_boxes.back()->Text = std::to_string(margins[i]);
    controls.Add(*margin_boxes.back());
  }
  controls.Add(font);
  controls.Add(lines);
  controls.Add(pages);
  controls.Add(ok);
  controls.Add(cancel);

  bool accepted = false;
  ok.Click = [&] {
    PageSettings asked = settings;
    const std::string text =
        "Paper=" + paper.Text + ";Orientation=" + (orientation.Text == kLandscape ? "1" : "0") +
        ";MarginTop=" + mrvk::Trim(margin_boxes[0]->Text) +
        ";MarginBottom=" + mrvk::Trim(margin_boxes[1]->Text) +
        ";MarginLeft=" + mrvk::Trim(margin_boxes[2]->Text) +
        ";MarginRight=" + mrvk::Trim(margin_boxes[3]->Text) + ";FontSize=" + mrvk::Trim(font.Text) +
        ";GridLines=" + (lines.Value ? "1" : "0") + ";PageNumbers=" + (pages.Value ? "1" : "0");
    if (std::string refused = asked.Apply(text); !refused.empty()) {
      mrvk::MsgBox("无效的页面设置: " + refused, mrvk::msgbox::kExclamation, "页面设置");
      return;
    }
    settings = asked;
    accepted = true;
    dialog.Hide();
  };
  cancel.Click = [&] { dialog.Hide(); };
  dialog.Show();
  return accepted;
}

}  // namespace

PageSettings PageSettings::Read(const std::string& file) {
  PageSettings s;
  IniFile ini;
  ini.FileName(file);
  const std::string paper = mrvk::Trim(ini.ReadString(kPageSection, "Paper", s.Paper));
  if (KnownPaper(paper)) s.Paper = paper;
  s.Landscape = ini.ReadInt(kPageSection, "Orientation", 0) == 1;
  s.MarginTop = std::clamp<int>(ini.ReadInt(kPageSection, "MarginTop", s.MarginTop), 0, 100);
  s.MarginBottom =
      std::clamp<int>(ini.ReadInt(kPageSection, "MarginBottom", s.MarginBottom), 0, 100);
  s.MarginLeft = std::clamp<int>(ini.ReadInt(kPageSection, "MarginLeft", s.MarginLeft), 0, 100);
  s.MarginRight = std::clamp<int>(ini.ReadInt(kPageSection, "MarginRight", s.MarginRight), 0, 100);
  s.FontSize = std::clamp<int>(ini.ReadInt(kPageSection, "FontSize", s.FontSize), 5, 36);
  s.GridLines = ini.ReadBool(kPageSection, "GridLines", s.GridLines);
  s.PageNumbers = ini.ReadBool(kPageSection, "PageNumbers", s.PageNumbers);
  return s;
}

bool PageSettings::Write(const std::string& file) const {
  std::error_code ignored;
  const fs::path folder = fs::path(file).parent_path();
  if (!folder.empty()) fs::create_directories(folder, ignored);
  IniFile ini;
  ini.FileName(file);
  ini.WriteString(kPageSection, "Paper", Paper);
  ini.WriteInt(kPageSection, "Orientation", Landscape ? 1 : 0);
  ini.WriteInt(kPageSection, "MarginTop", MarginTop);
  ini.WriteInt(kPageSection, "MarginBottom", MarginBottom);
  ini.WriteInt(kPageSection, "MarginLeft", MarginLeft);
  ini.WriteInt(kPageSection, "MarginRight", MarginRight);
  ini.WriteInt(kPageSection, "FontSize", FontSize);
  ini.WriteBool(kPageSection, "GridLines", GridLines);
  ini.WriteBool(kPageSection, "PageNumbers", PageNumbers);
  // The writes are dropped silently when the file cannot be written: read it back.
  return Read(file).Text() == Text() && ini.Exists();
}

std::string PageSettings::Apply(const std::string& options) {
  std::stringstream in(options);
  std::string pair;
  while (std::getline(in, pair, ';')) {
    if (mrvk::Trim(pair).empty()) continue;
    const size_t eq = pair.find('=');
    if (eq == std::string::npos) return pair;
    const std::string key = Lower(mrvk::Trim(pair.substr(0, eq)));
    const std::string value = mrvk::Trim(pair.substr(eq + 1));
    const std::string lower = Lower(value);
    const bool number = IsPlainNumber(value);
    const int n = number ? static_cast<int>(mrvk::Val(value)) : 0;
    if (key == "paper" && KnownPaper(value)) {
      Paper = value;
    } else if (key == "orientation" && (lower == "landscape" || lower == "1")) {
      Landscape = true;
    } else if (key == "orientation" && (lower == "portrait" || lower == "0")) {
      Landscape = false;
    } else if (number && n >= 0 && n <= 100 && key.rfind("margin", 0) == 0 &&
               (key == "margintop" || key == "marginbottom" || key == "marginleft" ||
                key == "marginright")) {
      (key == "margintop"      ? MarginTop
       : key == "marginbottom" ? MarginBottom
       : key == "marginleft"   ? MarginLeft
                               : MarginRight) = n;
    } else if (key == "fontsize" && number && n >= 5 && n <= 36) {
      FontSize = n;
    } else if ((key == "gridlines" || key == "pagenumbers") && (lower == "0" || lower == "1")) {
      (key == "gridlines" ? GridLines : PageNumbers) = lower == "1";
    } else {
      return mrvk::Trim(pair);
    }
  }
  return "";
}

std::string PageSettings::Text() const {
  return "Paper=" + Paper + ";Orientation=" + (Landscape ? "1" : "0") +
         ";MarginTop=" + std::to_string(MarginTop) +
         ";MarginBottom=" + std::to_string(MarginBottom) +
         ";MarginLeft=" + std::to_string(MarginLeft) +
         ";MarginRight=" + std::to_string(MarginRight) + ";FontSize=" + std::to_string(FontSize) +
         ";GridLines=" + (GridLines ? "1" : "0") + ";PageNumbers=" + (PageNumbers ? "1" : "0");
}

std::vector<PrintedDocument> TakePrintedDocuments() {
  std::vector<PrintedDocument> out;
  out.swap(t_documents);
  return out;
}

void AnnouncePrintedDocument(PrintedDocument document) {
  t_documents.push_back(std::move(document));
}

std::string NewDocumentPath(const std::string& folder, const std::string& stem) {
  static std::atomic<uint64_t> counter{0};
  std::error_code error;
  const fs::path dir = fs::path(folder.empty() ? "." : folder) / "preview";
  fs::create_directories(dir, error);
  if (!fs::is_directory(dir, error)) return "";
  const auto now = fs::file_time_type::clock::now();
  for (const auto& entry : fs::directory_iterator(dir, error)) {
    std::error_code ignored;
    if (entry.path().extension() == ".html" &&
        now - entry.last_write_time(ignored) > std::chrono::hours(24))
      fs::remove(entry.path(), ignored);
  }
  const auto stamp = std::chrono::duration_cast<std::chrono::milliseconds>(
                         std::chrono::system_clock::now().time_since_epoch())
                         .count();
  return (dir / (stem + "-" + std::to_string(stamp) + "-" + std::to_string(::getpid()) + "-" +
                 std::to_string(++counter) + ".html"))
      .string();
}

std::string HtmlEscape(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (char ch : text) {
    switch (ch) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out.push_back(ch);
    }
  }
  return out;
}

std::string CssColour(int32_t colour) {
  static const char* const kHex = "0123456789abcdef";
  const int r = colour & 255;
  const int g = (colour >> 8) & 255;
  const int b = (colour >> 16) & 255;
  std::string out = "#";
  for (int part : {r, g, b}) {
    out.push_back(kHex[part >> 4]);
    out.push_back(kHex[part & 15]);
  }
  return out;
}

std::string PrintDate() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char text[16];
  std::strftime(text, sizeof text, "%Y-%m-%d", &local);
  return text;
}

std::string HtmlHead(const std::string& title, const PageSettings& s,
                     const std::string& extra_css) {
  std::ostringstream out;
  out << "<!DOCTYPE html>\n<html lang=\"zh-CN\">\n<head>\n<meta charset=\"utf-8\">\n<title>"
      << HtmlEscape(title) << "</title>\n<style>\n"
      << "@page { size: " << s.Paper << (s.Landscape ? " landscape" : " portrait")
      << "; margin: " << s.MarginTop << "mm " << s.MarginRight << "mm " << s.MarginBottom << "mm "
      << s.MarginLeft << "mm;"
      << (s.PageNumbers ? " @bottom-center { content: counter(page) \" / \" counter(pages);"
                          " font-size: 8pt; }"
                        : "")
      << " }\n"
      << "body { font-family: \"Noto Sans CJK SC\", \"Source Han Sans SC\", \"WenQuanYi Micro "
         "Hei\", \"Microsoft YaHei\", \"PingFang SC\", sans-serif; font-size: "
      << s.FontSize << "pt; color: #000; margin: 0; }\n"
      << "@media screen { body { max-width: 280mm; margin: 8mm auto; padding: 0 6mm; } }\n"
      << ".org { text-align: center; font-size: 1.1em; }\n"
      << "h1 { text-align: center; font-size: 1.6em; margin: 1mm 0 2mm; }\n"
      << ".heading { font-size: 0.9em; margin-bottom: 2mm; }\n"
      << "table.grid { border-collapse: collapse; width: 100%; table-layout: fixed; }\n"
      << "table.grid th, table.grid td { padding: 0.4mm 1mm; overflow: hidden; "
         "text-overflow: clip; vertical-align: middle; "
      << (s.GridLines ? "border: 0.5pt solid #808080; " : "") << "}\n"
      << "table.grid th { font-weight: bold; background: #f0f0f0; text-align: center; }\n"
      << "thead { display: table-header-group; }\n"
      << "tr { break-inside: avoid; page-break-inside: avoid; }\n"
      << "tr.total td { font-weight: bold; }\n"
      << ".l { text-align: left; } .c { text-align: center; } .r { text-align: right; }\n"
      << ".nowrap td { white-space: nowrap; }\n"
      << ".extra { margin-top: 2mm; white-space: pre-wrap; }\n"
      << "footer { margin-top: 3mm; font-size: 0.8em; display: flex; justify-content: "
         "space-between; }\n"
      << "@media print { * { -webkit-print-color-adjust: exact; print-color-adjust: exact; } }\n"
      << extra_css << "</style>\n</head>\n<body>\n";
  return out.str();
}

std::string GridPrintHtml(const GridControl& grid, const GridPage& page,
                          const PageSettings& settings) {
  std::vector<int> shown;
  int total_width = 0;
  for (int c = 0; c < grid.Cols(); ++c) {
    if (!grid.IsColumnShown(c)) continue;
    shown.push_back(c);
    total_width += grid.ColWidth(c);
  }
  std::string out = HtmlHead(page.title, settings);
  out.reserve(out.size() + static_cast<size_t>(grid.Rows()) * (shown.size() * 24 + 16));
  out += "<header>\n";
  if (!page.organisation.empty())
    out += "<div class=\"org\">" + HtmlEscape(page.organisation) + "</div>\n";
  out += "<h1>" + HtmlEscape(page.title) + "</h1>\n";
  if (!page.heading.empty())
    out += "<div class=\"heading\">" + HeadingHtml(page.heading) + "</div>\n";
  out += "</header>\n<table class=\"grid";
  if (!grid.WordWrap) out += " nowrap";
  out += "\">\n<colgroup>";
  for (int c : shown) {
    const double percent = total_width > 0 ? 100.0 * grid.ColWidth(c) / total_width : 0;
    char width[32];
    std::snprintf(width, sizeof width, "%.2f", percent);
    out += std::string("<col style=\"width:") + width + "%\">";
  }
  out += "</colgroup>\n<thead>\n";
  const auto spans = HeaderSpans(grid, shown);
  for (int r = 0; r < grid.FixedRows(); ++r) {
    if (grid.RowHeight(r) == 0) continue;
    out += "<tr>";
    for (size_t i = 0; i < shown.size(); ++i) {
      const HeaderSpan& span = spans[static_cast<size_t>(r)][i];
      if (span.cols == 0) continue;
      out += "<th";
      if (span.cols > 1) out += " colspan=\"" + std::to_string(span.cols) + "\"";
      if (span.rows > 1) out += " rowspan=\"" + std::to_string(span.rows) + "\"";
      out += ">" + HtmlEscape(grid.ShownText(r, shown[i])) + "</th>";
    }
    out += "</tr>\n";
  }
  out += "</thead>\n<tbody>\n";
  for (int r = grid.FixedRows(); r < grid.Rows(); ++r) {
    if (grid.RowHeight(r) == 0) continue;
    out += "<tr";
    if (grid.IsSubtotal(r)) {
      out += grid.SubtotalGroup(r) < 0 ? " class=\"total\"" : " class=\"subtotal\"";
    }
    out += ">";
    for (int c : shown) {
      const std::string text = grid.ShownText(r, c);
      out += "<td" + CellAttributes(grid, r, c) + ">" + HtmlEscape(text) + "</td>";
    }
    out += "</tr>\n";
  }
  out += "</tbody>\n</table>\n";
  if (!page.extra.empty()) out += "<div class=\"extra\">" + HtmlEscape(page.extra) + "</div>\n";
  out += "<footer><span>" + HtmlEscape(page.footer) + "</span><span>打印日期：" + PrintDate() +
         "</span></footer>\n</body>\n</html>\n";
  return out;
}

void PrintJob::Prepare(const std::string& organisation_name, const std::string& job_text2) {
  organisation_ = organisation_name;
  job_text2_ = job_text2;
}

bool PrintJob::Make(const std::string& settings_file, const PageSettings& settings,
                    const std::string& title, const std::string& heading, const GridControl& grid,
                    const std::string& extra, bool direct) {
  document_.clear();
  const fs::path settings_path(settings_file);
  const std::string stem =
      settings_path.stem().empty() ? std::string("print") : settings_path.stem().string();
  const std::string path = NewDocumentPath(settings_path.parent_path().string(), stem);
  if (path.empty()) {
    error_ = "无法建立打印预览目录: " + (settings_path.parent_path() / "preview").string();
    return false;
  }
  GridPage page{organisation_, title, heading, extra, job_text2_};
  {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out || !(out << GridPrintHtml(grid, page, settings)) || !out.flush()) {
      error_ = "无法写入打印文件: " + path;
      return false;
    }
  }
  document_ = path;
  AnnouncePrintedDocument(PrintedDocument{path, title, direct});
  return true;
}

bool PrintJob::Setup(const std::string& settings_file, const std::string& title,
                     const std::string& heading, const GridControl& grid, const std::string& extra,
                     bool ask, mrvk::Variant& options, const std::string&, bool& done) {
  done = false;
  error_.clear();
  PageSettings settings = PageSettings::Read(settings_file);
  const std::string asked =
      options.IsEmpty() || options.IsNull() ? std::string() : options.ToString();
  if (std::string refused = settings.Apply(asked); !refused.empty()) {
    error_ = "无效的页面设置: " + refused;
    return false;
  }
  // With ask, the person sees the settings in the page setup and may change or cancel them.
  if (ask && mrvk::CurrentUiPort() && !AskPageSettings(settings)) return true;
  if (!settings.Write(settings_file)) {
    error_ = "无法写入打印设置文件: " + settings_file;
    return false;
  }
  options = mrvk::Variant(settings.Text());
  done = true;
  return Make(settings_file, settings, title, heading, grid, extra, /*direct=*/false);
}

bool PrintJob::Print(const std::string& settings_file, const std::string& title,
                     const std::string& heading, const GridControl& grid, const std::string& extra,
                     bool direct, const std::string&, bool& done) {
  error_.clear();
  done =
      Make(settings_file, PageSettings::Read(settings_file), title, heading, grid, extra, direct);
  return done;
}

}  // namespace kvhost
