// PrintData: the print data file a document sheet writes (fields and tables by name, in
// numbered sections), and the host's renderer that turns such a file and a layout template
// into a printable HTML page like the grid print's.
//
// The file is UTF-8 text, one entry a line, tabs between the parts; a tab, line break or
// backslash inside a name or text is written "\t", "\n", "\r", "\\":
//   MRVK-PRINTDATA 1
//   S <index>                        a section
//   F <name> <text>                  a field of the section
//   T <name> <cols> <rows>           a table of the section
//   C <col> <row> <text>             a cell of the last table (cells never set stay "")
//
// The layout template is an HTML file with placeholders: {{name}} gives the field's text
// (escaped) from section 1, {{table:name}} the table as an HTML table whose row 0 is the
// header, {{date}} the print date. Without a template the host lays the page out itself:
// the fields as a two-column list, then every table.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "mrvk/frame/variant.h"

namespace kvhost {

class PrintTable {
 public:
  PrintTable(int cols, int rows);
  int Cols() const { return cols_; }
  int Rows() const { return rows_; }
  // A cell outside the table is the object's run-time failure (throws mrvk::VbError).
  void Cell(int col, int row, const std::string& text);
  const std::string& Cell(int col, int row) const;

 private:
  size_t At(int col, int row) const;
  int cols_;
  int rows_;
  std::vector<std::string> cells_;
};

class PrintSection {
 public:
  // A field set twice keeps the last text, in the place of the first.
  void SetField(const std::string& name, const std::string& value);
  // The field's text; "" for a name never set.
  std::string Field(const std::string& name) const;
  const std::vector<std::pair<std::string, std::string>>& Fields() const { return fields_; }
  // Adds a table (a table of the same name is replaced) and gives it.
  PrintTable& AddTable(const std::string& name, int cols, int rows);
  // The table; a name never added is a run-time failure (throws mrvk::VbError).
  PrintTable& Table(const std::string& name);
  const PrintTable* FindTable(const std::string& name) const;
  const std::vector<std::pair<std::string, std::unique_ptr<PrintTable>>>& Tables() const {
    return tables_;
  }

 private:
  std::vector<std::pair<std::string, std::string>> fields_;
  std::vector<std::pair<std::string, std::unique_ptr<PrintTable>>> tables_;
};

class PrintData {
 public:
  // The section of the index (made on first use); the module passes 1.
  PrintSection& Section(const mrvk::Variant& index);
  const std::map<int, PrintSection>& Sections() const { return sections_; }
  // Writes the file (the folder is made when missing) through a temporary file renamed over
  // it, so a preview never reads half a file. A file that cannot be written is the
  // object's run-time failure (throws mrvk::VbError), as the module's handler expects.
  void Save(const std::string& path) const;
  // Reads a file Save wrote; false with the reason in error.
  bool Load(const std::string& path, std::string& error);

 private:
  std::map<int, PrintSection> sections_;
};

// The page of the print data with the template (its text; "" for the host's own layout).
std::string RenderPrintData(const PrintData& data, const std::string& layout_template,
                            const std::string& title);

// Renders the data file with its template, the file beside it with the extension
// ".layout.html" (870201.txt: 870201.layout.html), else the file of that name in
// template_folder (the office's templates beside a person's own folder), into a new page in
// the folder "preview" beside the data file, and announces the page (TakePrintedDocuments)
// with direct as given. The title is the field "标题" of section 1, else the file's stem.
// False with the reason in error.
bool RenderPrintFile(const std::string& data_file, bool direct, std::string& document,
                     std::string& error, const std::string& template_folder = "");

}  // namespace kvhost
