#include "mrvk/master/frm_fykm.h"

#include "mrvk/frame/data_access.h"
#include "mrvk/frame/vb.h"

namespace mrvk {

FrmFykm::FrmFykm() : EntryDialog("FrmFykm", {"fwfykm", "费用ID", "费用编号", "费用名称"}) {
  AddField(0, "    编号");
  AddField(1, "    名称");
  // The billing mode is a closed list whose first entry is empty, so it may stay empty.
  kvhost::KvTxt& mode = AddField(2, "计费方式");
  mode.Config.ListText = "|按户|按面积|按用量";
  mode.Config.Style = 3;
  mode.Config.ShowButton = true;
  AddField(3, "    单价").Kind = kvhost::FieldKind::Number;
  AddButtons();
}

void FrmFykm::py_Init(IHostContext& context, int32_t id, bool view_only) {
  Run(context, id, view_only, "费用科目");
}

void FrmFykm::UpdateForm(Recordset& rs) {
  kvTxt[0].Text = ColumnText(rs, "费用编号");
  kvTxt[1].Text = ColumnText(rs, "费用名称");
  kvTxt[2].Text = ColumnText(rs, "计费方式");
  kvTxt[3].Text = ColumnText(rs, "单价");
}

std::string FrmFykm::Price() { return NumberText(Val(FieldText(3))); }

std::string FrmFykm::UpdateSql(int32_t id) {
  return "UpDate fwfykm set 费用编号=" + SqlQuoted(FieldText(0)) +
         ",费用名称=" + SqlQuoted(FieldText(1)) + ",计费方式=" + SqlQuoted(FieldText(2)) +
         ",单价=" + Price() + " Where 费用ID=" + std::to_string(id);
}

std::string FrmFykm::InsertSql(int32_t id) {
  return "insert into fwfykm(费用ID,费用编号,费用名称,计费方式,单价)values(" + std::to_string(id) +
         "," + SqlQuoted(FieldText(0)) + "," + SqlQuoted(FieldText(1)) + "," +
         SqlQuoted(FieldText(2)) + "," + Price() + ")";
}

}  // namespace mrvk
