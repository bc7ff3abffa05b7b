// The fee terms of a contract on the contract sheet: the grid kvGrid, one row per fee the
// contract charges (fwhdfs), under two fixed rows of captions (row 0 the groups 包月 and
// 照实结算, row 1 the captions below them). A fixed fee shows its monthly price and "√" under
// 预收 or 后付; a metered fee its meter reading and unit price. The grid also keeps the list
// of stored fee terms that are to go with the next save.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "kvhost/lib/control_list.h"
#include "kvhost/lib/kv_grid.h"
#include "mrvk/frame/host_contract.h"

namespace mrvk {

class ContractFees {
 public:
  // The columns of kvGrid.
  static constexpr int kColLine = 0;      // 行号
  static constexpr int kColName = 1;      // 费用名称
  static constexpr int kColMonthly = 2;   // 包月: 单价/月
  static constexpr int kColAdvance = 3;   // 包月: 预收
  static constexpr int kColArrears = 4;   // 包月: 后付
  static constexpr int kColReading = 5;   // 照实结算: 度数
  static constexpr int kColUnit = 6;      // 照实结算: 单价/度
  static constexpr int kColPeriod = 7;    // 收款期间
  static constexpr int kColDetailID = 8;  // 合同明细ID, hidden
  static constexpr int kFixedRows = 2;

  // Adds the grid to the screen, inside the page `page`.
  void AddTo(kvhost::ControlList& controls, const std::string& page);
  // InitVsControl: the columns and the two caption rows; a failure is reported by `report`
  // with "加载VS时出错，原因：" and its text.
  void InitVsControl(const std::function<void(const std::string&)>& report);
  // The fee terms of the contract in their line order; the list of terms to remove is
  // emptied. A failed read gives the database's text and leaves the grid as it was.
  std::string Load(IHostContext& context, int32_t contract_id);
  // No fee rows (the caption rows stay).
  void Clear();
  // The grid takes edits while the sheet edits.
  void SetEditable(bool editing) { kvGrid.Editable = editing; }
  // The fee rows of a new lease: every stored row shown goes to the list of terms to remove,
  // then one row per fee name of the dictionary (类型 '费用名称', by 代码); the row "房租"
  // takes `rent` as its monthly price. A failed read gives the database's text and changes
  // nothing.
  std::string FromDictionary(IHostContext& context, double rent);
  // Rows below the caption rows.
  int FeeRows() const { return kvGrid.Rows() - kvGrid.FixedRows(); }
  // The stored fee terms to remove at the next save, each 合同明细ID followed by ",".
  const std::string& Removed() const { return removed_; }
  void ForgetRemoved() { removed_.clear(); }
  // A kept row belongs to no stored term any more (a new contract copied from the one shown).
  void ForgetStoredKeys();

  kvhost::KvGrid kvGrid{"kvGrid"};

 private:
  std::string removed_;
};

}  // namespace mrvk
