// bMode: the month arithmetic of the contract and receipt sheets, which by default walk over
// the documents of the last months only: the option "befmonth" says how many months back.
#pragma once

#include "mrvk/frame/host_contract.h"
#include "mrvk/frame/variant.h"

namespace mrvk {

// The span of months a sheet walks over from the date d, n months back: from is the first day
// of the month that lies n months before the month of d, to the first day of the month after
// the month of d (the span ends with d's month and holds n + 1 calendar months; to itself lies
// outside it). Years carry by steps of 12 months, back and forth.
//   GetDayMonth(2012-10-11, 12) -> 2011-10-01 .. 2012-11-01
//   GetDayMonth(2012-01-20, 3)  -> 2011-10-01 .. 2012-02-01
//   GetDayMonth(2012-12-05, 0)  -> 2012-12-01 .. 2013-01-01
void GetDayMonth(Date d, int n, Date& from, Date& to);

// The months back of the option "befmonth": its whole number (Val), 12 when that is 0 (also
// for a missing option or one that is no number).
int BefMonths(IHostContext& context);

}  // namespace mrvk
