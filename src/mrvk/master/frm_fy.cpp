#include "mrvk/master/frm_fy.h"

#include "mrvk/frame/data_access.h"
#include "mrvk/frame/vb.h"

namespace mrvk {

FrmFy::FrmFy()
    : EntryDialog("FrmFy", {"fwfy", "房源ID", "房源编号", "房源名称",
                            "select A.*,B.物业名称,C.楼宇名称,D.业主名称 from ((fwfy A left join "
                            "fwwy B on A.物业ID=B.物业ID) left join fwly C on A.楼宇ID=C.楼宇ID) "
                            "left join fwyz D on A.业主ID=D.业主ID where 房源ID="}) {
  AddField(0, "    编号");
  AddField(1, "    名称");
  AddField(2, "所属物业");
  AddField(3, "业主名称");
  AddField(4, "所属楼宇");
  AddField(5, "    备注");
  AddField(6, "    朝向");
  AddField(7, "    户型");
  AddField(8, "    楼层");
  AddField(9, "    结构");
  AddField(10, "    面积").Kind = kvhost::FieldKind::Number;
  // The rental state is a closed list whose first entry is empty.
  kvhost::KvTxt& state = AddField(11, "出租状态");
  state.Config.ListText = "|未出租|已出租";
  state.Config.Style = 3;
  state.Config.ShowButton = true;
  Bind(2, "物业ID", "物业名称", "gy_wy", "select * from fwwy where 物业编号='@' or 物业名称='@'");
  Bind(3, "业主ID", "业主名称", "gy_yz",
       "select * from fwyz where 类型=0 and (业主编号='@' or 业主名称='@')");
  Bind(4, "楼宇ID", "楼宇名称", "gy_ly", "select * from fwly where 楼宇编号='@' or 楼宇名称='@'");
  Bind(6, "ID", "名称", "gy_sjzd_cx",
       "select * from pdmsjzd where 类型='房屋朝向' and (代码='@' or 名称='@')");
  Bind(7, "ID", "名称", "gy_sjzd_hx",
       "select * from pdmsjzd where 类型='户型' and (代码='@' or 名称='@')");
  Bind(9, "ID", "名称", "gy_sjzd_jg",
       "select * from pdmsjzd where 类型='房屋结构' and (代码='@' or 名称='@')");
  AddButtons();
}

void FrmFy::Bind(int index, const std::string& value_column, const std::string& display_column,
                 const std::string& picker_key, const std::string& validate_sql) {
  kvhost::KvTxt& field = kvTxt[index];
  field.Config.ShowButton = true;
  field.Config.CheckInput = true;
  field.Config.ValueColumn = value_column;
  field.Config.DisplayColumn = display_column;
  field.Config.PickerKey = picker_key;
  field.Config.ValidateSql = validate_sql;
  field.Config.ErrorMessage = Trim(field.Caption) + "输入有误，请重新输入！";
  // The dialog's context is there while it is shown, which is when a person works a field.
  field.ShowPicker = [this, &field](std::string& text, Variant& value) {
    if (context_) context_->ShowPicker(field, text, value);
  };
  field.CheckPicker = [this, &field](const std::string& typed, Variant& value, std::string& text) {
    if (context_) context_->CheckPicker(field, typed, value, text);
  };
}

void FrmFy::py_Init(IHostContext& context, int32_t id, bool view_only) {
  Run(context, id, view_only, "房源信息");
}

void FrmFy::UpdateForm(Recordset& rs) {
  kvTxt[0].Text = ColumnText(rs, "房源编号");
  kvTxt[1].Text = ColumnText(rs, "房源名称");
  kvTxt[2].Value = convert_->ToNumber(rs.Fields("物业ID").Value);
  kvTxt[2].Text = ColumnText(rs, "物业名称");
  kvTxt[3].Value = convert_->ToNumber(rs.Fields("业主ID").Value);
  kvTxt[3].Text = ColumnText(rs, "业主名称");
  kvTxt[4].Value = convert_->ToNumber(rs.Fields("楼宇ID").Value);
  kvTxt[4].Text = ColumnText(rs, "楼宇名称");
  kvTxt[5].Text = ColumnText(rs, "备注");
  kvTxt[6].Text = ColumnText(rs, "朝向");
  kvTxt[7].Text = ColumnText(rs, "户型");
  kvTxt[8].Text = ColumnText(rs, "楼层");
  kvTxt[9].Text = ColumnText(rs, "结构");
  kvTxt[10].Text = ColumnText(rs, "面积");
  kvTxt[11].Text = ColumnText(rs, "出租状态");
}

std::string FrmFy::IdOf(int index) {
  return NumberText(convert_->ToDouble(kvTxt[index].Value, std::nullopt));
}

std::string FrmFy::Area() { return NumberText(Val(FieldText(10))); }

std::string FrmFy::UpdateSql(int32_t id) {
  return "UpDate fwfy set 房源编号=" + SqlQuoted(FieldText(0)) +
         ",房源名称=" + SqlQuoted(FieldText(1)) + ",物业ID=" + IdOf(2) + "," + "楼宇ID=" + IdOf(4) +
         ",朝向=" + SqlQuoted(FieldText(6)) + ",户型=" + SqlQuoted(FieldText(7)) +
         ",楼层=" + SqlQuoted(FieldText(8)) + ",结构=" + SqlQuoted(FieldText(9)) +
         ",面积=" + Area() + ",出租状态=" + SqlQuoted(FieldText(11)) + ",业主ID=" + IdOf(3) +
         ",备注=" + SqlQuoted(FieldText(5)) + " Where 房源ID=" + std::to_string(id);
}

std::string FrmFy::InsertSql(int32_t id) {
  return "insert into "
         "fwfy(房源ID,房源编号,房源名称,物业ID,楼宇ID,朝向,户型,楼层,结构,面积,出租状态,"
         "业主ID,备注)values(" +
         std::to_string(id) + "," + SqlQuoted(FieldText(0)) + "," + SqlQuoted(FieldText(1)) + "," +
         IdOf(2) + "," + IdOf(4) + "," + SqlQuoted(FieldText(6)) + "," + SqlQuoted(FieldText(7)) +
         "," + SqlQuoted(FieldText(8)) + "," + SqlQuoted(FieldText(9)) + "," + Area() + "," +
         SqlQuoted(FieldText(11)) + "," + IdOf(3) + "," + SqlQuoted(FieldText(5)) + ")";
}

}  // namespace mrvk
