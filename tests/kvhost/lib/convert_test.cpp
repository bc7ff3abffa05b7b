#include "kvhost/lib/convert.h"

#include <gtest/gtest.h>

#include "kvhost/lib/bill_data.h"

namespace kvhost {
namespace {

using mrvk::Variant;

TEST(Convert, NullAndEmptyGiveTheNeutralValue) {
  Convert c;
  for (const Variant& v : {Variant(), Variant::Null()}) {
    EXPECT_EQ(c.ToText(v), "");
    EXPECT_EQ(c.ToString(v), "");
    EXPECT_EQ(c.ToLong(v), 0);
    EXPECT_EQ(c.ToNumber(v).ToString(), "0");
    EXPECT_EQ(c.ToDouble(v, std::nullopt), 0);
    EXPECT_EQ(c.ToDate(v, "yyyy-mm-dd").ToText(), "1900-01-01");
    EXPECT_TRUE(c.Split(v, ",", std::nullopt).empty());
    EXPECT_EQ(c.Token(v, 0, ","), "");
  }
}

TEST(Convert, NumbersShowByTheNumberToTextRule) {
  Convert c;
  EXPECT_EQ(c.ToNumber(Variant(12.5)).ToString(), "12.5");
  EXPECT_EQ(c.ToNumber(Variant(int64_t{0})).ToString(), "0");
  EXPECT_EQ(c.ToNumber(Variant("3.50元")).ToString(), "3.5");
  EXPECT_EQ(c.ToNumber(Variant(7.0)).type(), Variant::Type::Long);
  EXPECT_EQ(c.ToText(Variant(1234.5)), "1234.5");
  EXPECT_EQ(c.ToLong(Variant(2.5)), 2);  // half to even
  EXPECT_EQ(c.ToLong(Variant(3.5)), 4);
  EXPECT_EQ(c.ToLong(Variant("12abc")), 12);
  EXPECT_DOUBLE_EQ(c.ToDouble(Variant(2.675), 2), 2.68);  // the decimal value, not its binary
  EXPECT_DOUBLE_EQ(c.ToDouble(Variant(2.665), 2), 2.66);  // half to even
  EXPECT_DOUBLE_EQ(c.ToDouble(Variant("1.23456"), 3), 1.235);
}

TEST(Convert, DatesFromTextsAndBadTextsGiveTheNullDate) {
  Convert c;
  EXPECT_EQ(c.ToDate(Variant("2012-3-5"), "yyyy-mm-dd").ToText(), "2012-03-05");
  EXPECT_EQ(c.ToDate(Variant(mrvk::Date::FromYmd(2012, 2, 29)), "yyyy-mm-dd").ToText(),
            "2012-02-29");
  EXPECT_EQ(c.ToDate(Variant("2012-02-30"), "yyyy-mm-dd").ToText(), "1900-01-01");
  EXPECT_EQ(c.ToDate(Variant(int64_t{5}), "yyyy-mm-dd").ToText(), "1900-01-01");
}

TEST(Convert, SplitKeepsEmptyPiecesAndHonoursTheCount) {
  Convert c;
  EXPECT_EQ(c.Split(Variant("a,,b,"), ",", std::nullopt),
            (std::vector<std::string>{"a", "", "b", ""}));
  EXPECT_EQ(c.Split(Variant("a|b|c"), "|", 2), (std::vector<std::string>{"a", "b|c"}));
  EXPECT_EQ(c.Split(Variant("房源;楼宇"), ";", std::nullopt),
            (std::vector<std::string>{"房源", "楼宇"}));
  EXPECT_EQ(c.Split(Variant("abc"), "", std::nullopt), (std::vector<std::string>{"abc"}));
  EXPECT_EQ(c.Token(Variant("代码,名称,AutoID"), 1, ","), "名称");
  EXPECT_EQ(c.Token(Variant("代码,名称"), 5, ","), "");
  EXPECT_EQ(c.Token(Variant("代码,名称"), -1, ","), "");
}

TEST(BillData, DateTextAndAMissingDatabase) {
  BillData bill;
  EXPECT_EQ(bill.DateText("2012/10/1"), "2012-10-01");
  EXPECT_EQ(bill.DateText("yesterday"), "");
  int32_t id = 5;
  EXPECT_NE(bill.NewID("fwyz", "业主ID", id), "");
  EXPECT_EQ(id, 5);
  std::string pos;
  std::unique_ptr<mrvk::Recordset> rs;
  Variant r =
      bill.Navigate(pos, rs, "select * from fwyz", "", mrvk::navigate::kFirst, 0, "业主ID", 1);
  EXPECT_FALSE(r.IsNull());
  EXPECT_NE(r.ToString(), "");
}

}  // namespace
}  // namespace kvhost
