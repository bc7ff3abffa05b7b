// The housing sheet driven as a clerk drives it, on both engines: the toolbar's operations,
// typing into fields and room cells, ticking boxes. Assertions are on what the clerk sees and
// on the rows the database holds; expected rows are written out by hand.
#include "mrvk/housing/fy_mx.h"

#include <gtest/gtest.h>

#include "support/sheet_test.h"

namespace mrvk {
namespace {

using kvhost::Gesture;

// A find or filter condition array with one row on the plane (0 filter, 1 find).
Variant Condition(int plane, const std::string& value, const std::string& field,
                  const std::string& op) {
  auto a = std::make_shared<VariantArray>(std::vector<int>{2, 1, 3});
  a->at({plane, 0, 0}) = Variant(value);
  a->at({plane, 0, 1}) = Variant(field);
  a->at({plane, 0, 2}) = Variant(op);
  return Variant(a);
}

class FyMxTest : public kvtest::SheetTest {
 protected:
  void Open() {
    ASSERT_NE(OpenScreen("FY_MX", 640002), nullptr);
    sheet_ = dynamic_cast<FY_MX*>(screen_->object.get());
    ASSERT_NE(sheet_, nullptr);
  }
  void Type(int index, const std::string& text) {
    Gest("kvTxt", index, {"type", text});
    Gest("kvTxt", index, {"leave"});
  }
  std::string Text(int index) { return sheet_->kvTxt[index].Text; }
  // Adds a room row and types its number, area and rent.
  void AddRoom(const std::string& room, const std::string& area, const std::string& rent) {
    Gest("kvGridF", -1, {"row_add"});
    const int row = sheet_->rooms.kvGridF.Rows() - 1;
    Gest("kvGridF", -1, {"cell_edit", room, row, FyRooms::kColRoom});
    Gest("kvGridF", -1, {"cell_edit", area, row, FyRooms::kColArea});
    Gest("kvGridF", -1, {"cell_edit", rent, row, FyRooms::kColRent});
  }
  std::vector<std::string> Rooms() {
    std::vector<std::string> out;
    const kvhost::KvGrid& g = sheet_->rooms.kvGridF;
    for (int r = g.FixedRows(); r < g.Rows(); ++r)
      out.push_back(g.TextMatrix(r, 1) + "|" + g.TextMatrix(r, 4) + "|" + g.TextMatrix(r, 5));
    return out;
  }
  // A unit typed in full on a new record.
  void NewUnit(const std::string& name, const std::string& estate, const std::string& owner) {
    ASSERT_TRUE(Call("FileNew"));
    Type(0, name);
    Type(1, estate);
    Type(19, owner);
  }
  int Count(const std::string& table) { return std::stoi(Scalar("select count(*) from " + table)); }

  FY_MX* sheet_ = nullptr;
};

TEST_P(FyMxTest, ANewUnitIsSavedWithTheEstateAreaOwnerAndRoomsItNames) {
  Open();
  ASSERT_TRUE(Call("FileNew"));
  EXPECT_EQ(Text(16), "2012-10-11");
  EXPECT_EQ(Text(28), "未出租");
  EXPECT_EQ(sheet_->lblRecord.Caption, "新建记录...");
  const std::string number = Text(2);
  EXPECT_FALSE(number.empty());
  Type(0, "阳光花园 3-201");
  Type(1, "阳光花园");
  Type(3, "滨江区");
  Type(8, "85.50");
  Type(25, "2500.5");
  Type(19, "O'Neil 王");
  Type(20, "139");
  Gest("optXB", 1, {"click"});
  Gest("chkJC", 0, {"toggle"});
  Gest("chkJC", 4, {"toggle"});
  Gest("chkPT", 4, {"toggle"});
  AddRoom("A", "12.5", "800");
  AddRoom("", "9", "100");  // no room number: never written
  AddRoom("B'1", "10", "700");
  ASSERT_TRUE(Call("FileSave")) << ::testing::PrintToString(TakeReports(false));

  EXPECT_EQ(
      Query("select 房源编号,房源名称,所属区域,面积,出租价格,出租状态,基础设施,配套设施,"
            "登记日期 from fwfy"),
      (std::vector<std::string>{number + "|阳光花园 3-201|滨江区|85.5|2500.5|未出租|燃气;宽带;|"
                                         "电视;|2012-10-11"}));
  EXPECT_EQ(Query("select 物业名称 from fwwy"), (std::vector<std::string>{"阳光花园"}));
  // A new area: a dictionary row whose code is its ID.
  const std::string area_id = Scalar("select ID from pdmsjzd where 名称='滨江区'");
  EXPECT_EQ(Query("select ID,代码,类型 from pdmsjzd where 名称='滨江区'"),
            (std::vector<std::string>{area_id + "|" + area_id + "|所属区域"}));
  EXPECT_EQ(Query("select 业主名称,电话,性别,类型 from fwyz"),
            (std::vector<std::string>{"O'Neil 王|139|女|0"}));
  EXPECT_EQ(Query("select 房间号,面积,月租金,是否出租 from fwfy_fz order by 房间号"),
            (std::vector<std::string>{"A|12.5|800|0", "B'1|10|700|0"}));
  EXPECT_EQ(Scalar("select count(*) from fwfy where 物业ID=(select 物业ID from fwwy) and "
                   "业主ID=(select 业主ID from fwyz)"),
            "1");
  // Shown again as stored, browsing.
  EXPECT_EQ(sheet_->lblRecord.Caption, "记录：1/1");
  EXPECT_EQ(Rooms(), (std::vector<std::string>{"A|否|", "B'1|否|"}));
  EXPECT_EQ(sheet_->chkJC[4].Value, 1);
  EXPECT_EQ(sheet_->chkPT[4].Value, 1);
  EXPECT_EQ(sheet_->chkPT[0].Value, 0);
  EXPECT_TRUE(sheet_->kvTxt[0].Locked);
  EXPECT_FALSE(sheet_->IsDirty());

  // A second unit naming the same estate, area and owner (name and telephone) creates none.
  NewUnit("阳光花园 3-202", "阳光花园", "O'Neil 王");
  Type(3, "滨江区");
  Type(20, "139");
  ASSERT_TRUE(Call("FileSave"));
  EXPECT_EQ(Count("fwwy") * 100 + Count("fwyz") * 10 + Count("fwfy"), 112);
  EXPECT_EQ(Scalar("select count(*) from pdmsjzd where 名称='滨江区'"), "1");
}

TEST_P(FyMxTest, ChecksBeforeSavingRefuseAndKeepTheSheetEditing) {
  Open();
  Exec("insert into fwfy (房源ID,房源编号,房源名称) values (7,'F-001','一号')");
  Exec("insert into fwfy (房源ID,房源编号,房源名称) values (8,'F-002','二号')");
  NewUnit("", "碧水苑", "");
  EXPECT_FALSE(Call("FileSave"));
  EXPECT_EQ(TakeReports(false),
            (std::vector<std::string>{"房源名称不能为空，请修改后重试！|2|房屋租赁管理"}));
  Type(0, "三号");
  Gest("kvTxt", 2, {"type", "F-001"});
  host().ui().answers.push_back(msgbox::kOk);
  EXPECT_FALSE(Call("FileSave"));
  EXPECT_EQ(LastBox(), "房源编号重复,请检查!|64|房屋租赁管理");
  EXPECT_FALSE(sheet_->kvTxt[0].Locked);
  EXPECT_EQ(Count("fwfy"), 2);
  EXPECT_EQ(Count("fwwy"), 0);
  // An existing unit given another's number: titled "提示：".
  ASSERT_TRUE(Call("FileCancel"));
  ASSERT_TRUE(Call("RecordTop"));
  ASSERT_TRUE(Call("FileEdit"));
  Gest("kvTxt", 2, {"type", "F-002"});
  Type(1, "碧水苑");
  host().ui().answers.push_back(msgbox::kOk);
  EXPECT_FALSE(Call("FileSave"));
  EXPECT_EQ(LastBox(), "房源编号重复,请检查!|64|提示：");
}

TEST_P(FyMxTest, RoomsLetAreLockedAndKeptAndDeletedRoomsGoWithTheSave) {
  Exec("insert into fwwy (物业ID,物业编号,物业名称) values (1,'W1','翠竹苑')");
  Exec(
      "insert into fwfy (房源ID,房源编号,房源名称,出租状态,物业ID) values "
      "(7,'F-007','七号','部分出租',1)");
  Exec("insert into fwfy_fz (AutoID,房源ID,房间号,面积,月租金,是否出租) values (1,7,'A',10,500,1)");
  Exec("insert into fwfy_fz (AutoID,房源ID,房间号,面积,月租金,是否出租) values (2,7,'B',11,600,0)");
  Exec(
      "insert into fwhd (合同ID,合同编号,状态,smark,分租房间,起租日期,止租日期,付租方式) values "
      "(3,'HT-3','生效','02','A','2012-01-01','2012-12-31','月付')");
  Exec("insert into fwhdmx (合同明细ID,合同ID,房源ID) values (4,3,7)");
  Exec("insert into fwhd (合同ID,合同编号,状态,smark,分租房间) values (5,'HT-5','生效','02','')");
  Exec("insert into fwhdmx (合同明细ID,合同ID,房源ID) values (6,5,7)");
  ASSERT_TRUE(host().create_schema().ok());  // the key sources pass the rows made here
  Open();
  ASSERT_TRUE(Call("RecordTop"));
  EXPECT_EQ(Rooms(), (std::vector<std::string>{"A|是|HT-3", "B|否|"}));
  EXPECT_EQ(sheet_->rooms.kvGridF.TextMatrix(1, 6), "2012-01-01");
  EXPECT_EQ(sheet_->rooms.kvGridZ.Rows(), 2);
  EXPECT_EQ(sheet_->rooms.kvGridZ.TextMatrix(1, 1), "HT-5");

  ASSERT_TRUE(Call("FileEdit"));
  // The let room: locked for edits, its delete refused after the grid's own question.
  Gest("kvGridF", -1, {"cell_click", "", 1, FyRooms::kColRoom});
  EXPECT_TRUE(sheet_->rooms.kvGridF.RowLocked(1));
  EXPECT_FALSE(host().gesture(*screen_, "kvGridF", -1, {"cell_edit", "Z", 1, 1}).ok());
  host().ui().answers.push_back(msgbox::kYes);
  host().ui().answers.push_back(msgbox::kOk);
  Gest("kvGridF", -1, {"row_delete", "", 1, FyRooms::kColRoom});
  EXPECT_EQ(LastBox(), "不能删除已经出租的房间号！|48|操作提示");
  // The free room is deleted in the grid; a new room is added; saved together.
  host().ui().answers.push_back(msgbox::kYes);
  Gest("kvGridF", -1, {"row_delete", "", 2, FyRooms::kColRoom});
  AddRoom("C", "9", "450");
  EXPECT_EQ(Query("select 房间号 from fwfy_fz order by AutoID"),
            (std::vector<std::string>{"A", "B"}));
  ASSERT_TRUE(Call("FileSave")) << ::testing::PrintToString(TakeReports(false));
  EXPECT_EQ(Query("select 房间号,是否出租 from fwfy_fz order by 房间号"),
            (std::vector<std::string>{"A|1", "C|0"}));
  // The save rewrites the state from the drop-down, as the clerk left it.
  EXPECT_EQ(Scalar("select 出租状态 from fwfy where 房源ID=7"), "部分出租");
}

TEST_P(FyMxTest, AFailureInTheMiddleOfTheSaveLeavesNoRowBehind) {
  Open();
  NewUnit("八号", "新物业", "新业主");
  Type(3, "新区");
  AddRoom("A", "10", "500");
  // The rooms' table is gone: the last statements of the save fail.
  Exec("drop table fwfy_fz");
  EXPECT_FALSE(Call("FileSave"));
  const auto reports = TakeReports(false);
  ASSERT_EQ(reports.size(), 1u);
  EXPECT_EQ(reports[0].rfind("保存时出错：", 0), 0u) << reports[0];
  EXPECT_EQ(Count("fwfy") + Count("fwwy") + Count("fwyz") +
                std::stoi(Scalar("select count(*) from pdmsjzd where 名称='新区'")),
            0);
  EXPECT_FALSE(sheet_->kvTxt[0].Locked);  // still editing, as typed
  EXPECT_EQ(Text(0), "八号");
}

TEST_P(FyMxTest, ASaveOverAnotherClerksLaterSaveIsRefused) {
  Exec("insert into fwfy (房源ID,房源编号,房源名称,物业ID) values (7,'F-007','七号',0)");
  Open();
  ASSERT_TRUE(Call("RecordTop"));
  ASSERT_TRUE(Call("FileEdit"));
  // Another clerk opens the same unit and saves a change first.
  auto other = NewHost();
  kvhost::Screen* theirs = other->open("FY_MX", 640002, 0);
  ASSERT_NE(theirs, nullptr);
  mrvk::Variant ignored;
  ASSERT_TRUE(other->invoke(*theirs, "RecordTop", {}, ignored).ok());
  ASSERT_TRUE(other->invoke(*theirs, "FileEdit", {}, ignored).ok());
  ASSERT_TRUE(other->gesture(*theirs, "kvTxt", 0, {"type", "七号（改）"}).ok());
  ASSERT_TRUE(other->gesture(*theirs, "kvTxt", 1, {"type", "甲"}).ok());
  ASSERT_TRUE(other->invoke(*theirs, "FileSave", {}, ignored).ok());
  ASSERT_TRUE(ignored.AsBool());

  Type(0, "七号（我的）");
  Type(1, "乙");
  host().ui().answers.push_back(msgbox::kOk);
  EXPECT_FALSE(Call("FileSave"));
  EXPECT_EQ(LastBox(), std::string(kChangedByOthers) + "|48|房屋租赁管理");
  EXPECT_EQ(Scalar("select 房源名称 from fwfy where 房源ID=7"), "七号（改）");
  EXPECT_EQ(Scalar("select count(*) from fwwy where 物业名称='乙'"), "0");
  // Shown anew, the record saves.
  ASSERT_TRUE(Call("FileCancel"));
  ASSERT_TRUE(Call("FileEdit"));
  Type(0, "七号（我的）");
  ASSERT_TRUE(Call("FileSave"));
  EXPECT_EQ(Scalar("select 房源名称 from fwfy where 房源ID=7"), "七号（我的）");
}

TEST_P(FyMxTest, NavigationFindAndFilterMoveOverTheUnits) {
  for (int i = 1; i <= 3; ++i)
    Exec("insert into fwfy (房源ID,房源编号,房源名称,出租状态) values (" + std::to_string(i * 10) +
         ",'F-00" + std::to_string(i) + "','单元" + std::to_string(i) + "','" +
         (i == 2 ? "已出租" : "未出租") + "')");
  Open();
  ASSERT_TRUE(Call("Refresh"));
  EXPECT_EQ(Text(2) + " " + sheet_->lblRecord.Caption, "F-003 记录：3/3");
  ASSERT_TRUE(Call("RecordTop"));
  ASSERT_TRUE(Call("RecordNext"));
  EXPECT_EQ(Text(2) + " " + sheet_->lblRecord.Caption, "F-002 记录：2/3");
  EXPECT_EQ(sheet_->Lab_Status.Caption, "已出租");
  ASSERT_TRUE(Call("Find", {Condition(1, "F-00", "房源编号", "like")}));
  EXPECT_EQ(Text(2), "F-001");
  ASSERT_TRUE(Call("FindNext"));
  EXPECT_EQ(Text(2), "F-002");
  ASSERT_TRUE(Call("FindNext"));
  ASSERT_TRUE(Call("FindNext"));  // no further hit: the record stays
  EXPECT_EQ(Text(2), "F-003");
  // A quote in a find value finds nothing and breaks nothing.
  ASSERT_TRUE(Call("Find", {Condition(1, "F'", "房源编号", "=")}));
  EXPECT_EQ(Text(2), "");
  EXPECT_TRUE(TakeReports(false).empty());
  ASSERT_TRUE(Call("Filter", {Condition(0, "未出租", "出租状态", "=")}));
  EXPECT_TRUE(sheet_->LabFilter.Visible);
  EXPECT_EQ(Text(2) + " " + sheet_->lblRecord.Caption, "F-003 记录：2/2");
  ASSERT_TRUE(Call("RecordPrevious"));
  EXPECT_EQ(Text(2), "F-001");
}

TEST_P(FyMxTest, TheSheetForUnitsLetWholeLeavesRoomsFitOutAndKnownOwnersAlone) {
  Exec("insert into fwwy (物业ID,物业编号,物业名称) values (1,'W1','翠竹苑')");
  Exec(
      "insert into fwyz (业主ID,业主编号,业主名称,电话,身份证号,类型) values "
      "(2,'Y2','李四','137','1',0)");
  Exec(
      "insert into fwfy (房源ID,房源编号,房源名称,物业ID,业主ID,装修程度) values "
      "(7,'F-007','七号',1,2,'精装')");
  Exec("insert into fwfy_fz (AutoID,房源ID,房间号,面积,月租金,是否出租) values (1,7,'A',10,500,0)");
  ASSERT_TRUE(host().create_schema().ok());
  ASSERT_NE(OpenScreen("FY_MX_old", 870103), nullptr);
  auto* sheet = dynamic_cast<FY_MX*>(screen_->object.get());
  ASSERT_NE(sheet, nullptr);
  EXPECT_FALSE(sheet->kvTxt.Exists(29));
  EXPECT_EQ(sheet->Controls().Find("kvGridF"), nullptr);
  mrvk::Variant answer;
  ASSERT_TRUE(host().invoke(*screen_, "Attributes", {Variant(98)}, answer).ok());
  EXPECT_EQ(answer.ToString(), "check");
  ASSERT_TRUE(Call("RecordTop"));
  ASSERT_TRUE(Call("FileEdit"));
  Gest("kvTxt", 0, {"type", "七号甲"});
  Gest("kvTxt", 23, {"type", "2"});  // a known owner's details are not stored here
  ASSERT_TRUE(Call("FileSave")) << ::testing::PrintToString(TakeReports(false));
  EXPECT_EQ(Query("select 房源名称,装修程度 from fwfy"), (std::vector<std::string>{"七号甲|精装"}));
  EXPECT_EQ(Query("select 房间号 from fwfy_fz"), (std::vector<std::string>{"A"}));
  EXPECT_EQ(Query("select 身份证号 from fwyz"), (std::vector<std::string>{"1"}));
  // Another telephone makes another party: name and telephone together no longer match.
  ASSERT_TRUE(Call("FileEdit"));
  Gest("kvTxt", 20, {"type", "138"});
  ASSERT_TRUE(Call("FileSave"));
  EXPECT_EQ(Query("select 业主名称,电话 from fwyz order by 业主ID"),
            (std::vector<std::string>{"李四|137", "李四|138"}));
}

MRVK_ON_BOTH_ENGINES(FyMxTest);

}  // namespace
}  // namespace mrvk
