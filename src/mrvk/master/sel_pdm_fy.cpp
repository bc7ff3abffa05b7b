#include "mrvk/master/sel_pdm_fy.h"

#include "mrvk/frame/data_access.h"

namespace mrvk {
namespace {

constexpr const char* kFormat =
    "行号|编号    |名称        |物业      |楼宇      |朝向  |户型    |楼层  |结构    |面积    "
    "|出租状态|业主          |备注            |房源ID";

// The grid's columns, in the order of the list statement from column 1 on.
enum FyCol {
  kCol编号 = 1,
  kCol名称,
  kCol物业,
  kCol楼宇,
  kCol朝向,
  kCol户型,
  kCol楼层,
  kCol结构,
  kCol面积,
  kCol出租状态,
  kCol业主,
  kCol备注,
  kCol房源ID,
};

}  // namespace

Variant clsFy::Item(const std::string& name) const {
  if (name == "l房源ID") return Variant(l房源ID);
  if (name == "d面积") return Variant(d面积);
  const std::pair<const char*, const std::string*> texts[] = {
      {"s房源编号", &s房源编号}, {"s房源名称", &s房源名称}, {"s物业", &s物业}, {"s楼宇", &s楼宇},
      {"s朝向", &s朝向},         {"s户型", &s户型},         {"s楼层", &s楼层}, {"s结构", &s结构},
      {"s出租状态", &s出租状态}, {"s业主", &s业主},         {"s备注", &s备注},
  };
  for (const auto& [member, value] : texts) {
    if (name == member) return Variant(*value);
  }
  return Variant();
}

selPdmFy::selPdmFy() {
  controls_.Add(Cmb);
  Cmb.Caption = "楼宇";
  Cmb.Text = kAll;
  Cmb.List = {kAll};
  Cmb.Click = [this] { Cmb_Click(); };
}

bool selPdmFy::Init(IHostContext& context, int32_t progID, const std::string& name) {
  selPdm::Init(context, progID, name);
  fy_ = std::make_unique<clsFy>();
  return true;
}

bool selPdmFy::Clear() {
  fy_.reset();
  building_keys_.clear();
  return selPdm::Clear();
}

std::string selPdmFy::Joined() {
  return "select A.房源编号,A.房源名称,B.物业名称,C.楼宇名称,A.朝向,A.户型,A.楼层,A.结构,A.面积,"
         "A.出租状态,D.业主名称,A.备注,A.房源ID from ((fwfy A left join fwwy B on "
         "A.物业ID=B.物业ID) left join fwly C on A.楼宇ID=C.楼宇ID) left join fwyz D on "
         "A.业主ID=D.业主ID";
}

// The contract's unit is kept in its detail row (fwhdmx).
std::string selPdmFy::StateClauses() const {
  std::string sql;
  if (const std::string state = Param("出租状态"); !state.empty())
    sql += " and A.出租状态=" + SqlQuoted(state);
  if (const double id = Val(Param("合同ID")); id != 0)
    sql += " and A.房源ID in(select 房源ID from fwhdmx where 合同ID=" + NumberText(id) + ")";
  return sql;
}

// Always one row; the combo box shows the building of the parameter 楼宇 ("全部" without
// one, or for a building it does not list) and is disabled when `lock` is not 0.
void selPdmFy::ApplyMode() {
  single_ = true;
  Cmd[kSelectAll].Visible = false;
  Cmd[kClearAll].Visible = false;
  LoadBuildings();
  std::string building = Param("楼宇");
  if (building.empty() || !building_keys_.count(building)) building = kAll;
  Cmb.Text = building;
  Cmb.Enabled = Val(Param("lock")) == 0;
}

void selPdmFy::LoadBuildings() {
  building_keys_.clear();
  Cmb.List = {kAll};
  IHostDatabase& db = context_->Database();
  {
    auto rs =
        db.CreateCommand("select 楼宇ID,楼宇名称 from fwly order by 楼宇编号", 1)->OpenRecordset();
    if (const std::string error = db.Error().Description(); !error.empty()) {
      db.Release();
      MsgBox("错误：" + error, msgbox::kCritical, "");
      return;
    }
    for (; !rs->Eof(); rs->MoveNext()) {
      const std::string name = convert_->ToString(rs->Fields(1).Value);
      if (building_keys_.emplace(name, convert_->ToLong(rs->Fields(0).Value)).second)
        Cmb.List.push_back(name);
    }
  }
  db.Release();
}

void selPdmFy::LoadData() {
  Vs.Redraw = false;
  Vs.SetFormatString(kFormat);
  Vs.SetFixedRows(1);
  Vs.SetFixedCols(1);
  Vs.SetRows(1);
  Vs.FrozenCols = 2;
  for (int c = 0; c < Vs.Cols(); ++c) Vs.ColAlignment(c) = kvhost::grid_align::kLeftCenter;
  Vs.ColAlignment(kCol面积) = kvhost::grid_align::kRightCenter;
  Vs.ColHidden(kCol房源ID) = true;
  Vs.Redraw = true;

  std::string sql = Joined() + " where 1=1" + StateClauses();
  if (Cmb.Text != kAll) {
    auto it = building_keys_.find(Cmb.Text);
    sql += " and A.楼宇ID=" + std::to_string(it == building_keys_.end() ? 0 : it->second);
  }
  sql += " order by 房源编号";

  IHostDatabase& db = context_->Database();
  RowsArray rows;
  {
    auto rs = db.CreateCommand(sql, 1)->OpenRecordset();
    if (const std::string error = db.Error().Description(); !error.empty()) {
      db.Release();
      MsgBox("错误：" + error, msgbox::kCritical, "");
      return;
    }
    rows = rs->GetRows();
  }
  db.Release();
  Vs.Redraw = false;
  if (rows.rows > 0) Vs.LoadArray(rows);
  for (int r = Vs.FixedRows(); r < Vs.Rows(); ++r)
    Vs.TextMatrix(r, 0) = std::to_string(r - Vs.FixedRows() + 1);
  Vs.SetRow(Vs.Rows() > Vs.FixedRows() ? Vs.FixedRows() : 0);
  Vs.SetCol(kCol编号);
  Vs.Redraw = true;
  if (!Txt[0].Text.empty()) ChkFind();
  tools_->SetFocus(Vs);
}

void selPdmFy::Cmb_Click() {
  Guarded([this] { LoadData(); });
}

void selPdmFy::Confirm() {
  find_text_ = Txt[0].Text;
  fy_ = std::make_unique<clsFy>();
  if (const int row = CurrentDataRow(); row >= 0) {
    auto cell = [&](int col) { return Vs.TextMatrix(row, col); };
    fy_->l房源ID = convert_->ToLong(Variant(cell(kCol房源ID)));
    fy_->s房源编号 = cell(kCol编号);
    fy_->s房源名称 = cell(kCol名称);
    fy_->s物业 = cell(kCol物业);
    fy_->s楼宇 = cell(kCol楼宇);
    fy_->s朝向 = cell(kCol朝向);
    fy_->s户型 = cell(kCol户型);
    fy_->s楼层 = cell(kCol楼层);
    fy_->s结构 = cell(kCol结构);
    fy_->d面积 = Val(cell(kCol面积));
    fy_->s出租状态 = cell(kCol出租状态);
    fy_->s业主 = cell(kCol业主);
    fy_->s备注 = cell(kCol备注);
  }
  RaiseEvent("DoSelect", event_id::kDoSelect);
}

// The unit whose code or name is the typed text, within the building of `楼宇` (only with
// `lock`), the rental state and the contract of the parameters. A row fills the whole
// result: value the 房源ID, text the 房源名称. No row empties both.
bool selPdmFy::Validate(const std::string&, const std::string&, const std::string&,
                        const std::string& input, Variant& value, std::string& text) {
  bool found = false;
  fy_ = std::make_unique<clsFy>();
  value_ = Variant(std::string());
  text_.clear();
  Guarded([&] {
    const std::string typed = SqlQuoted(input);
    std::string sql = Joined() + " Where (房源编号=" + typed + " OR 房源名称=" + typed + ")";
    if (Val(Param("lock")) != 0) sql += " and 楼宇名称=" + SqlQuoted(Param("楼宇"));
    sql += StateClauses();
    IHostDatabase& db = context_->Database();
    ReleaseOnExit release(db);
    auto rs = db.CreateCommand(sql, 1)->OpenRecordset();
    if (const std::string error = db.Error().Description(); !error.empty()) {
      MsgBox("错误：" + error, msgbox::kCritical, "");
      return;
    }
    if (rs->Eof()) return;
    auto text_of = [&](int f) { return convert_->ToString(rs->Fields(f).Value); };
    fy_->s房源编号 = text_of(0);
    fy_->s房源名称 = text_of(1);
    fy_->s物业 = text_of(2);
    fy_->s楼宇 = text_of(3);
    fy_->s朝向 = text_of(4);
    fy_->s户型 = text_of(5);
    fy_->s楼层 = text_of(6);
    fy_->s结构 = text_of(7);
    fy_->d面积 = convert_->ToDouble(rs->Fields(8).Value, std::nullopt);
    fy_->s出租状态 = text_of(9);
    fy_->s业主 = text_of(10);
    fy_->s备注 = text_of(11);
    fy_->l房源ID = convert_->ToLong(rs->Fields(12).Value);
    value_ = Variant(NumberText(fy_->l房源ID));
    text_ = fy_->s房源名称;
    found = true;
  });
  value = value_;
  text = text_;
  return found;
}

std::unique_ptr<ModuleObject> NewSelPdmFy() { return std::make_unique<selPdmFy>(); }
std::unique_ptr<ModuleObject> NewClsFy() { return std::make_unique<clsFy>(); }

}  // namespace mrvk
