// The periods of one fee term: counts, dates, due dates and the rounding of the stored
// numbers, without a database.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "mrvk/contract/schedule.h"
#include "mrvk/frame/vb.h"

namespace mrvk {
namespace {

Date D(const char* text) {
  auto d = ParseDate(text);
  EXPECT_TRUE(d) << text;
  return d.value_or(Date{});
}

// The periods as the schedule's rows show them: "start..end@due " each.
std::string Rows(const std::vector<SchedulePeriod>& periods) {
  std::string out;
  for (const auto& p : periods)
    out += p.start.ToText() + ".." + p.end.ToText() + "@" + p.due.ToText() + " ";
  return out;
}

// The number of the run-time failure `f` raises; 0 when it raises none.
int Failure(const std::function<void()>& f) {
  try {
    f();
  } catch (const VbError& err) {
    return err.Number();
  }
  return 0;
}

struct Example {
  const char* what;
  const char* start;
  const char* end;
  int32_t months;
  int32_t period;
  bool advance;
  std::string want;
};

TEST(PlanFeeTerm, WorkedExamples) {
  const Example examples[] = {
      {"10-month lease, period 3 in advance: 10 \\ 3 leaves a remainder, so 4 rows", "2012-03-15",
       "2013-01-14", 10, 3, /*advance=*/true,
       "2012-03-15..2012-06-14@2012-03-15 "
       "2012-06-15..2012-09-14@2012-06-14 "
       "2012-09-15..2012-12-14@2012-09-14 "
       "2012-12-15..2013-01-14@2012-12-14 "},
      {"the same lease collected in arrears (后付), period 5", "2012-03-15", "2013-01-14", 10, 5,
       /*advance=*/false,
       "2012-03-15..2012-08-14@2012-08-14 "
       "2012-08-15..2013-01-14@2013-01-14 "},
      {"end-of-month drift in a leap year: never back to the 31st", "2012-01-31", "2012-04-29", 3,
       1, /*advance=*/false,
       "2012-01-31..2012-02-28@2012-02-28 "
       "2012-02-29..2012-03-28@2012-03-28 "
       "2012-03-29..2012-04-29@2012-04-29 "},
      {"8-month lease, period 3 in advance: the last row is shorter", "2012-01-01", "2012-08-31", 8,
       3, /*advance=*/true,
       "2012-01-01..2012-03-31@2012-01-01 "
       "2012-04-01..2012-06-30@2012-03-31 "
       "2012-07-01..2012-08-31@2012-06-30 "},
      {"period longer than the lease: one row over the whole lease", "2012-03-15", "2012-06-14", 3,
       6, /*advance=*/true, "2012-03-15..2012-06-14@2012-03-15 "},
      {"end date edited later than the months: the count follows the months, the last row "
       "stretches to the end date",
       "2012-03-15", "2013-03-31", 10, 3, /*advance=*/true,
       "2012-03-15..2012-06-14@2012-03-15 "
       "2012-06-15..2012-09-14@2012-06-14 "
       "2012-09-15..2012-12-14@2012-09-14 "
       "2012-12-15..2013-03-31@2012-12-14 "},
      {"end date edited earlier than the months: the last row ends on it even before it "
       "starts",
       "2012-03-15", "2012-10-31", 10, 3, /*advance=*/false,
       "2012-03-15..2012-06-14@2012-06-14 "
       "2012-06-15..2012-09-14@2012-09-14 "
       "2012-09-15..2012-12-14@2012-12-14 "
       "2012-12-15..2012-10-31@2012-10-31 "},
      {"leap-day start over several years: the 28th once cut short stays, even in 2016",
       "2012-02-29", "2016-02-28", 48, 12, /*advance=*/true,
       "2012-02-29..2013-02-27@2012-02-29 "
       "2013-02-28..2014-02-27@2013-02-27 "
       "2014-02-28..2015-02-27@2014-02-27 "
       "2015-02-28..2016-02-28@2015-02-27 "},
      {"leap-day start, monthly: the 29th holds where February is past", "2012-02-29", "2012-05-28",
       3, 1, /*advance=*/true,
       "2012-02-29..2012-03-28@2012-02-29 "
       "2012-03-29..2012-04-28@2012-03-28 "
       "2012-04-29..2012-05-28@2012-04-28 "},
      {"a lease of 0 months has no rows", "2012-03-15", "2012-03-15", 0, 1, /*advance=*/true, ""},
      {"a period of 0 has no rows", "2012-03-15", "2013-01-14", 10, 0, /*advance=*/true, ""},
  };
  for (const Example& e : examples) {
    EXPECT_EQ(Rows(PlanFeeTerm(D(e.start), D(e.end), e.months, e.period, e.advance)), e.want)
        << e.what;
  }
}

// What must hold for every lease: the periods tile the lease without gap or overlap, each
// spans exactly `period` calendar months, the day of the month never grows, the count is the
// months divided by the period rounded up, and the due dates follow the side of collection.
TEST(PlanFeeTerm, PeriodsTileEveryLease) {
  const int32_t months_list[] = {1, 2, 3, 7, 10, 12, 13, 24, 25};
  const int32_t periods_list[] = {1, 2, 3, 5, 6, 12, 13};
  const Date first = D("2012-01-01");
  for (int32_t day = 0; day < 366; ++day) {
    const Date start = Date::FromSerial(first.serial() + day);
    for (int32_t months : months_list) {
      // Any end past the last period's start: only the last period ends on it.
      const Date end = Date::FromSerial(start.serial() + 31 * months - 1);
      for (int32_t period : periods_list) {
        for (bool advance : {true, false}) {
          const auto ps = PlanFeeTerm(start, end, months, period, advance);
          const std::string ctx =
              start.ToText() + " m=" + std::to_string(months) + " t=" + std::to_string(period);
          ASSERT_EQ(static_cast<int32_t>(ps.size()), (months + period - 1) / period) << ctx;
          EXPECT_EQ(ps.front().start, start) << ctx;
          EXPECT_EQ(ps.back().end, end) << ctx;
          for (size_t i = 0; i < ps.size(); ++i) {
            const SchedulePeriod& p = ps[i];
            EXPECT_EQ(p.last, i + 1 == ps.size()) << ctx;
            EXPECT_LE(p.start, p.end) << ctx;
            if (!advance)
              EXPECT_EQ(p.due, p.end) << ctx;
            else if (i == 0)
              EXPECT_EQ(p.due, p.start) << ctx;
            else
              EXPECT_EQ(p.due, ps[i - 1].end) << ctx;
            if (i + 1 < ps.size()) {
              const Date next = ps[i + 1].start;
              EXPECT_EQ(next.serial(), p.end.serial() + 1) << ctx;
              EXPECT_EQ((next.year() - p.start.year()) * 12 + next.month() - p.start.month(),
                        period)
                  << ctx;
              EXPECT_LE(next.day(), p.start.day()) << ctx;
            }
          }
        }
      }
    }
  }
}

TEST(PlanStoredFeeTerm, RoundsMonthsAndPeriodHalfToEven) {
  struct Case {
    double months, period;
    size_t want_rows;
    const char* want_first_end;
  } cases[] = {
      {2.5, 1, 2, "2012-04-14"},                                 // 2.5 months -> 2
      {3.5, 1, 4, "2012-04-14"},                                 // 3.5 months -> 4
      {10, 2.5, 5, "2012-05-14"},                                // period 2.5 -> 2
      {10, 3.5, 3, "2012-07-14"},                                // period 3.5 -> 4
      {10, 0.6, 10, "2012-04-14"}, {9.6, 2.9, 4, "2012-06-14"},  // 10 \ 3, remainder
  };
  for (const Case& c : cases) {
    const auto ps = PlanStoredFeeTerm(D("2012-03-15"), D("2013-01-14"), c.months, c.period,
                                      /*advance=*/true);
    ASSERT_EQ(ps.size(), c.want_rows) << c.months << " / " << c.period;
    EXPECT_EQ(ps.front().end.ToText(), c.want_first_end) << c.months << " / " << c.period;
    EXPECT_EQ(ps.back().end.ToText(), "2013-01-14");
  }
  EXPECT_EQ(WholeMonths(2.5), 2);
  EXPECT_EQ(WholeMonths(3.5), 4);
  EXPECT_EQ(WholeMonths(-2.5), -2);
}

TEST(PlanStoredFeeTerm, PeriodOfZeroOrLessHasNoScheduleButOneRoundingToZeroFails) {
  const Date s = D("2012-03-15"), e = D("2013-01-14");
  for (double none : {0.0, -0.4, -1.0, -12.0})
    EXPECT_TRUE(PlanStoredFeeTerm(s, e, /*months=*/10, none, /*advance=*/true).empty()) << none;
  for (double zero : {0.4, 0.5, 0.1}) {
    EXPECT_EQ(Failure([&] { PlanStoredFeeTerm(s, e, /*months=*/10, zero, /*advance=*/true); }),
              vb_error::kDivisionByZero)
        << zero;
  }
}

TEST(PlanStoredFeeTerm, NumbersAndDatesBeyondVbRangesAreRunTimeFailures) {
  const Date s = D("2012-03-15");
  EXPECT_EQ(
      Failure([&] { PlanStoredFeeTerm(s, s, /*months=*/1e12, /*period=*/1, /*advance=*/true); }),
      6);
  EXPECT_THROW(PlanStoredFeeTerm(s, s, /*months=*/10, /*period=*/3e9, /*advance=*/true), VbError);

  // A walk stops with a failure at the first period that would end after 9999-12-31, having
  // given the ones before it; one that ends exactly there is fine.
  PeriodWalker walk(D("9995-06-15"), D("9999-12-31"), /*months=*/120, /*period=*/12,
                    /*advance=*/true);
  SchedulePeriod p;
  int given = 0;
  EXPECT_EQ(Failure([&] {
              while (walk.Next(p)) ++given;
            }),
            5);
  EXPECT_EQ(given, 4);
  EXPECT_EQ(p.end.ToText(), "9999-06-14");
  const auto to_the_end =
      PlanFeeTerm(D("9999-01-01"), D("9999-12-31"), /*months=*/12, /*period=*/1, /*advance=*/true);
  ASSERT_EQ(to_the_end.size(), 12u);
  EXPECT_EQ(to_the_end[10].end.ToText(), "9999-11-30");
}

}  // namespace
}  // namespace mrvk
