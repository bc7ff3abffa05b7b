// The host's C++ API and its services to the module, on both engines.
#include "kvhost/host.h"

#include <gtest/gtest.h>

#include "kvhost/host_context.h"
#include "mrvk/registry.h"
#include "support/engines.h"
#include "support/probe_sheet.h"

namespace kvhost {
namespace {

class HostTest : public kvtest::EngineTest {
 protected:
  void SetUp() override {
    kvtest::EngineTest::SetUp();
    kvtest::RegisterProbeSheet();
  }
  mrvk::Date Day(const char* text) { return *mrvk::ParseDate(text); }
  // Owner 1 is stored, the probe is open, and another clerk waits 300 ms for a lock, not the
  // usual 30 s.
  std::unique_ptr<Host> OpenProbeBesideAnotherClerk(Screen*& s) {
    Exec("insert into fwyz (业主ID,业主编号,业主名称,类型) values (1,'Y1','原名',0)");
    s = host().open("ProbeSheet", 870004, 0);
    EXPECT_TRUE(s) << host().last_error();
    auto other = NewHost();
    EXPECT_TRUE(
        other->database()
            .connection()
            .ExecuteRaw(is_pg() ? "SET lock_timeout = '300ms'" : "PRAGMA busy_timeout = 300")
            .ok());
    return other;
  }
};

TEST_P(HostTest, ScriptedDialogsAreWorkedThroughGestures) {
  Screen* s = host().open("ProbeSheet", 870004, 0);
  ASSERT_TRUE(s) << host().last_error();
  // The script types a name and presses save; the dialog's empty-name box comes first.
  host().ui().answers.push_back(mrvk::msgbox::kOk);
  host().ui().dialogs.push_back([&](Dialog& d) {
    EXPECT_EQ(d.Caption, "业主");
    EXPECT_TRUE(host().gesture(d.Controls(), "dialog", "Cmd", 0, {"click"}).ok());
    EXPECT_TRUE(d.IsShown());
    EXPECT_TRUE(host().gesture(d.Controls(), "dialog", "kvTxt", 0, {"type", "钱七"}).ok());
    EXPECT_TRUE(host().gesture(d.Controls(), "dialog", "Cmd", 0, {"click"}).ok());
  });
  ASSERT_TRUE(host().gesture(*s, "Cmd", -1, {"click"}).ok());
  EXPECT_EQ(Scalar("select 业主名称 from fwyz"), "钱七");
  ASSERT_EQ(host().ui().shown.size(), 2u);
  EXPECT_EQ(host().ui().shown[0].kind, "dialog");
  EXPECT_EQ(host().ui().shown[1].prompt, "姓名不能为空！");

  // A dialog the script leaves open, or one nobody scripted, is an error answer.
  host().ui().dialogs.push_back([](Dialog&) {});
  Status st = host().gesture(*s, "Cmd", -1, {"click"});
  EXPECT_NE(st.message().find("dialog left open by its script: 业主"), std::string::npos);
  st = host().gesture(*s, "Cmd", -1, {"click"});
  EXPECT_NE(st.message().find("unscripted dialog: 业主"), std::string::npos);
  EXPECT_EQ(Scalar("select count(*) from fwyz"), "1");
}

TEST_P(HostTest, ABracketACallLeavesOpenIsRolledBackAtItsEdgeAndOthersWriteAtOnce) {
  Screen* s = nullptr;
  auto other = OpenProbeBesideAnotherClerk(s);
  ASSERT_TRUE(s);
  struct Case {
    const char* method;
    const char* error;
  };
  const Case cases[] = {
      {"UnCheck",
       "ProbeSheet.UnCheck: run-time failure 13: Type mismatch. The transaction it left open "
       "was rolled back: none of its changes were saved"},
      // The question is not shown: it would hold the bracket's lock while the person reads.
      {"PrintSetup",
       "ProbeSheet.PrintSetup: run-time failure 5: a message box cannot wait for an answer "
       "inside a transaction (改名吗？). The transaction it left open was rolled back: none of "
       "its changes were saved"},
      {"Help",
       "ProbeSheet.Help: it ended with a transaction still open, which was rolled back: none "
       "of its changes were saved"},
  };
  host().ui().answers.push_back(mrvk::msgbox::kYes);
  for (const Case& c : cases) {
    mrvk::Variant result;
    EXPECT_EQ(host().invoke(*s, c.method, {}, result).message(), c.error);
    EXPECT_FALSE(db().InTransaction()) << c.method;
    EXPECT_EQ(Scalar("select 业主名称 from fwyz where 业主ID=1"), "原名") << c.method;
    EXPECT_TRUE(other->database().Execute("update fwyz set 类型=类型+1 where 业主ID=1"))
        << c.method << ": " << other->database().Error().Description();
  }
  // The question was never shown; the information box was, once the bracket was undone.
  ASSERT_EQ(host().ui().shown.size(), 1u);
  EXPECT_EQ(host().ui().shown[0].prompt, "已改名");
  EXPECT_EQ(Scalar("select 类型 from fwyz where 业主ID=1"), "3");
}

TEST_P(HostTest, AnInformationBoxInsideABracketWaitsForNoLock) {
  Screen* s = nullptr;
  auto other = OpenProbeBesideAnotherClerk(s);
  ASSERT_TRUE(s);
  // While the person reads the box, another clerk saves.
  struct Reader : mrvk::IUiPort {
    Host* other = nullptr;
    std::string seen, other_error;
    int MsgBox(const std::string& prompt, int, const std::string&) override {
      seen += prompt;
      if (!other->database().Execute("update fwyz set 类型=7 where 业主ID=1"))
        other_error = other->database().Error().Description();
      return mrvk::msgbox::kOk;
    }
    std::optional<std::string> InputBox(const std::string&, const std::string&,
                                        const std::string&) override {
      return std::nullopt;
    }
    void ShowModal(mrvk::IModalForm&) override {}
  } reader;
  reader.other = other.get();
  host().set_ui_port(&reader);
  mrvk::Variant result;
  EXPECT_EQ(host().invoke(*s, "Help", {}, result).message(),
            "ProbeSheet.Help: it ended with a transaction still open, which was rolled back: "
            "none of its changes were saved");
  host().set_ui_port(nullptr);
  EXPECT_EQ(reader.seen, "已改名");
  EXPECT_EQ(reader.other_error, "");
  EXPECT_EQ(Scalar("select 类型 from fwyz where 业主ID=1"), "7");
  EXPECT_EQ(Scalar("select 业主名称 from fwyz where 业主ID=1"), "原名");
}

TEST_P(HostTest, BillCodesArePreviewedDrawnOnceAndGivenBackWhenLast) {
  auto other = NewHost();
  // The code a clerk's host gives for a function and day; `code` is what the form holds.
  auto bill_code = [&](Host& clerk, int prog, const char* day, bool preview,
                       std::string code = "") {
    EXPECT_TRUE(clerk.context().BillCode(prog, Day(day), code, preview)) << prog << " " << day;
    return code;
  };
  Host& mine = host();
  EXPECT_EQ(bill_code(mine, 870201, "2012-10-11", /*preview=*/true), "HT2012100001");
  EXPECT_EQ(bill_code(mine, 870201, "2012-10-20", /*preview=*/true), "HT2012100001");
  // Saving draws it; the next preview shows the one after.
  EXPECT_EQ(bill_code(mine, 870201, "2012-10-11", /*preview=*/false, "HT2012100001"),
            "HT2012100001");
  EXPECT_EQ(bill_code(mine, 870201, "2012-10-11", /*preview=*/true), "HT2012100002");
  // Another function and another month count on their own.
  EXPECT_EQ(bill_code(mine, 870301, "2012-10-11", /*preview=*/true), "SK2012100001");
  EXPECT_EQ(bill_code(mine, 870201, "2012-11-01", /*preview=*/true), "HT2012110001");
  // Two clerks who previewed the same number save different ones.
  EXPECT_EQ(bill_code(*other, 870301, "2012-10-11", /*preview=*/true), "SK2012100001");
  EXPECT_EQ(bill_code(mine, 870301, "2012-10-11", /*preview=*/false, "SK2012100001"),
            "SK2012100001");
  EXPECT_EQ(bill_code(*other, 870301, "2012-10-11", /*preview=*/false, "SK2012100001"),
            "SK2012100002");
  // A number the clerk typed in a form of their own is kept as typed.
  EXPECT_EQ(bill_code(mine, 870301, "2012-10-11", /*preview=*/false, "合同-甲-7"), "合同-甲-7");

  // Releasing a number gives it back only when it is the last one drawn.
  HostContext& ctx = host().context();
  const std::string a = bill_code(mine, 870201, "2012-10-11", /*preview=*/false);
  const std::string b = bill_code(mine, 870201, "2012-10-11", /*preview=*/false);
  EXPECT_EQ(b, "HT2012100003");
  EXPECT_TRUE(ctx.ReleaseBillCode(870201, Day("2012-10-11"), a));
  EXPECT_EQ(bill_code(mine, 870201, "2012-10-11", /*preview=*/true), "HT2012100004");
  EXPECT_TRUE(ctx.ReleaseBillCode(870201, Day("2012-10-11"), b));
  EXPECT_EQ(bill_code(mine, 870201, "2012-10-11", /*preview=*/true), "HT2012100003");
}

TEST(HostConfig, RejectsABadLoginDateAndABadDatabase) {
  Host bad_date({.database = "sqlite://", .login_date = "2012-02-30"});
  EXPECT_FALSE(bad_date.status().ok());
  EXPECT_NE(bad_date.status().message().find("2012-02-30"), std::string::npos);
  Host bad_db({.database = "oracle://x", .user = "", .login_date = "", .app_path = ""});
  EXPECT_FALSE(bad_db.status().ok());
  EXPECT_EQ(bad_db.open("PDMLy", 870001, 0), nullptr);
  EXPECT_FALSE(bad_db.create_schema().ok());
}

MRVK_ON_BOTH_ENGINES(HostTest);

}  // namespace
}  // namespace kvhost
