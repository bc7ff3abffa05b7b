#include "kvhost/lib/print_data.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include "kvhost/lib/atomic_file.h"
#include "kvhost/lib/display_format.h"
#include "kvhost/lib/print_job.h"
#include "mrvk/frame/vb.h"

namespace kvhost {
namespace {

namespace fs = std::filesystem;

constexpr const char* kMagic = "MRVK-PRINTDATA 1";

[[noreturn]] void Fail(const std::string& text) {
  throw mrvk::VbError(mrvk::vb_error::kSubscriptOutOfRange, text);
}

std::string Escape(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (char ch : text) {
    switch (ch) {
      case '\\':
        out += "\\\\";
        break;
      case '\t':
        out += "\\t";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      default:
        out.push_back(ch);
    }
  }
  return out;
}

std::string Unescape(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      out.push_back(text[i]);
      continue;
    }
    const char next = text[++i];
    out.push_back(next == 't' ? '\t' : next == 'n' ? '\n' : next == 'r' ? '\r' : next);
  }
  return out;
}

std::vector<std::string> SplitTabs(const std::string& line) {
  std::vector<std::string> parts;
  size_t start = 0;
  while (true) {
    const size_t tab = line.find('\t', start);
    parts.push_back(Unescape(line.substr(start, tab - start)));
    if (tab == std::string::npos) return parts;
    start = tab + 1;
  }
}

bool ReadCount(const std::string& text, int& n) {
  if (!IsPlainNumber(text) || text.find('.') != std::string::npos || text[0] == '-' ||
      text.size() > 9)
    return false;
  n = std::stoi(text);
  return true;
}

std::string TableHtml(const PrintTable& table) {
  std::string out = "<table class=\"grid\">\n";
  if (table.Rows() > 0) {
    out += "<thead><tr>";
    for (int c = 0; c < table.Cols(); ++c) out += "<th>" + HtmlEscape(table.Cell(c, 0)) + "</th>";
    out += "</tr></thead>\n";
  }
  out += "<tbody>\n";
  for (int r = 1; r < table.Rows(); ++r) {
    out += "<tr>";
    for (int c = 0; c < table.Cols(); ++c) {
      const std::string& text = table.Cell(c, r);
      out += std::string("<td class=\"") + (IsPlainNumber(text) ? "r" : "l") + "\">" +
             HtmlEscape(text) + "</td>";
    }
    out += "</tr>\n";
  }
  out += "</tbody>\n</table>\n";
  return out;
}

// The host's own layout: the fields two to a line, then the tables.
std::string DefaultBody(const PrintSection* section) {
  if (!section) return "";
  std::string out = "<table class=\"fields\">\n";
  const auto& fields = section->Fields();
  for (size_t i = 0; i < fields.size(); i += 2) {
    out += "<tr>";
    for (size_t k = i; k < i + 2; ++k) {
      if (k < fields.size())
        out += "<th>" + HtmlEscape(fields[k].first) + "</th><td>" + HtmlEscape(fields[k].second) +
               "</td>";
      else
        out += "<th></th><td></td>";
    }
    out += "</tr>\n";
  }
  out += "</table>\n";
  for (const auto& [name, table] : section->Tables()) out += TableHtml(*table);
  return out;
}

constexpr const char* kDataCss =
    "table.fields { width: 100%; border-collapse: collapse; margin-bottom: 3mm; }\n"
    "table.fields th { text-align: right; font-weight: normal; width: 15%; padding: 0.6mm "
    "1.5mm; white-space: nowrap; }\n"
    "table.fields td { width: 35%; padding: 0.6mm 1.5mm; border-bottom: 0.5pt solid #808080; "
    "}\n";

}  // namespace

PrintTable::PrintTable(int cols, int rows)
    : cols_(std::max(cols, 0)),
      rows_(std::max(rows, 0)),
      cells_(static_cast<size_t>(cols_) * static_cast<size_t>(rows_)) {}

size_t PrintTable::At(int col, int row) const {
  if (col < 0 || col >= cols_ || row < 0 || row >= rows_)
    Fail("打印表格没有单元格 (" + std::to_string(col) + ", " + std::to_string(row) + ")");
  return static_cast<size_t>(row) * static_cast<size_t>(cols_) + static_cast<size_t>(col);
}

void PrintTable::Cell(int col, int row, const std::string& text) { cells_[At(col, row)] = text; }

const std::string& PrintTable::Cell(int col, int row) const { return cells_[At(col, row)]; }

void PrintSection::SetField(const std::string& name, const std::string& value) {
  for (auto& [n, v] : fields_) {
    if (n == name) {
      v = value;
      return;
    }
  }
  fields_.emplace_back(name, value);
}

std::string PrintSection::Field(const std::string& name) const {
  for (const auto& [n, v] : fields_) {
    if (n == name) return v;
  }
  return "";
}

PrintTable& PrintSection::AddTable(const std::string& name, int cols, int rows) {
  auto table = std::make_unique<PrintTable>(cols, rows);
  PrintTable& ref = *table;
  for (auto& [n, t] : tables_) {
    if (n == name) {
      t = std::move(table);
      return ref;
    }
  }
  tables_.emplace_back(name, std::move(table));
  return ref;
}

PrintTable& PrintSection::Table(const std::string& name) {
  for (auto& [n, t] : tables_) {
    if (n == name) return *t;
  }
  Fail("打印数据没有表格 \"" + name + "\"");
}

const PrintTable* PrintSection::FindTable(const std::string& name) const {
  for (const auto& [n, t] : tables_) {
    if (n == name) return t.get();
  }
  return nullptr;
}

PrintSection& PrintData::Section(const mrvk::Variant& index) { return sections_[index.ToLong()]; }

void PrintData::Save(const std::string& path) const {
  std::ostringstream text;
  text << kMagic << "\n";
  for (const auto& [index, section] : sections_) {
    text << "S\t" << index << "\n";
    for (const auto& [name, value] : section.Fields())
      text << "F\t" << Escape(name) << "\t" << Escape(value) << "\n";
    for (const auto& [name, table] : section.Tables()) {
      text << "T\t" << Escape(name) << "\t" << table->Cols() << "\t" << table->Rows() << "\n";
      for (int r = 0; r < table->Rows(); ++r) {
        for (int c = 0; c < table->Cols(); ++c) {
          const std::string& cell = table->Cell(c, r);
          if (!cell.empty()) text << "C\t" << c << "\t" << r << "\t" << Escape(cell) << "\n";
        }
      }
    }
  }
  std::error_code ignored;
  const fs::path folder = fs::path(path).parent_path();
  if (!folder.empty()) fs::create_directories(folder, ignored);
  if (!ReplaceFile(path, text.str())) Fail("无法写入打印数据文件: " + path);
}

bool PrintData::Load(const std::string& path, std::string& error) {
  sections_.clear();
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    error = "打印数据文件不存在: " + path;
    return false;
  }
  std::string line;
  if (!std::getline(in, line) || line != kMagic) {
    error = "不是打印数据文件: " + path;
    return false;
  }
  PrintSection* section = nullptr;
  PrintTable* table = nullptr;
  int number = 1;
  while (std::getline(in, line)) {
    ++number;
    if (line.empty()) continue;
    const std::vector<std::string> parts = SplitTabs(line);
    const std::string& kind = parts[0];
    int a = 0, b = 0;
    bool ok = false;
    if (kind == "S" && parts.size() == 2) {
      ok = IsPlainNumber(parts[1]) && parts[1].find('.') == std::string::npos;
      if (ok) section = &sections_[static_cast<int>(mrvk::Val(parts[1]))];
      table = nullptr;
    } else if (kind == "F" && parts.size() == 3 && section) {
      section->SetField(parts[1], parts[2]);
      ok = true;
    } else if (kind == "T" && parts.size() == 4 && section) {
      ok = ReadCount(parts[2], a) && ReadCount(parts[3], b) &&
           static_cast<int64_t>(a) * b <= 10'000'000;
      if (ok) table = &section->AddTable(parts[1], a, b);
    } else if (kind == "C" && parts.size() == 4 && table) {
      ok = ReadCount(parts[1], a) && ReadCount(parts[2], b) && a < table->Cols() &&
           b < table->Rows();
      if (ok) table->Cell(a, b, parts[3]);
    }
    if (!ok) {
      error = path + ": 第 " + std::to_string(number) + " 行无法识别";
      sections_.clear();
      return false;
    }
  }
  return true;
}

std::string RenderPrintData(const PrintData& data, const std::string& layout_template,
                            const std::string& title) {
  const auto it = data.Sections().find(1);
  const PrintSection* section = it == data.Sections().end() ? nullptr : &it->second;
  std::string out = HtmlHead(title, PageSettings{}, kDataCss);
  if (layout_template.empty()) {
    out += "<h1>" + HtmlEscape(title) + "</h1>\n" + DefaultBody(section);
  } else {
    for (size_t i = 0; i < layout_template.size();) {
      const size_t open = layout_template.find("{{", i);
      const size_t close =
          open == std::string::npos ? std::string::npos : layout_template.find("}}", open + 2);
      if (close == std::string::npos) {
        out += layout_template.substr(i);
        break;
      }
      out += layout_template.substr(i, open - i);
      const std::string name = mrvk::Trim(layout_template.substr(open + 2, close - open - 2));
      if (name == "date") {
        out += PrintDate();
      } else if (name.rfind("table:", 0) == 0) {
        const PrintTable* table = section ? section->FindTable(name.substr(6)) : nullptr;
        if (table) out += TableHtml(*table);
      } else if (section) {
        out += HtmlEscape(section->Field(name));
      }
      i = close + 2;
    }
  }
  out += "\n<footer><span></span><span>打印日期：" + PrintDate() + "</span></footer>\n";
  out += "</body>\n</html>\n";
  return out;
}

bool RenderPrintFile(const std::string& data_file, bool direct, std::string& document,
                     std::string& error, const std::string& template_folder) {
  document.clear();
  PrintData data;
  if (!data.Load(data_file, error)) return false;
  const fs::path path(data_file);
  std::string layout;
  fs::path template_path = path;
  template_path.replace_extension(".layout.html");
  std::ifstream in(template_path, std::ios::binary);
  if (!in && !template_folder.empty())
    in.open(fs::path(template_folder) / template_path.filename(), std::ios::binary);
  if (in) {
    std::ostringstream text;
    text << in.rdbuf();
    layout = text.str();
  }
  std::string title = path.stem().string();
  if (auto it = data.Sections().find(1); it != data.Sections().end()) {
    const std::string field = it->second.Field("标题");
    if (!field.empty()) title = field;
  }
  const std::string out = NewDocumentPath(path.parent_path().string(), path.stem().string());
  if (out.empty()) {
    error = "无法建立打印预览目录: " + (path.parent_path() / "preview").string();
    return false;
  }
  std::ofstream file(out, std::ios::binary | std::ios::trunc);
  if (!file || !(file << RenderPrintData(data, layout, title)) || !file.flush()) {
    error = "无法写入打印文件: " + out;
    return false;
  }
  document = out;
  AnnouncePrintedDocument(PrintedDocument{out, title, direct});
  return true;
}

}  // namespace kvhost
