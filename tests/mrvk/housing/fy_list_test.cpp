// The housing list driven as a clerk drives it, on both engines: conditions typed or picked,
// state boxes ticked, rows clicked, the toolbar's operations. Assertions are on the grid's rows,
// the boxes, events and printed page the clerk meets, the layout file and the database.
#include "mrvk/housing/fy_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>

#include "kvhost/host_context.h"
#include "kvhost/lib/print_job.h"
#include "mrvk/frame/vb.h"
#include "support/sheet_test.h"

namespace mrvk {
namespace {

using Rows = std::vector<std::string>;
using L = FY_List;

class FyListTest : public kvtest::SheetTest {
 protected:
  void SetUp() override {
    kvtest::SheetTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    Exec("insert into fwwy (物业ID,物业编号,物业名称) values (1,'W1','翠竹苑')");
    Exec("insert into fwwy (物业ID,物业编号,物业名称) values (2,'W2','O''Hara 公寓')");
    // Staff in both tables under the same numbers, as the sheets pick and the list shows them.
    for (const char* row : {"11,'011','周敏'", "12,'012','吴刚'"}) {
      Exec(std::string("insert into pdmxsy (AutoID,代码,名称) values (") + row + ")");
      Exec(std::string("insert into PDMgy (雇员ID,编号,姓名) values (") + row + ")");
    }
    for (const char* row : {"1,'F1',1,'东区','高层','住宅','两室一厅',60,'1',11,1500,'未出租'",
                            "2,'F2',2,'西区','多层','商用','一室',90,'2',12,3000,'已出租'",
                            "3,'F3',2,'东区','别墅','住宅','三室',150,'3',null,5000.5,'部分出租'",
                            "4,'F4',1,'北''区','高层','办公','一室',45,'4',11,800,'已分租'",
                            "5,'F5',1,'西区','多层','住宅','两室一厅',120,'5',12,2500,'已失效'"})
      Exec(std::string("insert into fwfy (房源ID,房源编号,物业ID,所属区域,楼宇类型,物业用途,户型,"
                       "面积,楼层,业务员ID,出租价格,出租状态) values (") +
           row + ")");
  }
  void Open() {
    ASSERT_NE(OpenScreen("FY_List", 870102), nullptr);
    list_ = dynamic_cast<FY_List*>(screen_->object.get());
  }
  // Types every condition field (the others emptied) and ticks exactly the given boxes.
  void Set(const std::map<int, std::string>& texts, const std::vector<int>& ticked = {0, 1, 2, 3}) {
    for (int i = L::kArea; i <= L::kBuildingType; ++i) {
      Gest("kvTxt", i, {"type", texts.count(i) ? texts.at(i) : ""});
      Gest("kvTxt", i, {"leave"});
    }
    for (int i = L::kFree; i <= L::kExpired; ++i)
      if (list_->chkXS[i].Value != (std::count(ticked.begin(), ticked.end(), i) ? 1 : 0))
        Gest("chkXS", i, {"toggle"});
  }
  // The unit numbers the grid shows, sorted: the list has no order of its own.
  Rows Numbers() {
    Rows out;
    for (int r = 1; r < list_->Vs.Rows(); ++r) out.push_back(list_->Vs.TextMatrix(r, 2));
    std::sort(out.begin(), out.end());
    return out;
  }
  int RowOf(const std::string& number) {
    for (int r = 1; r < list_->Vs.Rows(); ++r)
      if (list_->Vs.TextMatrix(r, 2) == number) return r;
    return 0;
  }
  void Click(const std::string& number) { Gest("Vs", -1, {"cell_click", "", RowOf(number), 3}); }
  // The events since the last look, "name(id):arg|arg".
  Rows Events() {
    Rows out;
    for (const kvhost::HostEvent& e : host().take_events()) {
      out.push_back(e.event.name + "(" + std::to_string(e.event.id) + "):");
      for (size_t i = 0; i < e.event.args.size(); ++i)
        out.back() += (i ? "|" : "") + e.event.args[i].ToString();
    }
    return out;
  }
  std::string Page() {
    const auto documents = kvhost::TakePrintedDocuments();
    if (documents.size() != 1) return "pages made: " + std::to_string(documents.size());
    std::stringstream html;
    html << std::ifstream(documents[0].path).rdbuf();
    return documents[0].title + (documents[0].direct ? " direct\n" : " preview\n") + html.str();
  }

  FY_List* list_ = nullptr;
};

TEST_P(FyListTest, NothingLoadsBeforeTheLayoutIsReadAndTheGridShowsEveryUnit) {
  FY_List list;
  ASSERT_TRUE(list.Init(host().context(), 870102, 0));
  EXPECT_FALSE(list.Refresh());
  EXPECT_EQ(list.Vs.Rows(), 1);
  list.DoGetFormStatus();
  EXPECT_EQ(list.Vs.Rows(), 6);

  Open();
  const kvhost::VsFlexGrid& vs = list_->Vs;
  EXPECT_EQ(vs.TextMatrix(0, 2) + vs.TextMatrix(0, 14), "房源编号出租状态");
  EXPECT_EQ(vs.ColWidth(2), 1600);  // the caption's blanks size the column
  EXPECT_TRUE(vs.ColHidden(1));
  // Row numbers centred, the rent right, the others left.
  EXPECT_EQ(vs.ColAlignment(0) * 100 + vs.ColAlignment(13) * 10 + vs.ColAlignment(14), 471);
  EXPECT_EQ(Numbers(), (Rows{"F1", "F2", "F3", "F4", "F5"}));
  const int row = RowOf("F3");
  Rows cells;
  for (int c = 0; c < vs.Cols(); ++c) cells.push_back(vs.TextMatrix(row, c));
  EXPECT_EQ(cells, (Rows{std::to_string(row), "3", "F3", "O'Hara 公寓", "", "东区", "别墅", "住宅",
                         "三室", "150", "3", "", "", "5000.5", "部分出租"}));
  EXPECT_EQ(vs.TextMatrix(RowOf("F1"), 12), "周敏");
  EXPECT_EQ(TakeReports(/*include_messages=*/true), Rows{});
}

TEST_P(FyListTest, ConditionsAndStateBoxesNarrowTheListAndNothingTypedBreaksIt) {
  Open();
  struct Case {
    std::map<int, std::string> typed;
    std::vector<int> ticked;
    Rows want;
  };
  const Rows all = {"F1", "F2", "F3", "F4", "F5"};
  const std::vector<int> every = {0, 1, 2, 3};
  const Case cases[] = {
      {{}, {}, {}},
      {{{L::kUse, "住宅"}}, {}, {}},                         // no box: nothing, whatever else
      {{}, {L::kPartly}, {"F3", "F4"}},                      // 部分出租 and 已分租
      {{}, {L::kFree, L::kExpired}, {"F1", "F5"}},           //
      {{{L::kArea, "西区"}}, {L::kLet}, {"F2"}},             //
      {{{L::kArea, "东区"}}, {L::kPartly}, {"F3"}},          // the area holds for both states
      {{{L::kArea, "北'区"}}, every, {"F4"}},                //
      {{{L::kArea, "x' or '1'='1"}}, every, {}},             //
      {{{L::kEstate, "O'Hara 公寓"}}, every, {"F2", "F3"}},  //
      {{{L::kEstate, "W1"}}, every, {"F1", "F4", "F5"}},     // the code finds the estate
      {{{L::kLayout, "一室"}}, every, {"F2", "F4"}},
      {{{L::kUse, "住宅"}}, every, {"F1", "F3", "F5"}},
      {{{L::kBuildingType, "多层"}}, every, {"F2", "F5"}},
      {{{L::kRentFrom, "2500"}}, every, {"F2", "F3", "F5"}},
      {{{L::kRentTo, "1500"}}, every, {"F1", "F4"}},
      {{{L::kRentFrom, "abc"}}, every, all},  // reads as 0
      {{{L::kRentFrom, "3000"}, {L::kRentTo, "1000"}}, every, {}},
      {{{L::kSizeFrom, "1e2"}}, every, {"F3", "F5"}},
      {{{L::kSizeTo, "60abc"}}, every, {"F1", "F4"}},
      {{{L::kSizeFrom, "0'; drop table fwfy; --"}}, every, all},
      {{{L::kSalesman, "周敏"}}, every, {"F1", "F4"}},
      {{{L::kSalesman, "012"}}, every, {"F2", "F5"}},
      {{{L::kSalesman, "无此人"}}, every, {}},
      {{{L::kArea, "东区"}, {L::kRentTo, "3000"}}, every, {"F1"}},
  };
  for (const Case& c : cases) {
    Set(c.typed, c.ticked);
    ASSERT_TRUE(Call("Refresh"));
    EXPECT_EQ(Numbers(), c.want) << ::testing::PrintToString(c.typed)
                                 << ::testing::PrintToString(c.ticked);
  }
  EXPECT_EQ(TakeReports(/*include_messages=*/false), Rows{});
  EXPECT_EQ(Scalar("select count(*) from fwfy"), "5");
  // The salesman typed by number shows by name; the estate picked from its list.
  Set({{L::kSalesman, "012"}});
  EXPECT_EQ(list_->kvTxt[L::kSalesman].Text + list_->kvTxt[L::kSalesman].Value.ToString(),
            "吴刚12");
  host().ui().dialogs.push_back(kvhost::ScriptedUi::ChooseRows({1}));
  Gest("kvTxt", L::kEstate, {"pick"});
  EXPECT_EQ(list_->kvTxt[L::kEstate].Text, "O'Hara 公寓");
  ASSERT_TRUE(Call("Refresh"));
  EXPECT_EQ(Numbers(), (Rows{"F2"}));
}

TEST_P(FyListTest, DeleteRefusesATotalRowAsksAndTakesTheUnitOut) {
  Exec("insert into fwfy (房源ID,房源编号,出租价格,出租状态) values (9,null,12345,'未出租')");
  Exec("insert into fwfy_fz (AutoID,房源ID,房间号) values (1,2,'A')");
  Open();
  Click("");  // no unit number: a total row
  host().ui().answers = {msgbox::kOk};
  EXPECT_FALSE(Call("FileDelete"));
  EXPECT_EQ(LastBox(), "不能删除合计数据!|64|提示:");
  Click("F2");
  host().ui().answers = {msgbox::kNo};
  EXPECT_FALSE(Call("FileDelete"));
  EXPECT_EQ(LastBox(), "是否删除当前记录:|52|提示:");
  EXPECT_EQ(Scalar("select count(*) from fwfy"), "6");
  host().ui().answers = {msgbox::kYes};
  EXPECT_TRUE(Call("FileDelete"));
  EXPECT_EQ(Numbers(), (Rows{"", "F1", "F3", "F4", "F5"}));
  EXPECT_EQ(Scalar("select count(*) from fwfy where 房源ID=2"), "0");
  EXPECT_EQ(Scalar("select count(*) from fwfy_fz"), "1");  // its rooms are left alone
  // An empty list: nothing to delete, no box.
  Set({}, {});
  ASSERT_TRUE(Call("Refresh"));
  const size_t boxes = host().ui().shown.size();
  EXPECT_FALSE(Call("FileDelete"));
  EXPECT_EQ(host().ui().shown.size(), boxes);
  EXPECT_EQ(TakeReports(/*include_messages=*/false), Rows{});
}

TEST_P(FyListTest, NewEditAndDoubleClickAskForTheHousingSheetAndFindWorksOnTheGrid) {
  Open();
  EXPECT_FALSE(Call("FileNew"));
  Click("F3");
  EXPECT_EQ(list_->GetID(), 3);
  EXPECT_FALSE(Call("FileEdit"));
  Gest("Vs", -1, {"cell_dblclick", "", RowOf("F5"), 4});
  EXPECT_EQ(Events(), (Rows{"filenew(9):640002", "fileedit(10):640002|3", "Detaile(8):640002|5"}));

  // Find in the column the clerk stands in (物业名称), then on; Filter hides rows.
  Click("F1");
  host().ui().inputs = {"o'hara", "东区", "东区"};
  ASSERT_TRUE(Call("Find", {Variant()}));
  Rows found = {list_->Vs.TextMatrix(list_->Vs.Row(), 2)};
  ASSERT_TRUE(Call("FindNext"));
  found.push_back(list_->Vs.TextMatrix(list_->Vs.Row(), 2));
  std::sort(found.begin(), found.end());
  EXPECT_EQ(found, (Rows{"F2", "F3"}));
  EXPECT_FALSE(Call("FindNext"));
  EXPECT_FALSE(Call("Find", {Variant()}));  // 东区 is no estate
  ASSERT_TRUE(Call("Filter", {Variant()}));
  int shown = 0;
  for (int r = 1; r < list_->Vs.Rows(); ++r) shown += list_->Vs.RowHeight(r) > 0;
  EXPECT_EQ(shown, 2);

  // A state change reloads: a unit let meanwhile leaves the free units.
  Set({}, {L::kFree});
  Exec("update fwfy set 出租状态='已出租' where 房源ID=1");
  Events();
  ASSERT_TRUE(Call("DoSetStatus", {Variant("check"), Variant(true)}));
  EXPECT_EQ(Events(), (Rows{"Message(1):数据正在切换状态", "Message(1):"}));
  EXPECT_EQ(list_->Vs.Rows(), 1);
  EXPECT_EQ(list_->GetID(), 0);
  EXPECT_FALSE(Call("FileEdit"));
  EXPECT_EQ(Events(), Rows{});
  // A load the database refuses: its text, level 8, an empty list.
  Exec("drop table pdmxsy");
  Set({});
  EXPECT_FALSE(Call("Refresh"));
  const Rows reports = TakeReports(/*include_messages=*/false);
  ASSERT_EQ(reports.size(), 1u);
  EXPECT_NE(UCase(reports[0]).find("PDMXSY"), std::string::npos) << reports[0];
  EXPECT_EQ(reports[0].substr(reports[0].find('|')), "|8|房屋租赁管理");
  EXPECT_EQ(list_->Vs.Rows(), 1);
  EXPECT_TRUE(list_->Vs.Redraw);
}

TEST_P(FyListTest, PrintingTitlesThePageAndHeadsItWithTheConditions) {
  Open();
  Set({{L::kArea, "东区"},
       {L::kLayout, "两室一厅"},
       {L::kUse, "住宅"},
       {L::kSalesman, "周敏"},
       {L::kRentFrom, "1000"},
       {L::kSizeTo, "90"}});
  ASSERT_TRUE(Call("Refresh"));
  kvhost::TakePrintedDocuments();
  ASSERT_TRUE(Call("PrintPreview"));
  std::string page = Page();
  EXPECT_EQ(page.substr(0, page.find('\n')), "房源打印清单 preview");
  EXPECT_NE(
      page.find("<div class=\"heading\"><div>所属区域:东区\t户型结构:两室一厅</div>"
                "<div>物业用途:住宅\t业务员:周敏</div><div>月租金从:1000\t面积至:90</div></div>"),
      std::string::npos)
      << page;
  EXPECT_NE(page.find(">F1<"), std::string::npos);
  EXPECT_EQ(list_->ReturnPrintName(), app_path() + "/selfPrn/Rpt870102.prn");
  // Without conditions the lines stay, and the tab between rent and area.
  Set({});
  ASSERT_TRUE(Call("DoPrint"));
  page = Page();
  EXPECT_EQ(page.substr(0, page.find('\n')), "房源打印清单 direct");
  EXPECT_NE(page.find("<div class=\"heading\"><div></div><div></div><div>\t</div></div>"),
            std::string::npos);
}

TEST_P(FyListTest, ConditionsStateBoxesAndWidthsAreKeptInTheLayoutFile) {
  Open();
  Set({{L::kArea, "东区"}, {L::kSalesman, "周敏"}}, {L::kFree, L::kPartly});
  Gest("Vs", -1, {.kind = "col_width", .text = "2500", .col = 3});
  ASSERT_TRUE(host().close(screen_->id).ok());
  Open();  // comes up at once under the kept conditions
  EXPECT_EQ(list_->kvTxt[L::kArea].Text, "东区");
  EXPECT_EQ(list_->kvTxt[L::kSalesman].Text + list_->kvTxt[L::kSalesman].Value.ToString(),
            "周敏11");
  Rows boxes;
  for (int i = L::kFree; i <= L::kExpired; ++i)
    boxes.push_back(list_->chkXS[i].Caption + "=" + std::to_string(list_->chkXS[i].Value));
  EXPECT_EQ(boxes, (Rows{"显示未出租=1", "显示部分出租=1", "显示已出租=0", "显示已失效=0"}));
  EXPECT_EQ(list_->Vs.ColWidth(3), 2500);
  EXPECT_TRUE(list_->Vs.ColHidden(1));
  EXPECT_EQ(Numbers(), (Rows{"F1"}));
  std::stringstream file;
  file << std::ifstream(app_path() + "/selfbb/FY_List.txt").rdbuf();
  EXPECT_NE(file.str().find("KVTXT_S_kvTxt_0_Text=东区"), std::string::npos) << file.str();
}

MRVK_ON_BOTH_ENGINES(FyListTest);

}  // namespace
}  // namespace mrvk
