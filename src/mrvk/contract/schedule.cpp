#include "mrvk/contract/schedule.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string>
#include <string_view>

#include "mrvk/frame/data_access.h"
#include "mrvk/frame/vb.h"

namespace mrvk {
namespace {

// The command type of every statement: SQL text.
constexpr int kCommandText = 1;

// VB's run-time failures of this calculation besides division by zero.
constexpr int kInvalidProcedureCall = 5;  // DateAdd past the last date VB knows
constexpr int kOverflow = 6;              // a number beyond a Long where a Long is needed

// The month index (year * 12 + month - 1) of 9999-12, the last month a date can lie in.
constexpr int64_t kLastMonthIndex = 9999 * 12 + 11;
// No walk gives more periods than there are months up to kLastMonthIndex, plus the last one:
// the bound of what a vector of periods is reserved for.
constexpr int64_t kMostPeriods = 10000 * 12 + 1;

bool Failed(const IHostDatabase& db) { return !db.Error().Description().empty(); }

// One fee term of fwhdfs as the schedule needs it: the name as stored, the numbers through
// Val. The parts of its insert statements that are the same on every row are made once.
struct FeeTerm {
  double advance = 0;  // 是否预收
  double period = 0;   // 收款期间
  // ",<合同ID>,'<费用名称>',<是否包干>,<是否预收>,<收款期间>," : what stands before the dates
  std::string before_dates;
  // ",<度数>," : between the dates and the last-period flag
  std::string after_dates;
  // ",<序号>,0)" : the end of the statement
  std::string tail;
};

void AppendInteger(std::string& out, int64_t value) {
  char buf[24];
  const auto res = std::to_chars(buf, buf + sizeof buf, value);
  out.append(buf, res.ptr);
}

constexpr std::string_view kInsertHead =
    " insert into fwhdfs_sk (AutoID,合同ID,费用名称,是否包干,是否预收,收款期间,收款日期,"
    "起始日期,结束日期,上期度数,是否最后一期,序号,是否已收) values (";

// The whole months and period of a fee term whose stored period is above 0, checked as
// months \ period checks them: a period that rounds to 0 is a division by zero.
void RoundFeeTerm(double months, double period, int32_t& whole_months, int32_t& whole_period) {
  whole_months = WholeMonths(months);
  whole_period = WholeMonths(period);
  if (whole_period == 0) RaiseDivisionByZero();
}

}  // namespace

int32_t WholeMonths(double stored) {
  const double r = RoundHalfEven(stored);
  if (!(r >= std::numeric_limits<int32_t>::min() && r <= std::numeric_limits<int32_t>::max()))
    throw VbError(kOverflow, "Overflow");
  return static_cast<int32_t>(r);
}

int64_t PeriodCount(int32_t months, int32_t period) {
  if (period <= 0) return 0;
  const int64_t whole = IntDiv(months, period);
  return whole + (months % period != 0 ? 1 : 0);
}

PeriodWalker::PeriodWalker(Date start, Date end, int32_t months, int32_t period, bool advance)
    : start_(start),
      lease_end_(end),
      period_(period),
      advance_(advance),
      count_(PeriodCount(months, period)),
      in_range_(count_) {
  // Every period but the last ends by month arithmetic, and period i (from 1) reaches the
  // month index of the start plus i * period: beyond 9999-12 the walk cannot go.
  if (count_ > 1) {
    const int64_t first = int64_t{start.year()} * 12 + (start.month() - 1);
    in_range_ = first > kLastMonthIndex ? 0 : (kLastMonthIndex - first) / period_;
  }
}

bool PeriodWalker::Next(SchedulePeriod& p) {
  if (index_ > count_) return false;
  p.start = start_;
  if (index_ == count_) {
    p.end = lease_end_;
    p.last = true;
  } else {
    if (index_ > in_range_)
      throw VbError(kInvalidProcedureCall, "Invalid procedure call or argument");
    // The day after this period's end is the start of the next one.
    const Date next = AddMonths(start_, period_);
    p.end = AddDays(next, /*days=*/-1);
    p.last = false;
    start_ = next;
  }
  if (!advance_) {
    p.due = p.end;
  } else {
    p.due = index_ == 1 ? p.start : AddDays(p.start, /*days=*/-1);
  }
  ++index_;
  return true;
}

std::vector<SchedulePeriod> PlanFeeTerm(Date start, Date end, int32_t months, int32_t period,
                                        bool advance) {
  PeriodWalker walk(start, end, months, period, advance);
  std::vector<SchedulePeriod> periods;
  periods.reserve(static_cast<size_t>(std::min(walk.Count(), kMostPeriods)));
  SchedulePeriod p;
  while (walk.Next(p)) periods.push_back(p);
  return periods;
}

std::vector<SchedulePeriod> PlanStoredFeeTerm(Date start, Date end, double months, double period,
                                              bool advance) {
  if (!(period > 0)) return {};
  int32_t whole_months = 0;
  int32_t whole_period = 0;
  RoundFeeTerm(months, period, whole_months, whole_period);
  return PlanFeeTerm(start, end, whole_months, whole_period, advance);
}

bool BuildSchedule(IHostDatabase& db, IHostBillData& bill, int32_t contract_id, Date start,
                   Date end, double months) {
  ReleaseOnExit release(db);
  const std::string id = std::to_string(contract_id);

  db.CreateCommand(" DELETE FROM fwhdfs_sk where 合同ID=" + id, kCommandText)->Execute();
  if (Failed(db)) return false;

  // The fee terms are read in full, and the recordset dropped, before the first insert.
  std::vector<FeeTerm> terms;
  {
    const std::string select =
        " SELECT 费用名称,是否预收,是否包干,收款期间,度数,序号 FROM fwhdfs where 合同ID=" + id +
        " order by 序号 ";
    std::unique_ptr<Recordset> rs = db.CreateCommand(select, kCommandText)->OpenRecordset();
    if (Failed(db)) return false;
    for (; !rs->Eof(); rs->MoveNext()) {
      FeeTerm& t = terms.emplace_back();
      t.advance = rs->Fields("是否预收").Value.ToDouble();
      t.period = rs->Fields("收款期间").Value.ToDouble();
      // Appended piece by piece (GCC 12 warns falsely on "," + std::string at -O3).
      t.before_dates.append(",").append(id).append(",");
      t.before_dates.append(SqlQuoted(rs->Fields("费用名称").Value.ToString())).append(",");
      t.before_dates.append(NumberText(rs->Fields("是否包干").Value.ToDouble())).append(",");
      t.before_dates.append(NumberText(t.advance)).append(",");
      t.before_dates.append(NumberText(t.period)).append(",");
      t.after_dates.append(",").append(NumberText(rs->Fields("度数").Value.ToDouble())).append(",");
      t.tail.append(",").append(NumberText(rs->Fields("序号").Value.ToDouble())).append(",0)");
    }
  }

  std::string sql;
  for (const FeeTerm& term : terms) {
    if (!(term.period > 0)) continue;  // no period, no schedule
    int32_t whole_months = 0;
    int32_t whole_period = 0;
    RoundFeeTerm(months, term.period, whole_months, whole_period);
    PeriodWalker walk(start, end, whole_months, whole_period, /*advance=*/term.advance == 1);
    SchedulePeriod p;
    while (walk.Next(p)) {
      int32_t key = 0;
      if (!bill.NewID(/*table=*/"fwhdfs_sk", /*key_column=*/"AutoID", key).empty()) return false;
      sql.clear();
      sql += kInsertHead;
      AppendInteger(sql, key);
      sql += term.before_dates;
      // The schedule's dates stand in single quotes in both dialects.
      AppendDateLiteral(sql, p.due, /*jet=*/false);
      sql += ',';
      AppendDateLiteral(sql, p.start, /*jet=*/false);
      sql += ',';
      AppendDateLiteral(sql, p.end, /*jet=*/false);
      sql += term.after_dates;
      sql += p.last ? '1' : '0';
      sql += term.tail;
      db.CreateCommand(sql, kCommandText)->Execute();
      if (Failed(db)) return false;
    }
  }
  return true;
}

}  // namespace mrvk
