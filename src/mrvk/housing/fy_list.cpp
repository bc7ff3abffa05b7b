#include "mrvk/housing/fy_list.h"

#include <algorithm>
#include <utility>

#include "mrvk/frame/data_access.h"
#include "mrvk/frame/document_sheet.h"
#include "mrvk/frame/grid_layout.h"
#include "mrvk/frame/print_pipeline.h"
#include "mrvk/frame/vb.h"
#include "mrvk/housing/housing_lookups.h"

namespace mrvk {
namespace {

constexpr const char* kHeader =
    "行号|房源ID|房源编号        |物业名称     |房源名称       |所属区域       |楼宇类型      "
    "|物业用途    |户型类型    |面积    |楼层    |总楼层    |业务员    |出租价格    |出租状态      "
    "  ";
constexpr int kColRent = 13;
constexpr int kRowHeight = 340;

constexpr const char* kSelect =
    " SELECT FwFy.房源ID, FwFy.房源编号, FwWy.物业名称, FwFy.房源名称, FwFy.所属区域, "
    "FwFy.楼宇类型, FwFy.物业用途,"
    "       FwFy.户型, FwFy.面积, FwFy.楼层, FwFy.总楼层, PDMXSY.名称 As 业务员, FwFy.出租价格, "
    "FwFy.出租状态"
    "  FROM (FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) LEFT JOIN PDMXSY ON FwFy.业务员ID = "
    "PDMXSY.AutoID"
    " WHERE 1=1";

constexpr const char* kRefreshTag = "RM_S-->IRptUI_Refresh::";
constexpr const char* kBoxTitle = "提示:";

// The condition fields in the order their conditions are added: caption, and the SQL in front
// of the value; a text field's value is quoted, a number field's read through Val.
struct Condition {
  int index;
  const char* caption;
  const char* sql;
  bool number = false;
};

const std::vector<Condition>& Conditions() {
  static const std::vector<Condition> conditions = {
      {FY_List::kArea, "所属区域", " and FwFy.所属区域="},
      {FY_List::kEstate, "物业名称", " and FwWy.物业名称="},
      {FY_List::kLayout, "户型结构", " and FwFy.户型="},
      {FY_List::kUse, "物业用途", " and FwFy.物业用途="},
      {FY_List::kBuildingType, "楼宇类型", " and FwFy.楼宇类型="},
      {FY_List::kRentFrom, "月租金从", " and FwFy.出租价格 >=", /*number=*/true},
      {FY_List::kRentTo, "      至", " and FwFy.出租价格 <=", /*number=*/true},
      {FY_List::kSizeFrom, "  面积从", " and FwFy.面积 >=", /*number=*/true},
      {FY_List::kSizeTo, "      至", " and FwFy.面积 <=", /*number=*/true},
      // The salesman by the ID the field holds, not by the name it shows.
      {FY_List::kSalesman, "  业务员", " and fwfy.业务员ID="},
  };
  return conditions;
}

// The state boxes in the order their terms are joined.
struct StateBox {
  int index;
  const char* caption;
  const char* term;
};

const std::vector<StateBox>& StateBoxes() {
  static const std::vector<StateBox> boxes = {
      {FY_List::kFree, "显示未出租", " FwFy.出租状态='未出租'"},
      {FY_List::kLet, "显示已出租", " FwFy.出租状态='已出租'"},
      {FY_List::kPartly, "显示部分出租", " FwFy.出租状态='部分出租' or fwfy.出租状态='已分租'"},
      {FY_List::kExpired, "显示已失效", " FwFy.出租状态='已失效'"},
  };
  return boxes;
}

// The dictionary type each dictionary field picks from.
const char* DictionaryType(int index) {
  switch (index) {
    case FY_List::kArea:
      return "所属区域";
    case FY_List::kUse:
      return "物业用途";
    case FY_List::kBuildingType:
      return "楼宇类型";
    case FY_List::kLayout:
      return "户型";
    default:
      return nullptr;
  }
}

}  // namespace

FY_List::FY_List() {
  for (const Condition& c : Conditions()) kvTxt.Add(controls_, c.index).Caption = c.caption;
  for (const StateBox& b : StateBoxes()) {
    kvhost::CheckBox& box = chkXS.Add(controls_, b.index);
    box.Caption = b.caption;
    // Every state shows on first use, until a stored layout says otherwise.
    box.Value = 1;
  }
  controls_.Add(Vs);
  Vs.DblClick = [this] { Vs_DblClick(); };
  Vs.AfterScroll = [this] {
    if (wheel_) wheel_->Position(Vs);
  };
}

bool FY_List::Init(IHostContext& context, int32_t progID, int32_t) {
  context_ = &context;
  prog_id_ = progID;
  status_read_ = false;
  grid_tool_ = std::make_unique<kvhost::GridTool>();
  convert_ = std::make_unique<kvhost::Convert>();
  wheel_ = std::make_unique<WheelHook>(WheelRate(context));

  // The lookup fields open their pickers; the ranges are plain numbers.
  for (int index : {kArea, kSalesman, kEstate, kLayout, kUse, kBuildingType}) {
    kvhost::KvTxt& field = kvTxt[index];
    field.Config.ShowButton = true;
    field.Config.CheckInput = true;
    // A name no list knows stays as typed: the list then shows no unit.
    field.Config.FreeText = true;
    field.ShowPicker = [this, index](std::string& text, Variant& value) {
      FieldPicked(index, text, value);
    };
    field.CheckPicker = [this, index](const std::string& typed, Variant& value, std::string& text) {
      FieldTyped(index, typed, value, text);
    };
  }
  for (int index : {kRentFrom, kRentTo, kSizeFrom, kSizeTo})
    kvTxt[index].Kind = kvhost::FieldKind::Number;

  InitVsControl(Vs, kHeader, /*hidden_ids=*/0);
  Vs.ColHidden(kColID) = true;
  Vs.ColAlignment(kColRent) = kvhost::grid_align::kRightCenter;
  Vs.RowHeightMin = kRowHeight;
  Vs.SetRows(Vs.FixedRows());
  wheel_->SetFixedRows(Vs.FixedRows());
  return true;
}

bool FY_List::Clear() {
  context_ = nullptr;
  grid_tool_.reset();
  convert_.reset();
  wheel_.reset();
  return true;
}

std::string FY_List::ConditionText() const {
  std::string text;
  for (const Condition& c : Conditions()) {
    const kvhost::KvTxt& field = kvTxt[c.index];
    const std::string typed = Trim(field.Text);
    if (typed.empty()) continue;
    text += c.sql;
    if (c.index == kSalesman)
      text += SqlNumber(field.Value.ToString());
    else
      text += c.number ? SqlNumber(typed) : SqlQuoted(typed);
  }
  return text;
}

std::string FY_List::StateClause() const {
  std::string terms;
  for (const StateBox& b : StateBoxes()) {
    if (chkXS[b.index].Value == 0) continue;
    if (!terms.empty()) terms += " or ";
    terms += b.term;
  }
  // No state ticked: no unit.
  if (terms.empty()) return std::string(" and ") + "1<>1";
  return " and (" + terms + ")";
}

bool FY_List::Refresh() {
  if (!status_read_) return false;
  IHostDatabase& db = context_->Database();
  ReleaseOnExit release(db);
  bool loaded = false;
  try {
    const std::string sql = kSelect + ConditionText() + StateClause();
    const int row = Vs.Row();
    Vs.Redraw = false;
    Vs.SetRows(Vs.FixedRows());
    auto rs = db.CreateCommand(sql, 1)->OpenRecordset();
    if (const std::string error = db.Error().Description(); !error.empty()) {
      ErrMessage(error, err_level::kDatabase, kApplicationTitle);
    } else {
      if (!(rs->Eof() && rs->Bof())) {
        Vs.LoadArray(rs->GetRows());
        NumberRows(Vs);
        // The clerk stays on the row they stood on, or the nearest one there is.
        Vs.SetRow(std::clamp(row, Vs.FixedRows(), Vs.Rows() - 1));
      }
      loaded = true;
    }
    Vs.ColHidden(kColID) = true;
    wheel_->Rate(Vs);
    wheel_->SetFixedRows(Vs.FixedRows());
  } catch (const VbError& e) {
    ErrMessage(kRefreshTag + e.Description(), err_level::kValidation, kApplicationTitle);
  }
  Vs.Redraw = true;
  return loaded;
}

void FY_List::DoGetFormStatus() {
  sbGetFormStatus(LayoutPath(ClassName(), *context_), /*pbOnlyColWidth=*/true, controls_,
                  *context_);
  status_read_ = true;
  Refresh();
}

void FY_List::DoSaveFormStatus() {
  sbSaveFormStatus(LayoutPath(ClassName(), *context_), /*pbOnlyColWidth=*/true, controls_);
}

bool FY_List::DoSetStatus(const std::string&, bool) {
  Message("数据正在切换状态");
  Refresh();
  Message("");
  return true;
}

bool FY_List::OnDataRow() const {
  const int row = Vs.Row();
  return row >= Vs.FixedRows() && row < Vs.Rows() && !Vs.IsSubtotal(row);
}

int32_t FY_List::CurrentID() const {
  if (!OnDataRow()) return 0;
  return convert_->ToLong(Variant(Vs.TextMatrix(Vs.Row(), kColID)));
}

int32_t FY_List::GetID() { return CurrentID(); }

bool FY_List::FileNew() {
  RaiseEvent("filenew", event_id::kFileNewEvent, {Variant(kHousingSheet)});
  return false;
}

bool FY_List::FileEdit() {
  if (!OnDataRow()) return false;
  RaiseEvent("fileedit", event_id::kFileEditEvent, {Variant(kHousingSheet), Variant(CurrentID())});
  return false;
}

void FY_List::Vs_DblClick() {
  if (!OnDataRow()) return;
  RaiseEvent("Detaile", event_id::kListDetaile, {Variant(kHousingSheet), Variant(CurrentID())});
}

bool FY_List::FileDelete() {
  if (Vs.Rows() <= Vs.FixedRows()) return false;
  try {
    const int row = Vs.Row();
    if (row < Vs.FixedRows()) return false;
    // A row without a unit number is a total row, as is a subtotal row the grid made.
    if (Vs.IsSubtotal(row) || Vs.TextMatrix(row, kColNumber).empty()) {
      MsgBox("不能删除合计数据!", msgbox::kInformation, kBoxTitle);
      return false;
    }
    if (MsgBox("是否删除当前记录:", msgbox::kYesNoWarning, kBoxTitle) != msgbox::kYes) return false;
    IHostDatabase& db = context_->Database();
    {
      ReleaseOnExit release(db);
      db.CreateCommand("Delete from fwfy where 房源ID=" + SqlNumber(Vs.TextMatrix(row, kColID)), 1)
          ->Execute();
      if (const std::string error = db.Error().Description(); !error.empty()) {
        last_error_ = error;
        ErrMessage(error, err_level::kDatabase, kApplicationTitle);
        return false;
      }
    }
    Refresh();
    return true;
  } catch (const VbError& e) {
    ErrMessage("FileDelete::" + e.Description(), err_level::kValidation, kApplicationTitle);
    return false;
  }
}

bool FY_List::Find(const Variant&) {
  // The column the clerk stands in, when it shows; else every shown column.
  const int col = Vs.Col();
  find_in_col_ = col >= Vs.FixedCols() && col < Vs.Cols() && Vs.IsColumnShown(col) ? col : -1;
  return grid_tool_->Find(Vs, find_in_col_, /*flag=*/0, find_row_, find_col_);
}

bool FY_List::FindNext() { return grid_tool_->FindNext(Vs, find_in_col_, find_row_, find_col_); }

bool FY_List::Filter(const Variant&) { return grid_tool_->Filter(Vs, Vs.Cols()); }

void FY_List::mcMouseEvent_Wheel(int step) {
  if (wheel_) wheel_->Wheel(Vs, step);
}

std::string FY_List::PrintHeading() const {
  // "label:" + text for a field that is not empty, with a tab behind when given.
  const auto item = [this](int index, const char* label, bool tab) {
    const std::string text = Trim(kvTxt[index].Text);
    if (text.empty()) return std::string();
    return label + text + (tab ? "\t" : "");
  };
  std::string heading;
  heading += item(kArea, "所属区域:", /*tab=*/true);
  heading += item(kEstate, "物业名称:", /*tab=*/true);
  heading += item(kLayout, "户型结构:", /*tab=*/false);
  heading += "\r";
  heading += item(kUse, "物业用途:", /*tab=*/true);
  heading += item(kBuildingType, "楼宇类型:", /*tab=*/false);
  heading += item(kSalesman, "业务员:", /*tab=*/false);
  heading += "\r";
  heading += item(kRentFrom, "月租金从:", /*tab=*/false);
  heading += item(kRentTo, "月租金至:", /*tab=*/false);
  heading += "\t";
  heading += item(kSizeFrom, "面积从:", /*tab=*/false);
  heading += item(kSizeTo, "面积至:", /*tab=*/false);
  heading += "\r";
  return heading;
}

bool FY_List::PrintList(bool direct, bool setup) {
  try {
    print_file_ = ReportPrintSettings(*context_, prog_id_);
    std::string error;
    if (!PrintGrid(*context_, print_file_, "房源打印清单", PrintHeading(), Vs, direct, setup,
                   LayoutPath(ClassName(), *context_), error)) {
      ErrMessage(ClassName() + "->Print:" + error, err_level::kDatabase, kApplicationTitle);
      return false;
    }
    return true;
  } catch (const VbError& e) {
    ErrMessage(ClassName() + "->Print:" + e.Description(), err_level::kValidation,
               kApplicationTitle);
    return false;
  }
}

IHostPicker* FY_List::FieldPicker(int index) {
  if (index == kEstate) return LookupPicker(*context_, prog_id_, HousingLookup::kEstate);
  if (index == kSalesman) return LookupPicker(*context_, prog_id_, HousingLookup::kSalesman);
  if (const char* type = DictionaryType(index))
    return LookupPicker(*context_, prog_id_, HousingLookup::kDictionary, type);
  return nullptr;
}

void FY_List::FieldPicked(int index, std::string& text, Variant& value) {
  (void)PickFromList(FieldPicker(index), text, value);  // a cancel leaves the field as it was
}

void FY_List::FieldTyped(int index, const std::string& typed, Variant& value, std::string& text) {
  (void)CheckTypedText(FieldPicker(index), typed, value, text);  // no picker: nothing to check
}

std::unique_ptr<ModuleObject> NewFY_List() { return std::make_unique<FY_List>(); }

}  // namespace mrvk
