// The contract sheet's save and what the clerk fills in besides the plain fields: the checks
// before a save, the tenant written or created from what was typed, the contract's header,
// unit row and fee terms in one bracket; the advance/arrears marks and the periods of the fee
// grid; the lease's end from its months and its months from its dates.
#include <cmath>

#include "mrvk/contract/zfhd_2/zfhd_2.h"
#include "mrvk/frame/data_access.h"
#include "mrvk/frame/transaction.h"
#include "mrvk/frame/vb.h"

namespace mrvk {
namespace {

constexpr const char* kTick = "√";

// The date a date field holds, or the date that stands for none.
Date DateOrNone(const std::string& text) { return ParseDate(Trim(text)).value_or(NoDate()); }

// A typed number for a whole-number column, rounded as the database's own conversion rounds,
// so both engines store the same value.
std::string WholeNumber(const std::string& text) { return NumberText(RoundHalfEven(Val(text))); }

// A field's Value as a bare number.
std::string ValueNumber(const Variant& v) {
  return NumberText(v.IsNumeric() ? v.ToDouble() : Val(v.ToString()));
}

}  // namespace

bool zfHd_2::IsCanSave() {
  try {
    // Each field with input says by itself why it refuses what it holds; the grid takes only
    // what fits a column as it is typed.
    for (kvhost::Control* c : controls_) {
      if (auto* field = dynamic_cast<kvhost::KvTxt*>(c)) {
        if (field->IsActive() && !field->IsValid()) return false;
      }
    }
    if (Trim(kvTxt[4].Text).empty()) {
      ErrMessage("客户信息为空，不能保存！", err_level::kValidation, kApplicationTitle);
      return false;
    }
    if (Val(kvTxt[18].Value.ToString()) <= 0) {
      ErrMessage("房源信息为空，不能保存！", err_level::kValidation, kApplicationTitle);
      return false;
    }
    return true;
  } catch (const VbError& e) {
    ErrMessage("IsCanSave::" + e.Description(), err_level::kValidation, kApplicationTitle);
    return false;
  }
}

bool zfHd_2::SavePdmStep(const std::string& sql) {
  IHostDatabase& db = context_->Database();
  db.CreateCommand(sql, 1)->Execute();
  if (db.Error().Description().empty()) return true;
  MsgBox("SavePDM::" + db.Error().Description(), msgbox::kCritical, kApplicationTitle);
  return false;
}

bool zfHd_2::SavePDM() {
  try {
    IHostDatabase& db = context_->Database();
    const std::string name = kvTxt[4].Text;
    const std::string phone = kvTxt[28].Text;
    const std::string sex = optXB[3].Value ? "男" : "女";
    // A client is the pair of name and telephone.
    auto id = static_cast<int32_t>(
        Val(ScalarText(db, " SELECT 业主ID FROM fwyz where 业主名称=" + SqlQuoted(name) +
                               " and 电话=" + SqlQuoted(phone) + " and 类型=1")));
    if (!db.Error().Description().empty()) {
      MsgBox("SavePDM::" + db.Error().Description(), msgbox::kCritical, kApplicationTitle);
      return false;
    }
    if (id > 0) {
      if (!SavePdmStep(" update fwyz    set  性别=" + SqlQuoted(sex) +
                       ",         身份证号=" + SqlQuoted(kvTxt[31].Text) + ",         工作单位=" +
                       SqlQuoted(kvTxt[29].Text) + ",         籍贯=" + SqlQuoted(kvTxt[30].Text) +
                       ",         备注=" + SqlQuoted(kvTxt[32].Text) +
                       "   where 业主ID=" + std::to_string(id)))
        return false;
    } else {
      if (const std::string why = bill_->NewID("fwyz", "业主ID", id); !why.empty()) {
        MsgBox("SavePDM::" + why, msgbox::kCritical, kApplicationTitle);
        return false;
      }
      if (!SavePdmStep(
              " INSERT INTO fwyz (业主ID,业主编号,业主名称,电话,性别,身份证号,工作单位,籍贯,备注,"
              "类型) values (" +
              std::to_string(id) + "," + SqlQuoted(std::to_string(id)) + "," + SqlQuoted(name) +
              "," + SqlQuoted(phone) + "," + SqlQuoted(sex) + "," + SqlQuoted(kvTxt[31].Text) +
              "," + SqlQuoted(kvTxt[29].Text) + "," + SqlQuoted(kvTxt[30].Text) + "," +
              SqlQuoted(kvTxt[32].Text) + ",1)"))
        return false;
    }
    kvTxt[4].Value = Variant(id);
    kvTxt[4].Text = name;
    return true;
  } catch (const VbError& e) {
    MsgBox("SavePDM::" + e.Description(), msgbox::kCritical, kApplicationTitle);
    return false;
  }
}

bool zfHd_2::Run(const std::string& sql) {
  IHostDatabase& db = context_->Database();
  db.CreateCommand(sql, 1)->Execute();
  last_error_ = db.Error().Description();
  return last_error_.empty();
}

std::string zfHd_2::HeaderStatement(int32_t id, bool is_new, const std::string& number) const {
  const IHostDatabase& db = context_->Database();
  const kvhost::KvGrid& grid = fees.kvGrid;
  const std::string rent =
      fees.FeeRows() > 0 ? SqlNumber(grid.TextMatrix(grid.FixedRows(), ContractFees::kColMonthly))
                         : "0";
  const auto text = [this](int index) { return SqlQuoted(kvTxt[index].Text); };
  const auto number_of = [this](int index) { return SqlNumber(kvTxt[index].Text); };
  const auto date = [this, &db](int index) {
    return DateLiteral(db, DateOrNone(kvTxt[index].Text));
  };
  // The columns in the order of the statement, with their values.
  const std::pair<const char*, std::string> values[] = {
      {"合同编号", SqlQuoted(number)},
      {"合同日期", date(5)},
      {"业务员ID", ValueNumber(kvTxt[27].Value)},
      {"预收押金", number_of(34)},
      {"中介费", number_of(35)},
      {"客户ID", ValueNumber(kvTxt[4].Value)},
      {"租住人数", WholeNumber(kvTxt[33].Text)},
      {"押金备注1", text(37)},
      {"押金备注2", text(42)},
      {"押金备注3", text(43)},
      {"起租日期", date(8)},
      {"止租日期", date(1)},
      {"租赁期", WholeNumber(kvTxt[0].Text)},
      {"收款期间", WholeNumber(kvTxt[6].Text)},
      {"月租金", rent},
      {"付租方式", text(44)},
      {"分租房间", text(45)},
      {"面积", number_of(22)},
      {"备注", SqlQuoted(txt.Text)},
      {"制单人", text(12)},
      {"制单日期", date(11)},
  };
  std::string sql;
  if (!is_new) {
    sql = " UPDATE fwhd  SET ";
    bool first = true;
    for (const auto& [column, value] : values) {
      sql += first ? "" : ",      ";
      sql += std::string(column) + "=" + value;
      first = false;
    }
    return sql + " WHERE 合同ID=" + std::to_string(id);
  }
  sql =
      " Insert into fwhd(合同ID,progid,smark,系统,状态,合同编号,合同日期,业务员ID,预收押金,中介费,"
      "客户ID,租住人数,押金备注1,押金备注2,押金备注3,起租日期,止租日期,租赁期,收款期间,月租金,"
      "付租方式,分租房间,面积,备注,制单人,制单日期) VALUES (" +
      std::to_string(id) + "," + std::to_string(prog_id_) + ",'01','填单','未生效'";
  for (const auto& [column, value] : values) sql += "," + value;
  return sql + ")";
}

bool zfHd_2::SaveFeeTerms(int32_t contract_id) {
  const kvhost::KvGrid& g = fees.kvGrid;
  for (int r = g.FixedRows(); r < g.Rows(); ++r) {
    const std::string& name = g.TextMatrix(r, ContractFees::kColName);
    if (name.empty()) continue;
    // A monthly price makes the fee fixed, collected in advance unless 后付 is ticked; a
    // metered fee is settled afterwards.
    const bool fixed = Val(g.TextMatrix(r, ContractFees::kColMonthly)) > 0;
    const bool advance = fixed && g.TextMatrix(r, ContractFees::kColArrears).empty();
    const std::string price = SqlNumber(g.TextMatrix(r, ContractFees::kColMonthly));
    const std::string reading = SqlNumber(g.TextMatrix(r, ContractFees::kColReading));
    const std::string unit = SqlNumber(g.TextMatrix(r, ContractFees::kColUnit));
    const std::string period = SqlNumber(g.TextMatrix(r, ContractFees::kColPeriod));
    const std::string line = WholeNumber(g.TextMatrix(r, ContractFees::kColLine));
    const double key = Val(g.TextMatrix(r, ContractFees::kColDetailID));
    std::string sql;
    if (key <= 0) {
      int32_t id = 0;
      if (std::string why = bill_->NewID("fwhdfs", "合同明细ID", id); !why.empty()) {
        last_error_ = std::move(why);
        return false;
      }
      sql =
          " INSERT INTO fwhdfs (合同明细ID,合同ID,费用名称,是否包干,包干价,是否预收,度数,单价,"
          "收款期间,序号 ) VALUES (" +
          std::to_string(id) + "," + std::to_string(contract_id) + "," + SqlQuoted(name) + "," +
          (fixed ? "1" : "0") + "," + price + "," + (advance ? "1" : "0") + "," + reading + "," +
          unit + "," + period + "," + line + ")";
    } else {
      sql = " UPDATE fwhdfs   SET 费用名称=" + SqlQuoted(name) +
            ",       是否包干=" + (fixed ? "1" : "0") + ",       包干价=" + price +
            ",       是否预收=" + (advance ? "1" : "0") + ",       度数=" + reading +
            ",       单价=" + unit + ",       收款期间=" + period + ",       序号=" + line +
            " WHERE 合同明细ID=" + NumberText(key);
    }
    if (!Run(sql)) return false;
  }
  return true;
}

bool zfHd_2::FileSave() {
  IHostDatabase& db = context_->Database();
  ReleaseOnExit release(db);
  try {
    // 1-2: the checks and the number, before the bracket.
    if (!IsCanSave()) return false;
    const bool is_new = current_id_ < 1;
    std::string number = Trim(kvTxt[2].Text);
    if (is_new) {
      if (!context_->BillCode(prog_id_, context_->Environment().LoginDate(), number,
                              /*preview=*/false))
        return false;
      kvTxt[2].Text = number;
    } else if (RevisesOnSave(db, prog_id_)) {
      // The revised number shows once it is saved: a refused save revises nothing.
      number = ReviseBillNumber(number);
    }
    if (number.empty()) {
      MsgBox("合同编号为空，不能保存  ", msgbox::kInformation, kApplicationTitle);
      tools_->SetFocus(kvTxt[2]);
      return false;
    }
    {
      const std::string prog = std::to_string(prog_id_);
      auto rs =
          db.CreateCommand(is_new ? " select  * from  fwhd where  合同编号 =" + SqlQuoted(number) +
                                        " and progid =" + prog
                                  : " Select  * From fwhd Where 合同ID <> " +
                                        std::to_string(current_id_) + " and progid =" + prog +
                                        " and 合同编号=" + SqlQuoted(number),
                           1)
              ->OpenRecordset();
      if (const std::string error = db.Error().Description(); !error.empty()) {
        last_error_ = error;
        ErrMessage(error, err_level::kDatabase, kApplicationTitle);
        return false;
      }
      if (!rs->Eof()) {
        MsgBox("合同编号重复,请检查!", msgbox::kInformation, is_new ? kApplicationTitle : "提示：");
        tools_->SetFocus(kvTxt[2]);
        return false;
      }
    }
    // 3-4: the bracket, and the tenant.
    Transaction tx(db);
    const auto fail = [&](const std::string& why) {
      last_error_ = why;
      tx.Rollback();
      ErrMessage(why, err_level::kDatabase, kApplicationTitle);
      return false;
    };
    if (!tx.Open()) return fail(db.Error().Description());
    if (RecordChanged()) return false;
    if (!SavePDM()) return false;
    // 5-6: the header and the unit row.
    int32_t id = current_id_;
    if (is_new) {
      if (const std::string why = bill_->NewID("fwhd", "合同ID", id); !why.empty())
        return fail(why);
    }
    if (!Run(HeaderStatement(id, is_new, number))) return fail(last_error_);
    const std::string unit = ValueNumber(kvTxt[18].Value);
    if (!is_new) {
      if (!Run(" update fwhdmx set 房源ID=" + unit + ",     基础设施=" + SqlQuoted(kvTxt[24].Text) +
               ",     配套设施=" + SqlQuoted(kvTxt[25].Text) +
               " where 合同ID=" + std::to_string(id)))
        return fail(last_error_);
    } else {
      int32_t detail = 0;
      if (const std::string why = bill_->NewID("fwhdmx", "合同明细ID", detail); !why.empty())
        return fail(why);
      if (!Run(" Insert into fwhdmx(合同明细ID,合同ID,基础设施,配套设施,房源ID) values (" +
               std::to_string(detail) + "," + std::to_string(id) + "," + SqlQuoted(kvTxt[24].Text) +
               "," + SqlQuoted(kvTxt[25].Text) + "," + unit + ")"))
        return fail(last_error_);
    }
    // 7-8: the fee terms removed, then those the grid shows. The list of removed terms is
    // kept until the commit, so that a save rolled back removes them the next time.
    if (const std::string& removed = fees.Removed(); !removed.empty()) {
      if (!Run("Delete from fwhdfs Where 合同明细ID in(" + removed.substr(0, removed.size() - 1) +
               ")"))
        return fail(last_error_);
    }
    if (!SaveFeeTerms(id)) return fail(last_error_);
    // 9-11: commit, the new ID, the contract shown again as stored.
    if (!tx.Commit()) {
      last_error_ = db.Error().Description();
      ErrMessage(last_error_, err_level::kDatabase, kApplicationTitle);
      return false;
    }
    fees.ForgetRemoved();
    if (is_new) {
      current_id_ = id;
      if (document_id_ > 0 && document_id_ != id) {
        document_id_ = id;
        BuildSelection();
      }
    }
    last_error_.clear();
    FindData("合同ID=" + std::to_string(id), /*keep_on_miss=*/false);
    SetControlStatus(false);
    dirty_ = false;
    if (!last_error_.empty()) return false;  // saved, but not shown again
    Message("保存单据成功！");
    return true;
  } catch (const VbError& e) {
    ErrMessage("保存时出错：" + e.Description(), err_level::kDatabase, kApplicationTitle);
    return false;
  }
}

void zfHd_2::InitEditHandlers() {
  kvTxt[8].LostFocus = [this] { LeaseDatesLeft(); };
  kvTxt[1].LostFocus = [this] { LeaseDatesLeft(); };
  kvTxt[0].LostFocus = [this] { LeaseMonthsLeft(); };
  fees.kvGrid.CellClick = [this](int row, int col) { FeeCellClicked(row, col); };
  fees.kvGrid.AfterEdit = [this](int row, int col) { FeeCellEdited(row, col); };
}

// 租期 in calendar months between the two dates, days ignored.
void zfHd_2::LeaseDatesLeft() {
  if (!editing_) return;
  const auto start = ParseDate(Trim(kvTxt[8].Text));
  const auto end = ParseDate(Trim(kvTxt[1].Text));
  if (!start || !end) return;
  kvTxt[0].Text =
      std::to_string((end->year() - start->year()) * 12 + end->month() - start->month());
}

// 止租日期: 起租日期 plus the months, less one day.
void zfHd_2::LeaseMonthsLeft() {
  if (!editing_ || Trim(kvTxt[0].Text).empty()) return;
  const auto start = ParseDate(Trim(kvTxt[8].Text));
  if (!start) return;
  const double months = std::trunc(Val(kvTxt[0].Text));
  // An end beyond the calendar is left as it was.
  const double total = start->year() * 12.0 + (start->month() - 1) + months;
  if (total < 12 || total >= 10000 * 12.0) return;
  kvTxt[1].Text = AddDays(AddMonths(*start, static_cast<int>(months)), -1).ToText();
}

void zfHd_2::FeeCellClicked(int row, int col) {
  kvhost::KvGrid& g = fees.kvGrid;
  if (!g.Editable || row < g.FixedRows() || row >= g.Rows()) return;
  if (g.TextMatrix(row, ContractFees::kColName).empty()) return;
  if (col != ContractFees::kColAdvance && col != ContractFees::kColArrears) return;
  const int other =
      col == ContractFees::kColAdvance ? ContractFees::kColArrears : ContractFees::kColAdvance;
  g.TextMatrix(row, col) = kTick;
  g.TextMatrix(row, other).clear();
  dirty_ = true;
}

// A fee with a price takes the contract's payment period; one without loses it.
void zfHd_2::FeeCellEdited(int row, int col) {
  (void)col;
  kvhost::KvGrid& g = fees.kvGrid;
  if (row < g.FixedRows() || row >= g.Rows()) return;
  dirty_ = true;
  std::string& period = g.TextMatrix(row, ContractFees::kColPeriod);
  const bool priced = !g.TextMatrix(row, ContractFees::kColMonthly).empty() ||
                      !g.TextMatrix(row, ContractFees::kColReading).empty() ||
                      !g.TextMatrix(row, ContractFees::kColUnit).empty();
  if (Val(period) == 0 && priced)
    period = NumberText(Val(kvTxt[6].Text));
  else if (Val(period) != 0 && !priced)
    period.clear();
}

}  // namespace mrvk
