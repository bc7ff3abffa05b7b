// Owners, clients, fee categories and the quick housing register, driven as a clerk drives them:
// toolbar operations, clicks on the grid, and the entry dialog worked through its fields and
// buttons, on both engines. Assertions are on what the clerk sees (grid rows, dialog fields,
// reports, boxes) and on what the database holds.
#include "mrvk/master/list_master_sheet.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "kvhost/lib/kv_txt.h"
#include "mrvk/master/pdm_fy.h"
#include "mrvk/master/pdm_fykm.h"
#include "mrvk/master/pdm_yz.h"
#include "support/sheet_test.h"

namespace mrvk {
namespace {

using kvhost::Dialog;
using kvhost::Gesture;
using kvhost::HostEvent;

constexpr int32_t kOwners = 870004;
constexpr int32_t kClients = 870005;
constexpr int32_t kHousing = 870006;

class ListMasterSheetTest : public kvtest::SheetTest {
 protected:
  void Open(const char* cls, int32_t prog) {
    ASSERT_NE(OpenScreen(cls, prog), nullptr);
    sheet_ = dynamic_cast<ListMasterSheet*>(screen_->object.get());
    ASSERT_NE(sheet_, nullptr);
  }
  // A click on a data row of the grid (1 is the first).
  void ClickRow(int row) { Gest("Vs", -1, {.kind = "cell_click", .row = row, .col = 1}); }
  // The texts of the grid's data rows, shown columns from 0 joined by "|".
  std::vector<std::string> Rows() {
    std::vector<std::string> out;
    kvhost::VsFlexGrid& vs = sheet_->Vs;
    for (int r = vs.FixedRows(); r < vs.Rows(); ++r) {
      std::string line;
      for (int c = 0; c < vs.Cols(); ++c) {
        if (vs.ColHidden(c)) continue;
        line += (c ? "|" : "") + vs.TextMatrix(r, c);
      }
      out.push_back(line);
    }
    return out;
  }
  std::vector<std::string> Reports() { return TakeReports(/*include_messages=*/false); }

  // What a clerk does on the next dialog: types into fields, clicks buttons, and records
  // what the dialog showed when it opened.
  struct Step {
    std::string control;
    int index;
    Gesture gesture;
  };
  struct Seen {
    std::string caption;
    std::vector<std::string> texts;  // kvTxt(0..) as shown on opening
    bool female = false;
  };
  void OnDialog(std::vector<Step> steps, Seen* seen = nullptr) {
    host().ui().dialogs.push_back([this, steps = std::move(steps), seen](Dialog& d) {
      auto& form = dynamic_cast<EntryDialog&>(d);
      if (seen) {
        *seen = Seen{};
        seen->caption = d.Caption;
        for (auto& [index, field] : form.kvTxt) seen->texts.push_back(field->Text);
        if (auto* yz = dynamic_cast<FrmYz*>(&d)) seen->female = yz->optXB[1].Value;
      }
      for (const Step& s : steps) {
        kvhost::Status st = host().gesture(d.Controls(), d.Name(), s.control, s.index, s.gesture);
        EXPECT_TRUE(st.ok()) << s.control << "(" << s.index << "): " << st.message();
        if (!d.IsShown()) break;
      }
    });
  }
  static Step TypeIn(int index, const std::string& text) {
    return {"kvTxt", index, {.kind = "type", .text = text}};
  }
  static Step Leave(int index) { return {"kvTxt", index, {.kind = "leave"}}; }
  static Step Click(const std::string& control, int index) {
    return {control, index, {.kind = "click"}};
  }
  static Step Save() { return Click("Cmd", 0); }
  static Step Close() { return Click("Cmd", 1); }

  void AddParty(int id, const std::string& code, const std::string& name, int type) {
    Exec("insert into fwyz (业主ID,业主编号,业主名称,性别,类型) values (" + std::to_string(id) +
         ",'" + code + "','" + name + "','男'," + std::to_string(type) + ")");
  }

  // An estate, two buildings of it and an owner for the housing units to name.
  void AddHousingLookups() {
    Exec("insert into fwwy (物业ID,物业编号,物业名称) values (1,'W1','阳光花园')");
    Exec("insert into fwly (楼宇ID,楼宇编号,楼宇名称,物业ID) values (1,'L1','1号楼',1)");
    Exec("insert into fwly (楼宇ID,楼宇编号,楼宇名称,物业ID) values (2,'L2','2号楼',1)");
    AddParty(1, "Y01", "王五", 0);
    AddParty(2, "K01", "钱七", 1);
  }
  void AddUnit(int id, const std::string& code, const std::string& name, int building, int owner) {
    Exec(
        "insert into fwfy "
        "(房源ID,房源编号,房源名称,物业ID,楼宇ID,朝向,户型,楼层,结构,面积,出租状态,"
        "业主ID,备注) values (" +
        std::to_string(id) + ",'" + code + "','" + name + "',1," + std::to_string(building) +
        ",'南','一室一厅','3','砖混',85.5,'已出租'," + std::to_string(owner) + ",'朝南')");
  }
  static constexpr const char* kUnitColumns =
      "select 房源编号,房源名称,物业ID,楼宇ID,朝向,户型,楼层,结构,面积,出租状态,业主ID,备注 from "
      "fwfy ";

  ListMasterSheet* sheet_ = nullptr;
};

TEST_P(ListMasterSheetTest, OwnersUnderTheOwnersKeyAndClientsUnderAnyOtherKey) {
  AddParty(1, "Y02", "王五", 0);
  AddParty(2, "Y01", "赵六", 0);
  AddParty(3, "K01", "钱七", 1);
  for (int32_t prog : {kClients, 0}) {
    Open("PDMYz", prog);
    EXPECT_EQ(Rows(), (std::vector<std::string>{"1|K01|钱七|男|||||"})) << prog;
  }
  Open("PDMYz", kOwners);
  // By code, numbered, the ID column hidden.
  EXPECT_EQ(Rows(), (std::vector<std::string>{"1|Y01|赵六|男|||||", "2|Y02|王五|男|||||"}));
  EXPECT_EQ(sheet_->Vs.Cols(), 10);
  EXPECT_TRUE(sheet_->Vs.ColHidden(9));
  EXPECT_EQ(sheet_->Vs.TextMatrix(1, 9), "2");
  EXPECT_EQ(sheet_->Vs.TextMatrix(0, 2), "姓名");

  // Refresh says what it does and tells the host it refreshed.
  ASSERT_TRUE(Call("Refresh"));
  std::vector<std::string> seen;
  for (const HostEvent& e : host().take_events())
    seen.push_back(e.event.name + ":" + (e.event.args.empty() ? "" : e.event.args[0].ToString()));
  EXPECT_EQ(seen, (std::vector<std::string>{"Message:正在加载数据", "FormRefreshed:", "Message:"}));

  // The sheet has no edit state and no navigation.
  EXPECT_FALSE(Call("FileSave") || Call("RecordNext") || sheet_->IsDirty());
}

TEST_P(ListMasterSheetTest, ANewPartyIsCheckedSavedAtOnceAndAddedAtTheEndOfTheGrid) {
  AddParty(1, "Y09", "王五", 0);
  // Rows put in behind the key source's back: init-db raises it past them.
  ASSERT_TRUE(host().create_schema().ok());
  Open("PDMYz", kOwners);
  Seen seen;
  OnDialog({TypeIn(0, " Y01 "), TypeIn(1, "O'Brien \"老\" 李"), Click("optXB", 1),
            TypeIn(2, "138-0000"), TypeIn(3, "某某公司"), TypeIn(4, "110101"),
            TypeIn(5, std::string(300, 'x')), TypeIn(6, "北京"), Save()},
           &seen);
  ASSERT_TRUE(Call("FileNew")) << ::testing::PrintToString(Reports());
  EXPECT_EQ(seen.caption, "业主信息");
  EXPECT_EQ(seen.texts, std::vector<std::string>(7, ""));
  EXPECT_EQ(Reports(), std::vector<std::string>{});

  // Saved trimmed, with the sheet's kind; quotes and a long remark come back unchanged.
  EXPECT_EQ(Query("select 业主名称,性别,类型,工作单位,备注 from fwyz where 业主编号='Y01'"),
            std::vector<std::string>{"O'Brien \"老\" 李|女|0|某某公司|" + std::string(300, 'x')});
  // At the end, not in its place by code, and the current row.
  ASSERT_EQ(Rows().size(), 2u);
  EXPECT_EQ(Rows()[1].substr(0, 8), "2|Y01|O'");
  EXPECT_EQ(sheet_->Vs.Row(), 2);
  ASSERT_TRUE(Call("Refresh"));
  EXPECT_EQ(Rows()[0].substr(0, 6), "1|Y01|");

  // A client's dialog has its own caption and saves type 1.
  Open("PDMYz", kClients);
  OnDialog({TypeIn(0, "K01"), TypeIn(1, "钱七"), Save()}, &seen);
  ASSERT_TRUE(Call("FileNew"));
  EXPECT_EQ(seen.caption, "客源信息");
  EXPECT_EQ(Query("select 类型,性别 from fwyz where 业主编号='K01'"),
            std::vector<std::string>{"1|男"});
}

TEST_P(ListMasterSheetTest, TheDialogRefusesMissingAndDuplicateCodesAndNamesAndStaysOpen) {
  AddParty(1, "Y01", "王五", 0);
  AddParty(2, "K01", "钱七", 1);  // a client's code and name count too: one table
  Open("PDMYz", kOwners);
  // Blanks are no code; each refusal leaves the dialog open until it is closed.
  OnDialog({TypeIn(0, "   "), TypeIn(1, "赵六"), Save(), TypeIn(0, "Y02"), TypeIn(1, ""), Save(),
            TypeIn(0, "Y01"), TypeIn(1, "赵六"), Save(), TypeIn(0, "K01"), Save(), TypeIn(0, "Y02"),
            TypeIn(1, " 钱七 "), Save(), Close()});
  ASSERT_TRUE(Call("FileNew"));
  EXPECT_EQ(Reports(), (std::vector<std::string>{
                           "没有具体的编号,请录入!|2|提示：", "没有具体的姓名,请录入!|2|提示：",
                           "编号重复,请检查!|2|提示：", "编号重复,请检查!|2|提示：",
                           "姓名重复,请检查!|2|提示"}));
  EXPECT_EQ(Scalar("select count(*) from fwyz"), "2");
  EXPECT_EQ(Rows().size(), 1u);

  // The close button saves nothing, and neither does the window's close box.
  OnDialog({TypeIn(0, "Y03"), TypeIn(1, "孙八"), Close()});
  ASSERT_TRUE(Call("FileNew"));
  host().ui().dialogs.push_back([](Dialog& d) { d.Close(); });
  ASSERT_TRUE(Call("FileNew"));
  EXPECT_EQ(Scalar("select count(*) from fwyz"), "2");
}

TEST_P(ListMasterSheetTest, EditShowsTheRowAndSavesItInPlaceKeepingItsOwnCodeAndName) {
  Open("PDMYz", kOwners);
  // The empty grid: no row, no dialog.
  EXPECT_FALSE(Call("FileEdit"));
  AddParty(1, "Y01", "王五", 0);
  AddParty(2, "Y02", "赵六", 0);
  Exec("update fwyz set 性别='女',电话='123' where 业主ID=2");
  ASSERT_TRUE(Call("Refresh"));

  ClickRow(2);
  Seen seen;
  OnDialog({TypeIn(2, "456"), Save()}, &seen);
  ASSERT_TRUE(Call("FileEdit"));
  EXPECT_EQ(seen.caption, "业主信息");
  EXPECT_EQ(std::vector<std::string>(seen.texts.begin(), seen.texts.begin() + 3),
            (std::vector<std::string>{"Y02", "赵六", "123"}));
  EXPECT_TRUE(seen.female);
  EXPECT_EQ(Reports(), std::vector<std::string>{});
  EXPECT_EQ(Query("select 电话,性别 from fwyz order by 业主ID"),
            (std::vector<std::string>{"|男", "456|女"}));
  EXPECT_EQ(Rows(), (std::vector<std::string>{"1|Y01|王五|男|||||", "2|Y02|赵六|女|456||||"}));

  // Taking another row's code is refused on edit as well.
  ClickRow(1);
  OnDialog({TypeIn(0, "Y02"), Save(), Close()});
  ASSERT_TRUE(Call("FileEdit"));
  EXPECT_EQ(Reports(), (std::vector<std::string>{"编号重复,请检查!|2|提示："}));
  EXPECT_EQ(Scalar("select 业主编号 from fwyz where 业主ID=1"), "Y01");

  // Another clerk saves the row while this dialog shows it: this save is refused, theirs
  // stands.
  host().ui().dialogs.push_back([this](Dialog& d) {
    Exec("update fwyz set 电话='999' where 业主ID=1");
    for (const Step& s : {TypeIn(2, "111"), Save(), Close()})
      EXPECT_TRUE(host().gesture(d.Controls(), d.Name(), s.control, s.index, s.gesture).ok());
  });
  host().ui().answers.push_back(msgbox::kOk);
  ASSERT_TRUE(Call("FileEdit"));
  EXPECT_EQ(LastBox(), std::string(kChangedByOthers) + "|48|提示:");
  EXPECT_EQ(Scalar("select 电话 from fwyz where 业主ID=1"), "999");
}

TEST_P(ListMasterSheetTest, DeleteAsksThenRefusesOwnersOfHousingButNotClientsWithContracts) {
  AddParty(1, "Y01", "王五", 0);
  AddParty(2, "Y02", "赵六", 0);
  AddParty(3, "Y03", "孙八", 0);
  AddParty(4, "K01", "钱七", 1);
  Exec("insert into fwfy (房源ID,房源编号,业主ID) values (1,'F1',2)");
  Exec("insert into fwhd (合同ID,合同编号,客户ID) values (1,'HT1',4)");
  Open("PDMYz", kOwners);

  ClickRow(1);
  host().ui().answers = {msgbox::kNo};
  EXPECT_FALSE(Call("FileDelete"));
  EXPECT_EQ(LastBox(), "是否删除当前行记录|52|提示:");
  EXPECT_EQ(Scalar("select count(*) from fwyz"), "4");

  ClickRow(2);  // owns a housing unit
  host().ui().answers = {msgbox::kYes};
  EXPECT_FALSE(Call("FileDelete"));
  EXPECT_EQ(Reports(), (std::vector<std::string>{"该[业主]已启用,不能删除!|2|业主"}));
  EXPECT_EQ(Rows().size(), 3u);

  // A middle row goes; the rows below move up and are numbered again.
  host().ui().answers = {msgbox::kYes};
  ClickRow(1);
  EXPECT_TRUE(Call("FileDelete"));
  EXPECT_EQ(Rows(), (std::vector<std::string>{"1|Y02|赵六|男|||||", "2|Y03|孙八|男|||||"}));
  EXPECT_EQ(Scalar("select count(*) from fwyz where 业主ID=1"), "0");

  Open("PDMYz", kClients);
  ClickRow(1);
  host().ui().answers = {msgbox::kYes};
  EXPECT_TRUE(Call("FileDelete"));
  EXPECT_EQ(Rows(), std::vector<std::string>{});
  EXPECT_EQ(Scalar("select count(*) from fwyz where 业主ID=4"), "0");
  // Nothing to delete now: no question.
  const size_t shown = host().ui().shown.size();
  EXPECT_FALSE(Call("FileDelete"));
  EXPECT_EQ(host().ui().shown.size(), shown);
}

TEST_P(ListMasterSheetTest, ADatabaseFailureOnSaveShowsItsTextAndKeepsTheDialogOpen) {
  Open("PDMYz", kOwners);
  Exec("drop table fwyz");
  host().ui().answers = {msgbox::kOk};
  OnDialog({TypeIn(0, "Y01"), TypeIn(1, "王五"), Save(), Close()});
  ASSERT_TRUE(Call("FileNew"));
  ASSERT_EQ(host().ui().shown.size(), 2u);
  EXPECT_EQ(host().ui().shown[1].flags, 16);
  EXPECT_EQ(host().ui().shown[1].title, "提示:");
  EXPECT_NE(host().ui().shown[1].prompt, "");
  EXPECT_TRUE(Rows().empty());
}

TEST_P(ListMasterSheetTest, FeeCategoriesTakeAModeFromTheClosedListAndAPriceAsANumber) {
  Open("PDMFykm", 870003);
  EXPECT_EQ(sheet_->Vs.FormatString(), "行号|编号|名称|计费方式|单价|费用ID");
  Seen seen;
  OnDialog({TypeIn(0, "F01"),
            TypeIn(1, "水费"),
            {"kvTxt", 2, {.kind = "pick", .text = "按用量"}},
            TypeIn(3, "3.5"),
            Save()},
           &seen);
  ASSERT_TRUE(Call("FileNew"));
  EXPECT_EQ(seen.caption, "费用科目");
  // No mode and no price: saved empty and 0; a price typed as text is 0 too.
  OnDialog({TypeIn(0, "F02"), TypeIn(1, "卫生费"), Save()});
  ASSERT_TRUE(Call("FileNew"));
  OnDialog({TypeIn(0, "F03"), TypeIn(1, "杂费"), TypeIn(3, "abc"), Save()});
  ASSERT_TRUE(Call("FileNew"));
  EXPECT_EQ(Reports(), std::vector<std::string>{});
  EXPECT_EQ(Query("select 计费方式,单价 from fwfykm order by 费用编号"),
            (std::vector<std::string>{"按用量|3.5", "|0", "|0"}));
  EXPECT_EQ(Rows(), (std::vector<std::string>{"1|F01|水费|按用量|3.5", "2|F02|卫生费||0",
                                              "3|F03|杂费||0"}));

  // The caption stays on edit; a duplicate name has the title without a colon.
  ClickRow(2);
  OnDialog({TypeIn(1, "水费"), Save(), Close()}, &seen);
  ASSERT_TRUE(Call("FileEdit"));
  EXPECT_EQ(seen.caption, "费用科目");
  EXPECT_EQ(seen.texts[1], "卫生费");
  EXPECT_EQ(Reports(), (std::vector<std::string>{"名称重复,请检查!|2|提示"}));

  // Only a fee receipt keeps a category from being deleted.
  Exec("insert into fwjsfy (单据ID,费用ID) values (1," +
       Scalar("select 费用ID from fwfykm where 费用编号='F01'") + ")");
  ClickRow(1);
  host().ui().answers = {msgbox::kYes, msgbox::kYes};
  EXPECT_FALSE(Call("FileDelete"));
  EXPECT_EQ(Reports(), (std::vector<std::string>{"该[费用科目]已启用,不能删除!|2|费用科目"}));
  ClickRow(2);
  EXPECT_TRUE(Call("FileDelete"));
  EXPECT_EQ(Scalar("select count(*) from fwfykm"), "2");
}

TEST_P(ListMasterSheetTest, HousingUnitsListWithTheNamesOfTheirEstateBuildingAndOwner) {
  AddHousingLookups();
  AddUnit(2, "F02", "二号", 1, 1);
  // Its building and owner rows are gone: the unit still shows, with empty names.
  AddUnit(1, "F01", "一号", 9, 7);
  Open("PDMFy", kHousing);
  EXPECT_EQ(sheet_->Vs.FormatString(),
            "行号|编号|名称|物业|楼宇|朝向|户型|楼层|结构|面积|出租状态|业主|备注|房源ID");
  EXPECT_TRUE(sheet_->Vs.ColHidden(13));
  EXPECT_EQ(sheet_->Vs.TextMatrix(1, 13), "1");
  EXPECT_EQ(Rows(), (std::vector<std::string>{
                        "1|F01|一号|阳光花园||南|一室一厅|3|砖混|85.5|已出租||朝南",
                        "2|F02|二号|阳光花园|1号楼|南|一室一厅|3|砖混|85.5|已出租|王五|朝南"}));
  // The state is a closed list of exactly these, the first empty.
  auto* housing = dynamic_cast<PDMFy*>(sheet_);
  ASSERT_NE(housing, nullptr);
  EXPECT_EQ(housing->Dialog().kvTxt[11].ListEntries(),
            (std::vector<std::string>{"", "未出租", "已出租"}));
}

TEST_P(ListMasterSheetTest, ANewHousingUnitTakesItsLookupsByCodeNameOrListAndSavesAtOnce) {
  AddHousingLookups();
  AddUnit(1, "F01", "一号", 1, 1);
  ASSERT_TRUE(host().create_schema().ok());
  Open("PDMFy", kHousing);
  Seen seen;
  // Codes and names typed into the bound fields are looked up when the field is left; the
  // building is chosen from its list (the second row, 2号楼).
  OnDialog({TypeIn(0, " F03 "),
            TypeIn(1, "O'Brien's \"flat\""),
            TypeIn(2, "W1"),
            Leave(2),
            TypeIn(3, "王五"),
            Leave(3),
            {"kvTxt", 4, {.kind = "pick"}},
            TypeIn(5, "备注'x"),
            TypeIn(6, "01"),
            Leave(6),
            TypeIn(7, "两室一厅"),
            Leave(7),
            TypeIn(8, "5"),
            TypeIn(9, "03"),
            Leave(9),
            TypeIn(10, "60.25"),
            {"kvTxt", 11, {.kind = "pick", .text = "已出租"}},
            Save()},
           &seen);
  host().ui().dialogs.push_back(kvhost::ScriptedUi::ChooseRows({1}));
  ASSERT_TRUE(Call("FileNew"));
  EXPECT_EQ(seen.caption, "房源信息");
  EXPECT_EQ(seen.texts, std::vector<std::string>(12, ""));
  EXPECT_EQ(Reports(), std::vector<std::string>{});
  EXPECT_EQ(Query(std::string(kUnitColumns) + "where 房源编号='F03'"),
            std::vector<std::string>{
                "F03|O'Brien's \"flat\"|1|2|南|两室一厅|5|框架|60.25|已出租|1|备注'x"});
  // At the end of the grid, with the names of what it refers to.
  EXPECT_EQ(Rows().back(),
            "2|F03|O'Brien's \"flat\"|阳光花园|2号楼|南|两室一厅|5|框架|60.25|已出租|王五|备注'x");

  // Only the code and the name are needed: the rest is saved empty, the IDs and area 0.
  OnDialog({TypeIn(0, "F04"), TypeIn(1, "四号"), Save()});
  ASSERT_TRUE(Call("FileNew"));
  EXPECT_EQ(Query(std::string(kUnitColumns) + "where 房源编号='F04'"),
            std::vector<std::string>{"F04|四号|0|0|||||0||0|"});
}

TEST_P(ListMasterSheetTest, TheHousingDialogChecksCodeNameAndLookupsAndEditsInPlace) {
  AddHousingLookups();
  AddUnit(1, "F01", "一号", 1, 1);
  AddUnit(2, "F02", "二号", 2, 1);
  Open("PDMFy", kHousing);
  OnDialog({TypeIn(1, "三号"), Save(), TypeIn(0, "F03"), TypeIn(1, " "), Save(), TypeIn(0, "F01"),
            TypeIn(1, "三号"), Save(), TypeIn(0, "F03"), TypeIn(1, "一号"), Save(), Close()});
  ASSERT_TRUE(Call("FileNew"));
  EXPECT_EQ(Reports(), (std::vector<std::string>{
                           "没有具体的编号,请录入!|2|提示：", "没有具体的名称,请录入!|2|提示：",
                           "编号重复,请检查!|2|提示：", "名称重复,请检查!|2|提示"}));
  EXPECT_EQ(Scalar("select count(*) from fwfy"), "2");

  // The dialog shows the unit with the names of its lookups. A client is no owner: the typed
  // code is refused, and the unit is saved without an owner; an emptied area saves 0.
  ClickRow(2);
  Seen seen;
  host().ui().answers = {msgbox::kOk};
  OnDialog({TypeIn(1, "二号'楼"), TypeIn(3, "K01"), Leave(3), TypeIn(10, ""), Save()}, &seen);
  ASSERT_TRUE(Call("FileEdit"));
  EXPECT_EQ(seen.texts,
            (std::vector<std::string>{"F02", "二号", "阳光花园", "王五", "2号楼", "朝南", "南",
                                      "一室一厅", "3", "砖混", "85.5", "已出租"}));
  EXPECT_EQ(LastBox(), "业主名称输入有误，请重新输入！|48|");
  EXPECT_EQ(Reports(), std::vector<std::string>{});
  EXPECT_EQ(Query(std::string(kUnitColumns) + "where 房源ID=2"),
            std::vector<std::string>{"F02|二号'楼|1|2|南|一室一厅|3|砖混|0|已出租|0|朝南"});
  EXPECT_EQ(Rows()[1], "2|F02|二号'楼|阳光花园|2号楼|南|一室一厅|3|砖混|0|已出租||朝南");
  EXPECT_EQ(Rows().size(), 2u);
}

TEST_P(ListMasterSheetTest, AHousingUnitNamedByAnyContractCannotBeDeleted) {
  AddHousingLookups();
  AddUnit(1, "F01", "一号", 1, 1);
  AddUnit(2, "F02", "二号", 1, 1);
  AddUnit(3, "F03", "三号", 1, 1);
  // An ended contract still names the unit.
  Exec("insert into fwhd (合同ID,合同编号,smark,状态) values (5,'HT5','02','终止')");
  Exec("insert into fwhdmx (合同明细ID,合同ID,房源ID) values (5,5,2)");
  Open("PDMFy", kHousing);
  ClickRow(2);
  host().ui().answers = {msgbox::kYes};
  EXPECT_FALSE(Call("FileDelete"));
  EXPECT_EQ(LastBox(), "是否删除当前行记录|52|提示:");
  EXPECT_EQ(Reports(), (std::vector<std::string>{"该[房源信息]已启用,不能删除!|2|房源信息"}));
  EXPECT_EQ(Scalar("select count(*) from fwfy where 房源ID=2"), "1");

  ClickRow(1);
  host().ui().answers = {msgbox::kYes};
  EXPECT_TRUE(Call("FileDelete"));
  EXPECT_EQ(Query("select 房源编号 from fwfy order by 房源编号"),
            (std::vector<std::string>{"F02", "F03"}));
  EXPECT_EQ(std::vector<std::string>({Rows()[0].substr(0, 6), Rows()[1].substr(0, 6)}),
            (std::vector<std::string>{"1|F02|", "2|F03|"}));
}

TEST_P(ListMasterSheetTest, FindAndFilterWorkOnTheGridsRows) {
  AddParty(1, "Y01", "王五", 0);
  AddParty(2, "Y02", "赵六", 0);
  AddParty(3, "Y03", "王小二", 0);
  Open("PDMYz", kOwners);
  host().ui().inputs = {std::string("王")};
  EXPECT_TRUE(Call("Find", {Variant()}));
  EXPECT_EQ(sheet_->Vs.Row(), 1);
  EXPECT_TRUE(Call("FindNext"));
  EXPECT_EQ(sheet_->Vs.Row(), 3);
  host().ui().inputs = {std::string("赵")};
  EXPECT_TRUE(Call("Filter", {Variant()}));
  EXPECT_EQ(sheet_->Vs.RowHeight(1), 0);
  EXPECT_GT(sheet_->Vs.RowHeight(2), 0);
  EXPECT_EQ(sheet_->Vs.RowHeight(3), 0);
}

TEST_P(ListMasterSheetTest, OwnersAndClientsKeepTheirOwnColumnWidths) {
  Open("PDMYz", kOwners);
  const int width = sheet_->Vs.ColWidth(2);
  sheet_->Vs.ColWidth(2) = 4321;
  ASSERT_TRUE(host().close(screen_->id).ok());
  EXPECT_TRUE(std::filesystem::exists(app_path() + "/selfbb/PDMYz-0.txt"));
  Open("PDMYz", kClients);
  EXPECT_EQ(sheet_->Vs.ColWidth(2), width);
  Open("PDMYz", kOwners);
  EXPECT_EQ(sheet_->Vs.ColWidth(2), 4321);
}

MRVK_ON_BOTH_ENGINES(ListMasterSheetTest);

}  // namespace
}  // namespace mrvk
