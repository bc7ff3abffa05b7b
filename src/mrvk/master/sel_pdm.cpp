#include "mrvk/master/sel_pdm.h"

#include <cctype>

#include "mrvk/frame/data_access.h"

namespace mrvk {
namespace {

constexpr int kKeyReturn = 13;
constexpr int kKeyB = 66;
constexpr int kKeyE = 69;
constexpr int kShiftMask = 1;
constexpr int kCtrlMask = 2;

// The grid's columns.
constexpr int kColMark = 1;
constexpr int kColCode = 2;
constexpr int kColName = 3;
constexpr int kColID = 4;

constexpr const char* kMark = "√";
constexpr const char* kFormat =
    " |选择  |编号  |名称            |ID|电话    |地址                |联系人  |备注    ";

bool IsDigits(const std::string& s) {
  if (s.empty()) return false;
  for (char c : s) {
    if (!std::isdigit(static_cast<unsigned char>(c))) return false;
  }
  return true;
}

}  // namespace

Variant clsPdm::Item(const std::string& name) const {
  if (name == "lID") return Variant(lID);
  if (name == "s编号") return Variant(s编号);
  if (name == "s名称") return Variant(s名称);
  return Variant();
}

selPdm::selPdm() {
  controls_.Add(lblFind);
  lblFind.Caption = "查找:";
  Txt.Add(controls_, 0).ToolTipText = "提示：按回车键选择完毕！";
  Txt.Add(controls_, 1).ToolTipText = "列1;列2;...列n";
  controls_.Add(Check);
  Check.Caption = "全字匹配";
  controls_.Add(Vs);
  Vs.ToolTipText = "提示：双击或按回车键选择完毕！";
  Cmd.Add(controls_, kRefresh).Caption = "刷新(&R)";
  Cmd.Add(controls_, kConfirm).Caption = "确认(&D)";
  Cmd.Add(controls_, kCancel).Caption = "取消(&C)";
  Cmd.Add(controls_, kSelectAll).Caption = "全选";
  Cmd.Add(controls_, kClearAll).Caption = "全清";

  Txt[0].Change = [this] { ChkFind(); };
  Txt[1].Change = [this] { ParseFindColumns(); };
  for (int i : {0, 1}) {
    Txt[i].KeyDown = [this, i](int key_code, int shift) { Txt_KeyDown(i, key_code, shift); };
  }
  Check.Click = [this] { Check_Click(); };
  Vs.Click = [this] { Vs_Click(); };
  Vs.DblClick = [this] { Guarded([this] { Confirm(); }); };
  Vs.KeyDown = [this](int key_code, int shift) { Vs_KeyDown(key_code, shift); };
  for (int i = kRefresh; i <= kClearAll; ++i) Cmd[i].Click = [this, i] { Cmd_Click(i); };
}

bool selPdm::Init(IHostContext& context, int32_t progID, const std::string& name) {
  context_ = &context;
  prog_id_ = progID;
  name_ = name;
  layout_folder_ = context.Environment().AppPath();
  if (layout_folder_.empty() || layout_folder_.back() != '/') layout_folder_ += "/";
  layout_folder_ += "selfbb";
  parameters_ = std::make_shared<IHostPickerParameters>();
  tools_ = std::make_unique<kvhost::FormTools>(controls_);
  convert_ = std::make_unique<kvhost::Convert>();
  pdm_ = std::make_unique<clsPdm>();
  ParseFindColumns();
  return true;
}

bool selPdm::Clear() {
  if (parameters_) parameters_->Clear();
  parameters_.reset();
  tools_.reset();
  convert_.reset();
  pdm_.reset();
  context_ = nullptr;
  return true;
}

void selPdm::SetPickerParameters(std::shared_ptr<IHostPickerParameters> parameters) {
  if (parameters) parameters_ = std::move(parameters);
}

std::string selPdm::Param(const std::string& name) const {
  return parameters_ ? Trim(parameters_->Value(name).ToString()) : std::string();
}

bool selPdm::Refresh() {
  return Guarded([this] {
    ApplyMode();
    LoadData();
  });
}

// `single` 1 chooses one row: the selection column and the buttons that tick all rows or
// none go. Any other value, 2 included, or none, ticks several.
void selPdm::ApplyMode() {
  single_ = parameters_ && parameters_->Exists("single") &&
            Val(parameters_->Value("single").ToString()) == 1;
  Cmd[kSelectAll].Visible = !single_;
  Cmd[kClearAll].Visible = !single_;
}

void selPdm::LoadData() {
  Vs.Redraw = false;
  Vs.SetFormatString(kFormat);
  Vs.SetFixedRows(1);
  Vs.SetFixedCols(1);
  Vs.SetRows(1);
  Vs.FrozenCols = 3;
  for (int c = 0; c < Vs.Cols(); ++c) Vs.ColAlignment(c) = kvhost::grid_align::kLeftCenter;
  Vs.ColAlignment(kColMark) = kvhost::grid_align::kCenterCenter;
  Vs.ColHidden(kColMark) = single_;
  Vs.ColHidden(kColID) = true;
  Vs.Redraw = true;

  const std::string code = Param("编号");
  const std::string name = Param("名称");
  const std::string id = Param("ID");
  const std::string table = Param("table");
  const std::string where = Param("where");
  const std::string order = Param("order");
  std::string sql =
      "select null," + code + "," + name + "," + id + ",电话,地址,联系人,备注 from " + table;
  if (!where.empty()) sql += " where " + where;
  if (!order.empty()) sql += " order by " + order;

  IHostDatabase& db = context_->Database();
  RowsArray rows;
  {
    auto rs = db.CreateCommand(sql, 1)->OpenRecordset();
    const std::string error = db.Error().Description();
    if (!error.empty()) {
      db.Release();
      MsgBox("错误：" + error, msgbox::kCritical, "");
      return;
    }
    rows = rs->GetRows();
  }
  db.Release();
  Vs.Redraw = false;
  if (rows.rows > 0) Vs.LoadArray(rows);
  Vs.SetRow(Vs.Rows() > Vs.FixedRows() ? Vs.FixedRows() : 0);
  Vs.SetCol(kColCode);
  Vs.Redraw = true;
  // A find text typed before applies to the new rows.
  if (!Txt[0].Text.empty()) ChkFind();
  tools_->SetFocus(Vs);
}

int selPdm::CurrentDataRow() const {
  const int row = Vs.Row();
  if (row < Vs.FixedRows() || row >= Vs.Rows() || Vs.RowHeight(row) == 0) return -1;
  return row;
}

void selPdm::Confirm() {
  find_text_ = Txt[0].Text;
  pdm_ = std::make_unique<clsPdm>();
  if (const int row = CurrentDataRow(); row >= 0) {
    pdm_->lID = convert_->ToLong(Variant(Vs.TextMatrix(row, kColID)));
    pdm_->s编号 = convert_->ToString(Variant(Vs.TextMatrix(row, kColCode)));
    pdm_->s名称 = convert_->ToString(Variant(Vs.TextMatrix(row, kColName)));
  }
  if (single_) {
    RaiseEvent("DoSelect", event_id::kDoSelect);
    return;
  }
  std::string ids;
  std::string names;
  for (int r = Vs.FixedRows(); r < Vs.Rows(); ++r) {
    if (Vs.TextMatrix(r, kColMark).empty()) continue;
    ids += NumberText(Val(Vs.TextMatrix(r, kColID))) + ",";
    names += Vs.TextMatrix(r, kColName) + ",";
  }
  if (!ids.empty()) ids.pop_back();
  if (!names.empty()) names.pop_back();
  value_ = Variant(ids);
  text_ = names;
  RaiseEvent("DoSelect", event_id::kDoSelect);
}

void selPdm::ChooseRows(const std::vector<int>& rows) {
  if (rows.empty()) return;
  if (single_) {
    Vs.SetRow(Vs.FixedRows() + rows.front());
  } else {
    for (int r = Vs.FixedRows(); r < Vs.Rows(); ++r) Vs.TextMatrix(r, kColMark).clear();
    for (int row : rows) Vs.TextMatrix(Vs.FixedRows() + row, kColMark) = kMark;
    Vs.SetRow(Vs.FixedRows() + rows.front());
  }
  Guarded([this] { Confirm(); });
}

void selPdm::Cmd_Click(int index) {
  switch (index) {
    case kRefresh:
      Refresh();
      break;
    case kConfirm:
      Guarded([this] { Confirm(); });
      break;
    case kCancel:
      RaiseEvent("DoCancel", event_id::kDoCancel);
      break;
    case kSelectAll:
    case kClearAll:
      for (int r = Vs.FixedRows(); r < Vs.Rows(); ++r)
        Vs.TextMatrix(r, kColMark) = index == kSelectAll ? kMark : "";
      break;
  }
}

// In several-rows mode a click on the selection cell of a data row ticks or clears it.
void selPdm::Vs_Click() {
  if (single_ || Vs.Col() != kColMark) return;
  const int row = Vs.Row();
  if (row < Vs.FixedRows() || row >= Vs.Rows()) return;
  std::string& mark = Vs.TextMatrix(row, kColMark);
  mark = mark.empty() ? kMark : "";
}

void selPdm::Check_Click() {
  Check.Caption = Check.Value == 1 ? "左起字符匹配" : "全字匹配";
  ChkFind();
}

void selPdm::Vs_KeyDown(int key_code, int shift) {
  if (key_code == kKeyReturn) {
    Guarded([this] { Confirm(); });
  } else if (key_code == kKeyB && shift == kCtrlMask) {
    tools_->SetFocus(Txt[0]);
  } else if (key_code == kKeyE && shift == (kCtrlMask | kShiftMask)) {
    AskFindColumns();
  }
}

void selPdm::Txt_KeyDown(int index, int key_code, int shift) {
  if (key_code == kKeyReturn && index == 0) {
    Guarded([this] { Confirm(); });
    return;
  }
  Vs_KeyDown(key_code == kKeyReturn ? 0 : key_code, shift);
}

void selPdm::AskFindColumns() {
  const std::string answer =
      InputBox("请输入欲查询的列(格式: 列1;列2;...列n):", "查找", Txt[1].Text);
  if (answer.empty() || answer == Txt[1].Text) return;
  Txt[1].Text = answer;
  ParseFindColumns();
}

// "列1;列2;...列n": each entry a column number of the grid, or a caption of its header
// (trimmed); entries that name no column are skipped.
void selPdm::ParseFindColumns() {
  parsed_columns_ = Txt[1].Text;
  find_columns_.clear();
  size_t start = 0;
  while (start <= parsed_columns_.size()) {
    size_t end = parsed_columns_.find(';', start);
    if (end == std::string::npos) end = parsed_columns_.size();
    const std::string entry = Trim(std::string_view(parsed_columns_).substr(start, end - start));
    start = end + 1;
    if (entry.empty()) continue;
    int col = -1;
    if (IsDigits(entry)) {
      col = static_cast<int>(Val(entry));
    } else if (Vs.FixedRows() > 0) {
      for (int c = 0; c < Vs.Cols(); ++c) {
        if (Trim(Vs.TextMatrix(0, c)) == entry) col = c;
      }
    }
    if (col >= 0 && col < Vs.Cols()) find_columns_.push_back(col);
  }
}

// The find box. Checked ("左起字符匹配"): the rows whose cell in a find column begins with
// the text stay, the others are hidden. Unchecked ("全字匹配"): every row shows and the
// current row goes to the first whose cell equals the text, else to the first whose cell
// begins with it. Letters compare in upper case.
void selPdm::ChkFind() {
  const std::string text = UCase(Txt[0].Text);
  std::vector<int> cols = find_columns_;
  if (cols.empty()) cols.push_back(Vs.Col());
  auto cell = [this](int r, int c) { return UCase(Vs.TextMatrix(r, c)); };
  const int first = Vs.FixedRows();
  if (Check.Value == 1) {
    int hit = -1;
    for (int r = first; r < Vs.Rows(); ++r) {
      bool keep = text.empty();
      for (int c : cols) keep = keep || cell(r, c).rfind(text, 0) == 0;
      Vs.RowHeight(r) = keep ? kvhost::GridControl::kDefaultRowHeight : 0;
      if (keep && hit < 0) hit = r;
    }
    if (hit >= 0) {
      Vs.SetRow(hit);
      Vs.SetTopRow(hit);
    } else {
      Vs.SetRow(0);
    }
    return;
  }
  for (int r = first; r < Vs.Rows(); ++r) Vs.RowHeight(r) = kvhost::GridControl::kDefaultRowHeight;
  if (text.empty()) return;
  int hit = -1;
  for (int r = first; r < Vs.Rows() && hit < 0; ++r) {
    for (int c : cols) {
      if (cell(r, c) == text) hit = r;
    }
  }
  for (int r = first; r < Vs.Rows() && hit < 0; ++r) {
    for (int c : cols) {
      if (cell(r, c).rfind(text, 0) == 0) hit = r;
    }
  }
  if (hit >= 0) {
    Vs.SetRow(hit);
    Vs.SetTopRow(hit);
  }
}

// The typed code or name of one row of the table: the statement selects the code, name and
// ID columns where the code or the name equals the text (quoted), within `where`. The first
// row the database gives fills the result; value and text take the named columns of it
// (the ID and the name when not named), as text. No row empties both.
bool selPdm::Validate(const std::string&, const std::string& value_column,
                      const std::string& text_column, const std::string& input, Variant& value,
                      std::string& text) {
  bool found = false;
  pdm_ = std::make_unique<clsPdm>();
  value_ = Variant(std::string());
  text_.clear();
  Guarded([&] {
    const std::string code = Param("编号");
    const std::string name = Param("名称");
    const std::string id = Param("ID");
    const std::string table = Param("table");
    const std::string where = Param("where");
    const std::string typed = SqlQuoted(input);
    std::string sql = "select " + code + "," + name + "," + id + " from " + table + " Where (" +
                      code + "=" + typed + " OR " + name + "=" + typed + ")";
    if (!where.empty()) sql += " and " + where;
    IHostDatabase& db = context_->Database();
    ReleaseOnExit release(db);
    auto rs = db.CreateCommand(sql, 1)->OpenRecordset();
    if (const std::string error = db.Error().Description(); !error.empty()) {
      MsgBox("错误：" + error, msgbox::kCritical, "");
      return;
    }
    if (rs->Eof()) return;
    pdm_->lID = convert_->ToLong(rs->Fields(2).Value);
    pdm_->s编号 = convert_->ToString(rs->Fields(0).Value);
    pdm_->s名称 = convert_->ToString(rs->Fields(1).Value);
    const Variant& v =
        Trim(value_column).empty() ? rs->Fields(2).Value : rs->Fields(Trim(value_column)).Value;
    const Variant& t =
        Trim(text_column).empty() ? rs->Fields(1).Value : rs->Fields(Trim(text_column)).Value;
    value_ = Variant(convert_->ToString(v));
    text_ = convert_->ToString(t);
    found = true;
  });
  value = value_;
  text = text_;
  return found;
}

std::unique_ptr<ModuleObject> NewSelPdm() { return std::make_unique<selPdm>(); }
std::unique_ptr<ModuleObject> NewClsPdm() { return std::make_unique<clsPdm>(); }

}  // namespace mrvk
