#include "mrvk/frame/search_picker.h"

#include "kvhost/lib/ini_file.h"
#include "mrvk/frame/data_access.h"
#include "mrvk/frame/grid_layout.h"

namespace mrvk {
namespace {

constexpr int kKeyReturn = 13;
// The first property SearchBox1 is given when it is bound: the pause after the last key.
constexpr int kSearchDelay = 500;

constexpr const char* kSection = "Search";

// ASCII letters folded to upper case and appended: the search compares without regard to
// case, and only ASCII letters have one.
void AppendFolded(std::string& out, const std::string& text) {
  for (char c : text) out.push_back(c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c);
}

}  // namespace

SearchPicker::SearchPicker(const SearchPickerShape& shape) : shape_(shape) {
  const char* captions[] = {"物业名称", "户型结构", shape_.state_caption};
  for (int i = kEstate; i <= kState; ++i) kvTxt.Add(controls_, i).Caption = captions[i];
  controls_.Add(Vs);
  Vs.ToolTipText = "提示：双击或按回车键选择完毕！";
  controls_.Add(SearchBox1);
  SearchBox1.Caption = "搜索(&F):";
  controls_.Add(chkFilter);
  chkFilter.Caption = "过滤";
  const char* buttons[] = {"确定(&O)", "取消(&U)", "刷新(&R)"};
  for (int i = kSelect; i <= kRefresh; ++i) {
    Cmd.Add(controls_, i).Caption = buttons[i];
    Cmd[i].Click = [this, i] { Cmd_Click(i); };
  }

  // The estate and the layout: a button that opens the list, and a typed text checked.
  struct Binding {
    int index;
    const char* value_column;
    const char* display_column;
    const char* picker_key;
    const char* validate_sql;
  };
  const Binding bindings[] = {
      {kEstate, "物业ID", "物业名称", "gy_wy",
       "select * from fwwy where 物业编号='@' or 物业名称='@'"},
      {kLayout, "ID", "名称", "gy_sjzd_hx",
       "select * from pdmsjzd where 类型='户型' and (代码='@' or 名称='@')"},
  };
  for (const Binding& b : bindings) {
    kvhost::KvTxt& field = kvTxt[b.index];
    field.Config.ShowButton = true;
    field.Config.CheckInput = true;
    field.Config.ValueColumn = b.value_column;
    field.Config.DisplayColumn = b.display_column;
    field.Config.PickerKey = b.picker_key;
    field.Config.ValidateSql = b.validate_sql;
    field.Config.ErrorMessage = field.Caption + "输入有误，请重新输入！";
    field.ShowPicker = [this, &field](std::string& text, Variant& value) {
      context_->ShowPicker(field, text, value);
    };
    field.CheckPicker = [this, &field](const std::string& typed, Variant& value,
                                       std::string& text) {
      CheckTyped(field, typed, value, text);
    };
  }
  kvTxt[kState].Config.ListText = shape_.state_list;
  kvTxt[kState].Config.Style = 3;
  kvTxt[kState].Config.ShowButton = true;

  SearchBox1.Change = [this] { Search(); };
  SearchBox1.Clear = [this] { ShowAllRows(); };
  chkFilter.Click = [this] { Search(); };
  Vs.DblClick = [this] { Guarded([this] { Select(); }); };
  Vs.KeyDown = [this](int key_code, int shift) { Vs_KeyDown(key_code, shift); };
}

bool SearchPicker::Init(IHostContext& context, int32_t progID, const std::string&) {
  context_ = &context;
  prog_id_ = progID;
  tools_ = std::make_unique<kvhost::FormTools>(controls_);
  convert_ = std::make_unique<kvhost::Convert>();
  parameters_ = std::make_shared<IHostPickerParameters>();
  // The grid: the columns under the header, no fixed column, the first ones frozen.
  Vs.SetFormatString(shape_.format);
  Vs.SetFixedRows(1);
  Vs.SetFixedCols(0);
  Vs.SetRows(1);
  Vs.FrozenCols = shape_.frozen_cols;
  SearchBox1.Bind(kSearchDelay, Vs);
  // A key the grid hides is not searched either, so that a typed number does not stop on a
  // row for a key nobody sees; the layout file may still ask for it.
  if (shape_.key_hidden) {
    Vs.ColHidden(kColID) = true;
    SearchBox1.Columns[kColID].searched = false;
  }
  return true;
}

bool SearchPicker::Clear() {
  if (context_) DoSaveFormStatus();
  if (parameters_) parameters_->Clear();
  parameters_.reset();
  tools_.reset();
  convert_.reset();
  context_ = nullptr;
  return true;
}

void SearchPicker::SetPickerParameters(std::shared_ptr<IHostPickerParameters> parameters) {
  if (parameters) parameters_ = std::move(parameters);
}

void SearchPicker::DoGetFormStatus() {
  if (!context_) return;
  kvhost::IniFile ini;
  ini.FileName(LayoutPath(ClassName(), *context_));
  for (size_t i = 0; i < SearchBox1.Columns.size(); ++i) {
    SearchBox1.Columns[i].searched =
        ini.ReadBool(kSection, "Field" + std::to_string(i), SearchBox1.Columns[i].searched);
  }
  chkFilter.Value = ini.ReadBool(kSection, "Filter", chkFilter.Value == 1) ? 1 : 0;
}

void SearchPicker::DoSaveFormStatus() {
  if (!context_) return;
  kvhost::IniFile ini;
  ini.FileName(LayoutPath(ClassName(), *context_));
  ini.BeginUpdate();
  for (size_t i = 0; i < SearchBox1.Columns.size(); ++i)
    ini.WriteBool(kSection, "Field" + std::to_string(i), SearchBox1.Columns[i].searched);
  ini.WriteBool(kSection, "Filter", chkFilter.Value == 1);
  ini.EndUpdate();
}

void SearchPicker::SetText(const std::string& text) {
  text_ = text;
  SearchBox1.Text = text;
  Search();
}

int SearchPicker::NewMode() const {
  if (!parameters_ || !parameters_->Exists("New")) return 0;
  return static_cast<int>(Val(parameters_->Value("New").ToString()));
}

bool SearchPicker::Refresh() {
  return Guarded([this] {
    Vs.SetRows(Vs.FixedRows());
    LoadData();
  });
}

std::string SearchPicker::FilteredStatement() {
  std::string sql = shape_.select;
  if (const std::string& estate = kvTxt[kEstate].Text; !estate.empty())
    sql += " and fwwy.物业名称=" + SqlQuoted(estate);
  if (const std::string& layout = kvTxt[kLayout].Text; !layout.empty())
    sql += " and fwfy.户型=" + SqlQuoted(layout);
  // New = 1 fixes the state: only what the new record may take is listed.
  if (NewMode() == 1) {
    kvTxt[kState].Enabled = false;
    sql += shape_.with_new;
  } else {
    kvTxt[kState].Enabled = true;
    if (const std::string& state = kvTxt[kState].Text; !state.empty())
      sql += shape_.state_of + SqlQuoted(state);
  }
  return sql;
}

void SearchPicker::LoadData() {
  const std::string sql = FilteredStatement() + shape_.order;
  IHostDatabase& db = context_->Database();
  ReleaseOnExit release(db);
  Vs.Redraw = false;
  RowsArray rows;
  {
    auto rs = db.CreateCommand(sql, 1)->OpenRecordset();
    if (const std::string error = db.Error().Description(); !error.empty()) {
      Vs.Redraw = true;
      MsgBox(error, msgbox::kCritical, "错误：");
      return;
    }
    if (!rs->Eof()) rows = rs->GetRows();
  }
  if (rows.rows > 0) Vs.LoadArray(rows);
  Vs.SetRow(Vs.Rows() > Vs.FixedRows() ? Vs.FixedRows() : 0);
  Vs.SetTopRow(Vs.FixedRows());
  Vs.Redraw = true;
  // A search text already in the box applies to the rows just loaded.
  if (!SearchBox1.Text.empty()) Search();
  tools_->SetFocus(Vs);
}

void SearchPicker::Select() {
  const int row = Vs.Row();
  if (row < Vs.FixedRows() || row >= Vs.Rows()) {
    value_ = Variant(std::string("0"));
    text_.clear();
  } else {
    value_ = Variant(NumberText(convert_->ToLong(Variant(Vs.TextMatrix(row, kColID)))));
    text_ = Vs.TextMatrix(row, kColNumber);
  }
  RaiseEvent("DoSelect", event_id::kDoSelect);
}

void SearchPicker::ChooseRows(const std::vector<int>& rows) {
  if (rows.empty()) return;
  Vs.SetRow(Vs.FixedRows() + rows.front());
  Guarded([this] { Select(); });
}

void SearchPicker::Cmd_Click(int index) {
  switch (index) {
    case kSelect:
      Guarded([this] { Select(); });
      break;
    case kCancel:
      // Nothing chosen: the result reads as no row.
      value_ = Variant(std::string("0"));
      text_.clear();
      RaiseEvent("DoCancel", event_id::kDoCancel);
      break;
    case kRefresh:
      Refresh();
      break;
  }
}

void SearchPicker::Vs_KeyDown(int key_code, int) {
  if (key_code == kKeyReturn) Guarded([this] { Select(); });
}

void SearchPicker::ShowAllRows() {
  for (int r = Vs.FixedRows(); r < Vs.Rows(); ++r)
    Vs.RowHeight(r) = kvhost::GridControl::kDefaultRowHeight;
}

// Every hidden row shows again; then each data row in order is searched: its cells in the
// columns SearchBox1 marks as searched, each followed by "%", make one text, which holds a
// hit when the search text stands anywhere in it (ASCII letters without regard to case).
// chkFilter off: the first hit becomes the current and top row. On: the rows without a hit
// are hidden and the first hit becomes the current and top row; with no hit the current row
// is the header, so a choice then gives no row. An empty text only shows every row.
void SearchPicker::Search() {
  ShowAllRows();
  if (SearchBox1.Text.empty()) return;
  std::string needle;
  AppendFolded(needle, SearchBox1.Text);
  std::vector<int> cols;
  for (int c = 0; c < Vs.Cols(); ++c) {
    if (SearchBox1.IsSearched(c)) cols.push_back(c);
  }
  const bool filter = chkFilter.Value == 1;
  int first_hit = -1;
  std::string line;
  for (int r = Vs.FixedRows(); r < Vs.Rows(); ++r) {
    line.clear();
    for (int c : cols) {
      AppendFolded(line, Vs.TextMatrix(r, c));
      line.push_back('%');
    }
    const bool hit = line.find(needle) != std::string::npos;
    if (hit && first_hit < 0) {
      first_hit = r;
      if (!filter) break;
    }
    if (filter && !hit) Vs.RowHeight(r) = 0;
  }
  if (first_hit >= 0) {
    Vs.SetRow(first_hit);
    Vs.SetTopRow(first_hit);
  } else if (filter) {
    Vs.SetRow(0);
  }
}

// The field's statement with every @ standing for the typed text, quotes doubled. A row
// gives the field its value and display columns. No row, or a statement that fails, shows
// the field's message; the value becomes 0 and the text stays as typed.
void SearchPicker::CheckTyped(kvhost::KvTxt& field, const std::string& typed, Variant& value,
                              std::string& text) {
  const std::string entered = typed;  // the field's Text may come in as typed and as text
  std::string sql;
  for (char c : field.Config.ValidateSql) {
    if (c == '@')
      sql += SqlText(entered);
    else
      sql.push_back(c);
  }
  IHostDatabase& db = context_->Database();
  ReleaseOnExit release(db);
  auto rs = db.CreateCommand(sql, 1)->OpenRecordset();
  if (db.Error().Description().empty() && !rs->Eof()) {
    value = rs->Fields(field.Config.ValueColumn).Value;
    text = convert_->ToString(rs->Fields(field.Config.DisplayColumn).Value);
    return;
  }
  value = Variant(int32_t{0});
  text = entered;
  MsgBox(field.Config.ErrorMessage, msgbox::kExclamation, "");
}

// The list's statement and filters without its order, narrowed to the rows whose two prefix
// columns begin with the typed text; the first row gives the key and the number. The typed text
// is a pattern: its quotes are doubled, and "%" or "_" typed into it match as in any like.
bool SearchPicker::Validate(const std::string&, const std::string&, const std::string&,
                            const std::string& input, Variant& value, std::string& text) {
  bool found = false;
  value_ = Variant(std::string());
  text_.clear();
  Guarded([&] {
    const std::string typed = SqlText(input);
    const std::string sql = FilteredStatement() + "  AND ( " + shape_.prefix_first + " like '" +
                            typed + "%' OR " + shape_.prefix_second + " Like '" + typed + "%' )";
    IHostDatabase& db = context_->Database();
    ReleaseOnExit release(db);
    auto rs = db.CreateCommand(sql, 1)->OpenRecordset();
    if (const std::string error = db.Error().Description(); !error.empty()) {
      MsgBox(error, msgbox::kCritical, "错误：");
      return;
    }
    if (rs->Eof()) return;
    value_ = Variant(convert_->ToString(rs->Fields(shape_.key_field).Value));
    text_ = convert_->ToString(rs->Fields(shape_.number_field).Value);
    found = true;
  });
  value = value_;
  text = text_;
  return found;
}

}  // namespace mrvk
