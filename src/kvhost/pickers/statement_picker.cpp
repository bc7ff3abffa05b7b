#include "kvhost/pickers/statement_picker.h"

#include <strings.h>

#include <map>

#include "mrvk/frame/data_access.h"
#include "mrvk/frame/vb.h"

namespace kvhost {

std::optional<std::string> SpliceTyped(const std::string& sql, const std::string& typed,
                                       std::string& refusal) {
  refusal.clear();
  const std::string escaped = mrvk::SqlText(typed);
  std::string out;
  out.reserve(sql.size() + escaped.size());
  bool quoted = false;  // a doubled quote inside a text closes and opens it again
  for (char c : sql) {
    if (c == '\'') quoted = !quoted;
    if (c != '@') {
      out.push_back(c);
    } else if (quoted) {
      out += escaped;
    } else {
      refusal = "选择列表的语句中“@”不在引号内，未执行：" + sql;
      return std::nullopt;
    }
  }
  return out;
}

size_t ColumnIndex(const std::vector<std::string>& names, const std::string& name,
                   size_t fallback) {
  if (name.empty()) return fallback;
  for (size_t i = 0; i < names.size(); ++i) {
    if (strcasecmp(names[i].c_str(), name.c_str()) == 0) return i;
  }
  return fallback;
}

mrvk::Variant ChosenRow::Item(const std::string& name) const {
  const size_t i = ColumnIndex(names_, name, names_.size());
  return i < values_.size() ? values_[i] : mrvk::Variant();
}

bool StatementPicker::Run(const std::string& sql, std::vector<std::string>& names,
                          mrvk::RowsArray& rows) {
  mrvk::IHostDatabase& db = context_.Database();
  auto rs = db.CreateCommand(sql, 1)->OpenRecordset();
  const std::string error = db.Error().Description();
  if (!error.empty()) {
    mrvk::MsgBox("错误：" + error, mrvk::msgbox::kCritical, "");
    return false;
  }
  names.clear();
  if (!rs->Eof()) {
    for (int i = 0; i < rs->FieldCount(); ++i) names.push_back(rs->Fields(i).Name);
  }
  rows = rs->GetRows();
  return true;
}

bool StatementPicker::Validate(const std::string&, const std::string& value_column,
                               const std::string& text_column, const std::string& input,
                               mrvk::Variant& value, std::string& text) {
  const ListStatement list = builder_(parameters_);
  std::string refusal;
  const std::optional<std::string> valid = SpliceTyped(list.valid, input, refusal);
  if (!valid) {
    mrvk::MsgBox("错误：" + refusal, mrvk::msgbox::kCritical, "");
    return false;
  }
  std::string sql = list.select + " and (" + *valid + ")";
  if (!list.order.empty()) sql += " order by " + list.order;
  std::vector<std::string> names;
  mrvk::RowsArray rows;
  if (!Run(sql, names, rows)) return false;
  chosen_.reset();
  if (rows.rows == 0 || names.empty()) {
    value = mrvk::Variant(int32_t{0});
    text.clear();
    return false;
  }
  std::vector<mrvk::Variant> row(rows.cells.begin(),
                                 rows.cells.begin() + static_cast<ptrdiff_t>(rows.fields));
  const size_t text_col =
      ColumnIndex(names, text_column, ColumnIndex(names, list.text_column, names.size() - 1));
  chosen_ = std::make_unique<ChosenRow>(names, std::move(row), ColumnIndex(names, value_column, 0),
                                        text_col);
  value = chosen_->ChosenValue();
  text = chosen_->ChosenText();
  return true;
}

bool StatementPicker::Show(std::string& text, mrvk::Variant& value) {
  const ListStatement list = builder_(parameters_);
  std::string sql = list.select;
  if (!list.order.empty()) sql += " order by " + list.order;
  std::vector<std::string> names;
  mrvk::RowsArray rows;
  if (!Run(sql, names, rows)) return false;
  if (!list_) list_ = std::make_unique<HostList>();
  std::vector<std::pair<int, std::string>> shown;
  for (size_t c = names.size() > 1 ? 1 : 0; c < names.size(); ++c)
    shown.emplace_back(static_cast<int>(c), names[c]);
  list_->Load(list.caption, names, shown, std::move(rows));
  const std::optional<int> row = list_->Show();
  if (!row) {
    text.clear();
    return false;
  }
  std::vector<mrvk::Variant> values;
  for (const std::string& name : names) values.push_back(list_->Value(*row, name));
  chosen_ = std::make_unique<ChosenRow>(names, std::move(values), 0,
                                        ColumnIndex(names, list.text_column, names.size() - 1));
  value = chosen_->ChosenValue();
  text = chosen_->ChosenText();
  return true;
}

namespace {

std::string Param(const mrvk::IHostPickerParameters& p, const char* name) {
  return p.Value(name).ToString();
}

ListStatement ByStatement(const mrvk::IHostPickerParameters& p) {
  const std::string field = Param(p, "FieldName");
  return {field, Param(p, "SQL"), Param(p, "Valid"), Param(p, "Order"), field};
}

// One type of the data dictionary; the type is a parameter of the sheet, quoted all the same.
ListStatement Dictionary(const mrvk::IHostPickerParameters& p) {
  const std::string type = mrvk::Trim(Param(p, "Lx"));
  return {type, "select ID,代码,名称 from pdmsjzd where 类型=" + mrvk::SqlQuoted(type),
          " 代码='@' or 名称='@'", " 代码", "名称"};
}

ListStatement Employees(const mrvk::IHostPickerParameters&) {
  return {"雇员", "select 雇员ID,编号,姓名 from PDMgy where 1=1", " 编号='@' or 姓名='@'", " 编号",
          "姓名"};
}

// The accounts whose code begins with the given code, the code itself not among them; with
// ismx not 0 only the leaf accounts (是否明细=1).
ListStatement Accounts(const mrvk::IHostPickerParameters& p) {
  const std::string code = mrvk::Trim(Param(p, "科目编码"));
  std::string select = "select 科目ID,科目编码,科目名称 from pdmkjkm where 科目编码 like '" +
                       mrvk::SqlText(code) + "%' and 科目编码<>" + mrvk::SqlQuoted(code);
  if (p.Value("ismx").ToDouble() != 0) select += " and 是否明细=1";
  return {"会计科目", select, " 科目编码='@' or 科目名称='@'", " 科目编码", "科目名称"};
}

}  // namespace

StatementPicker::Builder StatementBuilder(const std::string& key) {
  static const std::map<std::string, StatementPicker::Builder> builders = {
      {"sel_id_j", ByStatement}, {"sel_inner_j", ByStatement}, {"sel_pdmsjzd", Dictionary},
      {"sel_pdmgy", Employees},  {"selpdmkjkm", Accounts},
  };
  auto it = builders.find(key);
  return it == builders.end() ? nullptr : it->second;
}

}  // namespace kvhost
