#include "mrvk/master/pdm_fy.h"

namespace mrvk {
namespace {

// The units with the names of their estate, building and owner; a unit whose estate,
// building or owner row is gone still shows, with an empty name.
constexpr const char* kUnitsSql =
    "select A.房源编号,A.房源名称,B.物业名称,C.楼宇名称,A.朝向,A.户型,A.楼层,A.结构,A.面积,"
    "A.出租状态,D.业主名称,A.备注,A.房源ID from ((fwfy A left join fwwy B on A.物业ID=B.物业ID) "
    "left join fwly C on A.楼宇ID=C.楼宇ID) left join fwyz D on A.业主ID=D.业主ID";

}  // namespace

PDMFy::PDMFy()
    : ListMasterSheet({"PDMFy",
                       "行号|编号    |名称        |物业      |楼宇      |朝向  |户型    |楼层  "
                       "|结构    |面积    |出租状态|业主          |备注            |房源ID",
                       "fwfy",
                       "房源ID",
                       {"房源编号", "房源名称", "物业名称", "楼宇名称", "朝向", "户型", "楼层",
                        "结构", "面积", "出租状态", "业主名称", "备注", "房源ID"},
                       "fwhdmx",
                       std::string(kUnitsSql) + " where 房源ID=",
                       // Any contract detail row naming the unit, whatever its contract's state.
                       " select 房源ID from fwhdmx where 房源ID=",
                       "IsCulterUse::",
                       "IsCanDelete::"}),
      form_(std::make_unique<FrmFy>()) {
  HearDialog(*form_);
}

std::string PDMFy::LoadSql() const { return std::string(kUnitsSql) + " order by 房源编号"; }

std::unique_ptr<ModuleObject> NewPDMFy() { return std::make_unique<PDMFy>(); }

}  // namespace mrvk
