// The rows a new database starts with: the menu and the class of each entry, payment modes,
// the data dictionary, sales staff, employees, the income accounts, and the settings the
// module reads. Seeding adds what is missing and never overwrites what users changed.
#include "kvhost/db/schema.h"

namespace kvhost::db {

const std::vector<RetiredRows>& Retired() {
  static const std::vector<RetiredRows> rows = {
      {"xt_menu", "progID=870101"},
      {"xt_objects", "progID=870101"},
  };
  return rows;
}

const std::vector<SeedRow>& SeedRows() {
  static const std::vector<SeedRow> rows = {
      // The menu: function key, title, group, order within the group.
      {"xt_menu", "progID, menuname, menugroup, sortno", "870001, '楼宇信息', '基础资料', 1"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870002, '物业信息', '基础资料', 2"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870003, '费用科目', '基础资料', 3"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870004, '业主信息', '基础资料', 4"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870005, '客源信息', '基础资料', 5"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870006, '房源登记', '基础资料', 6"},
      // The housing sheet's key is 640002: the housing list opens it under that key.
      {"xt_menu", "progID, menuname, menugroup, sortno", "640002, '房源信息', '房源管理', 1"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870102, '房源列表', '房源管理', 2"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870103, '房源信息(整套)', '房源管理', 3"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870201, '租房合同', '合同管理', 1"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870202, '租房合同(包干)', '合同管理', 2"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870203, '租房合同(简易)', '合同管理', 3"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870301, '租房收款单', '收款管理', 1"},
      {"xt_menu", "progID, menuname, menugroup, sortno",
       "870302, '租房收款单(包干)', '收款管理', 2"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870303, '租金收款单', '收款管理', 3"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870304, '押金收款单', '收款管理', 4"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870305, '费用收款单', '收款管理', 5"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870401, '租房合同列表', '报表', 1"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870402, '租房收款列表', '报表', 2"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870403, '合同收款情况', '报表', 3"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870404, '收款明细表', '报表', 4"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870405, '收款明细表(按费用)', '报表', 5"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870406, '合同到期预警', '报表', 6"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870407, '收款到期预警', '报表', 7"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870408, '租金到期提醒', '提醒', 1"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870409, '合同到期提醒', '提醒', 2"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870410, '押金收款查询', '查询', 1"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870411, '租房合同查询', '查询', 2"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870412, '费用收款查询', '查询', 3"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870413, '租金收款查询', '查询', 4"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870501, '合同终止', '工具', 1"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870502, '取消合同终止', '工具', 2"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870503, '房源失效', '工具', 3"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870504, '取消房源失效', '工具', 4"},
      {"xt_menu", "progID, menuname, menugroup, sortno", "870505, '导出租房合同', '工具', 5"},

      // The class behind each function key; the deposit receipt serves bill item 8711.
      {"xt_objects", "progID, classname, billitem", "870001, 'PDMLy', 0"},
      {"xt_objects", "progID, classname, billitem", "870002, 'PDMWy', 0"},
      {"xt_objects", "progID, classname, billitem", "870003, 'PDMFykm', 0"},
      {"xt_objects", "progID, classname, billitem", "870004, 'PDMYz', 0"},
      {"xt_objects", "progID, classname, billitem", "870005, 'PDMYz', 0"},
      {"xt_objects", "progID, classname, billitem", "870006, 'PDMFy', 0"},
      {"xt_objects", "progID, classname, billitem", "640002, 'FY_MX', 0"},
      {"xt_objects", "progID, classname, billitem", "870102, 'FY_List', 0"},
      {"xt_objects", "progID, classname, billitem", "870103, 'FY_MX_old', 0"},
      {"xt_objects", "progID, classname, billitem", "870201, 'zfHd_2', 0"},
      {"xt_objects", "progID, classname, billitem", "870202, 'zfhd_old', 0"},
      {"xt_objects", "progID, classname, billitem", "870203, 'ZfHd_S', 0"},
      {"xt_objects", "progID, classname, billitem", "870301, 'zfsk_2', 0"},
      {"xt_objects", "progID, classname, billitem", "870302, 'zfsk_old', 0"},
      {"xt_objects", "progID, classname, billitem", "870303, 'ZjSk_S', 0"},
      {"xt_objects", "progID, classname, billitem", "870304, 'YjSk_S', 8711"},
      {"xt_objects", "progID, classname, billitem", "870305, 'FySk_S', 0"},
      {"xt_objects", "progID, classname, billitem", "870401, 'RPT_HT_List', 0"},
      {"xt_objects", "progID, classname, billitem", "870402, 'RPT_SK_List', 0"},
      {"xt_objects", "progID, classname, billitem", "870403, 'RPT_HT_SKQK', 0"},
      {"xt_objects", "progID, classname, billitem", "870404, 'RPT_SK_QD', 0"},
      {"xt_objects", "progID, classname, billitem", "870405, 'RPT_SK_QD1', 0"},
      {"xt_objects", "progID, classname, billitem", "870406, 'RPT_YJ_HD_DQ', 0"},
      {"xt_objects", "progID, classname, billitem", "870407, 'RPT_YJ_HD_SK', 0"},
      {"xt_objects", "progID, classname, billitem", "870408, 'YjTx_Zj', 0"},
      {"xt_objects", "progID, classname, billitem", "870409, 'YjTx_Hd', 0"},
      {"xt_objects", "progID, classname, billitem", "870410, 'Cx_YjSk', 0"},
      {"xt_objects", "progID, classname, billitem", "870411, 'Cx_ZfHd', 0"},
      {"xt_objects", "progID, classname, billitem", "870412, 'Cx_FySk', 0"},
      {"xt_objects", "progID, classname, billitem", "870413, 'Cx_ZjSk', 0"},
      {"xt_objects", "progID, classname, billitem", "870501, 'cFwHd_finish', 0"},
      {"xt_objects", "progID, classname, billitem", "870502, 'cFwHd_unfinish', 0"},
      {"xt_objects", "progID, classname, billitem", "870503, 'cFwFy_finish', 0"},
      {"xt_objects", "progID, classname, billitem", "870504, 'cFwFy_unfinish', 0"},
      {"xt_objects", "progID, classname, billitem", "870505, 'ToWordZFHD', 0"},

      // Payment modes: months paid at a time, months of rent taken as deposit.
      {"pdmfzfs", "AutoID, 编号, 付租方式, 付租月份, 押金月份", "1, '01', '押一付一', 1, 1"},
      {"pdmfzfs", "AutoID, 编号, 付租方式, 付租月份, 押金月份", "2, '02', '押一付三', 3, 1"},
      {"pdmfzfs", "AutoID, 编号, 付租方式, 付租月份, 押金月份", "3, '03', '押二付三', 3, 2"},
      {"pdmfzfs", "AutoID, 编号, 付租方式, 付租月份, 押金月份", "4, '04', '半年付', 6, 1"},
      {"pdmfzfs", "AutoID, 编号, 付租方式, 付租月份, 押金月份", "5, '05', '年付', 12, 1"},

      // The data dictionary, keyed by list and code. The fee names start with 房租, so that
      // a new contract lists the rent first.
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'费用名称', '01', 1, '房租', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'费用名称', '02', 2, '水费', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'费用名称', '03', 3, '电费', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'费用名称', '04', 4, '煤气费', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'费用名称', '05', 5, '电视费', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'费用名称', '06', 6, '宽带费', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'费用名称', '07', 7, '物业管理费', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'楼宇类型', '01', 11, '高层住宅', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'楼宇类型', '02', 12, '多层住宅', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'楼宇类型', '03', 13, '别墅', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'楼宇类型', '04', 14, '写字楼', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'楼宇类型', '05', 15, '商铺', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'开发商', '01', 21, '城建开发公司', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'开发商', '02', 22, '华安置业', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'所属区域', '01', 31, '东城区', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'所属区域', '02', 32, '西城区', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'所属区域', '03', 33, '南城区', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'所属区域', '04', 34, '北城区', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'房屋朝向', '01', 41, '南', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'房屋朝向', '02', 42, '北', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'房屋朝向', '03', 43, '东', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'房屋朝向', '04', 44, '西', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'房屋朝向', '05', 45, '南北', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'户型', '01', 51, '一室一厅', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'户型', '02', 52, '两室一厅', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'户型', '03', 53, '两室两厅', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'户型', '04', 54, '三室一厅', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'户型', '05', 55, '三室两厅', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'房屋结构', '01', 61, '钢混', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'房屋结构', '02', 62, '砖混', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'房屋结构', '03', 63, '框架', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'物业用途', '01', 71, '住宅', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'物业用途', '02', 72, '商用', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'物业用途', '03', 73, '办公', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'装修程度', '01', 81, '毛坯', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'装修程度', '02', 82, '简装', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'装修程度', '03', 83, '精装', 1", 2},
      {"pdmsjzd", "类型, 代码, ID, 名称, 是否系统", "'装修程度', '04', 84, '豪装', 1", 2},

      // Sales staff and employees.
      {"pdmxsy", "AutoID, 代码, 名称, 类型ID", "1, '001', '李明', 1"},
      {"pdmxsy", "AutoID, 代码, 名称, 类型ID", "2, '002', '王芳', 1"},
      {"pdmxsy", "AutoID, 代码, 名称, 类型ID", "3, '003', '赵强', 1"},
      {"PDMgy", "雇员ID, 编号, 姓名", "1, '001', '李明'"},
      {"PDMgy", "雇员ID, 编号, 姓名", "2, '002', '王芳'"},
      {"PDMgy", "雇员ID, 编号, 姓名", "3, '003', '赵强'"},

      // The income account 5502 and its leaf accounts, which simple rent receipts book to.
      {"pdmkjkm", "科目ID, 科目编码, 科目名称, 是否明细", "1, '5502', '租赁收入', 0"},
      {"pdmkjkm", "科目ID, 科目编码, 科目名称, 是否明细", "2, '550201', '房租收入', 1"},
      {"pdmkjkm", "科目ID, 科目编码, 科目名称, 是否明细", "3, '550202', '物业管理费收入', 1"},
      {"pdmkjkm", "科目ID, 科目编码, 科目名称, 是否明细", "4, '550203', '水电费收入', 1"},
      {"pdmkjkm", "科目ID, 科目编码, 科目名称, 是否明细", "5, '550204', '其他租赁收入', 1"},

      // Days ahead of a due date at which the reminders show a row.
      {"xt_accinformation", "system_code, item_code, item_value, item_name",
       "'fw', 'yjds_zj', '7', '租金到期提前提醒天数'", 2},
      {"xt_accinformation", "system_code, item_code, item_value, item_name",
       "'fw', 'yjds_hd', '30', '合同到期提前提醒天数'", 2},

      // Document numbers stay as they are on saving an existing contract or receipt.
      {"xt_BillAttribute", "progID, attribute, text", "870201, 'onsavecode', '0'", 2},
      {"xt_BillAttribute", "progID, attribute, text", "870202, 'onsavecode', '0'", 2},
      {"xt_BillAttribute", "progID, attribute, text", "870301, 'onsavecode', '0'", 2},
      {"xt_BillAttribute", "progID, attribute, text", "870302, 'onsavecode', '0'", 2},
  };
  return rows;
}

}  // namespace kvhost::db
