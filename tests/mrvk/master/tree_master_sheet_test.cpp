// Buildings and estates, driven as a clerk drives them: toolbar operations, typing, picking
// and tree clicks, on both engines. Assertions are on what the clerk sees (fields, tree,
// reports, boxes) and on what the database holds.
#include "mrvk/master/tree_master_sheet.h"

#include <gtest/gtest.h>

#include "kvhost/lib/kv_txt.h"
#include "kvhost/lib/tree_view_control.h"
#include "support/sheet_test.h"

namespace mrvk {
namespace {

using kvhost::Gesture;
using kvhost::HostEvent;

class TreeMasterSheetTest : public kvtest::SheetTest {
 protected:
  void Open(const char* cls = "PDMLy", int32_t prog = 870001) {
    ASSERT_NE(OpenScreen(cls, prog), nullptr);
    sheet_ = dynamic_cast<TreeMasterSheet*>(screen_->object.get());
    ASSERT_NE(sheet_, nullptr);
  }
  // Types into a field and leaves it, as a clerk does.
  void Type(int index, const std::string& text) {
    Gest("kvTxt", index, {"type", text});
    Gest("kvTxt", index, {"leave"});
  }
  void Select(const std::string& key) { Gest("TV", -1, {.kind = "select", .key = key}); }
  std::string Text(int index) { return sheet_->kvTxt[index].Text; }
  // The texts of the tree's nodes in display order.
  std::vector<std::string> Nodes() {
    std::vector<std::string> out;
    for (kvhost::TreeNode* root : sheet_->TV.Nodes.Roots()) {
      out.push_back(root->Text);
      for (kvhost::TreeNode* child : root->ChildNodes()) out.push_back(child->Text);
    }
    return out;
  }
  std::string Selected() {
    kvhost::TreeNode* n = sheet_->TV.SelectedItem();
    return n ? n->Text : "";
  }
  // The ErrMessage and Message texts raised since the last look, "text|level|title".
  std::vector<std::string> Reports() { return TakeReports(/*include_messages=*/true); }
  void AddBuilding(int id, const std::string& code, const std::string& name, int estate = 0) {
    Exec("insert into fwly (楼宇ID,楼宇编号,楼宇名称,物业ID) values (" + std::to_string(id) + ",'" +
         code + "','" + name + "'," + std::to_string(estate) + ")");
  }
  // A new building typed in full and saved.
  bool SaveNew(const std::string& code, const std::string& name) {
    Call("FileNew");
    Type(0, code);
    Type(1, name);
    return Call("FileSave");
  }

  TreeMasterSheet* sheet_ = nullptr;
};

TEST_P(TreeMasterSheetTest, RefreshListsRowsByCodeUnderTheRootAndTheRootShowsNothing) {
  Open();
  EXPECT_EQ(Nodes(), (std::vector<std::string>{"全部楼宇"}));
  EXPECT_EQ(Selected(), "全部楼宇");
  AddBuilding(7, "B02", "  二号楼 ");
  AddBuilding(3, "B01", "一号楼");
  ASSERT_TRUE(Call("Refresh"));
  EXPECT_EQ(Nodes(), (std::vector<std::string>{"全部楼宇", "B01 一号楼", "B02 二号楼"}));
  Select("KB02");
  EXPECT_EQ(Text(0) + "|" + Text(1), "B02|  二号楼 ");
  Select("ROOT");
  EXPECT_EQ(Text(0) + "|" + Text(1), "|");
  // Viewing: the tree works, the fields don't.
  EXPECT_TRUE(sheet_->TV.Enabled);
  EXPECT_FALSE(sheet_->kvTxt[0].Enabled);
}

TEST_P(TreeMasterSheetTest, ANewBuildingIsSavedWithItsEstateAndAreasAndShowsInTheTree) {
  Exec("insert into fwwy (物业ID,物业编号,物业名称) values (5,'W01','阳光花园')");
  Open();
  ASSERT_TRUE(Call("FileNew"));
  EXPECT_FALSE(sheet_->TV.Enabled);
  EXPECT_TRUE(sheet_->kvTxt[0].Enabled);
  Type(0, " B01 ");
  Type(1, "一号楼");
  Type(2, "W01");  // a typed estate code is checked and replaced by the estate's name
  EXPECT_EQ(Text(2), "阳光花园");
  Type(3, "高层住宅");
  Type(4, "120.5");
  Type(5, "abc");  // not a number: stored as 0
  EXPECT_TRUE(sheet_->IsDirty());
  ASSERT_TRUE(Call("FileSave")) << ::testing::PrintToString(Reports());
  EXPECT_FALSE(sheet_->IsDirty());
  EXPECT_EQ(Query("select 楼宇编号,物业ID,楼宇类型,占地面积,建筑面积 from fwly"),
            std::vector<std::string>{"B01|5|高层住宅|120.5|0"});
  EXPECT_EQ(Nodes(), (std::vector<std::string>{"全部楼宇", "B01 一号楼"}));
  // Back in viewing; the selection stays where it was.
  EXPECT_TRUE(sheet_->TV.Enabled);
  EXPECT_EQ(Selected(), "全部楼宇");

  // Shown again from the database: the estate's name, areas by the number rule.
  Select("KB01");
  EXPECT_EQ(Text(2) + "|" + sheet_->kvTxt[2].Value.ToString() + "|" + Text(4) + "|" + Text(5),
            "阳光花园|5|120.5|0");

  // Without an estate the building's estate ID is 0 (an unknown one is refused by the field).
  ASSERT_TRUE(SaveNew("B09", "九号楼"));
  EXPECT_EQ(Scalar("select 物业ID from fwly where 楼宇编号='B09'"), "0");
}

TEST_P(TreeMasterSheetTest, CodesAndNamesMustBeGivenAndUnique) {
  AddBuilding(1, "B01", "一号楼");
  Open();
  Call("FileNew");
  Type(0, "   ");
  Type(1, "新楼");
  EXPECT_FALSE(Call("FileSave"));
  EXPECT_EQ(Reports(), (std::vector<std::string>{"没有具体的编号,请录入!|2|楼宇"}));
  EXPECT_EQ(sheet_->Controls().Focused(), &sheet_->kvTxt[0]);
  Type(0, "B01");
  EXPECT_FALSE(Call("FileSave"));
  EXPECT_EQ(Reports(), (std::vector<std::string>{"编号重复,请检查!|2|楼宇"}));
  Type(0, "B02");
  Type(1, "一号楼");
  EXPECT_FALSE(Call("FileSave"));
  EXPECT_EQ(Reports(), (std::vector<std::string>{"名称重复,请检查!|2|楼宇"}));
  EXPECT_EQ(sheet_->Controls().Focused(), &sheet_->kvTxt[1]);
  // Still editing, nothing written.
  EXPECT_FALSE(sheet_->TV.Enabled);
  EXPECT_EQ(Scalar("select count(*) from fwly"), "1");

  // Editing a row under its own name passes: the check leaves the row itself out.
  Call("FileCancel");
  Select("KB01");
  ASSERT_TRUE(Call("FileEdit"));
  EXPECT_FALSE(sheet_->kvTxt[0].Enabled);  // the code of a saved row stays
  Type(6, "东区");
  ASSERT_TRUE(Call("FileSave")) << ::testing::PrintToString(Reports());
  EXPECT_EQ(Scalar("select 位置 from fwly where 楼宇ID=1"), "东区");
  // A new name shows in the node; a cancelled edit shows the stored row again.
  Call("FileEdit");
  Type(1, "壹号楼");
  ASSERT_TRUE(Call("FileSave"));
  EXPECT_EQ(Selected(), "B01 壹号楼");
  Call("FileEdit");
  Type(1, "不要了");
  ASSERT_TRUE(Call("FileCancel"));
  EXPECT_EQ(Text(1), "壹号楼");
  EXPECT_FALSE(sheet_->IsDirty());
  EXPECT_TRUE(sheet_->TV.Enabled);
  // A save over another clerk's save of the same row in between is refused.
  Call("FileEdit");
  Exec("update fwly set 位置='西区' where 楼宇ID=1");
  Type(6, "北区");
  host().ui().answers.push_back(msgbox::kOk);
  EXPECT_FALSE(Call("FileSave"));
  EXPECT_EQ(LastBox(), std::string(kChangedByOthers) + "|48|提示：");
  EXPECT_EQ(Scalar("select 位置 from fwly where 楼宇ID=1"), "西区");
  EXPECT_FALSE(sheet_->TV.Enabled);  // still editing, as typed
}

TEST_P(TreeMasterSheetTest, AFailingKeySourceRollsTheSaveBackBeforeTheSheetReportsIt) {
  // The buildings' key source is gone.
  if (is_pg())
    ASSERT_TRUE(db().connection().ExecuteRaw("DROP SEQUENCE \"xt_seq_fwly_楼宇id\"").ok());
  else
    Exec("delete from xt_newid where tablename='fwly'");
  Open();
  // Each report with whether the bracket was still open when it was raised.
  std::vector<std::string> reports;
  screen_->object->AttachSink([&](const mrvk::Event& e) {
    if (e.name == "ErrMessage")
      reports.push_back(e.args[0].ToString() + (db().InTransaction() ? " (bracket open)" : ""));
  });
  EXPECT_FALSE(SaveNew("B01", "一号楼"));
  EXPECT_EQ(reports, (std::vector<std::string>{"NewID: no key source for fwly.楼宇ID"}));
  EXPECT_FALSE(db().InTransaction());
  EXPECT_EQ(Scalar("select count(*) from fwly"), "0");
  // Still editing what was typed, and no node for it.
  EXPECT_TRUE(sheet_->kvTxt[0].Enabled);
  EXPECT_EQ(Text(1), "一号楼");
  EXPECT_EQ(Nodes(), (std::vector<std::string>{"全部楼宇"}));
}

TEST_P(TreeMasterSheetTest, QuotesAndLongTextsAreStoredAsTyped) {
  Open();
  std::string long_text;
  for (int i = 0; i < 700; ++i) long_text += "楼";
  Call("FileNew");
  Type(0, "B'1");
  Type(1, "O'Brien's 大厦 -- ; \\");
  Type(7, long_text);
  ASSERT_TRUE(Call("FileSave")) << ::testing::PrintToString(Reports());
  ASSERT_TRUE(Call("Refresh"));
  Select("KB'1");
  EXPECT_EQ(Text(1), "O'Brien's 大厦 -- ; \\");
  EXPECT_EQ(Text(7), long_text);
  EXPECT_EQ(Nodes()[1], "B'1 O'Brien's 大厦 -- ; \\");
}

TEST_P(TreeMasterSheetTest, DeleteAsksFirstAndRefusesTheRootAndBuildingsInUse) {
  AddBuilding(1, "B01", "一号楼");
  AddBuilding(2, "B02", "二号楼");
  Exec("insert into fwfy (房源ID,房源编号,楼宇ID) values (1,'F1',2)");
  Open();
  // A box the test does not answer ends the call with its own error; the delete's handler
  // of last resort does not turn it into a report.
  Variant result;
  EXPECT_EQ(host().invoke(*screen_, "FileDelete", {}, result).message(),
            "PDMLy.FileDelete: unscripted message box: 无选择项目,不能进行编辑");
  EXPECT_EQ(Reports(), (std::vector<std::string>{}));
  // The root: nothing to delete or edit.
  host().ui().answers = {msgbox::kOk, msgbox::kOk};
  host().ui().shown.clear();
  EXPECT_FALSE(Call("FileDelete"));
  EXPECT_FALSE(Call("FileEdit"));
  ASSERT_EQ(host().ui().shown.size(), 2u);
  EXPECT_EQ(LastBox(), "无选择项目,不能进行编辑|64|提示：");

  // Answering no deletes nothing.
  Select("KB01");
  host().ui().answers = {msgbox::kNo};
  EXPECT_FALSE(Call("FileDelete"));
  EXPECT_EQ(LastBox(), "是否删除当前记录:B01 一号楼|52|提示:");
  EXPECT_EQ(Scalar("select count(*) from fwly"), "2");

  // A building a housing unit lies in stays.
  Select("KB02");
  host().ui().answers = {msgbox::kYes};
  EXPECT_FALSE(Call("FileDelete"));
  EXPECT_EQ(Reports(), (std::vector<std::string>{"该[楼宇]已启用,不能删除!|2|楼宇"}));
  EXPECT_EQ(Scalar("select count(*) from fwly"), "2");

  // Yes deletes the row and the node; the next node is selected and shown.
  Select("KB01");
  host().ui().answers = {msgbox::kYes};
  EXPECT_TRUE(Call("FileDelete"));
  EXPECT_EQ(Scalar("select count(*) from fwly where 楼宇ID=1"), "0");
  EXPECT_EQ(Nodes(), (std::vector<std::string>{"全部楼宇", "B02 二号楼"}));
  EXPECT_EQ(Selected() + "|" + Text(0), "B02 二号楼|B02");
}

TEST_P(TreeMasterSheetTest, FindAsksForATextAndNavigationMovesTheSelection) {
  AddBuilding(1, "A01", "一号楼");
  AddBuilding(2, "B01", "Tower East");
  AddBuilding(3, "C01", "tower west");
  Open();
  host().ui().inputs.push_back("TOWER");
  ASSERT_TRUE(Call("Find", {Variant()}));
  EXPECT_EQ(Selected() + "|" + Text(0), "B01 Tower East|B01");
  Call("FindNext");
  EXPECT_EQ(Selected(), "C01 tower west");

  Call("RecordTop");
  EXPECT_EQ(Selected(), "C01 tower west");
  Call("RecordPrevious");
  EXPECT_EQ(Selected() + "|" + Text(0), "B01 Tower East|B01");
  Call("RecordNext");
  EXPECT_EQ(Text(0), "C01");
}

TEST_P(TreeMasterSheetTest, AnEstateUsedOnlyByABuildingCanBeDeleted) {
  Exec(
      "insert into fwwy (物业ID,物业编号,物业名称,建成年份) values "
      "(5,'W01','阳光花园','九十年代')");
  Exec("insert into fwwy (物业ID,物业编号,物业名称) values (6,'W02','月光花园')");
  AddBuilding(1, "B01", "一号楼", 5);
  Exec("insert into fwfy (房源ID,房源编号,物业ID) values (1,'F1',6)");
  Open("PDMWy", 870002);
  EXPECT_EQ(Nodes(), (std::vector<std::string>{"全部物业", "W01 阳光花园", "W02 月光花园"}));
  Select("KW01");
  EXPECT_EQ(Text(4), "九十年代");
  host().ui().answers = {msgbox::kYes, msgbox::kYes};
  EXPECT_TRUE(Call("FileDelete"));
  Select("KW02");
  EXPECT_FALSE(Call("FileDelete"));
  EXPECT_EQ(Reports(), (std::vector<std::string>{"该[物业名称]已启用,不能删除!|2|物业"}));
  // The building keeps its estate ID and shows no estate.
  Open();
  Select("KB01");
  EXPECT_EQ(Text(2), "");
  EXPECT_EQ(sheet_->kvTxt[2].Value.ToDouble(), 5);
}

MRVK_ON_BOTH_ENGINES(TreeMasterSheetTest);

}  // namespace
}  // namespace mrvk
