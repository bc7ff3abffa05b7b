#include "mrvk/master/pdm_ly.h"

namespace mrvk {

std::unique_ptr<ModuleObject> NewPDMLy() {
  using K = MasterFieldKind;
  TreeSheetDesign d;
  d.class_name = "PDMLy";
  d.title = "楼宇";
  d.caption = "宇楼设置";
  d.root_text = "全部楼宇";
  d.table = "fwly";
  d.key_column = "楼宇ID";
  d.code_column = "楼宇编号";
  d.name_column = "楼宇名称";
  d.fields = {
      {0, "    编号", "楼宇编号"},
      {1, "    名称", "楼宇名称"},
      {2, "所属物业", "物业ID", K::Value, "所属物业"},
      {3, "    类型", "楼宇类型"},
      {4, "占地面积", "占地面积", K::Number},
      {5, "建筑面积", "建筑面积", K::Number},
      {6, "    位置", "位置"},
      {7, "    简介", "简介"},
  };
  d.bindings = {
      {2, "物业ID", "物业名称", "gy_wy", "select * from fwwy where 物业编号='@' or 物业名称='@'"},
      {3, "ID", "名称", "gy_sjzd_lx",
       "select * from pdmsjzd where 类型='楼宇类型' and (代码='@' or 名称='@')"},
  };
  d.load_sql =
      "select A.*,B.物业名称 as 所属物业 from fwly A left join fwwy B on A.物业ID=B.物业ID where "
      "楼宇ID=";
  d.use_table = "fwfy";
  d.in_use_message = "该[楼宇]已启用,不能删除!";
  return std::make_unique<TreeMasterSheet>(std::move(d));
}

}  // namespace mrvk
