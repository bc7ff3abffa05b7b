#include "kvhost/lib/kv_txt.h"

#include <gtest/gtest.h>

namespace kvhost {
namespace {

// A bound field whose check writes down what it looked up; the program's own writes to Text
// raise nothing, but what a person types over them is looked up again.
TEST(KvTxt, ATextTypedOverAProgramWriteIsCheckedAgainEvenWhenCheckedBefore) {
  KvTxt field("kvTxt", 18);
  field.Config.CheckInput = true;
  std::string checks;
  std::string left;
  field.CheckPicker = [&](const std::string& typed, mrvk::Variant& value, std::string&) {
    checks += typed + ";";
    value = mrvk::Variant(int32_t{7});
  };
  field.LostFocus = [&] { left += field.Text + ";"; };
  const auto type_and_leave = [&](const std::string& text) {
    EXPECT_EQ(field.Apply({"type", text}), "");
    EXPECT_EQ(field.Apply({"leave"}), "");
  };
  type_and_leave("A-101");
  // Left again unchanged, or typed over with what it held: no second look-up.
  EXPECT_EQ(field.Apply({"leave"}), "");
  type_and_leave("A-101");
  type_and_leave("A-10");
  type_and_leave("A-101");
  EXPECT_EQ(checks, "A-101;A-10;A-101;");
  // The form emptied for a new record, then the same unit typed: looked up again.
  field.Text = "";
  field.Value = mrvk::Variant(int32_t{0});
  type_and_leave("A-101");
  EXPECT_EQ(checks, "A-101;A-10;A-101;A-101;");
  EXPECT_EQ(field.Value.ToString(), "7");
  // Emptied by the person: no look-up, the value goes.
  type_and_leave("");
  EXPECT_EQ(checks, "A-101;A-10;A-101;A-101;");
  EXPECT_EQ(field.Value.ToString(), "0");
  EXPECT_EQ(left, "A-101;A-101;A-101;A-10;A-101;A-101;;");
}

}  // namespace
}  // namespace kvhost
