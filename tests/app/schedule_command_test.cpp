// `mrvk schedule`: the preview of one fee term's periods, as a script or a clerk runs it.
#include "app/schedule_command.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

struct Outcome {
  int code;
  std::string out, err;
};

Outcome Schedule(const std::vector<std::string>& args) {
  std::ostringstream out, err;
  const int code = mrvk_app::RunScheduleCommand(args, out, err);
  return {code, out.str(), err.str()};
}

const std::vector<std::string> kTenMonths = {"--start",    "2012-03-15", "--end",
                                             "2013-01-14", "--months",   "10"};

std::vector<std::string> With(std::vector<std::string> args, const std::vector<std::string>& more) {
  args.insert(args.end(), more.begin(), more.end());
  return args;
}

TEST(ScheduleCommand, JsonIsOneArrayOfPeriodsWithKeysInOrder) {
  const Outcome r = Schedule(With(kTenMonths, {"--period", "5", "--arrears", "--json"}));
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_EQ(r.err, "");
  EXPECT_EQ(
      r.out,
      R"([{"起始日期":"2012-03-15","结束日期":"2012-08-14","收款日期":"2012-08-14","是否最后一期":0},)"
      R"({"起始日期":"2012-08-15","结束日期":"2013-01-14","收款日期":"2013-01-14","是否最后一期":1}])"
      "\n");
}

// A Chinese character counts as two columns: the dates stand under their headings.
TEST(ScheduleCommand, TableShowsOneLinePerPeriodUnderTheHeader) {
  const Outcome r = Schedule(With(kTenMonths, {"--period", "3"}));
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_EQ(r.out,
            "序号  起始日期    结束日期    收款日期    最后一期\n"
            "   1  2012-03-15  2012-06-14  2012-03-15  否\n"
            "   2  2012-06-15  2012-09-14  2012-06-14  否\n"
            "   3  2012-09-15  2012-12-14  2012-09-14  否\n"
            "   4  2012-12-15  2013-01-14  2012-12-14  是\n");
  const Outcome none = Schedule(With(kTenMonths, {"--period", "0"}));
  EXPECT_EQ(none.code, 0);
  EXPECT_EQ(none.out,
            "序号  起始日期    结束日期    收款日期    最后一期\n(no collection periods)\n");
}

TEST(ScheduleCommand, HelpGoesToStdout) {
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{"--help"}, With(kTenMonths, {"-h"})}) {
    const Outcome r = Schedule(args);
    EXPECT_EQ(r.code, 0);
    EXPECT_NE(r.out.find("--period"), std::string::npos);
    EXPECT_EQ(r.err, "");
  }
}

// One row per way of refusing the input; the message is one line on stderr, stdout is empty.
TEST(ScheduleCommand, BadInputIsExitTwoWithOneLineAndNothingOnStdout) {
  const std::vector<std::string> full = With(kTenMonths, {"--period", "3"});
  struct Case {
    std::vector<std::string> args;
    std::string message;
  } cases[] = {
      {{}, "--start is missing"},
      {With(full, {"--start", "2012-03-16"}), "--start given twice"},
      {With(full, {"--json", "--json"}), "--json given twice"},
      {{"--start", "2013-02-29", "--end", "2013-03-14", "--months", "1", "--period", "1"},
       "--start \"2013-02-29\" is not a date (yyyy-mm-dd)"},
      {With(kTenMonths, {"--period", "abc"}), "--period \"abc\" is not a number"},
      {With(kTenMonths, {"--period", "+-3"}), "--period \"+-3\" is not a number"},
      {With(kTenMonths, {"--period"}), "--period needs a value"},
      {With(full, {"extra"}), "unknown argument \"extra\" (see mrvk schedule --help)"},
      {With(kTenMonths, {"--period", "0.5"}), "--period 0.5 rounds to 0 months: Division by zero"},
      {{"--start", "2012-03-15", "--end", "2013-01-14", "--months", "1e12", "--period", "1"},
       "--months or --period is too large: Overflow"},
      {{"--start", "9990-01-01", "--end", "9999-12-31", "--months", "240", "--period", "12"},
       "the periods run past 9999-12-31: Invalid procedure call or argument"},
  };
  for (const Case& c : cases) {
    std::string shown;
    for (const auto& a : c.args) shown += "[" + a + "]";
    const Outcome r = Schedule(c.args);
    EXPECT_EQ(r.code, 2) << shown;
    EXPECT_EQ(r.out, "") << shown;
    EXPECT_EQ(r.err, "mrvk schedule: " + c.message + "\n") << shown;
  }
}

}  // namespace
