#include "mrvk/contract/sel_ht.h"

namespace mrvk {
namespace {

// The approved contracts with their tenant, unit and estate; every join is a left join, so
// a contract whose tenant or unit is unknown still lists, with blanks there. A typed number
// is the beginning of a contract's number or of its unit's number.
const SearchPickerShape kContracts = {
    .state_caption = "合同状态",
    .state_list = "|未生效|生效|终止",
    .format =
        "合同ID|租房合同号     |租客姓名      |联系电话        |房源编号  |房源名称          "
        "|物业名称        |具体地址              |起租日期         |止租日期       "
        "|租赁期       |收款期间     ",
    .frozen_cols = 4,
    .key_hidden = true,
    .select =
        " SELECT fwhd.合同ID,FwHd.合同编号,FwYz.业主名称,FwYz.电话,FwFy.房源编号,"
        "FwFy.房源名称,FwWy.物业名称,FwFy.具体地址,FwHd.起租日期,FwHd.止租日期,"
        "FwHd.租赁期,FwHd.收款期间"
        "   FROM (((FwHd LEFT JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)"
        "     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)"
        "     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)"
        "     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID"
        "   where fwhd.smark='02'",
    .state_of = " and fwhd.状态=",
    // Only a contract in force can take a receipt.
    .with_new = " and fwhd.状态='生效'",
    .order = "   ORDER BY Fwhd.合同编号",
    .prefix_first = "Fwhd.合同编号",
    .prefix_second = "FwFy.房源编号",
    .key_field = "合同ID",
    .number_field = "合同编号",
};

}  // namespace

Sel_HT::Sel_HT() : SearchPicker(kContracts) {}

std::unique_ptr<ModuleObject> NewSel_HT() { return std::make_unique<Sel_HT>(); }

}  // namespace mrvk
