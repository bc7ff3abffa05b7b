#include "kvhost/lib/display_format.h"

#include <gtest/gtest.h>

namespace kvhost {
namespace {

TEST(DisplayFormat, ThousandsAndFixedDecimals) {
  EXPECT_EQ(FormatCellText("1234567.5", "#,##0.00"), "1,234,567.50");
  EXPECT_EQ(FormatCellText("-1234.567", "#,##0.00"), "-1,234.57");
  EXPECT_EQ(FormatCellText("999.995", "#,##0.00"), "1,000.00");  // the carry crosses a group
  EXPECT_EQ(FormatCellText("12", "#,##0"), "12");
  EXPECT_EQ(FormatCellText("0", "#,##0.00"), "0.00");
}

TEST(DisplayFormat, RoundsTheDecimalTextHalfAwayFromZero) {
  EXPECT_EQ(FormatCellText("2.675", "0.00"), "2.68");  // 2.675 is below that in binary
  EXPECT_EQ(FormatCellText("0.005", "0.00"), "0.01");
  EXPECT_EQ(FormatCellText("-2.5", "0"), "-3");
  EXPECT_EQ(FormatCellText("-0.001", "0.00"), "0.00");  // no negative zero
}

TEST(DisplayFormat, OptionalDecimalsShowOnlyWhenNeeded) {
  EXPECT_EQ(FormatCellText("12", "###.##"), "12");
  EXPECT_EQ(FormatCellText("12.5", "###.##"), "12.5");
  EXPECT_EQ(FormatCellText("12.345", "###.##"), "12.35");
  EXPECT_EQ(FormatCellText("0.5", "###.##"), "0.5");
  EXPECT_EQ(FormatCellText("0", "###"), "0");
  EXPECT_EQ(FormatCellText("3.10", "0.0##"), "3.1");
}

TEST(DisplayFormat, LiteralsAndPercent) {
  EXPECT_EQ(FormatCellText("1500", "¥#,##0.00"), "¥1,500.00");
  EXPECT_EQ(FormatCellText("-8", "0.0元"), "-8.0元");
  EXPECT_EQ(FormatCellText("0.125", "0.0%"), "12.5%");
  EXPECT_EQ(FormatCellText("3", "0%"), "300%");
}

TEST(DisplayFormat, TextsThatAreNoPlainNumberShowAsTheyAre) {
  for (const char* text : {"", "N/A", "001", "1,234", " 5", "1e5", "2012-03-05", "小计北区"})
    EXPECT_EQ(FormatCellText(text, "#,##0.00"), text) << text;
  EXPECT_EQ(FormatCellText("12.5", ""), "12.5");
  EXPECT_EQ(FormatCellText("12.5", "yyyy-mm-dd"), "12.5");
  EXPECT_TRUE(IsPlainNumber("13800138000"));
  EXPECT_TRUE(IsPlainNumber("-0.5"));
  EXPECT_FALSE(IsPlainNumber("-"));
  EXPECT_FALSE(IsPlainNumber("5."));
  EXPECT_FALSE(IsPlainNumber(".5"));
}

TEST(DisplayFormat, CaptionWidthCountsBlanksAndWideCharacters) {
  EXPECT_EQ(CaptionWidth("行号"), 400);
  EXPECT_EQ(CaptionWidth("编号    "), 800);
  EXPECT_EQ(CaptionWidth("合同ID"), 600);
  EXPECT_EQ(CaptionWidth("（元）"), 600);  // full-width brackets are wide
  EXPECT_EQ(CaptionWidth(""), 0);
}

}  // namespace
}  // namespace kvhost
