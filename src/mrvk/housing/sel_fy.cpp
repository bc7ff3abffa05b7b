#include "mrvk/housing/sel_fy.h"

namespace mrvk {
namespace {

// The units with their estate; a typed number is the beginning of a unit's name or number.
const SearchPickerShape kUnits = {
    .state_caption = "出租状态",
    .state_list = "|未出租|部分出租|已出租|已失效",
    .format =
        "房源ID|房源编号       |物业名称         |房源名称              |户型结构           "
        "|面格       |出租状态       ",
    .frozen_cols = 1,
    .key_hidden = false,
    .select =
        " SELECT fwfy.房源ID,FwFy.房源编号,fwwy.物业名称,FwFy.房源名称,FwFy.户型,"
        "FwFy.面积,FwFy.出租状态"
        "   FROM FwFy left join fwwy on FwFy.物业ID=fwwy.物业ID"
        "  WHERE  1=1",
    .state_of = " and fwfy.出租状态=",
    // A unit for a new contract must have something free.
    .with_new = " and fwfy.出租状态 in ('未出租','部分出租')",
    .order = "   ORDER BY FwFy.房源编号",
    .prefix_first = "FwFy.房源名称",
    .prefix_second = "FwFy.房源编号",
    .key_field = "房源ID",
    .number_field = "房源编号",
};

}  // namespace

Sel_FY::Sel_FY() : SearchPicker(kUnits) {}

std::unique_ptr<ModuleObject> NewSel_FY() { return std::make_unique<Sel_FY>(); }

}  // namespace mrvk
