#include "support/sheet_test.h"

namespace kvtest {

kvhost::Screen* SheetTest::OpenScreen(const char* cls, int32_t prog) {
  screen_ = host().open(cls, prog, 0);
  EXPECT_NE(screen_, nullptr) << host().last_error();
  host().take_events();
  return screen_;
}

bool SheetTest::Call(const std::string& method, std::vector<mrvk::Variant> args) {
  mrvk::Variant result;
  kvhost::Status st = host().invoke(*screen_, method, args, result);
  EXPECT_TRUE(st.ok()) << method << ": " << st.message();
  return st.ok() && result.AsBool();
}

void SheetTest::Gest(const std::string& control, int index, const kvhost::Gesture& g) {
  kvhost::Status st = host().gesture(*screen_, control, index, g);
  EXPECT_TRUE(st.ok()) << control << "(" << index << ") " << g.kind << ": " << st.message();
}

std::vector<std::string> SheetTest::TakeReports(bool include_messages) {
  std::vector<std::string> out;
  for (const kvhost::HostEvent& e : host().take_events()) {
    if (e.event.name == "ErrMessage")
      out.push_back(e.event.args[0].ToString() + "|" + e.event.args[1].ToString() + "|" +
                    e.event.args[2].ToString());
    else if (include_messages && e.event.name == "Message")
      out.push_back(e.event.args[0].ToString());
  }
  return out;
}

std::string SheetTest::LastBox() {
  if (host().ui().shown.empty()) return "";
  const auto& box = host().ui().shown.back();
  return box.prompt + "|" + std::to_string(box.flags) + "|" + box.title;
}

}  // namespace kvtest
