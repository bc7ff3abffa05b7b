#include "mrvk/housing/fy_mx.h"

#include "mrvk/frame/data_access.h"
#include "mrvk/frame/grid_layout.h"
#include "mrvk/frame/print_pipeline.h"
#include "mrvk/frame/transaction.h"
#include "mrvk/frame/vb.h"
#include "mrvk/housing/housing_lookups.h"

namespace mrvk {
namespace {

constexpr const char* kTag = "FY_MX";

constexpr const char* kSelect =
    " SELECT FwFy.*, FwWy.物业名称, FwYz.业主名称, FwYz.电话, FwYz.备注 As 业主备注, FwYz.性别, "
    "FwYz.身份证号, FwYz.工作单位, FwYz.籍贯, PDMXSY.名称 AS 业务员"
    "   FROM ((FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID)"
    "     LEFT JOIN FwYz ON FwFy.业主ID = FwYz.业主ID)"
    "     LEFT JOIN PDMXSY ON FwFy.业务员ID = PDMXSY.AutoID";

constexpr const char* kStateList = "|未出租|部分出租|已出租";

// The facility boxes, in the order their names are stored.
const std::vector<std::string> kBasic = {"燃气", "暖气", "有线电视", "数字电视", "宽带"};
const std::vector<std::string> kFurnishing = {"床",   "衣柜",   "桌椅",   "沙发", "电视", "电脑",
                                              "空调", "洗衣机", "热水器", "电话", "冰箱"};

enum class Kind { Text, Number, Date, Value };

// A field of the sheet: its caption, the column UpdateForm reads, how, and its frame.
struct FieldDef {
  int index;
  const char* caption;
  const char* column;
  Kind kind = Kind::Text;
  const char* value_column = "";  // Value fields: the ID column behind the text
  const char* frame = "PicJB";
};

const std::vector<FieldDef>& Fields() {
  static const std::vector<FieldDef> fields = {
      {0, "房源名称", "房源名称"},
      {1, "物业名称", "物业名称", Kind::Value, "物业ID"},
      {2, "房源编号", "房源编号"},
      {3, "所属区域", "所属区域"},
      {4, "物业用途", "物业用途"},
      {5, "楼宇类型", "楼宇类型"},
      {6, "房屋朝向", "朝向"},
      {7, "房屋结构", "结构"},
      {8, "房屋面积", "面积", Kind::Number},
      {9, "户型结构", "户型"},
      {10, "所在楼层", "楼层"},
      {11, "  总楼层", "总楼层"},
      {12, "架空层面积", "架空层面积", Kind::Number},
      {13, "车库面积", "车库面积", Kind::Number},
      {14, "建筑年份", "建筑年份"},
      {15, "  业务员", "业务员", Kind::Value, "业务员ID"},
      {16, "登记日期", "登记日期", Kind::Date},
      {17, "其他", "基础设施其他", Kind::Text, "", "FraJC"},
      {18, "其他", "配套设施其他", Kind::Text, "", "FraPT"},
      {19, "姓名", "业主名称", Kind::Value, "业主ID", "FraYZ"},
      {20, "联系电话", "电话", Kind::Text, "", "FraYZ"},
      {21, "工作单位", "工作单位", Kind::Text, "", "FraYZ"},
      {22, "籍贯", "籍贯", Kind::Text, "", "FraYZ"},
      {23, "身份证号", "身份证号", Kind::Text, "", "FraYZ"},
      {24, "备注", "业主备注", Kind::Text, "", "FraYZ"},
      {25, "出租价格", "出租价格", Kind::Number},
      {26, "出租要求", "出租说明"},
      {27, "详细地址", "具体地址"},
      {28, "出租状态", "出租状态"},
      {29, "装修程度", "装修程度"},
  };
  return fields;
}

// The dictionary lists of the fields that pick from pdmsjzd, by index.
const std::vector<std::pair<int, const char*>>& DictionaryFields() {
  static const std::vector<std::pair<int, const char*>> fields = {
      {3, "所属区域"}, {4, "物业用途"}, {5, "楼宇类型"}, {6, "房屋朝向"},
      {9, "户型"},     {7, "房屋结构"}, {29, "装修程度"}};
  return fields;
}

const char* DictionaryType(int index) {
  for (const auto& [i, type] : DictionaryFields())
    if (i == index) return type;
  return nullptr;
}

}  // namespace

FY_MX::FY_MX(bool with_rooms)
    : DocumentSheet(DocumentDesign{with_rooms ? kTag : "FY_MX_old", "fwfy", "房源ID", kSelect,
                                   " select * from FwFy"}),
      with_rooms_(with_rooms) {
  // The page of the fields: PicJB beside the rooms' page, or the one frame of the sheet
  // without rooms.
  const std::string page = with_rooms ? "PicJB" : "FraFY";
  if (with_rooms_) {
    controls_.Add(Toolbar1);
    Toolbar1.AddButton("基础信息", "房源基本信息");
    Toolbar1.AddButton("", "");
    Toolbar1.AddButton("辅助信息", "");
    Toolbar1.ButtonClick = [this](int index) { ShowPage(index); };
  }
  controls_.Add(lblRecord);
  lblRecord.Caption = "记录：0/0";
  controls_.Add(Lab_Status);
  Lab_Status.Caption = "状态";
  controls_.Add(LabFilter);
  LabFilter.Caption = "过滤中";
  LabFilter.Visible = false;
  controls_.Add(Chk);
  Chk.Caption = "引用数据(&H)";

  if (with_rooms_) {
    controls_.Add(PicJB);
  } else {
    FraFY.Caption = "房源详细信息";
    controls_.Add(FraFY);
  }
  const auto add_field = [this, &page](const FieldDef& f) {
    if (!with_rooms_ && f.index == 29) return;
    kvhost::KvTxt& field = kvTxt.Add(controls_, f.index);
    field.Caption = f.caption;
    field.Container = std::string(f.frame) == "PicJB" ? page : f.frame;
    if (f.kind == Kind::Number) field.Kind = kvhost::FieldKind::Number;
    if (f.kind == Kind::Date) field.Kind = kvhost::FieldKind::Date;
    field.Change = [this] { dirty_ = true; };
  };
  for (const FieldDef& f : Fields())
    if (std::string(f.frame) == "PicJB") add_field(f);
  for (auto [frame, caption] : {std::pair{&FraJC, "基础设施"}, std::pair{&FraPT, "配套设施"},
                                std::pair{&FraYZ, "业主详细信息(可直接输入)"}}) {
    frame->Caption = caption;
    if (with_rooms_) frame->Container = "PicJB";
  }
  controls_.Add(FraJC);
  for (size_t i = 0; i < kBasic.size(); ++i) {
    kvhost::CheckBox& box = chkJC.Add(controls_, static_cast<int>(i));
    box.Caption = kBasic[i];
    box.Container = "FraJC";
    box.Click = [this] { dirty_ = true; };
  }
  add_field(Fields()[17]);
  controls_.Add(FraPT);
  for (size_t i = 0; i < kFurnishing.size(); ++i) {
    kvhost::CheckBox& box = chkPT.Add(controls_, static_cast<int>(i));
    box.Caption = kFurnishing[i];
    box.Container = "FraPT";
    box.Click = [this] { dirty_ = true; };
  }
  add_field(Fields()[18]);
  controls_.Add(FraYZ);
  for (const FieldDef& f : Fields())
    if (std::string(f.frame) == "FraYZ") add_field(f);
  for (int i : {0, 1}) {
    kvhost::OptionButton& opt = optXB.Add(controls_, i);
    opt.Caption = i == 0 ? "男" : "女";
    opt.Container = "FraYZ";
    opt.Click = [this] { dirty_ = true; };
  }
  kvhost::OptionButton::SetGroup({&optXB[0], &optXB[1]});

  if (!with_rooms_) return;
  controls_.Add(PicFZ);
  rooms.AddTo(controls_, "PicFZ");
  rooms.kvGridF.AfterEdit = [this](int, int) { dirty_ = true; };
  rooms.kvGridF.AfterDeleteRow = [this](int) { dirty_ = true; };
}

void FY_MX::InitForm() {
  InitBaseValue();
  if (with_rooms_) {
    PicJB.Visible = true;
    PicFZ.Visible = false;
    Toolbar1.SetPressed(1);
    rooms.InitVsControl(*context_, [this](const std::string& text) {
      ErrMessage(text, err_level::kValidation, kApplicationTitle);
    });
  } else {
    Lab_Status.Visible = false;
  }
  SetEnabled(false);
}

void FY_MX::InitBaseValue() {
  for (int index : {1, 3, 4, 5, 6, 7, 9, 15, 19, 29}) {
    if (!kvTxt.Exists(index)) continue;
    kvhost::KvTxt& field = kvTxt[index];
    field.Config.ShowButton = true;
    field.Config.CheckInput = true;
    // A name the lists do not know stays: the save creates the estate, area or owner.
    field.Config.FreeText = true;
    field.ShowPicker = [this, index](std::string& text, Variant& value) {
      FieldPicked(index, text, value);
    };
    field.CheckPicker = [this, index](const std::string& typed, Variant& value, std::string& text) {
      FieldTyped(index, typed, value, text);
    };
  }
  kvTxt[28].Config.ListText = kStateList;
  kvTxt[28].Config.Style = 3;
  kvTxt[28].Config.ShowButton = true;
}

void FY_MX::ShowPage(int button) {
  if (button != 1 && button != 3) return;
  PicJB.Visible = button == 1;
  PicFZ.Visible = button == 3;
  Toolbar1.SetPressed(button);
}

IHostPicker* FY_MX::FieldPicker(int index) {
  if (index == 1) return LookupPicker(*context_, prog_id_, HousingLookup::kEstate);
  if (index == 19) return LookupPicker(*context_, prog_id_, HousingLookup::kOwner);
  if (index == 15) return LookupPicker(*context_, prog_id_, HousingLookup::kSalesman);
  if (const char* type = DictionaryType(index))
    return LookupPicker(*context_, prog_id_, HousingLookup::kDictionary, type);
  return nullptr;
}

void FY_MX::FieldPicked(int index, std::string& text, Variant& value) {
  IHostPicker* picker = FieldPicker(index);
  if (!picker) return;
  if (PickFromList(picker, text, value)) dirty_ = true;
  if (index == 19) GetYzMess(value);
}

// A name not found stays, without an ID, until SavePDM resolves it.
void FY_MX::FieldTyped(int index, const std::string& typed_text, Variant& value,
                       std::string& text) {
  const std::string typed = typed_text;
  if (!CheckTypedText(FieldPicker(index), typed, value, text)) return;
  if (index == 19) {
    GetYzMess(value);
    // An owner not found keeps the typed name while the other owner fields are cleared.
    if (Val(value.ToString()) == 0) text = typed;
  }
  dirty_ = true;
}

void FY_MX::GetYzMess(const Variant& owner_id) {
  IHostDatabase& db = context_->Database();
  ReleaseOnExit release(db);
  auto rs =
      db.CreateCommand(
            " SELECT 业主ID,业主编号,业主名称,电话,备注,联系人电话,性别,身份证号,工作单位,籍贯"
            "   FROM fwyz"
            "  where 业主ID=" +
                NumberText(Val(owner_id.ToString())),
            1)
          ->OpenRecordset();
  if (!rs->Eof()) {
    kvTxt[19].Value = convert_->ToNumber(rs->Fields("业主ID").Value);
    kvTxt[19].Text = convert_->ToText(rs->Fields("业主名称").Value);
    kvTxt[20].Text = convert_->ToText(rs->Fields("电话").Value);
    kvTxt[21].Text = convert_->ToText(rs->Fields("工作单位").Value);
    kvTxt[22].Text = convert_->ToText(rs->Fields("籍贯").Value);
    kvTxt[23].Text = convert_->ToText(rs->Fields("身份证号").Value);
    kvTxt[24].Text = convert_->ToText(rs->Fields("备注").Value);
    const bool male = convert_->ToText(rs->Fields("性别").Value) == "男";
    optXB[0].Value = male;
    optXB[1].Value = !male;
    return;
  }
  kvTxt[19].Value = Variant(int32_t{0});
  for (int i = 19; i <= 24; ++i) kvTxt[i].Text = "";
}

void FY_MX::ClearForm() {
  current_id_ = 0;
  for (auto& [index, field] : kvTxt) {
    field->Text = "";
    field->Value = Variant(int32_t{0});
  }
  for (auto* boxes : {&chkJC, &chkPT})
    for (auto& [index, box] : *boxes) box->Value = 0;
  Chk.Value = 0;
  if (with_rooms_) rooms.ClearGrids();
  lblRecord.Caption = "记录：0/0";
}

void FY_MX::UpdateForm(Recordset& rs, const std::string& position) {
  current_id_ = convert_->ToLong(rs.Fields("房源ID").Value);
  previous_id_ = current_id_;
  for (const FieldDef& f : Fields()) {
    if (!kvTxt.Exists(f.index)) continue;
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
  const bool male = convert_->ToText(rs.Fields("性别").Value) == "男";
  optXB[0].Value = male;
  optXB[1].Value = !male;
  SetSets(convert_->ToText(rs.Fields("基础设施").Value),
          convert_->ToText(rs.Fields("配套设施").Value));
  lblRecord.Caption = "记录：" + (position.empty() ? std::string("0/0") : position);
  if (!with_rooms_) return;
  Lab_Status.Caption = convert_->ToText(rs.Fields("出租状态").Value);
  Lab_Status.Visible = true;
  rooms.Load(*context_, current_id_, [this](const std::string& error) {
    ErrMessage(error, err_level::kDatabase, kApplicationTitle);
  });
}

std::vector<std::string> FY_MX::RecordStatements(int32_t id) const {
  std::vector<std::string> statements = DocumentSheet::RecordStatements(id);
  if (with_rooms_)
    statements.push_back("select * from fwfy_fz where 房源ID=" + std::to_string(id) +
                         " order by AutoID");
  return statements;
}

void FY_MX::SetEnabled(bool editing) {
  editing_ = editing;
  for (kvhost::Control* c : controls_) {
    const std::string& type = c->TypeName();
    if (type == "TextBox" || type == "kvTxt_S" || type == "ComboBox") c->Locked = !editing;
    if (type == "CheckBox" || type == "OptionButton") c->Enabled = editing;
  }
  if (with_rooms_) rooms.SetEditable(editing);
  Chk.Enabled = !editing;
}

void FY_MX::GetSets(std::string& basic, std::string& furnishing) const {
  basic.clear();
  furnishing.clear();
  for (size_t i = 0; i < kBasic.size(); ++i)
    if (chkJC[static_cast<int>(i)].Value == 1) basic += kBasic[i] + ";";
  for (size_t i = 0; i < kFurnishing.size(); ++i)
    if (chkPT[static_cast<int>(i)].Value == 1) furnishing += kFurnishing[i] + ";";
}

void FY_MX::SetSets(const std::string& basic, const std::string& furnishing) {
  for (size_t i = 0; i < kBasic.size(); ++i)
    chkJC[static_cast<int>(i)].Value = basic.find(kBasic[i]) != std::string::npos ? 1 : 0;
  for (size_t i = 0; i < kFurnishing.size(); ++i)
    chkPT[static_cast<int>(i)].Value = furnishing.find(kFurnishing[i]) != std::string::npos ? 1 : 0;
}

bool FY_MX::FileNew() {
  SetEnabled(true);
  if (Chk.Value == 1) {
    previous_id_ = current_id_;
    current_id_ = 0;
    kvTxt[2].Text = "";
    if (with_rooms_) rooms.ClearGrids();
  } else {
    ClearForm();
  }
  std::string number;
  context_->BillCode(prog_id_, context_->Environment().LoginDate(), number, /*preview=*/true);
  kvTxt[2].Text = number;
  kvTxt[16].Text = context_->Environment().LoginDate().ToText();
  kvTxt[28].Text = "未出租";
  Lab_Status.Visible = false;
  lblRecord.Caption = "新建记录...";
  dirty_ = false;
  Message("正在新建单据中...");
  tools_->SetFocus(kvTxt[0]);
  return true;
}

bool FY_MX::FileEdit() {
  if (current_id_ <= 0) {
    MsgBox("没有具体的单据数据，不能编辑! ", msgbox::kInformation, kApplicationTitle);
    return false;
  }
  SetEnabled(true);
  if (with_rooms_) rooms.ForgetDeletions();
  dirty_ = false;
  Message("正在修改单据中...");
  tools_->SetFocus(kvTxt[0]);
  return true;
}

bool FY_MX::FileCancel() {
  FindData(" 房源ID=" + std::to_string(previous_id_), /*keep_on_miss=*/false);
  SetEnabled(false);
  dirty_ = false;
  Message("");
  return true;
}

bool FY_MX::IsCanSave() {
  try {
    for (kvhost::Control* c : controls_) {
      // The grids take only what fits a column as it is typed.
      if (auto* field = dynamic_cast<kvhost::KvTxt*>(c)) {
        if (field->IsActive() && !field->IsValid()) return false;
      }
    }
    for (int i : {0, 1}) {
      if (Trim(kvTxt[i].Text).empty()) {
        ErrMessage(Trim(kvTxt[i].Caption) + "不能为空，请修改后重试！", err_level::kValidation,
                   kApplicationTitle);
        tools_->SetFocus(kvTxt[i]);
        return false;
      }
    }
    return true;
  } catch (const VbError& e) {
    ErrMessage("IsCanSave:" + e.Description(), err_level::kValidation, kApplicationTitle);
    return false;
  }
}

bool FY_MX::SavePdmStep(const std::string& sql) {
  IHostDatabase& db = context_->Database();
  db.CreateCommand(sql, 1)->Execute();
  if (db.Error().Description().empty()) return true;
  MsgBox("SavePDM::" + context_->LastError().Text(), msgbox::kCritical, kApplicationTitle);
  return false;
}

bool FY_MX::SavePDM() {
  IHostDatabase& db = context_->Database();
  // 1. The estate, by its name.
  const std::string estate = kvTxt[1].Text;
  int32_t estate_id = static_cast<int32_t>(
      Val(ScalarText(db, " SELECT 物业ID FROM fwwy where 物业名称=" + SqlQuoted(estate))));
  if (estate_id < 1) {
    if (const std::string why = bill_->NewID("fwwy", "物业ID", estate_id); !why.empty()) {
      MsgBox("SavePDM::" + why, msgbox::kCritical, kApplicationTitle);
      return false;
    }
    if (!SavePdmStep(" INSERT INTO fwwy (物业ID,物业编号,物业名称,所属区域) values (" +
                     std::to_string(estate_id) + "," + SqlQuoted(std::to_string(estate_id)) + "," +
                     SqlQuoted(estate) + "," + SqlQuoted(kvTxt[3].Text) + ")"))
      return false;
  }
  kvTxt[1].Value = Variant(estate_id);
  kvTxt[1].Text = estate;
  // 2. The area, a dictionary row of 类型 所属区域.
  const std::string area = kvTxt[3].Text;
  int32_t area_id = static_cast<int32_t>(Val(ScalarText(
      db, " SELECT ID FROM pdmsjzd where 名称=" + SqlQuoted(area) + " and 类型='所属区域'")));
  if (area_id < 1) {
    if (const std::string why = bill_->NewID("pdmsjzd", "ID", area_id); !why.empty()) {
      MsgBox("SavePDM::" + why, msgbox::kCritical, kApplicationTitle);
      return false;
    }
    if (!SavePdmStep(" INSERT INTO pdmsjzd (ID,代码,名称,类型,是否系统) values (" +
                     std::to_string(area_id) + "," + SqlQuoted(std::to_string(area_id)) + "," +
                     SqlQuoted(area) + ",'所属区域',0)"))
      return false;
  }
  kvTxt[3].Value = Variant(area_id);
  kvTxt[3].Text = area;
  // 3. The owner, by name and telephone together.
  const std::string owner = kvTxt[19].Text;
  const std::string sex = optXB[0].Value ? "男" : "女";
  int32_t owner_id = static_cast<int32_t>(
      Val(ScalarText(db, " SELECT 业主ID FROM fwyz where 业主名称=" + SqlQuoted(owner) +
                             " and 电话=" + SqlQuoted(kvTxt[20].Text) + " and 类型=0")));
  if (owner_id < 1) {
    if (const std::string why = bill_->NewID("fwyz", "业主ID", owner_id); !why.empty()) {
      MsgBox("SavePDM::" + why, msgbox::kCritical, kApplicationTitle);
      return false;
    }
    if (!SavePdmStep(" INSERT INTO fwyz (业主ID,业主编号,业主名称,电话,性别,身份证号,工作单位,籍贯,"
                     "备注,类型) values (" +
                     std::to_string(owner_id) + "," + SqlQuoted(std::to_string(owner_id)) + "," +
                     SqlQuoted(owner) + "," + SqlQuoted(kvTxt[20].Text) + "," + SqlQuoted(sex) +
                     "," + SqlQuoted(kvTxt[23].Text) + "," + SqlQuoted(kvTxt[21].Text) + "," +
                     SqlQuoted(kvTxt[22].Text) + "," + SqlQuoted(kvTxt[24].Text) + ",0)"))
      return false;
  } else if (with_rooms_ && !SavePdmStep(" update fwyz    set  性别=" + SqlQuoted(sex) +
                                         ",身份证号=" + SqlQuoted(kvTxt[23].Text) +
                                         ",工作单位=" + SqlQuoted(kvTxt[21].Text) +
                                         ",籍贯=" + SqlQuoted(kvTxt[22].Text) +
                                         ",备注=" + SqlQuoted(kvTxt[24].Text) +
                                         "   where 业主ID=" + std::to_string(owner_id))) {
    return false;
  }
  kvTxt[19].Value = Variant(owner_id);
  kvTxt[19].Text = owner;
  return true;
}

std::string FY_MX::TextOf(int index) const { return SqlQuoted(kvTxt[index].Text); }

std::string FY_MX::NumberOf(int index) const { return SqlNumber(kvTxt[index].Text); }

std::string FY_MX::ValueOf(int index) const {
  const Variant& v = kvTxt[index].Value;
  return NumberText(v.IsNumeric() ? v.ToDouble() : Val(v.ToString()));
}

bool FY_MX::Run(const std::string& sql) {
  IHostDatabase& db = context_->Database();
  db.CreateCommand(sql, 1)->Execute();
  last_error_ = db.Error().Description();
  return last_error_.empty();
}

bool FY_MX::FileSave() {
  IHostDatabase& db = context_->Database();
  ReleaseOnExit release(db);
  try {
    // 1-5: the checks and the number.
    if (!IsCanSave()) return false;
    std::string number = Trim(kvTxt[2].Text);
    const bool is_new = current_id_ < 1;
    if (is_new && !context_->BillCode(prog_id_, context_->Environment().LoginDate(), number,
                                      /*preview=*/false))
      return false;
    if (number.empty()) {
      MsgBox("房源编号为空，不能保存  ", msgbox::kInformation, kApplicationTitle);
      tools_->SetFocus(kvTxt[2]);
      return false;
    }
    kvTxt[2].Text = number;
    const std::string duplicate =
        is_new ? " select  * from  fwfy where  房源编号 =" + SqlQuoted(number)
               : " Select  * From fwfy Where 房源ID <> " + std::to_string(current_id_) +
                     " and 房源编号=" + SqlQuoted(number);
    if (!ScalarText(db, duplicate).empty()) {
      MsgBox("房源编号重复,请检查!", msgbox::kInformation, is_new ? kApplicationTitle : "提示：");
      tools_->SetFocus(kvTxt[2]);
      return false;
    }
    // 6-7: the bracket, and what the unit refers to.
    Transaction tx(db);
    if (!tx.Open()) {
      ErrMessage("保存时出错：" + db.Error().Description(), err_level::kDatabase,
                 kApplicationTitle);
      return false;
    }
    if (RecordChanged()) return false;
    if (!SavePDM()) return false;
    // 8-9: the facility lists and the key.
    std::string basic;
    std::string furnishing;
    GetSets(basic, furnishing);
    int32_t id = current_id_;
    if (is_new) {
      if (const std::string why = bill_->NewID("fwfy", "房源ID", id); !why.empty()) {
        tx.Rollback();
        ErrMessage(why, err_level::kDatabase, kApplicationTitle);
        return false;
      }
    }
    // 10-12: the unit's row, dates in the dialect of the connection.
    const std::string date = kvTxt[16].Text.empty() ? "Null"
                             : ParseDate(Trim(kvTxt[16].Text))
                                 ? DateLiteral(db, *ParseDate(Trim(kvTxt[16].Text)))
                                 : "Null";
    std::string sql;
    if (!is_new) {
      sql = " UPDATE FWFY  SET 房源编号=" + TextOf(2) +
            (with_rooms_ ? ",装修程度=" + TextOf(29) : std::string()) + ",物业ID=" + ValueOf(1) +
            ",房源名称=" + TextOf(0) + ",所属区域=" + TextOf(3) + ",登记日期=" + date +
            ",物业用途=" + TextOf(4) + ",楼宇类型=" + TextOf(5) + ",出租状态=" + TextOf(28) +
            ",朝向=" + TextOf(6) + ",户型=" + TextOf(9) + ",业务员ID=" + ValueOf(15) +
            ",楼层=" + TextOf(10) + ",总楼层=" + TextOf(11) + ",建筑年份=" + TextOf(14) +
            ",结构=" + TextOf(7) + ",面积=" + NumberOf(8) + ",架空层面积=" + NumberOf(12) +
            ",车库面积=" + NumberOf(13) + ",出租价格=" + NumberOf(25) + ",出租说明=" + TextOf(26) +
            ",基础设施其他=" + TextOf(17) + ",配套设施其他=" + TextOf(18) +
            ",业主ID=" + ValueOf(19) + ",具体地址=" + TextOf(27) + ",基础设施=" + SqlQuoted(basic) +
            ",配套设施=" + SqlQuoted(furnishing) + "  WHERE 房源ID=" + std::to_string(id);
    } else {
      sql =
          std::string(" INSERT INTO fwfy ( ") + (with_rooms_ ? "装修程度," : "") +
          "房源ID,出租状态,房源编号,物业ID,房源名称,所属区域,登记日期,"
          "物业用途,楼宇类型,朝向,户型,业务员ID,楼层,总楼层,建筑年份,结构,面积,架空层面积,车库面积,"
          "出租价格,出租说明,基础设施其他,配套设施其他,业主ID,具体地址,基础设施,配套设施 ) VALUES "
          "(" +
          (with_rooms_ ? TextOf(29) + "," : std::string()) + std::to_string(id) + "," + TextOf(28) +
          "," + TextOf(2) + "," + ValueOf(1) + "," + TextOf(0) + "," + TextOf(3) + "," + date +
          "," + TextOf(4) + "," + TextOf(5) + "," + TextOf(6) + "," + TextOf(9) + "," +
          ValueOf(15) + "," + TextOf(10) + "," + TextOf(11) + "," + TextOf(14) + "," + TextOf(7) +
          "," + NumberOf(8) + "," + NumberOf(12) + "," + NumberOf(13) + "," + NumberOf(25) + "," +
          TextOf(26) + "," + TextOf(17) + "," + TextOf(18) + "," + ValueOf(19) + "," + TextOf(27) +
          "," + SqlQuoted(basic) + "," + SqlQuoted(furnishing) + ")";
    }
    if (!Run(sql)) {
      tx.Rollback();
      ErrMessage("保存时出错：" + last_error_, err_level::kDatabase, kApplicationTitle);
      return false;
    }
    // 13: the rooms.
    std::string rooms_error;
    if (with_rooms_ && !rooms.Save(*context_, *bill_, id, rooms_error)) {
      last_error_ = rooms_error;
      tx.Rollback();
      ErrMessage("保存时出错：" + rooms_error, err_level::kDatabase, kApplicationTitle);
      return false;
    }
    // 14-16: commit, the new ID, the record shown again.
    if (!tx.Commit()) {
      last_error_ = db.Error().Description();
      ErrMessage("保存时出错：" + last_error_, err_level::kDatabase, kApplicationTitle);
      return false;
    }
    if (is_new) {
      current_id_ = id;
      if (document_id_ > 0 && document_id_ != id) {
        document_id_ = id;
        BuildSelection();
      }
    }
    FindData("房源ID=" + std::to_string(id), /*keep_on_miss=*/false);
    SetEnabled(false);
    dirty_ = false;
    return true;
  } catch (const VbError& e) {
    ErrMessage("保存时出错：" + e.Description(), err_level::kDatabase, kApplicationTitle);
    return false;
  }
}

bool FY_MX::FileDelete() {
  if (current_id_ < 1) {
    MsgBox("没有可删除的记录!", msgbox::kInformation, "提示:");
    return false;
  }
  if (MsgBox("是否删除当前记录:", msgbox::kYesNoWarning, "提示:") != msgbox::kYes) return false;
  IHostDatabase& db = context_->Database();
  ReleaseOnExit release(db);
  Transaction tx(db);
  if (!tx.Open() || !Run("Delete from fwfy where 房源ID=" + std::to_string(current_id_))) {
    if (last_error_.empty()) last_error_ = db.Error().Description();
    tx.Rollback();
    ErrMessage(last_error_, err_level::kDatabase, kApplicationTitle);
    return false;
  }
  if (!tx.Commit()) {
    last_error_ = db.Error().Description();
    ErrMessage(last_error_, err_level::kDatabase, kApplicationTitle);
    return false;
  }
  LoadData(navigate::kNext);
  return true;
}

bool FY_MX::DoPrint() {
  try {
    print_file_ = PrintDataFile(*context_, prog_id_);
    std::string basic;
    std::string furnishing;
    GetSets(basic, furnishing);
    WritePrintDataFile(
        print_file_, controls_,
        [&](kvhost::PrintSection& section) {
          section.SetField("性别", optXB[0].Value ? "男" : "女");
          section.SetField("基础设施", basic);
          section.SetField("配套设施", furnishing);
        },
        /*grid=*/nullptr);
    return true;
  } catch (const VbError& e) {
    ErrMessage(std::string(kTag) + "-->DoPrint::" + e.Description(), err_level::kValidation,
               kApplicationTitle);
    return false;
  }
}

bool FY_MX::DoSetStatus(const std::string& status, bool) {
  if (status == "change") return FindData(" 房源ID=" + std::to_string(current_id_), false);
  Message("数据正在切换状态");
  SetEnabled(false);
  LoadData(navigate::kLast);
  Message("");
  return true;
}

// The layout file keeps the room grids' column widths only: the fields show records.
void FY_MX::DoGetFormStatus() {
  if (!with_rooms_) return;
  kvhost::ControlList grids;
  grids.Add(rooms.kvGridF);
  grids.Add(rooms.kvGridZ);
  sbGetFormStatus(LayoutPath(ClassName(), *context_), /*pbOnlyColWidth=*/true, grids, *context_);
}

void FY_MX::DoSaveFormStatus() {
  if (!with_rooms_) return;
  kvhost::ControlList grids;
  grids.Add(rooms.kvGridF);
  grids.Add(rooms.kvGridZ);
  sbSaveFormStatus(LayoutPath(ClassName(), *context_), /*pbOnlyColWidth=*/true, grids);
}

std::vector<SearchField> FY_MX::SearchFields() {
  return {
      {"房源编号", "房源编号", SearchType::kText},   {"房源名称", "房源名称", SearchType::kText},
      {"物业名称", "物业名称", SearchType::kText},   {"所属区域", "所属区域", SearchType::kText},
      {"户型结构", "户型", SearchType::kText},       {"出租状态", "出租状态", SearchType::kText},
      {"业主姓名", "业主名称", SearchType::kText},   {"联系电话", "电话", SearchType::kText},
      {"详细地址", "具体地址", SearchType::kText},   {"房屋面积", "面积", SearchType::kNumber},
      {"出租价格", "出租价格", SearchType::kNumber}, {"登记日期", "登记日期", SearchType::kDate}};
}

std::unique_ptr<ModuleObject> NewFY_MX() { return std::make_unique<FY_MX>(); }

std::unique_ptr<ModuleObject> NewFY_MX_old() { return std::make_unique<FY_MX_old>(); }

}  // namespace mrvk
