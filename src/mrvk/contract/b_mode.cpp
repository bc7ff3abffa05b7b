#include "mrvk/contract/b_mode.h"

#include <algorithm>
#include <cmath>

#include "mrvk/frame/vb.h"

namespace mrvk {

namespace {

// The first day of the month `months` after (or before) the month of year/month.
Date FirstOfMonth(int year, int month, int months) {
  int m = month + months;
  int y = year;
  while (m > 12) {
    m -= 12;
    ++y;
  }
  while (m < 1) {
    m += 12;
    --y;
  }
  return Date::FromYmd(y, m, 1);
}

}  // namespace

void GetDayMonth(Date d, int n, Date& from, Date& to) {
  from = FirstOfMonth(d.year(), d.month(), -n);
  to = FirstOfMonth(d.year(), d.month(), 1);
}

int BefMonths(IHostContext& context) {
  // Beyond some 800 years back or forth no date is meant: such a value is held there.
  constexpr double kLimit = 9999;
  const double months =
      std::clamp(std::trunc(Val(context.GetOption(Variant("befmonth")).Value)), -kLimit, kLimit);
  return months == 0 ? 12 : static_cast<int>(months);
}

}  // namespace mrvk
