// The contract sheet driven as a clerk drives it, on both engines: contracts written by SQL,
// then the toolbar's operations, the page buttons, typing into fields and picking from their
// lists. Assertions are on what the clerk sees and on the print data file; expected values
// are written out by hand.
#include "mrvk/contract/zfhd_2/zfhd_2.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "kvhost/lib/print_data.h"
#include "mrvk/contract/b_mode.h"
#include "support/sheet_test.h"

namespace mrvk {
namespace {

using kvhost::Gesture;
using Rows = std::vector<std::string>;

TEST(GetDayMonth, SpansTheMonthsBackToTheFirstOfNextMonth) {
  struct Case {
    const char* date;
    int months;
    const char* from;
    const char* to;
  };
  const Case cases[] = {
      {"2012-10-11", 12, "2011-10-01", "2012-11-01"},
      {"2012-01-20", 3, "2011-10-01", "2012-02-01"},
      {"2012-12-31", 0, "2012-12-01", "2013-01-01"},
      {"2012-03-01", 27, "2009-12-01", "2012-04-01"},
      {"2012-11-30", -2, "2013-01-01", "2012-12-01"},
  };
  for (const Case& c : cases) {
    Date from;
    Date to;
    GetDayMonth(*ParseDate(c.date), c.months, from, to);
    EXPECT_EQ(from.ToText() + " " + to.ToText(), std::string(c.from) + " " + c.to)
        << c.date << " " << c.months;
  }
}

// A find or filter condition array with one row on the plane (0 filter, 1 find).
Variant Condition(int plane, const std::string& value, const std::string& field,
                  const std::string& op) {
  auto a = std::make_shared<VariantArray>(std::vector<int>{2, 1, 3});
  a->at({plane, 0, 0}) = Variant(value);
  a->at({plane, 0, 1}) = Variant(field);
  a->at({plane, 0, 2}) = Variant(op);
  return Variant(a);
}

class ZfHd2Test : public kvtest::SheetTest {
 protected:
  void SetUp() override {
    SheetTest::SetUp();
    Exec("insert into fwwy (物业ID,物业编号,物业名称) values (1,'W1','阳光花园')");
    Exec(
        "insert into fwfy (房源ID,房源编号,房源名称,物业ID,户型,面积,装修程度,具体地址,基础设施,"
        "基础设施其他,配套设施,配套设施其他,出租价格,出租状态,楼层,楼宇类型) values "
        "(7,'A-101','阳光 1栋101',1,'两室一厅',85.5,'精装','东路1号','燃气;','地暖','床;',"
        "'',2500,'未出租','3','高层住宅')");
    Exec(
        "insert into fwfy (房源ID,房源编号,房源名称,物业ID,出租价格,出租状态) values "
        "(8,'A-102','阳光 1栋102',1,2000,'已出租')");
    Exec(
        "insert into fwfy (房源ID,房源编号,房源名称,物业ID,户型,面积,出租价格,出租状态,楼层,"
        "楼宇类型) values (9,'B-201','O''Hara 201',1,'三室',120,1800,'部分出租','12','公寓')");
    Exec(
        "insert into fwfy_fz (AutoID,房源ID,房间号,面积,月租金,是否出租) values "
        "(1,9,'A',12.5,900,0)");
    Exec(
        "insert into fwfy_fz (AutoID,房源ID,房间号,面积,月租金,是否出租) values "
        "(2,9,'B',10,800,1)");
    Exec(
        "insert into fwyz (业主ID,业主编号,业主名称,性别,电话,身份证号,籍贯,工作单位,备注,类型) "
        "values (11,'K01','李四','男','139','110101','江苏','城建','老客户',1)");
    Exec(
        "insert into fwyz (业主ID,业主编号,业主名称,性别,电话,类型) values "
        "(12,'K02','王芳','女','137',1)");
    // An owner of the same name: the tenant lists take clients (类型 1) only.
    Exec("insert into fwyz (业主ID,业主编号,业主名称,电话,类型) values (13,'Y01','赵六','135',0)");
    Contract(1, 870201, "HT-A", "2011-09-30", 8, 12);
    Contract(2, 870201, "HT-B", "2011-10-01", 8, 12);
    Contract(4, 870201, "HT-D", "2012-11-01", 7, 11);
    Contract(5, 870202, "HT-E", "2012-05-01", 7, 11);
    Exec(
        "insert into fwhd "
        "(合同ID,progID,smark,系统,状态,合同编号,合同日期,业务员ID,预收押金,中介费,"
        "客户ID,租住人数,押金备注1,押金备注2,押金备注3,起租日期,止租日期,租赁期,收款期间,月租金,"
        "付租方式,分租房间,面积,备注,制单人,制单日期,审核人,审核日期) values (3,870201,'02','审核',"
        "'生效','HT-C','2012-10-31',2,1800,500,11,2,'押''一','','现金','2012-11-01','2013-10-31',"
        "12,3,900,'押二付三','A',12.5,'含车位','张三','2012-10-30','李明','2012-10-31')");
    Exec(
        "insert into fwhdmx (合同明细ID,合同ID,房源ID,基础设施,配套设施) values "
        "(103,3,9,'燃气;','床;')");
    Exec(
        "insert into fwhdfs "
        "(合同明细ID,合同ID,费用名称,是否包干,包干价,是否预收,度数,单价,收款期间,"
        "序号) values (201,3,'房租',1,900,1,0,0,3,1)");
    Exec(
        "insert into fwhdfs "
        "(合同明细ID,合同ID,费用名称,是否包干,包干价,是否预收,度数,单价,收款期间,"
        "序号) values (203,3,'物业管理费',1,50,0,0,0,3,3)");
    Exec(
        "insert into fwhdfs "
        "(合同明细ID,合同ID,费用名称,是否包干,包干价,是否预收,度数,单价,收款期间,"
        "序号) values (202,3,'水费',0,0,0,120.5,3.2,1,2)");
    ASSERT_TRUE(host().create_schema().ok());  // the key sources pass the rows made here
    // The fee names, in the order of their codes, not of their rows.
    Exec("delete from pdmsjzd where 类型='费用名称'");
    for (const char* row : {"(91,'02','水费','费用名称')", "(92,'01','房租','费用名称')",
                            "(93,'03','物业管理费','费用名称')"})
      Exec(std::string("insert into pdmsjzd (ID,代码,名称,类型) values ") + row);
  }

  // A plain contract with its unit and tenant.
  void Contract(int id, int prog, const std::string& number, const std::string& date, int unit,
                int client) {
    const std::string i = std::to_string(id);
    Exec("insert into fwhd (合同ID,progID,smark,系统,状态,合同编号,合同日期,客户ID) values (" + i +
         "," + std::to_string(prog) + ",'01','填单','未生效','" + number + "','" + date + "'," +
         std::to_string(client) + ")");
    Exec("insert into fwhdmx (合同明细ID,合同ID,房源ID) values (10" + i + "," + i + "," +
         std::to_string(unit) + ")");
  }

  void Open(int32_t record = 0) {
    screen_ = host().open("zfHd_2", 870201, record);
    ASSERT_NE(screen_, nullptr) << host().last_error();
    host().take_events();
    sheet_ = dynamic_cast<zfHd_2*>(screen_->object.get());
    ASSERT_NE(sheet_, nullptr);
  }
  void Type(int index, const std::string& text) {
    Gest("kvTxt", index, {"type", text});
    Gest("kvTxt", index, {"leave"});
  }
  std::string Text(int index) { return sheet_->kvTxt[index].Text; }
  std::string Value(int index) { return sheet_->kvTxt[index].Value.ToString(); }
  // The number shown and the position.
  std::string Shown() { return Text(2) + " " + sheet_->lblRecord.Caption; }
  // The fee rows, every column joined by "|".
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
  std::string Answer(const std::string& method, std::vector<Variant> args = {}) {
    Variant answer;
    EXPECT_TRUE(host().invoke(*screen_, method, args, answer).ok());
    return answer.ToString();
  }

  zfHd_2* sheet_ = nullptr;
};

TEST_P(ZfHd2Test, NavigationWalksTheContractsOfTheKeyWithinTheMonthsBack) {
  Open();
  EXPECT_EQ(sheet_->lbl_Caption.Caption, "租房合同");
  EXPECT_TRUE(sheet_->PicHT.Visible);
  EXPECT_FALSE(sheet_->PicZK.Visible);
  // befmonth missing: 12 months back from 2012-10-11, to the end of October.
  ASSERT_TRUE(Call("Refresh"));
  EXPECT_EQ(Shown(), "HT-C 记录：2/2");
  ASSERT_TRUE(Call("RecordTop"));
  EXPECT_EQ(Shown(), "HT-B 记录：1/2");
  ASSERT_TRUE(Call("RecordNext"));
  EXPECT_EQ(Shown(), "HT-C 记录：2/2");
  struct Case {
    const char* befmonth;
    const char* shown;
  };
  for (const Case& c : {Case{"3", "HT-C 记录：1/1"}, Case{"0", "HT-C 记录：2/2"},
                        Case{"x", "HT-C 记录：2/2"}, Case{"13", "HT-C 记录：3/3"}}) {
    host().options()["befmonth"] = c.befmonth;
    ASSERT_TRUE(Call("RecordTop"));
    ASSERT_TRUE(Call("Refresh"));
    EXPECT_EQ(Shown(), c.shown) << c.befmonth;
  }
  host().options()["befmonth"] = "3";
  ASSERT_TRUE(Call("RecordTop"));
  EXPECT_EQ(Shown(), "HT-C 记录：1/1");
  EXPECT_TRUE(TakeReports(/*include_messages=*/false).empty());
}

TEST_P(ZfHd2Test, AContractOpenedByItsIDIsShownWhateverItsDate) {
  Open(/*record=*/4);
  ASSERT_TRUE(Call("Refresh"));
  EXPECT_EQ(Shown(), "HT-D 记录：1/1");
  EXPECT_EQ(Text(18) + " " + Value(18) + " " + Text(4), "A-101 7 李四");
  ASSERT_TRUE(Call("RecordTop"));
  EXPECT_EQ(Shown(), "HT-D 记录：1/1");
}

TEST_P(ZfHd2Test, FindAndFilterGoByTheDeclaredFieldsWithinTheSpan) {
  Open();
  ASSERT_TRUE(Call("Find", {Condition(1, "HT-", "合同编号", "like")}));
  EXPECT_EQ(Shown(), "HT-B 记录：1/2");
  ASSERT_TRUE(Call("FindNext"));
  EXPECT_EQ(Text(2), "HT-C");
  ASSERT_TRUE(Call("FindNext"));  // no further hit: the contract stays
  EXPECT_EQ(Text(2), "HT-C");
  // Outside the span, by number, by tenant or by date: nothing, the sheet empties.
  struct Miss {
    const char* value;
    const char* field;
    const char* op;
  };
  for (const Miss& m : {Miss{"HT-A", "合同编号", "="}, Miss{"HT-E", "合同编号", "="},
                        Miss{"2012-11-01", "合同日期", ">="}, Miss{"O'Brien", "租客姓名", "="}}) {
    ASSERT_TRUE(Call("RecordTop"));
    ASSERT_TRUE(Call("Find", {Condition(1, m.value, m.field, m.op)}));
    EXPECT_EQ(Shown(), " 记录：0/0") << m.value;
  }
  // Every declared field, on the columns of the load statement.
  struct Hit {
    const char* field;
    const char* op;
    const char* value;
    const char* number;
  };
  const Hit hits[] = {
      {"合同编号", "=", "HT-C", "HT-C"},       {"合同日期", "=", "2012-10-31", "HT-C"},
      {"租客姓名", "=", "李四", "HT-C"},       {"联系电话", "=", "137", "HT-B"},
      {"房源编号", "=", "B-201", "HT-C"},      {"房源名称", "=", "O'Hara 201", "HT-C"},
      {"物业名称", "like", "阳光", "HT-B"},    {"业务员", "=", "王芳", "HT-C"},
      {"付租方式", "=", "押二付三", "HT-C"},   {"状态", "=", "生效", "HT-C"},
      {"起租日期", "=", "2012-11-01", "HT-C"}, {"止租日期", ">=", "2013-01-01", "HT-C"},
      {"月租金", ">", "100", "HT-C"},          {"制单人", "=", "张三", "HT-C"},
  };
  ASSERT_EQ(std::size(hits), sheet_->SearchFields().size());
  for (const Hit& h : hits) {
    ASSERT_TRUE(Call("RecordTop"));
    ASSERT_TRUE(Call("Find", {Condition(1, h.value, h.field, h.op)}));
    EXPECT_EQ(Text(2), h.number) << h.field;
  }
  // A field the sheet does not declare is refused and changes nothing.
  Variant ignored;
  EXPECT_EQ(host().invoke(*screen_, "Find", {Condition(1, "1", "合同ID", "=")}, ignored).message(),
            "查找条件中的字段“合同ID”不在可查找的字段中");
  EXPECT_EQ(Text(2), "HT-C");
  EXPECT_TRUE(TakeReports(/*include_messages=*/false).empty());

  ASSERT_TRUE(Call("Filter", {Condition(0, "未生效", "状态", "=")}));
  EXPECT_TRUE(sheet_->LabFilter.Visible);
  EXPECT_EQ(Shown(), "HT-B 记录：1/1");
  ASSERT_TRUE(Call("Filter", {Condition(0, "终止", "状态", "=")}));
  EXPECT_TRUE(sheet_->LabFilter.Visible);
  EXPECT_EQ(Shown(), " 记录：0/0");
  EXPECT_EQ(Fees(), Rows{});
}

TEST_P(ZfHd2Test, AContractShowsItsFieldsTenantAndFeeTerms) {
  Open();
  ASSERT_TRUE(Call("Refresh"));
  struct Field {
    int index;
    const char* text;
  };
  const Field fields[] = {
      {2, "HT-C"},        {5, "2012-10-31"}, {27, "王芳"},       {34, "1800"},
      {35, "500"},        {12, "张三"},      {11, "2012-10-30"}, {7, "李明"},
      {10, "2012-10-31"}, {18, "B-201"},     {19, "O'Hara 201"}, {20, "阳光花园"},
      {21, "三室"},       {22, "12.5"},      {23, ""},           {26, ""},
      {24, "燃气;"},      {25, "床;"},       {45, "A"},          {8, "2012-11-01"},
      {0, "12"},          {1, "2013-10-31"}, {44, "押二付三"},   {6, "3"},
      {4, "李四"},        {28, "139"},       {29, "城建"},       {30, "江苏"},
      {31, "110101"},     {32, "老客户"},    {33, "2"},          {37, "押'一"},
      {42, ""},           {43, "现金"},
  };
  for (const Field& f : fields) EXPECT_EQ(Text(f.index), f.text) << "kvTxt(" << f.index << ")";
  EXPECT_EQ(Value(18) + " " + Value(4) + " " + Value(27), "9 11 2");
  EXPECT_EQ(sheet_->txt.Text, "含车位");
  EXPECT_TRUE(sheet_->optXB[3].Value);
  EXPECT_FALSE(sheet_->optXB[2].Value);
  EXPECT_TRUE(sheet_->Lab_Succeed.Visible);
  EXPECT_EQ(sheet_->Lab_Status.Caption, "生效");
  // Fixed fees with their price and a tick under 预收 or 后付, the metered one with its
  // reading and unit price, in line order.
  EXPECT_EQ(Fees(), (Rows{"1|房租|900|√||||3|201", "2|水费||||120.5|3.2|1|202",
                          "3|物业管理费|50||√|||3|203"}));
  EXPECT_EQ(sheet_->fees.kvGrid.TextMatrix(0, 2) + sheet_->fees.kvGrid.TextMatrix(1, 2),
            "包月单价/月");
  EXPECT_TRUE(sheet_->fees.kvGrid.ColHidden(8));
  // Approved: the host offers no edit; browsing, everything is locked.
  EXPECT_EQ(Answer("CheckStatus", {Variant("")}), "True");
  EXPECT_EQ(Answer("Attributes", {Variant(98)}), "check");
  EXPECT_EQ(Answer("Attributes", {Variant(97)}), "");
  EXPECT_TRUE(sheet_->kvTxt[2].Locked);
  EXPECT_FALSE(sheet_->optXB[3].Enabled);
  EXPECT_FALSE(sheet_->fees.kvGrid.Editable);
  // The page buttons.
  Gest("Toolbar1", -1, {"click", "", 3});
  EXPECT_TRUE(sheet_->PicZK.Visible);
  EXPECT_FALSE(sheet_->PicHT.Visible);
  EXPECT_TRUE(sheet_->Toolbar1.Buttons()[2].Pressed);
  EXPECT_FALSE(sheet_->Toolbar1.Buttons()[0].Pressed);
  // A state changed elsewhere: "change" shows the contract again, any other status the last.
  Exec("update fwhd set 状态='终止' where 合同ID=3");
  ASSERT_TRUE(Call("DoSetStatus", {Variant("change"), Variant(false)}));
  EXPECT_EQ(sheet_->Lab_Status.Caption, "终止");
  ASSERT_TRUE(Call("RecordTop"));
  ASSERT_TRUE(Call("DoSetStatus", {Variant("check"), Variant(false)}));
  EXPECT_EQ(Shown(), "HT-C 记录：2/2");
  EXPECT_TRUE(sheet_->Lab_Succeed.Visible);
  EXPECT_TRUE(sheet_->kvTxt[2].Locked);
  ASSERT_TRUE(Call("RecordTop"));
  EXPECT_EQ(Answer("CheckStatus", {Variant("")}), "False");
  EXPECT_EQ(sheet_->Lab_Status.Caption, "未生效");
  EXPECT_TRUE(sheet_->optXB[2].Value);  // 王芳
  EXPECT_EQ(Fees(), Rows{});
}

TEST_P(ZfHd2Test, NewEditAndCancel) {
  Open();
  // Nothing shown: no edit.
  ASSERT_TRUE(Call("Find", {Condition(1, "none", "合同编号", "=")}));
  host().ui().answers.push_back(msgbox::kOk);
  EXPECT_FALSE(Call("FileEdit"));
  EXPECT_EQ(LastBox(), "没有选择单据|64|请注意！");
  ASSERT_TRUE(Call("Refresh"));
  TakeReports(/*include_messages=*/true);
  ASSERT_TRUE(Call("FileNew"));
  EXPECT_EQ(TakeReports(/*include_messages=*/true), (Rows{"正在新建单据中..."}));
  EXPECT_EQ(Text(2), "HT2012100001");
  EXPECT_EQ(Text(33) + " " + Text(5) + " " + Text(11) + " " + Text(12),
            "1 2012-10-11 2012-10-11 张三");
  EXPECT_EQ(Text(4) + Text(18) + Text(44) + Text(7) + Text(27) + Value(18), "0");
  EXPECT_EQ(sheet_->lblRecord.Caption, "新建记录...");
  EXPECT_FALSE(sheet_->Lab_Status.Visible);
  EXPECT_FALSE(sheet_->Lab_Succeed.Visible);
  EXPECT_EQ(Fees(), Rows{});
  EXPECT_EQ(sheet_->GetID(), 0);
  EXPECT_FALSE(sheet_->IsDirty());
  // Editing: the fields open, those filled from elsewhere stay locked.
  EXPECT_FALSE(sheet_->kvTxt[2].Locked);
  EXPECT_FALSE(sheet_->kvTxt[4].Locked);
  EXPECT_TRUE(sheet_->optXB[3].Enabled);
  EXPECT_TRUE(sheet_->fees.kvGrid.Editable);
  for (int locked : {7, 10, 12, 11, 20, 19, 21, 22, 23, 26})
    EXPECT_TRUE(sheet_->kvTxt[locked].Locked) << locked;
  // A plain edit does not make the sheet dirty; a check does.
  Gest("kvTxt", 28, {"type", "138"});
  EXPECT_FALSE(sheet_->IsDirty());
  Type(4, "王芳");
  EXPECT_TRUE(sheet_->IsDirty());
  // Cancel goes back to the contract shown before.
  ASSERT_TRUE(Call("FileCancel"));
  EXPECT_EQ(Shown(), "HT-C 记录：2/2");
  EXPECT_TRUE(sheet_->kvTxt[2].Locked);
  EXPECT_FALSE(sheet_->IsDirty());

  // Copying the contract shown: everything stays but the number and the keys of fee terms.
  Gest("Chk", -1, {"toggle"});
  ASSERT_TRUE(Call("FileNew"));
  EXPECT_EQ(Text(2) + " " + Text(18) + " " + Text(4) + " " + Text(44) + " " + Text(7),
            "HT2012100001 B-201 李四 押二付三 李明");
  EXPECT_EQ(Text(5) + " " + Text(33), "2012-10-11 1");
  EXPECT_EQ(Fees(),
            (Rows{"1|房租|900|√||||3|", "2|水费||||120.5|3.2|1|", "3|物业管理费|50||√|||3|"}));
  EXPECT_EQ(sheet_->GetID(), 0);
  ASSERT_TRUE(Call("FileCancel"));
  EXPECT_EQ(Fees().front(), "1|房租|900|√||||3|201");
  Gest("Chk", -1, {"toggle"});

  TakeReports(/*include_messages=*/true);
  ASSERT_TRUE(Call("FileEdit"));
  EXPECT_FALSE(sheet_->kvTxt[45].Locked);
  EXPECT_EQ(TakeReports(/*include_messages=*/true), (Rows{"正在修改单据中..."}));
  ASSERT_TRUE(Call("FileCancel"));

  // A new contract cancelled with no contract shown before leaves the sheet empty.
  ASSERT_TRUE(Call("Find", {Condition(1, "none", "合同编号", "=")}));
  ASSERT_TRUE(Call("FileNew"));
  ASSERT_TRUE(Call("FileCancel"));
  EXPECT_EQ(Shown(), " 记录：0/0");
  EXPECT_TRUE(TakeReports(/*include_messages=*/false).empty());
}

TEST_P(ZfHd2Test, PickingAUnitATenantAPaymentModeAndARoomFillsTheSheet) {
  Open();
  ASSERT_TRUE(Call("FileNew"));
  // The housing list offers the units with something free: A-101 and B-201.
  host().ui().dialogs.push_back(kvhost::ScriptedUi::ChooseRows({0}));
  Gest("kvTxt", 18, {"pick"});
  EXPECT_TRUE(sheet_->IsDirty());
  EXPECT_EQ(Text(18) + " " + Value(18), "A-101 7");
  EXPECT_EQ(Text(19) + "|" + Text(20) + "|" + Text(21) + "|" + Text(22) + "|" + Text(23) + "|" +
                Text(26) + "|" + Text(24) + "|" + Text(25),
            "阳光 1栋101|阳光花园|两室一厅|85.5|精装|东路1号|燃气;地暖|床;");
  EXPECT_EQ(Fees(), (Rows{"1|房租|2500||||||", "2|水费|||||||", "3|物业管理费|||||||"}));
  // A typed number finds a unit too; a unit let in full is not offered.
  Type(18, "B-2");
  EXPECT_EQ(Text(18) + " " + Text(19) + " " + Text(22), "B-201 O'Hara 201 120");
  EXPECT_EQ(Fees().front(), "1|房租|1800||||||");
  Type(18, "A-102");
  EXPECT_EQ(Value(18) + " " + Text(19), "0 O'Hara 201");

  // The room: its area and rent; a room not let out of the list; none: the unit's.
  Type(18, "B-201");
  host().ui().dialogs.push_back(kvhost::ScriptedUi::ChooseRows({0}));
  Gest("kvTxt", 45, {"pick"});
  EXPECT_EQ(Text(45) + " " + Text(22) + " " + Fees().front(), "A 12.5 1|房租|900||||||");
  Gest("kvTxt", 45, {"type", ""});
  EXPECT_EQ(Text(22) + " " + Fees().front(), "120 1|房租|1800||||||");

  // The payment mode: months per payment, the deposit from the rent, the rent's period.
  Type(44, "押二付三");
  EXPECT_EQ(Text(6) + " " + Text(34) + " " + Fees().front(), "3 3600 1|房租|1800|||||3|");
  Type(44, "无此方式");
  EXPECT_EQ(Text(6) + " [" + Text(34) + "] " + Fees().front(), "0 [] 1|房租|1800||||||");

  // The tenant: a client by name or code fills the tenant page; an owner is no tenant.
  Gest("optXB", 2, {"click"});
  Type(4, "K01");
  EXPECT_EQ(Text(4) + " " + Value(4) + " " + Text(28) + " " + Text(29) + " " + Text(30) + " " +
                Text(31) + " " + Text(32),
            "李四 11 139 城建 江苏 110101 老客户");
  EXPECT_TRUE(sheet_->optXB[3].Value);
  // A new name stays as typed, without an ID, and the other tenant fields are emptied.
  Type(4, "赵六");
  EXPECT_EQ(
      Text(4) + " " + Value(4) + " [" + Text(28) + Text(29) + Text(30) + Text(31) + Text(32) + "]",
      "赵六 0 []");
  // The salesman from the staff list, by number.
  Type(27, "003");
  EXPECT_EQ(Text(27) + " " + Value(27), "赵强 3");
  EXPECT_TRUE(TakeReports(/*include_messages=*/false).empty());
}

TEST_P(ZfHd2Test, ThePrintDataFileHoldsTheFieldsTheHouseAndTheFeeTerms) {
  Open();
  ASSERT_TRUE(Call("Refresh"));
  ASSERT_TRUE(Call("DoPrint"));
  const std::string file = Answer("ReturnPrintName");
  EXPECT_EQ(file, app_path() + "/selfPrint/870201.txt");
  kvhost::PrintData data;
  std::string error;
  ASSERT_TRUE(data.Load(file, error)) << error;
  const kvhost::PrintSection& s = data.Sections().at(1);
  EXPECT_EQ(s.Field("房屋信息"), "12楼O'Hara 201、公寓");
  EXPECT_EQ(s.Field("合同编号") + "|" + s.Field("姓名") + "|" + s.Field("押金备注(最多50个字符)") +
                "|" + s.Field("实收押金"),
            "HT-C|李四|押'一|1800");
  const kvhost::PrintTable* t = s.FindTable("kvGrid");
  ASSERT_NE(t, nullptr);
  ASSERT_EQ(t->Cols() * 10 + t->Rows(), 95);
  Rows rows;
  for (int r = 0; r < t->Rows(); ++r) {
    std::string line;
    for (int c = 0; c < t->Cols(); ++c) line += (c ? "|" : "") + t->Cell(c, r);
    rows.push_back(line);
  }
  EXPECT_EQ(rows, (Rows{"行号|费用名称|包月|包月|包月|照实结算|照实结算|收款期间|合同明细ID",
                        "行号|费用名称|单价/月|预收|后付|度数|单价/度|收款期间|***",
                        "1|房租|900|√||||3|***", "2|水费||||120.5|3.2|1|***",
                        "3|物业管理费|50||√|||3|***"}));

  // The fee grid's widths are kept under the function key across a close.
  Gest("kvGrid", -1, {"col_width", "2400", -1, 1});
  ASSERT_TRUE(host().close(screen_->id).ok());
  Open();
  EXPECT_EQ(sheet_->fees.kvGrid.ColWidth(1), 2400);
  EXPECT_TRUE(std::filesystem::exists(app_path() + "/selfbb/870201.txt"));
}

MRVK_ON_BOTH_ENGINES(ZfHd2Test);

}  // namespace
}  // namespace mrvk
