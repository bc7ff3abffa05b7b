// The collection schedule: for each fee term of an approved contract, the periods it is
// collected in (which days each covers and when it falls due), and the rows of fwhdfs_sk
// that hold them. The calculation needs no database; BuildSchedule writes its result.
#pragma once

#include <cstdint>
#include <vector>

#include "mrvk/frame/host_contract.h"
#include "mrvk/frame/variant.h"

namespace mrvk {

// One collection period of a fee term: one row of fwhdfs_sk without its copied columns.
struct SchedulePeriod {
  Date start;         // 起始日期: the first day the period covers
  Date end;           // 结束日期: the last day it covers
  Date due;           // 收款日期
  bool last = false;  // 是否最后一期

  friend bool operator==(const SchedulePeriod&, const SchedulePeriod&) = default;
};

// The whole number of months of a stored lease length (租赁期) or period (收款期间): half to
// even, as VB's integer division reads its operands. A value outside the 32-bit range is VB's
// "Overflow" (VbError 6).
int32_t WholeMonths(double stored);

// The number of periods of a fee term from whole numbers: months \ period, plus one when the
// division leaves a remainder; 0 for a period of 0 or less. It follows the months, never the
// dates.
int64_t PeriodCount(int32_t months, int32_t period);

// Walks the periods of one fee term in order without allocating. Period 1 starts on the
// lease's first day; every later one starts the day after the end before it; a period ends
// the day before `period` months after its start (the day of the month kept, clamped to the
// end of a shorter month, so a day cut short stays short); the last one ends on the lease's
// last day whatever length that gives it. Due: in advance, the first day of period 1 and the
// day before the start of every later one; in arrears, the last day of the period.
class PeriodWalker {
 public:
  PeriodWalker(Date start, Date end, int32_t months, int32_t period, bool advance);

  int64_t Count() const { return count_; }
  // Writes the next period into p; false once all have been given. A period that would end
  // after 9999-12-31 is VB's date overflow of DateAdd ("Invalid procedure call or argument",
  // VbError 5), raised when the walk reaches it.
  bool Next(SchedulePeriod& p);

 private:
  Date start_;  // of the next period
  Date lease_end_;
  int32_t period_;
  bool advance_;
  int64_t count_;
  int64_t index_ = 1;  // 1-based number of the next period
  int64_t in_range_;   // periods before the last one that can end by 9999-12-31
};

// All periods of one fee term from whole numbers (see PeriodWalker).
std::vector<SchedulePeriod> PlanFeeTerm(Date start, Date end, int32_t months, int32_t period,
                                        bool advance);

// All periods of one fee term from the numbers as stored: a period of 0 or less gives none;
// otherwise both are rounded (WholeMonths), and a period above 0 that rounds to 0 is VB's
// "Division by zero" (VbError 11), as months \ period raises it.
std::vector<SchedulePeriod> PlanStoredFeeTerm(Date start, Date end, double months, double period,
                                              bool advance);

// Replaces the schedule of contract_id in fwhdfs_sk: deletes its rows, reads the contract's
// fee terms from fwhdfs by 序号, and inserts one row per fee term and period with keys from
// bill.NewID. start and end are the lease's first and last day, months its length (租赁期)
// as the sheet holds it. True when every statement ran. After every statement the database's
// error text is read: a non-empty text, or a NewID failure, ends with false and leaves what
// has run. A period above 0 that rounds to 0 raises VB's "Division by zero" for the caller's
// handler of last resort, after the rows of the fee terms before it have been written.
bool BuildSchedule(IHostDatabase& db, IHostBillData& bill, int32_t contract_id, Date start,
                   Date end, double months);

}  // namespace mrvk
