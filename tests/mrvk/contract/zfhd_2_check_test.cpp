// Approval, un-approval and delete of the contract sheet, driven as a clerk drives them on
// both engines: contracts and fee terms written by SQL, then the toolbar's operations and the
// fields as typed. Assertions are on the boxes and reports the clerk sees and on the rows the
// database holds, written out by hand.
#include <gtest/gtest.h>

#include "mrvk/contract/zfhd_2/zfhd_2.h"
#include "support/sheet_test.h"

namespace mrvk {
namespace {

using Rows = std::vector<std::string>;

class ZfHd2CheckTest : public kvtest::SheetTest {
 protected:
  void SetUp() override {
    SheetTest::SetUp();
    Exec("insert into fwwy (物业ID,物业编号,物业名称) values (1,'W1','阳光花园')");
    Exec(
        "insert into fwfy (房源ID,房源编号,房源名称,物业ID,出租价格,出租状态) values "
        "(7,'A-101','阳光 1栋101',1,2500,'未出租')");
    Exec(
        "insert into fwfy (房源ID,房源编号,房源名称,物业ID,出租价格,出租状态) values "
        "(9,'B-201','阳光 2栋201',1,1800,'部分出租')");
    Exec("insert into fwfy_fz (AutoID,房源ID,房间号,月租金,是否出租) values (1,9,'A',900,0)");
    Exec("insert into fwfy_fz (AutoID,房源ID,房间号,月租金,是否出租) values (2,9,'B',800,1)");
    Exec("insert into fwyz (业主ID,业主编号,业主名称,电话,类型) values (11,'K01','李四','139',1)");
    // Room A of B-201 for three months, paid monthly; numbered as the sheet draws numbers.
    Exec(
        "insert into fwhd (合同ID,progID,smark,系统,状态,合同编号,合同日期,客户ID,起租日期,"
        "止租日期,租赁期,收款期间,付租方式,分租房间) values (21,870201,'01','填单','未生效',"
        "'HT2012100002','2012-10-05',11,'2012-11-01','2013-01-31',3,1,'押一付一','A')");
    Exec("insert into fwhdmx (合同明细ID,合同ID,房源ID) values (121,21,9)");
    Exec(
        "insert into fwhdfs (合同明细ID,合同ID,费用名称,是否包干,包干价,是否预收,度数,单价,"
        "收款期间,序号) values (221,21,'房租',1,900,1,0,0,1,1)");
    Exec(
        "insert into fwhdfs (合同明细ID,合同ID,费用名称,是否包干,包干价,是否预收,度数,单价,"
        "收款期间,序号) values (222,21,'水费',0,0,0,120.5,3.2,2,2)");
    // A term without a period gets no schedule.
    Exec(
        "insert into fwhdfs (合同明细ID,合同ID,费用名称,是否包干,包干价,是否预收,度数,单价,"
        "收款期间,序号) values (223,21,'押金',1,900,1,0,0,0,3)");
    // The whole of A-101, the last contract of the key.
    Exec(
        "insert into fwhd (合同ID,progID,smark,系统,状态,合同编号,合同日期,客户ID,起租日期,"
        "止租日期,租赁期,收款期间,付租方式,分租房间) values (22,870201,'01','填单','未生效',"
        "'HT-W','2012-10-08',11,'2012-11-01','2013-01-31',3,3,'押一付一','')");
    Exec("insert into fwhdmx (合同明细ID,合同ID,房源ID) values (122,22,7)");
    Exec(
        "insert into fwhdfs (合同明细ID,合同ID,费用名称,是否包干,包干价,是否预收,度数,单价,"
        "收款期间,序号) values (224,22,'房租',1,2500,1,0,0,3,1)");
    ASSERT_TRUE(host().create_schema().ok());  // the key sources pass the rows made here
  }

  void Open(int32_t record = 0) {
    screen_ = host().open("zfHd_2", 870201, record);
    ASSERT_NE(screen_, nullptr) << host().last_error();
    host().take_events();
    sheet_ = dynamic_cast<zfHd_2*>(screen_->object.get());
    ASSERT_NE(sheet_, nullptr);
  }
  // Typing only, without leaving the field: the text stands as typed.
  void Type(int index, const std::string& text) { Gest("kvTxt", index, {"type", text}); }
  std::string Shown() { return sheet_->kvTxt[2].Text + " " + sheet_->lblRecord.Caption; }

  // progID|smark|系统|状态|审核人|审核日期 of a contract.
  std::string Mark(int id) {
    return Scalar("select count(*) from fwhd where 合同ID=" + std::to_string(id)) == "0"
               ? "gone"
               : Query("select progID,smark,系统,状态,审核人,审核日期 from fwhd where 合同ID=" +
                       std::to_string(id))
                     .front();
  }
  // 费用名称|是否包干|是否预收|收款期间|收款日期|起始日期|结束日期|上期度数|是否最后一期|序号|是否已收
  Rows Schedule(int id) {
    return Query(
        "select 费用名称,是否包干,是否预收,收款期间,收款日期,起始日期,结束日期,上期度数,"
        "是否最后一期,序号,是否已收 from fwhdfs_sk where 合同ID=" +
        std::to_string(id) + " order by 序号,起始日期");
  }
  // The unit's state, then its rooms with their let flags.
  Rows Letting(int unit) {
    Rows rows = {Scalar("select 出租状态 from fwfy where 房源ID=" + std::to_string(unit))};
    for (const std::string& room : Query("select 房间号,是否出租 from fwfy_fz where 房源ID=" +
                                         std::to_string(unit) + " order by 房间号"))
      rows.push_back(room);
    return rows;
  }

  zfHd_2* sheet_ = nullptr;
};

// The schedule of contract 21 as stored: rent in advance each month, water in arrears every
// two months, the deposit without a period left out.
const Rows kSchedule21 = {
    "房租|1|1|1|2012-11-01|2012-11-01|2012-11-30|0|0|1|0",
    "房租|1|1|1|2012-11-30|2012-12-01|2012-12-31|0|0|1|0",
    "房租|1|1|1|2012-12-31|2013-01-01|2013-01-31|0|1|1|0",
    "水费|0|0|2|2012-12-31|2012-11-01|2012-12-31|120.5|0|2|0",
    "水费|0|0|2|2013-01-31|2013-01-01|2013-01-31|120.5|1|2|0",
};

TEST_P(ZfHd2CheckTest, ApprovalRefusesAnIncompleteContractInOrderAndChangesNothing) {
  Exec("update fwfy set 出租状态='已失效' where 房源ID=9");
  Open(/*record=*/21);
  ASSERT_TRUE(Call("Refresh"));
  ASSERT_TRUE(Call("FileEdit"));
  // Everything the approval needs is missing; an empty payment mode also empties 付租(月).
  for (int index : {44, 0, 1, 8}) Type(index, "");
  ASSERT_EQ(sheet_->kvTxt[6].Text, "0");
  TakeReports(/*include_messages=*/false);
  // Each step completes the field of the refusal before, and the next one is said.
  struct Step {
    int index;  // -1: nothing typed
    const char* text;
    const char* box;     // prompt|flags|title of the box shown, or ""
    const char* report;  // text|level|title of the ErrMessage raised, or ""
  };
  const Step steps[] = {
      {-1, "", "请输入付租月份!|64|操作提示", ""},
      {6, "1", "", "起租日期为空，不能审核！|2|房屋租赁管理"},
      {8, "2012-11-01", "", "止租日期为空，不能审核！|2|房屋租赁管理"},
      {1, "2013-01-31", "", "租赁期为空，不能审核！|2|房屋租赁管理"},
      {0, "3", "", "付租方式为空，不能审核！|2|房屋租赁管理"},
      // The payment mode brings 付租(月) back from its list; the unit is withdrawn.
      {44, "押一付一", "", "该房源已经设置为[已失效]，不能审核与之相关的单据！|2|房屋租赁管理"},
  };
  for (const Step& s : steps) {
    if (s.index >= 0) Type(s.index, s.text);
    host().ui().shown.clear();
    if (*s.box) host().ui().answers.push_back(msgbox::kOk);
    EXPECT_FALSE(Call("Check")) << s.index;
    EXPECT_EQ(LastBox(), s.box) << s.index;
    EXPECT_EQ(TakeReports(/*include_messages=*/false), *s.report ? Rows{s.report} : Rows{})
        << s.index;
  }
  EXPECT_EQ(sheet_->kvTxt[6].Text, "1");
  // Nothing was written.
  EXPECT_EQ(Mark(21), "870201|01|填单|未生效||");
  EXPECT_EQ(Schedule(21), Rows{});
  EXPECT_EQ(Letting(9), (Rows{"已失效", "A|0", "B|1"}));
  ASSERT_TRUE(Call("FileCancel"));
}

TEST_P(ZfHd2CheckTest, ApprovalMarksTheContractBuildsItsScheduleAndLetsTheRoomOrUnit) {
  Open();
  // The whole unit A-101, shown last.
  ASSERT_TRUE(Call("Refresh"));
  ASSERT_EQ(Shown(), "HT-W 记录：2/2");
  EXPECT_TRUE(Call("Check"));
  EXPECT_EQ(Mark(22), "870201|02|审核|生效|张三|2012-10-11");
  EXPECT_EQ(Schedule(22), (Rows{"房租|1|1|3|2012-11-01|2012-11-01|2013-01-31|0|1|1|0"}));
  EXPECT_EQ(Letting(7), Rows{"已出租"});

  // Room A of B-201: the room is let, and with B let already the whole unit is.
  ASSERT_TRUE(Call("RecordPrevious"));
  ASSERT_EQ(Shown(), "HT2012100002 记录：1/2");
  EXPECT_TRUE(Call("Check"));
  EXPECT_EQ(Mark(21), "870201|02|审核|生效|张三|2012-10-11");
  EXPECT_EQ(Schedule(21), kSchedule21);
  EXPECT_EQ(Letting(9), (Rows{"已出租", "A|1", "B|1"}));
  EXPECT_EQ(Letting(7), Rows{"已出租"});
  EXPECT_TRUE(TakeReports(/*include_messages=*/false).empty());
  // Shown again, the contract carries the approved mark and its state.
  ASSERT_TRUE(Call("DoSetStatus", {Variant("change"), Variant(false)}));
  EXPECT_TRUE(sheet_->Lab_Succeed.Visible);
  EXPECT_EQ(sheet_->Lab_Status.Caption, "生效");
}

TEST_P(ZfHd2CheckTest, ApprovingAgainRebuildsTheScheduleFromTheLeaseAsShown) {
  Open(/*record=*/21);
  ASSERT_TRUE(Call("Refresh"));
  ASSERT_TRUE(Call("Check"));
  Exec("update fwhdfs_sk set 是否已收=1 where 合同ID=21");
  // A lease shortened on the sheet and not saved: the schedule follows the sheet, and every
  // period is uncollected again.
  ASSERT_TRUE(Call("FileEdit"));
  Type(1, "2012-12-31");
  Type(0, "2");
  EXPECT_TRUE(Call("Check"));
  EXPECT_EQ(Schedule(21), (Rows{"房租|1|1|1|2012-11-01|2012-11-01|2012-11-30|0|0|1|0",
                                "房租|1|1|1|2012-11-30|2012-12-01|2012-12-31|0|1|1|0",
                                "水费|0|0|2|2012-12-31|2012-11-01|2012-12-31|120.5|1|2|0"}));
  EXPECT_EQ(Mark(21), "870201|02|审核|生效|张三|2012-10-11");
  EXPECT_EQ(Letting(9), (Rows{"已出租", "A|1", "B|1"}));
  ASSERT_TRUE(Call("FileCancel"));
  EXPECT_EQ(sheet_->kvTxt[1].Text, "2013-01-31");
  EXPECT_TRUE(TakeReports(/*include_messages=*/false).empty());
}

TEST_P(ZfHd2CheckTest, AFailedApprovalKeepsWhatRanBeforeIt) {
  // A period that rounds to no month fails once the terms before it are scheduled.
  Exec(
      "insert into fwhdfs (合同明细ID,合同ID,费用名称,是否包干,包干价,是否预收,度数,单价,"
      "收款期间,序号) values (225,21,'电费',0,0,0,0,1,0.4,4)");
  Open(/*record=*/21);
  ASSERT_TRUE(Call("Refresh"));
  EXPECT_FALSE(Call("Check"));
  EXPECT_EQ(TakeReports(/*include_messages=*/false),
            Rows{"审核时出错：Division by zero|8|房屋租赁管理"});
  EXPECT_EQ(Mark(21), "870201|02|审核|生效|张三|2012-10-11");
  EXPECT_EQ(Schedule(21), kSchedule21);
  // The rental state was not reached.
  EXPECT_EQ(Letting(9), (Rows{"部分出租", "A|0", "B|1"}));
}

TEST_P(ZfHd2CheckTest, UnApprovalIsRefusedByAnyReceiptAndOtherwiseTakesTheApprovalBack) {
  Open(/*record=*/21);
  ASSERT_TRUE(Call("Refresh"));
  ASSERT_TRUE(Call("Check"));
  // A deposit receipt not yet approved holds the contract; a fee receipt does not.
  Exec("insert into fwjs (单据ID,progID,smark,单据编号,合同ID) values (31,870304,'01','SK1',21)");
  Exec("insert into fwjsfy (单据ID,progID,smark,单据编号,合同ID) values (41,870305,'01','SK2',21)");
  host().ui().answers.push_back(msgbox::kOk);
  EXPECT_FALSE(Call("UnCheck"));
  EXPECT_EQ(LastBox(), "该票租房合同，已经进行后续的租房收款单，不能再进行取消审核!|64|操作提示");
  EXPECT_EQ(Mark(21), "870201|02|审核|生效|张三|2012-10-11");
  EXPECT_EQ(Schedule(21), kSchedule21);
  EXPECT_EQ(Letting(9), (Rows{"已出租", "A|1", "B|1"}));

  Exec("delete from fwjs where 单据ID=31");
  EXPECT_TRUE(Call("UnCheck"));
  // The un-approver and the day stand where the approver stood.
  EXPECT_EQ(Mark(21), "870201|01|填单|未生效|张三|2012-10-11");
  EXPECT_EQ(Schedule(21), Rows{});
  EXPECT_EQ(Letting(9), (Rows{"部分出租", "A|0", "B|1"}));
  EXPECT_TRUE(TakeReports(/*include_messages=*/false).empty());
  // Approved again, the schedule is built anew.
  EXPECT_TRUE(Call("Check"));
  EXPECT_EQ(Schedule(21), kSchedule21);
}

TEST_P(ZfHd2CheckTest, DeleteGivesTheNumberBackAsksAndRemovesTheContractOnYes) {
  // HT2012100002 is the last number drawn this month.
  Exec("insert into xt_billcode (progID,period,lastno) values (870201,'201210',2)");
  Open();
  ASSERT_TRUE(Call("Refresh"));
  // A new contract has nothing to delete.
  ASSERT_TRUE(Call("FileNew"));
  EXPECT_EQ(sheet_->kvTxt[2].Text, "HT2012100003");
  host().ui().answers.push_back(msgbox::kOk);
  EXPECT_FALSE(Call("FileDelete"));
  EXPECT_EQ(LastBox(), "没有可删除的记录!|64|提示:");
  ASSERT_TRUE(Call("FileCancel"));

  ASSERT_TRUE(Call("RecordPrevious"));
  ASSERT_EQ(Shown(), "HT2012100002 记录：1/2");
  const auto stored = [this] {
    return Scalar("select count(*) from fwhd where 合同ID=21") + " " +
           Scalar("select count(*) from fwhdmx where 合同ID=21") + " " +
           Scalar("select count(*) from fwhdfs where 合同ID=21");
  };
  const auto last_number = [this] {
    return Scalar("select lastno from xt_billcode where progID=870201 and period='201210'");
  };
  // No: nothing is deleted, the number has gone back all the same, the sheet moves on.
  host().ui().answers.push_back(msgbox::kNo);
  EXPECT_FALSE(Call("FileDelete"));
  EXPECT_EQ(LastBox(), "是否删除当前记录:|36|提示:");
  EXPECT_EQ(stored(), "1 1 3");
  EXPECT_EQ(last_number(), "1");
  EXPECT_EQ(Shown(), "HT-W 记录：2/2");

  // Yes: the contract, its unit row and its fee terms go; the tenant and the other contract
  // stay.
  ASSERT_TRUE(Call("RecordPrevious"));
  host().ui().answers.push_back(msgbox::kYes);
  EXPECT_TRUE(Call("FileDelete"));
  EXPECT_EQ(LastBox(), "是否删除当前记录:|36|提示:");
  EXPECT_EQ(stored(), "0 0 0");
  EXPECT_EQ(Scalar("select 业主名称 from fwyz where 业主ID=11"), "李四");
  EXPECT_EQ(Mark(22), "870201|01|填单|未生效||");
  EXPECT_EQ(last_number(), "1");
  EXPECT_EQ(Shown(), "HT-W 记录：1/1");
  EXPECT_TRUE(TakeReports(/*include_messages=*/false).empty());
  // The next new contract takes the number given back.
  ASSERT_TRUE(Call("FileNew"));
  EXPECT_EQ(sheet_->kvTxt[2].Text, "HT2012100002");
  ASSERT_TRUE(Call("FileCancel"));
}

MRVK_ON_BOTH_ENGINES(ZfHd2CheckTest);

}  // namespace
}  // namespace mrvk
