#include "mrvk/master/pdm_wy.h"

namespace mrvk {

std::unique_ptr<ModuleObject> NewPDMWy() {
  TreeSheetDesign d;
  d.class_name = "PDMWy";
  d.title = "物业";
  d.caption = "物业设置";
  d.root_text = "全部物业";
  d.table = "fwwy";
  d.key_column = "物业ID";
  d.code_column = "物业编号";
  d.name_column = "物业名称";
  d.fields = {
      {0, "物业编号", "物业编号"}, {1, "物业名称", "物业名称"}, {2, "  开发商", "开发商"},
      {3, "所属区域", "所属区域"}, {4, "建成年份", "建成年份"},
  };
  d.bindings = {
      {2, "ID", "名称", "gy_sjzd_kfs",
       "select * from pdmsjzd where 类型='开发商' and (代码='@' or 名称='@')"},
      {3, "ID", "名称", "gy_sjzd_qy",
       "select * from pdmsjzd where 类型='所属区域' and (代码='@' or 名称='@')"},
  };
  d.load_sql = "select * from fwwy where 物业ID=";
  d.use_table = "fwfy";
  d.in_use_message = "该[物业名称]已启用,不能删除!";
  return std::make_unique<TreeMasterSheet>(std::move(d));
}

}  // namespace mrvk
