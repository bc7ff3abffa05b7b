#include "mrvk/contract/zfhd_2/contract_fees.h"

#include "mrvk/frame/data_access.h"
#include "mrvk/frame/vb.h"

namespace mrvk {

namespace {

constexpr const char* kGroups =
    "行号|费用名称      |包月      |包月     |包月    |照实结算       |照实结算    |收款期间   "
    "|合同明细ID";
constexpr const char* kCaptions[] = {"行号", "费用名称", "单价/月",  "预收",      "后付",
                                     "度数", "单价/度",  "收款期间", "合同明细ID"};
constexpr const char* kTick = "√";

// The rows of a read of the grid; false with the database's text in `error` when it failed.
bool Read(IHostDatabase& db, const std::string& sql, RowsArray& rows, std::string& error) {
  auto rs = db.CreateCommand(sql, 1)->OpenRecordset();
  error = db.Error().Description();
  if (!error.empty()) return false;
  rows = rs->GetRows();
  return true;
}

}  // namespace

void ContractFees::AddTo(kvhost::ControlList& controls, const std::string& page) {
  kvGrid.Container = page;
  controls.Add(kvGrid);
}

void ContractFees::InitVsControl(const std::function<void(const std::string&)>& report) {
  try {
    kvGrid.SetFormatString(kGroups);
    kvGrid.SetFixedRows(kFixedRows);
    kvGrid.SetFixedCols(1);
    kvGrid.SetRows(kFixedRows);
    for (int c = 0; c < kvGrid.Cols(); ++c) kvGrid.TextMatrix(1, c) = kCaptions[c];
    // Equal neighbours in the caption rows merge; 行号, 费用名称, 收款期间 and the key merge
    // upward.
    kvGrid.MergeCells = 2;
    kvGrid.MergeRow(0) = true;
    kvGrid.MergeRow(1) = true;
    for (int c : {kColLine, kColName, kColPeriod, kColDetailID}) kvGrid.MergeCol(c) = true;
    kvGrid.AllowUserAdd = false;
    kvGrid.AllowUserDelete = false;
    for (int c : {kColLine, kColName, kColDetailID}) kvGrid.Column(c).ReadOnly = true;
    // 预收 and 后付 take a click, not typing.
    for (int c : {kColAdvance, kColArrears}) kvGrid.Column(c).ReadOnly = true;
    for (int c : {kColMonthly, kColReading, kColUnit, kColPeriod})
      kvGrid.Column(c).Kind = kvhost::GridColumnKind::Number;
    kvGrid.ColHidden(kColDetailID) = true;
    // The key of a stored term is nothing to read: printed as "***".
    kvGrid.Column(kColDetailID).Masked = true;
  } catch (const VbError& e) {
    report("加载VS时出错，原因：" + e.Description());
  }
}

void ContractFees::Clear() { kvGrid.SetRows(kvGrid.FixedRows()); }

std::string ContractFees::Load(IHostContext& context, int32_t contract_id) {
  RowsArray rows;
  std::string error;
  if (!Read(context.Database(),
            " SELECT 费用名称,是否包干,包干价,是否预收,度数,单价,收款期间,合同明细ID FROM "
            "fwhdfs WHERE 合同ID=" +
                std::to_string(contract_id) + " order by 序号",
            rows, error))
    return error;
  kvGrid.Redraw = false;
  const int fixed = kvGrid.FixedRows();
  kvGrid.SetRows(fixed + static_cast<int>(rows.rows));
  auto cell = [&](size_t row, size_t field) -> const Variant& {
    return rows.cells[row * rows.fields + field];
  };
  auto number = [](const Variant& v) { return NumberText(v.IsNull() ? 0 : v.ToDouble()); };
  for (size_t i = 0; i < rows.rows; ++i) {
    const int r = fixed + static_cast<int>(i);
    for (int c = 0; c < kvGrid.Cols(); ++c) kvGrid.TextMatrix(r, c).clear();
    kvGrid.TextMatrix(r, kColLine) = std::to_string(i + 1);
    kvGrid.TextMatrix(r, kColName) = cell(i, 0).IsNull() ? "" : cell(i, 0).ToString();
    if (!cell(i, 1).IsNull() && cell(i, 1).ToDouble() == 1) {
      kvGrid.TextMatrix(r, kColMonthly) = number(cell(i, 2));
      const bool advance = !cell(i, 3).IsNull() && cell(i, 3).ToDouble() == 1;
      kvGrid.TextMatrix(r, advance ? kColAdvance : kColArrears) = kTick;
    } else {
      kvGrid.TextMatrix(r, kColUnit) = number(cell(i, 5));
      kvGrid.TextMatrix(r, kColReading) = number(cell(i, 4));
    }
    kvGrid.TextMatrix(r, kColPeriod) = number(cell(i, 6));
    kvGrid.TextMatrix(r, kColDetailID) = number(cell(i, 7));
  }
  kvGrid.Redraw = true;
  removed_.clear();
  return "";
}

std::string ContractFees::FromDictionary(IHostContext& context, double rent) {
  RowsArray rows;
  std::string error;
  if (!Read(context.Database(), " SELECT 名称 from pdmsjzd where 类型='费用名称' order by 代码",
            rows, error))
    return error;
  for (int r = kvGrid.FixedRows(); r < kvGrid.Rows(); ++r) {
    const double id = Val(kvGrid.TextMatrix(r, kColDetailID));
    if (id > 0) removed_ += NumberText(id) + ",";
  }
  const int fixed = kvGrid.FixedRows();
  kvGrid.SetRows(fixed);
  kvGrid.SetRows(fixed + static_cast<int>(rows.rows));
  for (size_t i = 0; i < rows.rows; ++i) {
    const int r = fixed + static_cast<int>(i);
    const Variant& name = rows.cells[i * rows.fields];
    kvGrid.TextMatrix(r, kColLine) = std::to_string(i + 1);
    kvGrid.TextMatrix(r, kColName) = name.IsNull() ? "" : name.ToString();
    if (kvGrid.TextMatrix(r, kColName) == "房租")
      kvGrid.TextMatrix(r, kColMonthly) = NumberText(rent);
  }
  return "";
}

void ContractFees::ForgetStoredKeys() {
  for (int r = kvGrid.FixedRows(); r < kvGrid.Rows(); ++r)
    kvGrid.TextMatrix(r, kColDetailID).clear();
}

}  // namespace mrvk
