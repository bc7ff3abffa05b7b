// The tables of the module and the host tables it reads, with the indexes for the joins,
// filters and key navigation of the statements that run on them.
#include "kvhost/db/schema.h"

namespace kvhost::db {

namespace {

constexpr ColType L = ColType::Long;
constexpr ColType F = ColType::Flag;
constexpr ColType N = ColType::Double;
constexpr ColType T = ColType::Text;
constexpr ColType M = ColType::Memo;
constexpr ColType D = ColType::Date;

}  // namespace

const std::vector<TableDef>& Tables() {
  static const std::vector<TableDef> tables = {
      // Buildings.
      {"fwly",
       {{"楼宇ID", L},
        {"楼宇编号", T},
        {"楼宇名称", T},
        {"物业ID", L, "0"},
        {"楼宇类型", T},
        {"占地面积", N, "0"},
        {"建筑面积", N, "0"},
        {"位置", T},
        {"简介", M}},
       "楼宇ID"},
      // Estates.
      {"fwwy",
       {{"物业ID", L},
        {"物业编号", T},
        {"物业名称", T},
        {"开发商", T},
        {"所属区域", T},
        {"建成年份", T}},
       "物业ID"},
      // Fee categories.
      {"fwfykm",
       {{"费用ID", L}, {"费用编号", T}, {"费用名称", T}, {"计费方式", T}, {"单价", N, "0"}},
       "费用ID"},
      // Owners (类型 0) and clients (类型 1).
      {"fwyz",
       {{"业主ID", L},
        {"业主编号", T},
        {"业主名称", T},
        {"性别", T},
        {"电话", T},
        {"身份证号", T},
        {"籍贯", T},
        {"工作单位", T},
        {"备注", T},
        {"类型", L, "0"},
        {"联系人电话", T},
        // The code picker lists a party with its address and contact.
        {"地址", T},
        {"联系人", T}},
       "业主ID"},
      // The data dictionary: coded lists by 类型.
      {"pdmsjzd", {{"ID", L}, {"代码", T}, {"名称", T}, {"类型", T}, {"是否系统", N, "0"}}, "ID"},
      // Housing units.
      {"fwfy",
       {{"房源ID", L},
        {"房源编号", T},
        {"房源名称", T},
        {"物业ID", L, "0"},
        {"楼宇ID", L, "0"},
        {"所属区域", T},
        {"登记日期", D},
        {"物业用途", T},
        {"楼宇类型", T},
        {"朝向", T},
        {"户型", T},
        {"结构", T},
        {"装修程度", T},
        {"业务员ID", L, "0"},
        {"楼层", T},
        {"总楼层", T},
        {"建筑年份", T},
        {"面积", N, "0"},
        {"架空层面积", N, "0"},
        {"车库面积", N, "0"},
        {"出租价格", N, "0"},
        {"出租说明", M},
        {"出租状态", T},
        {"基础设施", T},
        {"基础设施其他", T},
        {"配套设施", T},
        {"配套设施其他", T},
        {"业主ID", L, "0"},
        {"具体地址", T},
        {"备注", M}},
       "房源ID"},
      // Rooms of a housing unit.
      {"fwfy_fz",
       {{"AutoID", L},
        {"房源ID", L},
        {"房间号", T},
        {"面积", N, "0"},
        {"月租金", N, "0"},
        {"是否出租", L, "0"}},
       "AutoID"},
      // Contracts.
      {"fwhd",
       {{"合同ID", L},        {"progID", L},       {"smark", T},         {"系统", T},
        {"状态", T},          {"合同编号", T},     {"合同日期", D},      {"业务员ID", L, "0"},
        {"预收押金", N, "0"}, {"中介费", N, "0"},  {"客户ID", L, "0"},   {"租住人数", L, "1"},
        {"押金备注1", T},     {"押金备注2", T},    {"押金备注3", T},     {"起租日期", D},
        {"止租日期", D},      {"租赁期", L, "0"},  {"收款期间", L, "0"}, {"月租金", N, "0"},
        {"付租方式", T},      {"分租房间", T},     {"面积", N, "0"},     {"备注", M},
        {"制单人", T},        {"制单日期", D},     {"审核人", T},        {"审核日期", D},
        {"总金额", N, "0"},   {"下次收款时间", D}, {"下次收款时间1", D}, {"填单人", T},
        {"填单日期", D}},
       "合同ID"},
      // The housing unit of a contract.
      {"fwhdmx",
       {{"合同明细ID", L},
        {"合同ID", L},
        {"房源ID", L, "0"},
        {"基础设施", T},
        {"配套设施", T},
        {"备注", T}},
       "合同明细ID"},
      // Fee terms of a contract.
      {"fwhdfs",
       {{"合同明细ID", L},
        {"合同ID", L},
        {"费用名称", T},
        {"是否包干", F, "0"},
        {"包干价", N, "0"},
        {"是否预收", F, "0"},
        {"度数", N, "0"},
        {"单价", N, "0"},
        {"收款期间", N, "0"},
        {"序号", L, "0"}},
       "合同明细ID"},
      // Payment modes.
      {"pdmfzfs",
       {{"AutoID", L}, {"编号", T}, {"付租方式", T}, {"付租月份", N, "0"}, {"押金月份", N, "0"}},
       "AutoID"},
      // The collection schedule of approved contracts.
      {"fwhdfs_sk",
       {{"AutoID", L},
        {"合同ID", L},
        {"费用名称", T},
        {"是否包干", F, "0"},
        {"是否预收", F, "0"},
        {"收款期间", N, "0"},
        {"收款日期", D},
        {"起始日期", D},
        {"结束日期", D},
        {"上期度数", N, "0"},
        {"是否最后一期", F, "0"},
        {"序号", L, "0"},
        {"是否已收", F, "0"}},
       "AutoID"},
      // What has been paid against a contract (deposit receipts and simple rent receipts).
      {"fwhd_js",
       {{"合同ID", L},
        {"起租日期", D},
        {"止租日期", D},
        {"总租金额", N, "0"},
        {"结算ID", L},
        {"开始日期", D},
        {"结束日期", D},
        {"金额", N, "0"},
        {"摘要", T},
        {"科目ID", L}}},
      // Receipts: rent receipts, simple rent receipts and deposit receipts, told apart by progID.
      {"fwjs",
       {{"单据ID", L},
        {"progID", L},
        {"smark", T},
        {"系统", T},
        {"单据编号", T},
        {"操作日期", D},
        {"合同ID", L, "0"},
        {"客户ID", L, "0"},
        {"房源ID", L, "0"},
        {"业务员ID", L, "0"},
        {"是否最后一期", L, "0"},
        {"押金", N, "0"},
        {"合计金额", N, "0"},
        {"实收金额", N, "0"},
        {"欠收金额", N, "0"},
        {"备注", M},
        {"制单人", T},
        {"制单日期", D},
        {"审核人", T},
        {"审核日期", D},
        {"发票号码", T},
        {"经手人", T},
        {"摘要", T},
        {"金额", N, "0"},
        {"填单人", T},
        {"填单日期", D}},
       "单据ID"},
      // Receipt lines.
      {"fwjsmx",
       {{"单据明细ID", L},    {"单据ID", L},        {"前置单据ID", L, "0"}, {"费用名称", T},
        {"是否包干", L, "0"}, {"是否预收", L, "0"}, {"收款期间", L, "0"},   {"序号", L, "0"},
        {"收款日期", D},      {"开始日期", D},      {"结束日期", D},        {"包干价", N, "0"},
        {"上期读数", N, "0"}, {"本次读数", N, "0"}, {"实际用量", N, "0"},   {"单价", N, "0"},
        {"其他金额", N, "0"}, {"总包干额", N, "0"}, {"总用量额", N, "0"},   {"备注", T},
        {"科目ID", L, "0"},   {"摘要", T},          {"金额", N, "0"}},
       "单据明细ID"},
      // Fee receipts.
      {"fwjsfy",
       {{"单据ID", L},      {"progID", L},      {"smark", T},         {"系统", T},
        {"单据编号", T},    {"操作日期", D},    {"费用ID", L, "0"},   {"合同ID", L, "0"},
        {"客户ID", L, "0"}, {"房源ID", L, "0"}, {"开始日期", D},      {"结束日期", D},
        {"起数", N, "0"},   {"止数", N, "0"},   {"用量", N, "0"},     {"面积", N, "0"},
        {"单价", N, "0"},   {"金额", N, "0"},   {"是否收款", L, "0"}, {"经手人", T},
        {"收款日期", D},    {"备注", M},        {"填单人", T},        {"填单日期", D},
        {"审核人", T},      {"审核日期", D}},
       "单据ID"},

      // Host tables that the module reads.
      // The menu: one entry per function key; menugroup and sortno order the client's menu.
      {"xt_menu", {{"progID", L}, {"menuname", T}, {"menugroup", T}, {"sortno", L, "0"}}, "progID"},
      // The class that serves a function key, and the bill item it belongs to.
      {"xt_objects", {{"progID", L}, {"classname", T}, {"billitem", L, "0"}}, "progID"},
      // System settings by system and item code.
      {"xt_accinformation",
       {{"system_code", T}, {"item_code", T}, {"item_value", T}, {"item_name", T}}},
      // Per-function attributes (onsavecode: 1 revises a document number on each save).
      {"xt_BillAttribute", {{"progID", L}, {"attribute", T}, {"text", T}}},
      // Sales staff (类型ID 1).
      {"pdmxsy", {{"AutoID", L}, {"代码", T}, {"名称", T}, {"类型ID", L, "1"}}, "AutoID"},
      // Employees.
      {"PDMgy", {{"雇员ID", L}, {"编号", T}, {"姓名", T}}, "雇员ID"},
      // Chart of accounts; 是否明细 marks the leaf accounts.
      {"pdmkjkm",
       {{"科目ID", L}, {"科目编码", T}, {"科目名称", T}, {"是否明细", F, "1"}},
       "科目ID"},
      // Receipts of the accounts module, whose lines name the document they settle.
      {"arpreceive", {{"单据ID", L}, {"单据编号", T}, {"单据日期", D}}, "单据ID"},
      {"arpreceivemx",
       {{"单据明细ID", L}, {"单据ID", L}, {"源单ID", L, "0"}, {"金额", N, "0"}},
       "单据明细ID"},
  };
  return tables;
}

const std::vector<IndexDef>& Indexes() {
  static const std::vector<IndexDef> indexes = {
      {"fwly", "楼宇编号"},
      {"fwly", "物业ID"},
      {"fwwy", "物业编号"},
      {"fwfykm", "费用编号"},
      {"fwyz", "类型, 业主编号"},
      {"fwyz", "业主名称"},
      {"pdmsjzd", "类型, 代码"},
      {"fwfy", "房源编号"},
      // The key again: SQLite counts a sheet's position ("n/total", key <= the record's) in
      // this narrow index instead of the table's wide rows.
      {"fwfy", "房源ID"},
      {"fwfy", "物业ID"},
      {"fwfy", "楼宇ID"},
      {"fwfy", "业主ID"},
      {"fwfy_fz", "房源ID"},
      {"fwhd", "progID, 合同编号"},
      {"fwhd", "客户ID"},
      {"fwhd", "合同日期"},
      {"fwhd", "止租日期"},
      {"fwhdmx", "合同ID"},
      {"fwhdmx", "房源ID"},
      {"fwhdfs", "合同ID"},
      {"fwhdfs_sk", "合同ID, 序号"},
      {"fwhdfs_sk", "收款日期"},
      {"fwhd_js", "合同ID"},
      {"fwhd_js", "结算ID"},
      {"fwjs", "progID, 单据编号"},
      {"fwjs", "合同ID"},
      {"fwjs", "操作日期"},
      {"fwjsmx", "单据ID"},
      {"fwjsmx", "前置单据ID"},
      {"fwjsfy", "progID, 单据编号"},
      {"fwjsfy", "费用ID"},
      {"fwjsfy", "合同ID"},
      {"xt_objects", "billitem"},
      {"xt_BillAttribute", "progID, attribute"},
      {"xt_accinformation", "system_code, item_code"},
      {"pdmxsy", "类型ID, 代码"},
      {"pdmkjkm", "科目编码"},
      {"arpreceivemx", "源单ID"},
      // Added after the others, since an index's name is its place in this list and an
      // existing database keeps the indexes it has. The contract sheet counts its position
      // over fwhd's contracts of one key in a date span (the first), and walks to the next or
      // previous contract by min/max of the key under that span (the second, which SQLite
      // reads in key order instead of reading the whole span through the date index).
      {"fwhd", "progID, 合同日期, 合同ID"},
      {"fwhd", "progID, 合同ID, 合同日期"},
  };
  return indexes;
}

const std::vector<KeyDef>& NewIdKeys() {
  static const std::vector<KeyDef> keys = {
      {"fwly", "楼宇ID"},       {"fwwy", "物业ID"},      {"fwfykm", "费用ID"},
      {"fwyz", "业主ID"},       {"fwfy", "房源ID"},      {"fwfy_fz", "AutoID"},
      {"pdmsjzd", "ID"},        {"fwhd", "合同ID"},      {"fwhdmx", "合同明细ID"},
      {"fwhdfs", "合同明细ID"}, {"fwhdfs_sk", "AutoID"}, {"fwjs", "单据ID"},
      {"fwjsmx", "单据明细ID"}, {"fwjsfy", "单据ID"},
  };
  return keys;
}

}  // namespace kvhost::db
