#include "mrvk/frame/vb.h"

#include <gtest/gtest.h>

#include "mrvk/frame/data_access.h"
#include "mrvk/frame/host_contract.h"

namespace mrvk {
namespace {

TEST(Val, ReadsTheLeadingNumberLikeVb) {
  struct Case {
    const char* text;
    double want;
  } cases[] = {{"12.5", 12.5}, {"  3 4 5", 345}, {"-7abc", -7},  {"abc", 0},
               {"", 0},        {"1e3", 1000},    {"2D2", 200},   {"1.2.3", 1.2},
               {"&HFF", 255},  {"&O17", 15},     {".5", 0.5},    {"+8", 8},
               {"1e", 1},      {"- 4", -4},      {"12,000", 12}, {"0x10", 0}};
  for (const auto& c : cases) EXPECT_DOUBLE_EQ(Val(c.text), c.want) << '"' << c.text << '"';
}

TEST(NumberText, WritesNumbersAsVbDoes) {
  std::string got;
  for (double v : {0.0, 12.5, -3.0, 1.0 / 3, 100.0, 1234567.89, 1e15, 0.00001, 123456789012345.0,
                   2.675, -0.25})
    got += NumberText(v) + " ";
  EXPECT_EQ(got,
            "0 12.5 -3 0.333333333333333 100 1234567.89 1E+15 1E-05 123456789012345 2.675 -0.25 ");
}

TEST(RoundHalfEven, RoundsTiesToEven) {
  for (auto [x, want] :
       {std::pair{2.5, 2}, {3.5, 4}, {-2.5, -2}, {-3.5, -4}, {2.4999, 2}, {0.5, 0}})
    EXPECT_EQ(RoundHalfEven(x), want) << x;
  EXPECT_THROW(IntDiv(10, 0), VbError);
  EXPECT_EQ(IntDiv(10, 3), 3);
}

TEST(ParseDate, AcceptsRealDatesOnly) {
  EXPECT_EQ(ParseDate("2012-10-11")->ToText(), "2012-10-11");
  EXPECT_EQ(ParseDate(" 2012/3/5 ")->ToText(), "2012-03-05");
  EXPECT_EQ(ParseDate("2012-02-29 13:45:00")->ToText(), "2012-02-29");
  for (const char* bad : {"2013-02-29", "2012-13-01", "2012-00-10", "12-10-11", "2012-10",
                          "2012-10-11x", "abc", "", "2012-10/11", "20121011", "2012-1-1;drop"}) {
    EXPECT_FALSE(ParseDate(bad)) << bad;
  }
}

TEST(Dates, SerialsRoundTripAcrossCenturies) {
  for (int y : {1900, 1999, 2000, 2012, 2100, 2400}) {
    for (int m = 1; m <= 12; ++m) {
      const int last = DaysInMonth(y, m);
      Date d = Date::FromYmd(y, m, last);
      EXPECT_EQ((std::vector<int>{d.year(), d.month(), d.day()}), (std::vector<int>{y, m, last}));
      EXPECT_EQ(AddDays(d, 1), m == 12 ? Date::FromYmd(y + 1, 1, 1) : Date::FromYmd(y, m + 1, 1));
    }
  }
  EXPECT_EQ(Date::FromYmd(1899, 12, 30).serial(), 0);  // VB's day zero
  EXPECT_EQ(DaysInMonth(1900, 2), 28);
  EXPECT_EQ(DaysInMonth(2000, 2), 29);
}

TEST(AddMonths, KeepsTheDayAndClampsToTheMonthEnd) {
  struct Case {
    const char* from;
    int months;
    const char* want;
  } cases[] = {{"2012-01-31", 1, "2012-02-29"},   {"2013-01-31", 1, "2013-02-28"},
               {"2012-11-30", 3, "2013-02-28"},   {"2012-03-31", -1, "2012-02-29"},
               {"2012-01-15", -13, "2010-12-15"}, {"2012-02-29", 12, "2013-02-28"}};
  for (const Case& c : cases)
    EXPECT_EQ(AddMonths(*ParseDate(c.from), c.months).ToText(), c.want) << c.from << c.months;
}

TEST(Variant, ConvertsAsTheLogicExpects) {
  EXPECT_EQ(Variant().ToString(), "");
  EXPECT_EQ(Variant::Null().ToString(), "");
  EXPECT_EQ(Variant(12.5).ToString(), "12.5");
  EXPECT_EQ(Variant(int64_t{7}).ToString(), "7");
  EXPECT_EQ(Variant(Date::FromYmd(2012, 3, 5)).ToString(), "2012-03-05");
  EXPECT_EQ(Variant("3.5 rooms").ToDouble(), 3.5);
  EXPECT_EQ(Variant("2.5").ToLong(), 2);
  EXPECT_EQ(Variant::Null().ToLong(), 0);
  EXPECT_EQ(Variant(int64_t{3}), Variant(3.0));
  EXPECT_FALSE(Variant("3") == Variant(3.0));
  EXPECT_FALSE(Variant() == Variant::Null());
}

TEST(ReviseBillNumber, RaisesTheRevisionBehindTheLastDash) {
  struct Case {
    const char* number;
    const char* want;
  } cases[] = {{"HT2012", "HT2012-1"}, {"HT2012-12", "HT2012-13"},
               {"A-B-3", "A-B-4"},     {"A-", "A-1"},
               {"A-x", "A-1"},         {"", "-1"},
               {"X-9.5", "X-10.5"}};
  for (const auto& c : cases) EXPECT_EQ(ReviseBillNumber(c.number), c.want) << c.number;
}

// A condition array as the host passes it: A(plane, row, column).
Variant Conditions(std::vector<std::vector<std::vector<Variant>>> planes) {
  const int rows = static_cast<int>(planes[0].size());
  const int cols = static_cast<int>(planes[0][0].size());
  auto a =
      std::make_shared<VariantArray>(std::vector<int>{static_cast<int>(planes.size()), rows, cols});
  for (int p = 0; p < static_cast<int>(planes.size()); ++p)
    for (int r = 0; r < rows; ++r)
      for (int c = 0; c < cols; ++c)
        a->at({p, r, c}) =
            planes[static_cast<size_t>(p)][static_cast<size_t>(r)][static_cast<size_t>(c)];
  return Variant(a);
}

const std::vector<SearchField> kContractFields = {
    {"合同编号", "A.合同编号", SearchType::kText},
    {"合同日期", "A.合同日期", SearchType::kDate},
    {"月租金", "A.月租金", SearchType::kNumber},
};

TEST(ConditionText, WritesDeclaredColumnsAndTypedValues) {
  Variant a = Conditions({
      {{"", "合同编号", "like"},
       {"2012-5-1", "合同日期", "<"},
       {"", "月租金", ">"},
       {"", "合同编号", "="}},
      {{" HT'01 ", "合同编号", "like"},
       {"2012-01-01", "合同日期", ">="},
       {"12abc", "月租金", ">"},
       {"x' or '1'='1", "合同编号", "="}},
  });
  std::string refusal;
  EXPECT_EQ(*ConditionText(a, /*plane=*/1, /*jet=*/true, kContractFields, refusal),
            " A.合同编号 like '%HT''01%' and A.合同日期>=#2012-01-01# and A.月租金>12 and "
            "A.合同编号='x'' or ''1''=''1'");
  EXPECT_EQ(*ConditionText(a, /*plane=*/0, /*jet=*/false, kContractFields, refusal),
            " A.合同日期<'2012-05-01'");
  EXPECT_EQ(refusal, "");
  // Empty and Null change nothing; rows without values give an empty text.
  EXPECT_FALSE(ConditionText(Variant(), 1, true, kContractFields, refusal));
  EXPECT_FALSE(ConditionText(Variant::Null(), 1, true, kContractFields, refusal));
  EXPECT_EQ(refusal, "");
  Variant blank =
      Conditions({{{"", "合同编号", "="}, {"", "", ""}}, {{" ", "月租金", "<"}, {"", "", ""}}});
  EXPECT_EQ(*ConditionText(blank, /*plane=*/1, /*jet=*/true, kContractFields, refusal), "");
}

TEST(ConditionText, RefusesWhatNoScreenDeclared) {
  struct Case {
    Variant value, field, op;
    const char* refusal;
  } cases[] = {
      {Variant("x"), Variant("1=0 union select pwhash from xt_user where username like"),
       Variant("="),
       "查找条件中的字段“1=0 union select pwhash from xt_user where username like”不在可查找的"
       "字段中"},
      {Variant("2012-01-01# or 1=1 or 合同日期>#2012-01-01"), Variant("合同日期"), Variant("="),
       "字段“合同日期”的值“2012-01-01# or 1=1 or 合同日期>#2012-01-01”不是日期"},
      {Variant("1"), Variant("月租金"), Variant("=1 or 1="),
       "查找条件中字段“月租金”的运算符“=1 or 1=”不可用，可用的有 = <> > >= < <="},
      {Variant("2012"), Variant("合同日期"), Variant("like"),
       "查找条件中字段“合同日期”的运算符“like”不可用，可用的有 = <> > >= < <="},
      // The field with its operator and a type code, as conditions were once written.
      {Variant("HT"), Variant("合同编号 like"), Variant(8),
       "查找条件中的字段“合同编号 like”不在可查找的字段中"},
      // A caption is matched as declared; a column name is not a caption.
      {Variant(""), Variant("A.合同编号"), Variant("="),
       "查找条件中的字段“A.合同编号”不在可查找的字段中"},
  };
  for (const Case& c : cases) {
    std::string refusal;
    Variant a = Conditions({{{c.value, c.field, c.op}}, {{c.value, c.field, c.op}}});
    EXPECT_FALSE(ConditionText(a, /*plane=*/1, /*jet=*/true, kContractFields, refusal));
    EXPECT_EQ(refusal, c.refusal);
  }
  // An array without the find plane.
  std::string refusal;
  Variant one_plane = Conditions({{{"HT", "合同编号", "="}}});
  EXPECT_FALSE(ConditionText(one_plane, /*plane=*/0, /*jet=*/true, kContractFields, refusal));
  EXPECT_EQ(refusal, "查找条件的格式不对：应为（值，字段，运算符）的条件行");
}

TEST(Parameters, KeysWithoutRegardToCase) {
  IParameters p;
  p.Add("BackColor", Variant(int64_t{255}));
  EXPECT_TRUE(p.Exists("backcolor"));
  EXPECT_EQ(p.Item("BACKCOLOR").Value.ToLong(), 255);
  EXPECT_TRUE(p.Item("printfilename").Value.IsEmpty());
}

}  // namespace
}  // namespace mrvk
