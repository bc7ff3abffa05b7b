#include "mrvk/contract/zfhd_2/zfhd_2.h"

#include <algorithm>

#include "mrvk/contract/b_mode.h"
#include "mrvk/frame/data_access.h"
#include "mrvk/frame/grid_layout.h"
#include "mrvk/frame/print_pipeline.h"
#include "mrvk/frame/vb.h"
#include "mrvk/housing/housing_lookups.h"

namespace mrvk {
namespace {

constexpr const char* kTag = "ZFHT";

constexpr const char* kSelect =
    " SELECT FwHd.*, FwHdMx.房源ID, PDMgy.姓名 AS 业务员, FwYz.业主名称, FwYz.电话, FwYz.性别, "
    "FwYz.身份证号, FwYz.工作单位, FwYz.籍贯,"
    "        FwYz.备注 As 客户备注, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.户型,  "
    "FwFy.装修程度, FwFy.具体地址,"
    "        Fwhdmx.基础设施, Fwhdmx.配套设施"
    "   FROM ((((FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)"
    "     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)"
    "     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)"
    "     LEFT JOIN PDMGY ON FwHd.业务员ID = PDMgy.雇员ID)"
    "     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID";

enum class Kind { Text, Number, Date, Value };

// A field of the sheet: its caption, its page or frame ("" the top of the sheet), the column
// UpdateForm reads and how.
struct FieldDef {
  int index;
  const char* caption;
  const char* container;
  const char* column;
  Kind kind = Kind::Text;
  const char* value_column = "";  // Value fields: the ID column behind the text
};

const std::vector<FieldDef>& Fields() {
  static const std::vector<FieldDef> fields = {
      {2, "合同编号", "", "合同编号"},
      {5, "合同日期", "", "合同日期", Kind::Date},
      {27, "业务员", "", "业务员", Kind::Value, "业务员ID"},
      {34, "实收押金", "", "预收押金", Kind::Number},
      {35, "收取中介费", "", "中介费", Kind::Number},
      {12, "制单人", "", "制单人"},
      {11, "制单日期", "", "制单日期", Kind::Date},
      {7, "审核人", "", "审核人"},
      {10, "审核日期", "", "审核日期", Kind::Date},
      {18, "房源编号", "PicHT", "房源编号", Kind::Value, "房源ID"},
      {19, "房源名称", "PicHT", "房源名称"},
      {20, "物业名称", "PicHT", "物业名称"},
      {21, "户型结构", "PicHT", "户型"},
      {22, "面积", "PicHT", "面积", Kind::Number},
      {23, "装修程度", "PicHT", "装修程度"},
      {26, "具体地址", "PicHT", "具体地址"},
      {24, "基础设施", "PicHT", "基础设施"},
      {25, "配套设施", "PicHT", "配套设施"},
      {45, "分租房间", "PicHT", "分租房间"},
      {8, "起租日期", "PicHT", "起租日期", Kind::Date},
      {0, "租期(月)", "PicHT", "租赁期", Kind::Number},
      {1, "止租日期", "PicHT", "止租日期", Kind::Date},
      {44, "付租方式", "PicHT", "付租方式"},
      {6, "付租(月)", "PicHT", "收款期间", Kind::Number},
      {4, "    姓名", "FraZK", "业主名称", Kind::Value, "客户ID"},
      {28, "联系电话", "FraZK", "电话"},
      {29, "工作单位", "FraZK", "工作单位"},
      {30, "    籍贯", "FraZK", "籍贯"},
      {31, "身份证号", "FraZK", "身份证号"},
      {32, "    备注", "FraZK", "客户备注"},
      {33, "租住人数", "PicZK", "租住人数", Kind::Number},
      {37, "押金备注(最多50个字符)", "PicZK", "押金备注1"},
      {42, "押金备注2", "PicZK", "押金备注2"},
      {43, "押金备注3", "PicZK", "押金备注3"},
  };
  return fields;
}

// The fields with a picker, and those that stay locked in any mode.
constexpr int kPickerFields[] = {4, 18, 27, 44, 45};
constexpr int kAlwaysLocked[] = {7, 10, 12, 11, 20, 19, 21, 22, 23, 26};

}  // namespace

// The position is counted over fwhd alone while no filter is in force: each row of kSelect is
// one contract. The left joins are on the keys of fwfy, fwyz, PDMgy and fwwy and neither add
// nor drop rows; the inner join with fwhdmx would, but the sheet writes exactly one unit row
// per contract (FileSave inserts or updates it in the header's bracket, FileDelete removes
// both in one bracket) and nothing else writes fwhdmx. The base filter (BaseSelection) names
// fwhd's columns only.
zfHd_2::zfHd_2()
    : DocumentSheet(DocumentDesign{kTag, "fwhd", "合同ID", kSelect, " select * from FwHd"}) {
  controls_.Add(Toolbar1);
  Toolbar1.AddButton("合同信息", "");
  Toolbar1.AddButton("", "");
  Toolbar1.AddButton("租客信息", "");
  Toolbar1.ButtonClick = [this](int number) { ShowPage(number); };
  controls_.Add(lbl_Caption);
  lbl_Caption.Caption = "租房合同";
  controls_.Add(Chk);
  Chk.Caption = "引用数据(&H)";
  controls_.Add(lblRecord);
  lblRecord.Caption = "记录：0/0";
  controls_.Add(Lab_Succeed);
  Lab_Succeed.Caption = "已审核";
  Lab_Succeed.Visible = false;
  controls_.Add(Lab_Status);
  Lab_Status.Caption = "状态";
  controls_.Add(LabFilter);
  LabFilter.Caption = "过滤中";
  LabFilter.Visible = false;

  const auto add_fields = [this](const std::string& container) {
    for (const FieldDef& f : Fields()) {
      if (container != f.container) continue;
      kvhost::KvTxt& field = kvTxt.Add(controls_, f.index);
      field.Caption = f.caption;
      field.Container = f.container;
      if (f.kind == Kind::Number) field.Kind = kvhost::FieldKind::Number;
    }
  };
  add_fields("");
  kvTxt[34].Unit = " 元";
  kvTxt[35].Unit = " 元";
  controls_.Add(PicHT);
  add_fields("PicHT");
  fees.AddTo(controls_, "PicHT");
  controls_.Add(PicZK);
  FraZK.Caption = "租客信息(可直接输入)";
  FraZK.Container = "PicZK";
  controls_.Add(FraZK);
  add_fields("FraZK");
  for (int i : {3, 2}) {
    kvhost::OptionButton& opt = optXB.Add(controls_, i);
    opt.Caption = i == 3 ? "男" : "女";
    opt.Container = "FraZK";
  }
  kvhost::OptionButton::SetGroup({&optXB[3], &optXB[2]});
  add_fields("PicZK");
  kvTxt[37].MaxLength = 50;
  FraBZ.Caption = "备注(最多255个字符)";
  FraBZ.Container = "PicZK";
  controls_.Add(FraBZ);
  txt.Container = "FraBZ";
  txt.MaxLength = 255;
  txt.MultiLine = true;
  controls_.Add(txt);
}

void zfHd_2::SetParameters(std::shared_ptr<IParameters> parameters) {
  if (parameters && parameters->Exists("printfilename"))
    print_file_name_ = parameters->Item("printfilename").Value.ToString();
}

void zfHd_2::InitForm() {
  lbl_Caption.Caption =
      ScalarText(context_->Database(),
                 "select menuname from xt_menu where progID=" + std::to_string(prog_id_));
  context_->Database().Release();
  ShowPage(1);
  InitBaseValue();
  fees.InitVsControl([this](const std::string& text) {
    ErrMessage(text, err_level::kValidation, kApplicationTitle);
  });
  InitEditHandlers();
  SetControlStatus(false);
}

void zfHd_2::InitBaseValue() {
  for (int index : {1, 5, 8, 10, 11}) kvTxt[index].Kind = kvhost::FieldKind::Date;
  for (auto& [index, field] : kvTxt) {
    const int i = index;
    const bool own =
        std::find(std::begin(kPickerFields), std::end(kPickerFields), i) != std::end(kPickerFields);
    if (!own) {
      // The other fields go to the host's own lists, should one be bound to them; a field
      // without one has nothing to show or check.
      const auto bound = [this, i] {
        return !kvTxt[i].Config.PickerKey.empty() || !kvTxt[i].Config.ValidateSql.empty();
      };
      field->ShowPicker = [this, i, bound](std::string& text, Variant& value) {
        if (!bound()) return;
        dirty_ = true;
        context_->ShowPicker(kvTxt[i], text, value);
      };
      field->CheckPicker = [this, i, bound](const std::string& typed, Variant& value,
                                            std::string& text) {
        if (!bound()) return;
        dirty_ = true;
        context_->CheckPicker(kvTxt[i], typed, value, text);
      };
      continue;
    }
    field->Config.ShowButton = true;
    field->Config.CheckInput = true;
    field->Config.ErrorMessage = Trim(field->Caption) + "输入有误，请重新输入！";
    field->ShowPicker = [this, i](std::string& text, Variant& value) {
      FieldPicked(i, text, value);
    };
    field->CheckPicker = [this, i](const std::string& typed, Variant& value, std::string& text) {
      FieldTyped(i, typed, value, text);
    };
  }
  // A tenant the lists do not know yet is typed in full; the save creates the party. A
  // payment mode or room no list row answers stays as typed, its fill run with what it finds
  // (nothing); a room's value is its number, not an ID.
  for (int index : {4, 44, 45}) kvTxt[index].Config.FreeText = true;
  // A payment mode or room changed in any way fills in what depends on it.
  kvTxt[44].Change = [this] { GetFzMess(kvTxt[44].Text); };
  kvTxt[45].Change = [this] { GetFJMess(kvTxt[45].Text); };
}

void zfHd_2::ShowPage(int button) {
  if (button != 1 && button != 3) return;
  PicHT.Visible = button == 1;
  PicZK.Visible = button == 3;
  Toolbar1.SetPressed(button);
}

std::string zfHd_2::BaseSelection() {
  std::string filter = "progid=" + std::to_string(prog_id_);
  if (document_id_ > 0) return filter;
  Date from;
  Date to;
  GetDayMonth(context_->Environment().LoginDate(), BefMonths(*context_), from, to);
  const IHostDatabase& db = context_->Database();
  filter += " and 合同日期>=" + DateLiteral(db, from) + " and 合同日期<" + DateLiteral(db, to);
  return filter;
}

std::vector<std::string> zfHd_2::RecordStatements(int32_t id) const {
  std::vector<std::string> statements = DocumentSheet::RecordStatements(id);
  statements.push_back("select * from fwhdmx where 合同ID=" + std::to_string(id) +
                       " order by 合同明细ID");
  statements.push_back("select * from fwhdfs where 合同ID=" + std::to_string(id) +
                       " order by 合同明细ID");
  return statements;
}

void zfHd_2::ClearForm() {
  previous_id_ = current_id_;
  current_id_ = 0;
  if (Chk.Value == 1) {
    kvTxt[2].Text = "";
  } else {
    for (auto& [index, field] : kvTxt) {
      field->Text = "";
      field->Value = Variant(int32_t{0});
    }
    txt.Text = "";
    for (auto& [index, opt] : optXB) opt->Value = false;
    fees.Clear();
  }
  lblRecord.Caption = "记录：0/0";
  Lab_Succeed.Visible = false;
}

void zfHd_2::UpdateForm(Recordset& rs, const std::string& position) {
  try {
    for (const FieldDef& f : Fields()) {
      kvhost::KvTxt& field = kvTxt[f.index];
      const Variant& v = rs.Fields(f.column).Value;
      switch (f.kind) {
        case Kind::Text:
          field.Text = convert_->ToText(v);
          break;
        case Kind::Number:
          field.Text = NumberText(convert_->ToNumber(v).ToDouble());
          break;
        case Kind::Date:
          field.Text = bill_->DateText(convert_->ToText(v));
          break;
        case Kind::Value:
          field.Text = convert_->ToText(v);
          field.Value = convert_->ToNumber(rs.Fields(f.value_column).Value);
          break;
      }
    }
    txt.Text = convert_->ToText(rs.Fields("备注").Value);
    if (convert_->ToText(rs.Fields("性别").Value) == "男")
      optXB[3].Select();
    else
      optXB[2].Select();
    lblRecord.Caption = "记录：" + (position.empty() ? std::string("0/0") : position);
    Lab_Succeed.Visible = convert_->ToText(rs.Fields("smark").Value) != "01";
    Lab_Status.Caption = convert_->ToText(rs.Fields("状态").Value);
    Lab_Status.Visible = true;
    current_id_ = convert_->ToLong(rs.Fields("合同ID").Value);
    previous_id_ = current_id_;
    if (const std::string error = fees.Load(*context_, current_id_); !error.empty())
      MsgBox("UpdateForm::" + error, msgbox::kCritical, kApplicationTitle);
  } catch (const VbError& e) {
    MsgBox("UpdateForm::" + e.Description(), msgbox::kCritical, kApplicationTitle);
  }
}

void zfHd_2::SetControlStatus(bool editing) {
  editing_ = editing;
  for (kvhost::Control* c : controls_) {
    const std::string& type = c->TypeName();
    if (type == "TextBox" || type == "kvTxt_S" || type == "ComboBox") c->Locked = !editing;
    if (type == "CommandButton" || type == "OptionButton") c->Enabled = editing;
  }
  fees.SetEditable(editing);
  for (int index : kAlwaysLocked) kvTxt[index].Locked = true;
}

IHostPicker* zfHd_2::FieldPicker(int index) {
  if (index == 27) return LookupPicker(*context_, prog_id_, HousingLookup::kSalesman);
  const char* key = index == 18 ? "sel_fy" : index == 45 ? "sel_inner_j" : "sel_id_j";
  IHostPicker* picker = context_->Picker(key);
  if (!picker || !picker->Init(prog_id_)) return nullptr;
  IHostPickerParameters& p = picker->Parameters();
  switch (index) {
    case 18:
      p.Item("New").Value = Variant(1);
      break;
    case 4:
      p.Item("FieldName").Value = Variant("租客信息");
      p.Item("SQL").Value = Variant(
          " Select 业主ID,业主编号 As 租客编号,业主名称 As 租客姓名 From fwyz where 类型=1");
      p.Item("Valid").Value = Variant(" 业主编号='@' or 业主名称='@'");
      p.Item("Order").Value = Variant(" 业主编号,业主名称");
      p.Item("MxCzID").Value = Variant("");
      break;
    case 44:
      p.Item("FieldName").Value = Variant("付租方式");
      p.Item("SQL").Value = Variant(" Select AutoID,编号,付租方式 From pdmfzfs where 1=1");
      p.Item("Valid").Value = Variant(" 编号='@' or 付租方式='@'");
      p.Item("Order").Value = Variant(" 编号,付租方式");
      p.Item("MxCzID").Value = Variant("");
      break;
    case 45:
      p.Item("FieldName").Value = Variant("分租房间");
      p.Item("SQL").Value =
          Variant(" Select 房间号 From fwfy_fz where 房源ID=" +
                  NumberText(Val(kvTxt[18].Value.ToString())) + " and 是否出租=0");
      p.Item("Valid").Value = Variant(" 房间号='@'");
      p.Item("Order").Value = Variant(" 房间号");
      break;
    default:
      return nullptr;
  }
  return picker;
}

void zfHd_2::FieldPicked(int index, std::string& text, Variant& value) {
  dirty_ = true;
  IHostPicker* picker = FieldPicker(index);
  // A cancelled list changes nothing, so nothing is filled in again either.
  if (!picker || !PickFromList(picker, text, value)) return;
  switch (index) {
    case 18:
      GetFYMess(static_cast<int32_t>(Val(value.ToString())));
      break;
    case 4:
      GetKHMess(static_cast<int32_t>(Val(value.ToString())));
      break;
    case 44:
      GetFzMess(text);
      break;
    case 45:
      GetFJMess(text);
      break;
    default:
      break;
  }
}

// A typed text no row answers stays as typed, without an ID.
void zfHd_2::FieldTyped(int index, const std::string& typed, Variant& value, std::string& text) {
  dirty_ = true;
  if (!CheckTypedText(FieldPicker(index), typed, value, text)) return;
  const auto id = static_cast<int32_t>(Val(value.ToString()));
  switch (index) {
    case 18:
      if (id != 0) GetFYMess(id);
      break;
    case 4:
      GetKHMess(id);
      break;
    case 44:
      GetFzMess(text);
      break;
    case 45:
      GetFJMess(text);
      break;
    default:
      break;
  }
}

void zfHd_2::GetFYMess(int32_t unit_id) {
  IHostDatabase& db = context_->Database();
  ReleaseOnExit release(db);
  try {
    auto rs = db.CreateCommand(
                    " SELECT FwFy.房源ID, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.户型, "
                    "FwFy.面积, FwFy.装修程度, FwFy.具体地址,"
                    "        FwFy.基础设施, FwFy.基础设施其他, FwFy.配套设施, "
                    "FwFy.配套设施其他,fwfy.出租价格"
                    "   FROM FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID"
                    "  where fwfy.房源ID=" +
                        std::to_string(unit_id),
                    1)
                  ->OpenRecordset();
    if (const std::string error = db.Error().Description(); !error.empty()) {
      MsgBox("GetFYMess::" + error, msgbox::kCritical, kApplicationTitle);
      return;
    }
    double price = 0;
    if (rs->Eof()) {
      for (int i = 19; i <= 26; ++i) kvTxt[i].Text = "";
    } else {
      auto text = [&](const char* column) { return convert_->ToText(rs->Fields(column).Value); };
      kvTxt[18].Value = convert_->ToNumber(rs->Fields("房源ID").Value);
      kvTxt[18].Text = text("房源编号");
      kvTxt[20].Text = text("物业名称");
      kvTxt[19].Text = text("房源名称");
      kvTxt[21].Text = text("户型");
      kvTxt[22].Text = NumberText(convert_->ToNumber(rs->Fields("面积").Value).ToDouble());
      kvTxt[23].Text = text("装修程度");
      kvTxt[26].Text = text("具体地址");
      kvTxt[24].Text = text("基础设施") + text("基础设施其他");
      kvTxt[25].Text = text("配套设施") + text("配套设施其他");
      price = convert_->ToNumber(rs->Fields("出租价格").Value).ToDouble();
    }
    if (const std::string error = fees.FromDictionary(*context_, price); !error.empty())
      MsgBox("GetFYMess::" + error, msgbox::kCritical, kApplicationTitle);
  } catch (const VbError& e) {
    MsgBox("GetFYMess::" + e.Description(), msgbox::kCritical, kApplicationTitle);
  }
}

void zfHd_2::GetKHMess(int32_t client_id) {
  IHostDatabase& db = context_->Database();
  ReleaseOnExit release(db);
  try {
    auto rs =
        db.CreateCommand(
              " SELECT 业主ID,业主编号,业主名称,电话,备注,联系人电话,性别,身份证号,工作单位,籍贯"
              "   FROM fwyz"
              "  where 业主ID=" +
                  std::to_string(client_id),
              1)
            ->OpenRecordset();
    if (const std::string error = db.Error().Description(); !error.empty()) {
      MsgBox("GetKHMess::" + error, msgbox::kCritical, kApplicationTitle);
      return;
    }
    if (rs->Eof()) {
      for (int i = 28; i <= 32; ++i) kvTxt[i].Text = "";
      return;
    }
    auto text = [&](const char* column) { return convert_->ToText(rs->Fields(column).Value); };
    kvTxt[4].Value = convert_->ToNumber(rs->Fields("业主ID").Value);
    kvTxt[4].Text = text("业主名称");
    kvTxt[28].Text = text("电话");
    kvTxt[29].Text = text("工作单位");
    kvTxt[30].Text = text("籍贯");
    kvTxt[31].Text = text("身份证号");
    kvTxt[32].Text = text("备注");
    if (text("性别") == "男")
      optXB[3].Select();
    else
      optXB[2].Select();
  } catch (const VbError& e) {
    MsgBox("GetKHMess::" + e.Description(), msgbox::kCritical, kApplicationTitle);
  }
}

double zfHd_2::RentPrice() const {
  return fees.FeeRows() > 0
             ? Val(fees.kvGrid.TextMatrix(fees.kvGrid.FixedRows(), ContractFees::kColMonthly))
             : 0;
}

void zfHd_2::SetRentPrice(double price) {
  if (fees.FeeRows() > 0)
    fees.kvGrid.TextMatrix(fees.kvGrid.FixedRows(), ContractFees::kColMonthly) = NumberText(price);
}

void zfHd_2::GetFzMess(const std::string& mode) {
  IHostDatabase& db = context_->Database();
  ReleaseOnExit release(db);
  try {
    auto rs =
        db.CreateCommand(
              " SELECT 付租月份,押金月份   FROM pdmfzfs  where 付租方式=" + SqlQuoted(mode), 1)
            ->OpenRecordset();
    if (const std::string error = db.Error().Description(); !error.empty()) {
      MsgBox("GetFzMess::" + error, msgbox::kCritical, kApplicationTitle);
      return;
    }
    kvhost::KvGrid& grid = fees.kvGrid;
    if (rs->Eof()) {
      kvTxt[6].Text = "0";
      kvTxt[34].Text = "";
      for (int r = grid.FixedRows(); r < grid.Rows(); ++r)
        grid.TextMatrix(r, ContractFees::kColPeriod).clear();
      return;
    }
    const double months = convert_->ToNumber(rs->Fields("付租月份").Value).ToDouble();
    const double deposit_months = convert_->ToNumber(rs->Fields("押金月份").Value).ToDouble();
    kvTxt[6].Text = NumberText(months);
    kvTxt[34].Text = NumberText(deposit_months * RentPrice());
    if (fees.FeeRows() > 0)
      grid.TextMatrix(grid.FixedRows(), ContractFees::kColPeriod) = NumberText(months);
  } catch (const VbError& e) {
    MsgBox("GetFzMess::" + e.Description(), msgbox::kCritical, kApplicationTitle);
  }
}

void zfHd_2::GetFJMess(const std::string& room) {
  IHostDatabase& db = context_->Database();
  ReleaseOnExit release(db);
  try {
    const std::string unit = NumberText(Val(kvTxt[18].Value.ToString()));
    auto rs =
        db.CreateCommand(" SELECT 面积,月租金   FROM fwfy_fz  where 房间号=" + SqlQuoted(room) +
                             " and 房源id=" + unit,
                         1)
            ->OpenRecordset();
    std::string price_column = "月租金";
    if (db.Error().Description().empty() && rs->Eof()) {
      rs = db.CreateCommand(" select 面积,出租价格 from fwfy where 房源ID=" + unit, 1)
               ->OpenRecordset();
      price_column = "出租价格";
    }
    if (const std::string error = db.Error().Description(); !error.empty()) {
      MsgBox("GetFJMess::" + error, msgbox::kCritical, kApplicationTitle);
      return;
    }
    double price = 0;
    if (rs->Eof()) {
      kvTxt[22].Text = "";
    } else {
      kvTxt[22].Text = NumberText(convert_->ToNumber(rs->Fields("面积").Value).ToDouble());
      price = convert_->ToNumber(rs->Fields(price_column).Value).ToDouble();
    }
    SetRentPrice(price);
  } catch (const VbError& e) {
    MsgBox("GetFJMess::" + e.Description(), msgbox::kCritical, kApplicationTitle);
  }
}

bool zfHd_2::FileNew() {
  SetControlStatus(true);
  const bool copied = Chk.Value == 1;
  ClearForm();
  // Fee rows kept from the contract shown are new terms of the new contract.
  if (copied) fees.ForgetStoredKeys();
  std::string number;
  context_->BillCode(prog_id_, context_->Environment().LoginDate(), number, /*preview=*/true);
  kvTxt[2].Text = number;
  kvTxt[33].Text = "1";
  const std::string today = context_->Environment().LoginDate().ToText();
  kvTxt[5].Text = today;
  kvTxt[11].Text = today;
  kvTxt[12].Text = context_->Environment().UserName();
  Lab_Status.Visible = false;
  tools_->SetFocus(number.empty() ? kvTxt[2] : kvTxt[27]);
  lblRecord.Caption = "新建记录...";
  dirty_ = false;
  Message("正在新建单据中...");
  return true;
}

bool zfHd_2::FileEdit() {
  if (current_id_ <= 0) {
    MsgBox("没有选择单据", msgbox::kInformation, "请注意！");
    return false;
  }
  SetControlStatus(true);
  dirty_ = false;
  fees.ForgetRemoved();
  Message("正在修改单据中...");
  return true;
}

bool zfHd_2::FileCancel() {
  FindData(" 合同ID=" + std::to_string(previous_id_), /*keep_on_miss=*/false);
  SetControlStatus(false);
  dirty_ = false;
  Message("");
  return true;
}

bool zfHd_2::DoSetStatus(const std::string& status, bool approved) {
  if (status == "change")
    return FindData(" 合同ID=" + std::to_string(current_id_), /*keep_on_miss=*/false);
  Message("数据正在切换状态");
  SetControlStatus(false);
  Lab_Succeed.Visible = approved;
  LoadData(navigate::kLast);
  Message("");
  return true;
}

bool zfHd_2::DoPrint() {
  try {
    print_file_ = PrintDataFile(*context_, prog_id_);
    IHostDatabase& db = context_->Database();
    std::string house;
    {
      ReleaseOnExit release(db);
      auto rs = db.CreateCommand(" SELECT 楼层,房源名称,楼宇类型 from fwfy where 房源ID=" +
                                     NumberText(Val(kvTxt[18].Value.ToString())),
                                 1)
                    ->OpenRecordset();
      if (const std::string error = db.Error().Description(); !error.empty())
        throw VbError(vb_error::kInvalidProcedureCall, error);
      if (!rs->Eof()) {
        auto text = [&](const char* column) { return convert_->ToText(rs->Fields(column).Value); };
        house = text("楼层") + "楼" + text("房源名称") + "、" + text("楼宇类型");
      }
    }
    WritePrintDataFile(
        print_file_, controls_,
        [&](kvhost::PrintSection& section) { section.SetField("房屋信息", house); }, &fees.kvGrid);
    return true;
  } catch (const VbError& e) {
    ErrMessage(std::string(kTag) + "->sfSetToPrintFile:" + e.Description(), err_level::kDatabase,
               kApplicationTitle);
    return false;
  }
}

// The layout file, under the function key, keeps the fee grid's column widths only.
void zfHd_2::DoGetFormStatus() {
  kvhost::ControlList grids;
  grids.Add(fees.kvGrid);
  sbGetFormStatus(LayoutPath(std::to_string(prog_id_), *context_), /*pbOnlyColWidth=*/true, grids,
                  *context_);
}

void zfHd_2::DoSaveFormStatus() {
  kvhost::ControlList grids;
  grids.Add(fees.kvGrid);
  sbSaveFormStatus(LayoutPath(std::to_string(prog_id_), *context_), /*pbOnlyColWidth=*/true, grids);
}

std::vector<SearchField> zfHd_2::SearchFields() {
  return {{"合同编号", "合同编号", SearchType::kText}, {"合同日期", "合同日期", SearchType::kDate},
          {"租客姓名", "业主名称", SearchType::kText}, {"联系电话", "电话", SearchType::kText},
          {"房源编号", "房源编号", SearchType::kText}, {"房源名称", "房源名称", SearchType::kText},
          {"物业名称", "物业名称", SearchType::kText}, {"业务员", "业务员", SearchType::kText},
          {"付租方式", "付租方式", SearchType::kText}, {"状态", "状态", SearchType::kText},
          {"起租日期", "起租日期", SearchType::kDate}, {"止租日期", "止租日期", SearchType::kDate},
          {"月租金", "月租金", SearchType::kNumber},   {"制单人", "制单人", SearchType::kText}};
}

std::unique_ptr<ModuleObject> NewzfHd_2() { return std::make_unique<zfHd_2>(); }

}  // namespace mrvk
