// Saving on the contract sheet, driven as a clerk drives it on both engines: a new contract
// typed in full with a tenant nobody knows yet, the refusals before anything is written, a
// failure half-way, an edit that replaces the fee terms, the clicks and periods of the fee
// grid and the lease arithmetic. Assertions are on what the clerk sees and on the rows the
// database holds; expected values are written out by hand.
#include <gtest/gtest.h>

#include "mrvk/contract/zfhd_2/zfhd_2.h"
#include "mrvk/frame/record_guard.h"
#include "support/sheet_test.h"

namespace mrvk {
namespace {

using Rows = std::vector<std::string>;

class ZfHd2SaveTest : public kvtest::SheetTest {
 protected:
  void SetUp() override {
    SheetTest::SetUp();
    Exec("insert into fwwy (物业ID,物业编号,物业名称) values (1,'W1','阳光花园')");
    Exec(
        "insert into fwfy (房源ID,房源编号,房源名称,物业ID,面积,出租价格,出租状态) values "
        "(7,'A-101','阳光 1栋101',1,85.5,2500,'未出租')");
    Exec(
        "insert into fwfy (房源ID,房源编号,房源名称,物业ID,面积,基础设施,配套设施,出租价格,"
        "出租状态) values (9,'B-201','阳光 2栋201',1,120,'燃气;','床;',1800,'部分出租')");
    Exec(
        "insert into fwfy_fz (AutoID,房源ID,房间号,面积,月租金,是否出租) values "
        "(1,9,'A',12.5,900,0)");
    Exec(
        "insert into fwyz (业主ID,业主编号,业主名称,性别,电话,类型) values "
        "(11,'K01','李四','男','139',1)");
    // A contract of the key to edit, with two fee terms, and one of another key.
    Exec(
        "insert into fwhd (合同ID,progID,smark,系统,状态,合同编号,合同日期,客户ID,起租日期,"
        "止租日期,租赁期,收款期间,月租金) values (2,870201,'01','填单','未生效','HT-B',"
        "'2012-10-01',11,'2012-10-01','2013-09-30',12,1,2000)");
    Exec("insert into fwhdmx (合同明细ID,合同ID,房源ID) values (102,2,9)");
    Exec(
        "insert into fwhdfs (合同明细ID,合同ID,费用名称,是否包干,包干价,是否预收,度数,单价,"
        "收款期间,序号) values (301,2,'房租',1,2000,1,0,0,1,1)");
    Exec(
        "insert into fwhdfs (合同明细ID,合同ID,费用名称,是否包干,包干价,是否预收,度数,单价,"
        "收款期间,序号) values (302,2,'物业管理费',1,60,1,0,0,1,2)");
    Exec(
        "insert into fwhd (合同ID,progID,smark,系统,状态,合同编号,合同日期) values "
        "(5,870202,'01','填单','未生效','HT-E','2012-05-01')");
    Exec("insert into fwhdmx (合同明细ID,合同ID,房源ID) values (105,5,7)");
    ASSERT_TRUE(host().create_schema().ok());  // the key sources pass the rows made here
    Exec("delete from pdmsjzd where 类型='费用名称'");
    for (const char* row :
         {"(91,'02','水费','费用名称')", "(92,'01','房租','费用名称')",
          "(93,'03','物业管理费','费用名称')", "(94,'04','O''Brien费','费用名称')"})
      Exec(std::string("insert into pdmsjzd (ID,代码,名称,类型) values ") + row);
    screen_ = host().open("zfHd_2", 870201, 0);
    ASSERT_NE(screen_, nullptr) << host().last_error();
    host().take_events();
    sheet_ = dynamic_cast<zfHd_2*>(screen_->object.get());
    ASSERT_NE(sheet_, nullptr);
  }

  void Type(int index, const std::string& text) {
    Gest("kvTxt", index, {"type", text});
    Gest("kvTxt", index, {"leave"});
  }
  void Cell(int row, int col, const std::string& text) {
    Gest("kvGrid", -1, {"cell_edit", text, row, col});
  }
  void Click(int row, int col) { Gest("kvGrid", -1, {"cell_click", "", row, col}); }
  std::string Text(int index) { return sheet_->kvTxt[index].Text; }
  // The fee rows as shown, every column joined by "|".
  Rows Fees() {
    Rows out;
    const kvhost::KvGrid& g = sheet_->fees.kvGrid;
    for (int r = g.FixedRows(); r < g.Rows(); ++r) {
      std::string line;
      for (int c = 0; c < g.Cols(); ++c) line += (c ? "|" : "") + g.TextMatrix(r, c);
      out.push_back(line);
    }
    return out;
  }
  Rows StoredFees(const std::string& contract) {
    return Query(
        "select 合同明细ID,费用名称,是否包干,包干价,是否预收,度数,单价,收款期间,序号 from fwhdfs "
        "where 合同ID=" +
        contract + " order by 序号");
  }
  int Count(const std::string& table) { return std::stoi(Scalar("select count(*) from " + table)); }
  // A save refused by a box: answered, false, the box as shown.
  std::string RefusedByBox() {
    host().ui().answers.push_back(msgbox::kOk);
    EXPECT_FALSE(Call("FileSave"));
    return LastBox();
  }

  zfHd_2* sheet_ = nullptr;
};

TEST_P(ZfHd2SaveTest, ANewContractForARoomWithATypedTenantIsWrittenWithItsFeeTerms) {
  ASSERT_TRUE(Call("FileNew"));
  EXPECT_EQ(Text(2), "HT2012100001");
  Type(27, "002");
  Type(18, "B-201");
  Type(45, "A");
  Type(44, "押二付三");
  EXPECT_EQ(Text(22) + " " + Text(6) + " " + Text(34), "12.5 3 1800");
  Type(8, "2012-11-01");
  Type(0, "12");
  Type(35, "300");
  Type(33, "2");
  Type(37, "押'金");
  Type(43, "现金");
  Gest("txt", -1, {"type", "含 O'Brien 的车位"});
  // A tenant nobody knows yet, typed in full.
  Type(4, "O'Neil 赵");
  Type(28, "136");
  Type(31, "320102");
  Type(29, "某'公司");
  Type(30, "浙江");
  Type(32, "新客");
  Gest("optXB", 3, {"click"});
  // The fee terms: the rent in advance (后付 clicked, then 预收), water metered with a period
  // of its own, the management fee in arrears, the fee with a quote in its name left bare.
  Click(2, 4);
  Click(2, 3);
  Cell(3, 5, "120.5");
  Cell(3, 6, "3.2");
  Cell(3, 7, "1");
  Cell(4, 2, "50");
  Click(4, 4);
  EXPECT_EQ(Fees(), (Rows{"1|房租|900|√||||3|", "2|水费||||120.5|3.2|1|", "3|物业管理费|50||√|||3|",
                          "4|O'Brien费|||||||"}));
  TakeReports(/*include_messages=*/true);
  ASSERT_TRUE(Call("FileSave")) << ::testing::PrintToString(TakeReports(false));
  EXPECT_EQ(TakeReports(/*include_messages=*/true), Rows{"保存单据成功！"});

  const std::string client = Scalar("select 业主ID from fwyz where 电话='136'");
  EXPECT_EQ(Query("select 业主编号,业主名称,电话,性别,身份证号,工作单位,籍贯,备注,类型 from fwyz "
                  "where 电话='136'"),
            Rows{client + "|O'Neil 赵|136|男|320102|某'公司|浙江|新客|1"});
  const std::string id = Scalar("select 合同ID from fwhd where 合同编号='HT2012100001'");
  EXPECT_EQ(Query("select progID,smark,系统,状态,合同编号,合同日期,业务员ID,预收押金,中介费,客户ID,"
                  "租住人数,押金备注1,押金备注2,押金备注3,起租日期,止租日期,租赁期,收款期间,"
                  "月租金,付租方式,分租房间,面积,备注,制单人,制单日期 from fwhd where 合同ID=" +
                  id),
            Rows{"870201|01|填单|未生效|HT2012100001|2012-10-11|2|1800|300|" + client +
                 "|2|押'金||现金|2012-11-01|2013-10-31|12|3|900|押二付三|A|12.5|含 O'Brien "
                 "的车位|张三|2012-10-11"});
  EXPECT_EQ(Query("select 房源ID,基础设施,配套设施 from fwhdmx where 合同ID=" + id),
            Rows{"9|燃气;|床;"});
  const Rows stored = StoredFees(id);
  ASSERT_EQ(stored.size(), 4u);
  Rows terms;  // without the new keys
  for (const std::string& row : stored) terms.push_back(row.substr(row.find('|') + 1));
  EXPECT_EQ(terms, (Rows{"房租|1|900|1|0|0|3|1", "水费|0|0|0|120.5|3.2|1|2",
                         "物业管理费|1|50|0|0|0|3|3", "O'Brien费|0|0|0|0|0|0|4"}));
  // Shown again from the database, browsing, the keys of the terms in the grid.
  EXPECT_EQ(sheet_->GetID(), std::stoi(id));
  EXPECT_EQ(sheet_->lblRecord.Caption, "记录：2/2");
  EXPECT_EQ(sheet_->kvTxt[4].Value.ToString(), client);
  EXPECT_EQ(Text(4) + " " + Text(29) + " " + sheet_->txt.Text,
            "O'Neil 赵 某'公司 含 O'Brien 的车位");
  EXPECT_TRUE(sheet_->kvTxt[2].Locked);
  EXPECT_FALSE(sheet_->IsDirty());
  EXPECT_EQ(Fees()[1], "2|水费||||120.5|3.2|1|" + stored[1].substr(0, stored[1].find('|')));

  // The same name and telephone again: no new client, what the sheet shows overwrites the
  // stored fields. The same name with another telephone is another client.
  ASSERT_TRUE(Call("FileNew"));
  Type(18, "A-101");
  Type(4, "O'Neil 赵");
  EXPECT_EQ(Text(28) + " " + Text(30), "136 浙江");
  Type(30, "上海");
  Gest("optXB", 2, {"click"});
  ASSERT_TRUE(Call("FileSave"));
  EXPECT_EQ(Query("select 业主ID,性别,籍贯,工作单位 from fwyz where 业主名称='O''Neil 赵'"),
            Rows{client + "|女|上海|某'公司"});
  ASSERT_TRUE(Call("FileNew"));
  Type(18, "A-101");
  Type(4, "O'Neil 赵");
  Type(28, "");
  ASSERT_TRUE(Call("FileSave"));
  EXPECT_EQ(Query("select 电话 from fwyz where 业主名称='O''Neil 赵' order by 业主ID"),
            (Rows{"136", ""}));
  EXPECT_EQ(Query("select 合同编号 from fwhd where progID=870201 order by 合同ID"),
            (Rows{"HT-B", "HT2012100001", "HT2012100002", "HT2012100003"}));
}

TEST_P(ZfHd2SaveTest, RefusalsComeBeforeAnyWriteAndKeepTheSheetEditing) {
  ASSERT_TRUE(Call("FileNew"));
  EXPECT_FALSE(Call("FileSave"));
  Type(4, "新客");
  EXPECT_FALSE(Call("FileSave"));
  EXPECT_EQ(
      TakeReports(/*include_messages=*/false),
      (Rows{"客户信息为空，不能保存！|2|房屋租赁管理", "房源信息为空，不能保存！|2|房屋租赁管理"}));
  Type(18, "A-101");
  // Dates that are none: each field says so itself, and nothing is written.
  struct BadDate {
    int index;
    const char* text;
    const char* box;
  };
  for (const BadDate& d : {BadDate{8, "2012-02-30", "起租日期输入有误，请重新输入！|48|"},
                           BadDate{1, "2013-13-01", "止租日期输入有误，请重新输入！|48|"},
                           BadDate{5, "昨天", "合同日期输入有误，请重新输入！|48|"}}) {
    const std::string before = Text(d.index);
    Type(d.index, d.text);
    EXPECT_EQ(RefusedByBox(), d.box) << d.text;
    Type(d.index, before);
  }
  EXPECT_TRUE(TakeReports(/*include_messages=*/false).empty());
  // A typed number another contract of the key has; that of another key is no obstacle.
  Gest("kvTxt", 2, {"type", "HT-B"});
  EXPECT_EQ(RefusedByBox(), "合同编号重复,请检查!|64|房屋租赁管理");
  EXPECT_FALSE(sheet_->kvTxt[4].Locked);
  EXPECT_EQ(Count("fwhd") * 100 + Count("fwhdmx") * 10 + Count("fwhdfs"), 222);
  EXPECT_EQ(Scalar("select count(*) from fwyz where 业主名称='新客'"), "0");
  Gest("kvTxt", 2, {"type", "HT-E"});
  // Whole-number columns take a typed fraction rounded half to even, on either engine.
  Type(33, "2.5");
  Type(6, "3.5");
  ASSERT_TRUE(Call("FileSave"));
  EXPECT_EQ(Text(2) + " " + Text(33) + " " + Text(6), "HT-E 2 4");
  EXPECT_EQ(Scalar("select count(*) from fwyz where 业主名称='新客'"), "1");

  // A stored contract: an emptied number, another's number (titled "提示：").
  ASSERT_TRUE(Call("FileEdit"));
  Gest("kvTxt", 2, {"type", " "});
  EXPECT_EQ(RefusedByBox(), "合同编号为空，不能保存  |64|房屋租赁管理");
  Gest("kvTxt", 2, {"type", "HT-B"});
  EXPECT_EQ(RefusedByBox(), "合同编号重复,请检查!|64|提示：");
  EXPECT_FALSE(sheet_->kvTxt[2].Locked);
  EXPECT_EQ(Query("select 合同编号 from fwhd order by 合同ID"), (Rows{"HT-B", "HT-E", "HT-E"}));
}

TEST_P(ZfHd2SaveTest, AFailureHalfWayLeavesNoRowBehind) {
  ASSERT_TRUE(Call("FileNew"));
  Type(18, "A-101");
  Type(4, "钱七");
  Type(28, "188");
  Cell(3, 2, "30");
  // The fee terms' table is gone: the last statements of the save fail.
  Exec("drop table fwhdfs");
  EXPECT_FALSE(Call("FileSave"));
  // The database's own words, engine by engine, and nothing else.
  const Rows reports = TakeReports(/*include_messages=*/false);
  ASSERT_EQ(reports.size(), 1u) << ::testing::PrintToString(reports);
  EXPECT_NE(reports[0].find("fwhdfs"), std::string::npos) << reports[0];
  EXPECT_EQ(reports[0].substr(reports[0].size() - 21), "|8|房屋租赁管理");
  EXPECT_EQ(Count("fwhd") * 100 + Count("fwhdmx") * 10 + Count("fwyz"), 221);
  EXPECT_FALSE(sheet_->kvTxt[2].Locked);  // still editing, as typed
  EXPECT_EQ(Text(4) + " " + Fees()[1], "钱七 2|水费|30|||||0|");
  // The clients' table gone too: the tenant's step says why in its box, and stops the save.
  Exec("drop table fwyz");
  const std::string box = RefusedByBox();
  EXPECT_EQ(box.rfind("SavePDM::", 0), 0u) << box;
  EXPECT_NE(box.find("fwyz"), std::string::npos) << box;
  EXPECT_EQ(box.substr(box.size() - 22), "|16|房屋租赁管理");
  EXPECT_TRUE(TakeReports(/*include_messages=*/false).empty());
  EXPECT_EQ(Count("fwhd") * 10 + Count("fwhdmx"), 22);
}

TEST_P(ZfHd2SaveTest, AnotherUnitReplacesTheStoredFeeTermsAtTheSaveAndTheNumberIsRevised) {
  ASSERT_TRUE(Call("Refresh"));
  ASSERT_EQ(Text(2), "HT-B");
  EXPECT_EQ(Fees(), (Rows{"1|房租|2000|√||||1|301", "2|物业管理费|60|√||||1|302"}));
  // Another unit shows fresh rows; cancelled, nothing is lost.
  ASSERT_TRUE(Call("FileEdit"));
  Type(18, "A-101");
  EXPECT_EQ(Fees().size(), 4u);
  ASSERT_TRUE(Call("FileCancel"));
  EXPECT_EQ(Fees()[1], "2|物业管理费|60|√||||1|302");
  EXPECT_EQ(StoredFees("2").size(), 2u);

  Exec("update xt_BillAttribute set text='1' where progID=870201 and attribute='onsavecode'");
  ASSERT_TRUE(Call("FileEdit"));
  Type(18, "A-101");
  Type(8, "");
  Type(44, "押一付三");
  ASSERT_TRUE(Call("FileSave")) << ::testing::PrintToString(TakeReports(false));
  // A number with letters behind its last "-" reads as 0 there.
  EXPECT_EQ(Text(2) + " " + Text(8) + " " + Text(18), "HT-1 1900-01-01 A-101");
  EXPECT_EQ(Query("select 房源ID from fwhdmx where 合同ID=2"), Rows{"7"});
  EXPECT_EQ(Scalar("select count(*) from fwhdfs where 合同明细ID in (301,302)"), "0");
  Rows stored = StoredFees("2");
  ASSERT_EQ(stored.size(), 4u);
  EXPECT_EQ(stored[0].substr(stored[0].find('|') + 1), "房租|1|2500|1|0|0|3|1");
  // A stored term changed in place keeps its key; the next revision follows.
  const std::string fee_key = stored[2].substr(0, stored[2].find('|'));
  ASSERT_TRUE(Call("FileEdit"));
  Cell(4, 2, "80");
  Click(4, 4);
  ASSERT_TRUE(Call("FileSave"));
  EXPECT_EQ(Text(2), "HT-2");
  EXPECT_EQ(StoredFees("2")[2], fee_key + "|物业管理费|1|80|0|0|0|3|3");
  EXPECT_EQ(Scalar("select 起租日期 from fwhd where 合同ID=2"), "1900-01-01");
}

TEST_P(ZfHd2SaveTest, ACopyWritesTermsOfItsOwnAndAnotherClerksSaveIsNotOverwritten) {
  ASSERT_TRUE(Call("RecordTop"));
  Gest("Chk", -1, {"toggle"});
  ASSERT_TRUE(Call("FileNew"));
  ASSERT_TRUE(Call("FileSave")) << ::testing::PrintToString(TakeReports(false));
  Gest("Chk", -1, {"toggle"});
  const std::string copy = Scalar("select 合同ID from fwhd where 合同编号='HT2012100001'");
  EXPECT_EQ(Query("select 费用名称,包干价 from fwhdfs where 合同ID=" + copy + " order by 序号"),
            (Rows{"房租|2000", "物业管理费|60"}));
  EXPECT_EQ(StoredFees("2"), (Rows{"301|房租|1|2000|1|0|0|1|1", "302|物业管理费|1|60|1|0|0|1|2"}));
  EXPECT_EQ(Count("fwyz"), 1);  // 李四 with his telephone: the same client

  // Another clerk saves the contract while this one edits it: this save is refused.
  ASSERT_TRUE(Call("RecordTop"));
  ASSERT_TRUE(Call("FileEdit"));
  auto other = NewHost();
  kvhost::Screen* theirs = other->open("zfHd_2", 870201, 0);
  ASSERT_NE(theirs, nullptr);
  Variant answer;
  ASSERT_TRUE(other->invoke(*theirs, "RecordTop", {}, answer).ok());
  ASSERT_TRUE(other->invoke(*theirs, "FileEdit", {}, answer).ok());
  ASSERT_TRUE(other->gesture(*theirs, "kvTxt", 35, {"type", "999"}).ok());
  ASSERT_TRUE(other->invoke(*theirs, "FileSave", {}, answer).ok());
  ASSERT_TRUE(answer.AsBool());
  Type(35, "100");
  EXPECT_EQ(RefusedByBox(), std::string(kChangedByOthers) + "|48|房屋租赁管理");
  EXPECT_EQ(Scalar("select 中介费 from fwhd where 合同ID=2"), "999");

  // A sheet opened on one contract follows the new contract it saved.
  ASSERT_TRUE(host().close(screen_->id).ok());
  screen_ = host().open("zfHd_2", 870201, /*record=*/2);
  ASSERT_NE(screen_, nullptr);
  sheet_ = dynamic_cast<zfHd_2*>(screen_->object.get());
  ASSERT_TRUE(Call("FileNew"));
  Type(18, "A-101");
  Type(4, "孙八");
  ASSERT_TRUE(Call("FileSave")) << ::testing::PrintToString(TakeReports(false));
  EXPECT_EQ(Text(2) + " " + sheet_->lblRecord.Caption, "HT2012100002 记录：1/1");
  ASSERT_TRUE(Call("RecordTop"));
  EXPECT_EQ(Text(4), "孙八");
}

TEST_P(ZfHd2SaveTest, TheFeeGridMarksAdvanceOrArrearsAndFollowsThePaymentPeriod) {
  ASSERT_TRUE(Call("FileNew"));
  Type(18, "A-101");
  // No payment mode yet: a priced fee takes the period 0.
  Cell(3, 5, "10");
  EXPECT_EQ(Fees()[1], "2|水费||||10||0|");
  Type(44, "半年付");
  EXPECT_EQ(Fees()[0], "1|房租|2500|||||6|");
  struct Step {
    int row;
    int col;
    const char* text;  // nullptr: a click
    const char* row_after;
  };
  const Step steps[] = {
      {4, 2, "45", "3|物业管理费|45|||||6|"},      // a price brings the period
      {4, 4, nullptr, "3|物业管理费|45||√|||6|"},  // 后付
      {4, 3, nullptr, "3|物业管理费|45|√||||6|"},  // 预收 clears 后付
      {4, 7, "2", "3|物业管理费|45|√||||2|"},      // a typed period stands
      {4, 6, "1.5", "3|物业管理费|45|√|||1.5|2|"}, {4, 2, "", "3|物业管理费||√|||1.5|2|"},
      {4, 6, "", "3|物业管理费||√|||||"},       // no price left: no period
      {1, 3, nullptr, "3|物业管理费||√|||||"},  // a caption row takes no mark
  };
  for (const Step& s : steps) {
    if (s.text)
      Cell(s.row, s.col, s.text);
    else
      Click(s.row, s.col);
    EXPECT_EQ(Fees()[2], s.row_after) << s.row << "," << s.col;
  }
  EXPECT_EQ(sheet_->fees.kvGrid.TextMatrix(1, 3), "预收");
  // Browsing, a click changes nothing.
  ASSERT_TRUE(Call("FileCancel"));
  ASSERT_TRUE(Call("Refresh"));
  Click(2, 4);
  EXPECT_EQ(Fees()[0], "1|房租|2000|√||||1|301");
}

TEST_P(ZfHd2SaveTest, TheLeaseEndFollowsItsMonthsAndTheMonthsFollowItsDates) {
  ASSERT_TRUE(Call("FileNew"));
  struct ByMonths {
    const char* start;
    const char* months;
    const char* end;
  };
  for (const ByMonths& c :
       {ByMonths{"2012-11-01", "12", "2013-10-31"}, ByMonths{"2012-01-31", "1", "2012-02-28"},
        ByMonths{"2011-12-01", "2", "2012-01-31"}, ByMonths{"2012-03-15", "6.9", "2012-09-14"}}) {
    Type(1, "");
    Type(8, c.start);
    Type(0, c.months);
    // The end written by the sheet raises nothing: the months stay as typed.
    EXPECT_EQ(Text(1) + " " + Text(0), std::string(c.end) + " " + c.months) << c.start;
  }
  struct ByDates {
    const char* start;
    const char* end;
    const char* months;
  };
  for (const ByDates& c :
       {ByDates{"2012-01-01", "2012-01-31", "0"}, ByDates{"2012-11-01", "2013-10-31", "11"},
        ByDates{"2012-10-31", "2012-11-01", "1"}, ByDates{"2012-12-15", "2012-03-15", "-9"}}) {
    Type(8, c.start);
    Type(1, c.end);
    EXPECT_EQ(Text(0), c.months) << c.start << " " << c.end;
  }
  // 起租日期 left with 止租日期 filled counts too; typed as 2012/3/5, it reads as a date.
  Type(8, "2012/3/5");
  EXPECT_EQ(Text(8) + " " + Text(0), "2012-03-05 0");
  // No months, or no start: the other field stays.
  Type(0, "");
  EXPECT_EQ(Text(1), "2012-03-15");
  Type(8, "");
  Type(0, "5");
  EXPECT_EQ(Text(1), "2012-03-15");
}

MRVK_ON_BOTH_ENGINES(ZfHd2SaveTest);

}  // namespace
}  // namespace mrvk
