#include "app/schedule_command.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string_view>

#include "mrvk/contract/schedule.h"
#include "mrvk/frame/vb.h"

namespace mrvk_app {
namespace {

constexpr const char* kUsage =
    "usage: mrvk schedule --start D --end D --months M --period T [--arrears] [--json]\n"
    "Shows the collection periods of one fee term of a contract.\n"
    "  --start D     the first day of the lease (yyyy-mm-dd)\n"
    "  --end D       the last day of the lease (yyyy-mm-dd)\n"
    "  --months M    the lease length in months; decimals are rounded half to even\n"
    "  --period T    months per collection period, rounded the same way; 0 or less: no\n"
    "                schedule\n"
    "  --arrears     collected in arrears (due on the last day of each period); the default\n"
    "                is in advance (due on the first day, then the day before each start)\n"
    "  --json        one JSON array of {\"起始日期\",\"结束日期\",\"收款日期\",\"是否最后一期\"}\n"
    "  --help        this text\n";

struct Options {
  std::optional<mrvk::Date> start, end;
  std::optional<double> months, period;
  std::string period_text;
  bool arrears = false;
  bool json = false;
  bool help = false;
};

// A decimal number as typed: the whole text must be the number, and a finite one.
std::optional<double> ParseNumber(std::string_view text) {
  if (!text.empty() && text.front() == '+') {
    text.remove_prefix(1);
    if (!text.empty() && text.front() == '-') return std::nullopt;
  }
  double value = 0;
  const auto res = std::from_chars(text.data(), text.data() + text.size(), value);
  if (res.ec != std::errc() || res.ptr != text.data() + text.size() || !std::isfinite(value))
    return std::nullopt;
  return value;
}

// Reads args into options; on bad usage returns the one-line reason.
std::optional<std::string> ParseArgs(const std::vector<std::string>& args, Options& o) {
  for (const std::string& a : args) {
    if (a == "--help" || a == "-h") {
      o.help = true;
      return std::nullopt;
    }
  }
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a == "--arrears" || a == "--json") {
      bool& flag = a == "--json" ? o.json : o.arrears;
      if (flag) return a + " given twice";
      flag = true;
      continue;
    }
    const bool is_date = a == "--start" || a == "--end";
    if (!is_date && a != "--months" && a != "--period")
      return "unknown argument \"" + a + "\" (see mrvk schedule --help)";
    if (i + 1 >= args.size()) return a + " needs a value";
    const std::string& value = args[++i];
    if (is_date) {
      auto& slot = a == "--start" ? o.start : o.end;
      if (slot) return a + " given twice";
      slot = mrvk::ParseDate(value);
      if (!slot) return a + " \"" + value + "\" is not a date (yyyy-mm-dd)";
    } else {
      auto& slot = a == "--months" ? o.months : o.period;
      if (slot) return a + " given twice";
      slot = ParseNumber(value);
      if (!slot) return a + " \"" + value + "\" is not a number";
      if (a == "--period") o.period_text = value;
    }
  }
  if (!o.start) return "--start is missing";
  if (!o.end) return "--end is missing";
  if (!o.months) return "--months is missing";
  if (!o.period) return "--period is missing";
  return std::nullopt;
}

// Columns on a terminal: one for an ASCII byte, two for a wide (CJK) character.
size_t DisplayWidth(std::string_view text) {
  size_t width = 0;
  for (unsigned char c : text) {
    if (c < 0x80)
      ++width;
    else if (c >= 0xC0)
      width += 2;  // the lead byte of a multi-byte character
  }
  return width;
}

void PadTo(std::ostream& out, std::string_view text, size_t width, bool right) {
  const size_t w = DisplayWidth(text);
  const std::string pad(w < width ? width - w : 0, ' ');
  if (right)
    out << pad << text;
  else
    out << text << pad;
}

void WriteTable(std::ostream& out, const std::vector<mrvk::SchedulePeriod>& periods) {
  const size_t number_width =
      std::max<size_t>(DisplayWidth("序号"), std::to_string(periods.size()).size());
  constexpr size_t kDateWidth = 10;
  PadTo(out, "序号", number_width, /*right=*/false);
  for (const char* head : {"起始日期", "结束日期", "收款日期"}) {
    out << "  ";
    PadTo(out, head, kDateWidth, /*right=*/false);
  }
  out << "  最后一期\n";
  size_t n = 0;
  for (const mrvk::SchedulePeriod& p : periods) {
    PadTo(out, std::to_string(++n), number_width, /*right=*/true);
    out << "  " << p.start.ToText() << "  " << p.end.ToText() << "  " << p.due.ToText() << "  "
        << (p.last ? "是" : "否") << "\n";
  }
  if (periods.empty()) out << "(no collection periods)\n";
}

void WriteJson(std::ostream& out, const std::vector<mrvk::SchedulePeriod>& periods) {
  nlohmann::ordered_json rows = nlohmann::ordered_json::array();
  for (const mrvk::SchedulePeriod& p : periods) {
    rows.push_back({{"起始日期", p.start.ToText()},
                    {"结束日期", p.end.ToText()},
                    {"收款日期", p.due.ToText()},
                    {"是否最后一期", p.last ? 1 : 0}});
  }
  out << rows.dump() << "\n";
}

// Why the calculation refused the numbers, in the user's terms.
std::string CalculationFailure(const mrvk::VbError& e, const Options& o) {
  switch (e.Number()) {
    case mrvk::vb_error::kDivisionByZero:
      return "--period " + o.period_text + " rounds to 0 months: " + e.Description();
    case 6:
      return "--months or --period is too large: " + e.Description();
    case 5:
      return "the periods run past 9999-12-31: " + e.Description();
    default:
      return e.Description();
  }
}

}  // namespace

int RunScheduleCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  Options o;
  if (auto bad = ParseArgs(args, o)) {
    err << "mrvk schedule: " << *bad << "\n";
    return 2;
  }
  if (o.help) {
    out << kUsage;
    return 0;
  }
  std::vector<mrvk::SchedulePeriod> periods;
  try {
    periods = mrvk::PlanStoredFeeTerm(*o.start, *o.end, *o.months, *o.period,
                                      /*advance=*/!o.arrears);
  } catch (const mrvk::VbError& e) {
    err << "mrvk schedule: " << CalculationFailure(e, o) << "\n";
    return 2;
  }
  if (o.json)
    WriteJson(out, periods);
  else
    WriteTable(out, periods);
  return 0;
}

}  // namespace mrvk_app
