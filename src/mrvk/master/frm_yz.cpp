#include "mrvk/master/frm_yz.h"

#include "mrvk/frame/data_access.h"

namespace mrvk {

FrmYz::FrmYz() : EntryDialog("FrmYz", {"fwyz", "业主ID", "业主编号", "业主名称"}) {
  AddField(0, "    编号");
  AddField(1, "姓名");
  optXB.Add(Controls(), 0).Caption = "男";
  optXB.Add(Controls(), 1).Caption = "女";
  kvhost::OptionButton::SetGroup({&optXB[0], &optXB[1]});
  AddField(2, "联系电话");
  AddField(3, "工作单位");
  AddField(4, "身份证号");
  AddField(5, "    备注");
  AddField(6, "籍贯");
  AddButtons();
}

void FrmYz::py_Init(IHostContext& context, int32_t type, int32_t id, bool view_only) {
  type_ = type;
  optXB[0].Select();
  Run(context, id, view_only, type_ > 0 ? "客源信息" : "业主信息");
}

void FrmYz::UpdateForm(Recordset& rs) {
  kvTxt[0].Text = ColumnText(rs, "业主编号");
  kvTxt[1].Text = ColumnText(rs, "业主名称");
  kvTxt[2].Text = ColumnText(rs, "电话");
  kvTxt[3].Text = ColumnText(rs, "工作单位");
  kvTxt[4].Text = ColumnText(rs, "身份证号");
  kvTxt[5].Text = ColumnText(rs, "备注");
  kvTxt[6].Text = ColumnText(rs, "籍贯");
  if (ColumnText(rs, "性别") == "男")
    optXB[0].Select();
  else
    optXB[1].Select();
}

std::string FrmYz::UpdateSql(int32_t id) {
  return "UpDate fwyz set 业主编号=" + SqlQuoted(FieldText(0)) +
         ",业主名称=" + SqlQuoted(FieldText(1)) + ",性别=" + SqlQuoted(Sex()) +
         ",电话=" + SqlQuoted(FieldText(2)) + ",身份证号=" + SqlQuoted(FieldText(4)) +
         ",籍贯=" + SqlQuoted(FieldText(6)) + ",工作单位=" + SqlQuoted(FieldText(3)) +
         ",备注=" + SqlQuoted(FieldText(5)) + ",类型=" + std::to_string(type_) +
         " Where 业主ID=" + std::to_string(id);
}

std::string FrmYz::InsertSql(int32_t id) {
  return "insert into fwyz(业主ID,业主编号,业主名称,性别,电话,身份证号,籍贯,工作单位,备注,类型)"
         "values(" +
         std::to_string(id) + "," + SqlQuoted(FieldText(0)) + "," + SqlQuoted(FieldText(1)) + "," +
         SqlQuoted(Sex()) + "," + SqlQuoted(FieldText(2)) + "," + SqlQuoted(FieldText(4)) + "," +
         SqlQuoted(FieldText(6)) + "," + SqlQuoted(FieldText(3)) + "," + SqlQuoted(FieldText(5)) +
         "," + std::to_string(type_) + ")";
}

}  // namespace mrvk
