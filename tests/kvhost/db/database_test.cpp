// The database objects as the module uses them, on both engines.
#include "kvhost/db/database.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <set>

#include "kvhost/lib/bill_data.h"
#include "mrvk/frame/data_access.h"
#include "mrvk/frame/vb.h"
#include "support/engines.h"

namespace kvhost {
namespace {

using mrvk::SqlQuoted;

class DatabaseTest : public kvtest::EngineTest {
 protected:
  // Adds a party through the module's path: a new key and a spliced insert.
  int32_t AddParty(const std::string& code, const std::string& name, int kind = 0) {
    BillData bill;
    bill.Database(&db());
    int32_t id = 0;
    EXPECT_EQ(bill.NewID("fwyz", "业主ID", id), "");
    Exec("insert into fwyz (业主ID,业主编号,业主名称,类型) values (" + std::to_string(id) + "," +
         SqlQuoted(code) + "," + SqlQuoted(name) + "," + std::to_string(kind) + ")");
    return id;
  }
};

TEST_P(DatabaseTest, ScalarReadWithNoRowGivesEmptyTextAndZero) {
  auto cmd = db().CreateCommand("select 业主名称 from fwyz where 业主ID=-1", 1);
  mrvk::Variant v = cmd->ExecuteScalar();
  EXPECT_TRUE(v.IsEmpty());
  EXPECT_EQ(v.ToString(), "");
  EXPECT_EQ(mrvk::Val(v.ToString()), 0);
  EXPECT_EQ(db().Error().Description(), "");
}

TEST_P(DatabaseTest, HostileTextIsSavedAndReadBackUnchanged) {
  const std::string long_name(3000, 'x');
  std::string chinese;
  for (int i = 0; i < 2000; ++i) chinese += "房";
  // Only the engine's valid text may be stored: on both engines texts are UTF-8.
  std::string utf8_junk;
  for (int c = 1; c < 128; ++c) utf8_junk.push_back(static_cast<char>(c));
  const std::vector<std::string> texts = {
      "O'Brien",         "''",           "'; drop table fwyz; --",
      "a\\b\\'c",        "#2012-01-01#", "top 1",
      "[业主]",          "\"双引号\"",   "%_*?",
      chinese,           long_name,      utf8_junk,
      "张'三' or '1'='1"};
  int n = 0;
  for (const std::string& text : texts) {
    const int32_t id = AddParty("C" + std::to_string(++n), text);
    auto rs = db().CreateCommand("select 业主名称 from fwyz where 业主ID=" + std::to_string(id), 1)
                  ->OpenRecordset();
    ASSERT_EQ(db().Error().Description(), "");
    ASSERT_FALSE(rs->Eof());
    EXPECT_EQ(rs->Fields("业主名称").Value.ToString(), text);
    // Found again by the text itself, spliced through the quoting helper.
    EXPECT_EQ(Scalar("select 业主ID from fwyz where 业主名称=" + SqlQuoted(text)),
              std::to_string(id))
        << text.substr(0, 40);
  }
  EXPECT_EQ(Scalar("select count(*) from fwyz"), std::to_string(texts.size()));
}

TEST_P(DatabaseTest, RecordsetFieldsByNameWithoutRegardToCaseAndByIndex) {
  AddParty("A1", "甲");
  AddParty("A2", "乙", 1);
  auto rs =
      db().CreateCommand("select 业主ID, 业主编号, 类型 as Kind from fwyz order by 业主编号", 1)
          ->OpenRecordset();
  ASSERT_EQ(db().Error().Description(), "");
  EXPECT_FALSE(rs->Bof());
  EXPECT_EQ(rs->RecordCount(), 2);
  EXPECT_EQ(rs->FieldCount(), 3);
  EXPECT_EQ(rs->Fields("KIND").Value.ToLong(), 0);
  EXPECT_EQ(rs->Fields("kind").Value.type(), mrvk::Variant::Type::Long);
  EXPECT_EQ(rs->Fields(1).Value.ToString(), "A1");
  EXPECT_THROW(rs->Fields("nothing"), mrvk::VbError);
  rs->MoveNext();
  EXPECT_EQ(rs->Fields("业主编号").Value.ToString(), "A2");
  rs->MoveNext();
  EXPECT_TRUE(rs->Eof());
  EXPECT_THROW(rs->Fields(0), mrvk::VbError);
  rs->MoveFirst();
  mrvk::RowsArray rows = rs->GetRows();
  ASSERT_EQ(rows.rows, 2u);
  ASSERT_EQ(rows.fields, 3u);
  EXPECT_EQ(rows.at(1, 1).ToString(), "A2");
  EXPECT_TRUE(rs->Eof());
}

TEST_P(DatabaseTest, ValuesReadBackTheSameOnBothEngines) {
  Exec(
      "insert into fwhdfs_sk (AutoID,合同ID,费用名称,是否包干,是否预收,收款期间,收款日期,起始日期,"
      "结束日期,上期度数,是否最后一期,序号,是否已收) values (1,2,'房租',1,1,3,'2012-3-15',"
      "'2012-03-15','2012-06-14',12.5,0,1,0)");
  auto rs = db().CreateCommand("select * from fwhdfs_sk where AutoID=1", 1)->OpenRecordset();
  ASSERT_EQ(db().Error().Description(), "");
  ASSERT_FALSE(rs->Eof());
  EXPECT_EQ(rs->Fields("收款日期").Value.ToString(), "2012-03-15");
  EXPECT_EQ(rs->Fields("收款日期").Value.type(), mrvk::Variant::Type::String);
  EXPECT_EQ(rs->Fields("上期度数").Value.ToString(), "12.5");
  EXPECT_EQ(rs->Fields("收款期间").Value.ToString(), "3");
  EXPECT_EQ(rs->Fields("合同ID").Value.type(), mrvk::Variant::Type::Long);
  // Dates compare as dates with either dialect's literal.
  const std::string lit = mrvk::DateLiteral(db(), mrvk::Date::FromYmd(2012, 4, 1));
  EXPECT_EQ(Scalar("select count(*) from fwhdfs_sk where 收款日期<" + lit), "1");
}

TEST_P(DatabaseTest, TextOrdersByBytes) {
  for (const char* code : {"b", "B", "a", "张", "_"}) AddParty(code, "名");
  auto rs = db().CreateCommand("select 业主编号 from fwyz order by 业主编号", 1)->OpenRecordset();
  std::string order;
  while (!rs->Eof()) {
    order += rs->Fields(0).Value.ToString() + " ";
    rs->MoveNext();
  }
  EXPECT_EQ(order, "B _ a b 张 ");
}

TEST_P(DatabaseTest, AFailureInABracketLeavesNoTraceAndOutsideOneTheEarlierStatementsStay) {
  db().BeginTrans();
  ASSERT_TRUE(db().InTransaction());
  AddParty("T1", "一");
  AddParty("T2", "二");
  db().CreateCommand("insert into fwyz (业主ID, nosuchcolumn) values (999, 1)", 1)->Execute();
  const std::string error = db().Error().Description();
  EXPECT_NE(error, "");
  db().RollbackTrans();
  EXPECT_FALSE(db().InTransaction());
  EXPECT_EQ(Scalar("select count(*) from fwyz"), "0");
  // The connection goes on working.
  AddParty("T3", "三");
  EXPECT_EQ(Scalar("select count(*) from fwyz"), "1");
  // Without a bracket the statements before a failure stay.
  db().CreateCommand("update fwyz set nosuchcolumn=1", 1)->Execute();
  EXPECT_NE(db().Error().Description(), "");
  AddParty("T4", "四");
  EXPECT_EQ(db().Error().Description(), "");
  EXPECT_EQ(Scalar("select count(*) from fwyz"), "2");
}

TEST_P(DatabaseTest, ErrorTextStaysUntilTheNextStep) {
  auto bad = db().CreateCommand("select nosuch from fwyz", 1);
  auto rs = bad->OpenRecordset();
  EXPECT_TRUE(rs->Eof() && rs->Bof());
  const std::string first = db().Error().Description();
  EXPECT_NE(first, "");
  EXPECT_EQ(db().Error().Description(), first);
  Scalar("select count(*) from fwyz");
  EXPECT_EQ(db().Error().Description(), "");
  // Execute refuses selects and Query refuses writes.
  EXPECT_FALSE(db().Execute("select 1 from fwyz"));
  EXPECT_NE(db().Error().Description(), "");
  db::ResultSet rows;
  EXPECT_FALSE(db().Query("delete from fwyz", rows));
  EXPECT_NE(db().Error().Description().find("SELECT"), std::string::npos);
}

TEST_P(DatabaseTest, NewIdGivesIncreasingUnusedKeys) {
  BillData bill;
  bill.Database(&db());
  int32_t a = 0, b = 0;
  ASSERT_EQ(bill.NewID("fwhd", "合同ID", a), "");
  ASSERT_EQ(bill.NewID("fwhd", "合同ID", b), "");
  EXPECT_GT(a, 0);
  EXPECT_GT(b, a);
  // Rows written with keys of their own (an import) are never handed out again after an
  // upgrade of the schema.
  Exec("insert into fwyz (业主ID,业主编号,业主名称,类型) values (5000,'IMP','导入',0)");
  ASSERT_TRUE(host().create_schema().ok());
  int32_t c = 0;
  ASSERT_EQ(bill.NewID("fwyz", "业主ID", c), "");
  EXPECT_GT(c, 5000);

  // Keys drawn in a bracket that is rolled back are not handed out twice.
  auto other = NewHost();
  BillData& mine = bill;
  BillData theirs;
  theirs.Database(&other->database());
  std::set<int32_t> used;
  for (int round = 0; round < 3; ++round) {
    db().BeginTrans();
    int32_t a = 0;
    ASSERT_EQ(mine.NewID("fwjs", "单据ID", a), "");
    db().RollbackTrans();
    int32_t b = 0, c = 0;
    ASSERT_EQ(theirs.NewID("fwjs", "单据ID", b), "");
    ASSERT_EQ(mine.NewID("fwjs", "单据ID", c), "");
    EXPECT_TRUE(used.insert(b).second) << b;
    EXPECT_TRUE(used.insert(c).second) << c;
  }
}

TEST_P(DatabaseTest, NavigateAndLocateWalkByAscendingKey) {
  const int32_t a = AddParty("N1", "甲");
  AddParty("N2", "乙", 1);
  const int32_t c = AddParty("N3", "丙");
  BillData bill;
  bill.Database(&db());
  std::unique_ptr<mrvk::Recordset> rs;
  std::string pos;
  const std::string sql = "select A.*, A.业主名称 as 名 from fwyz A";
  // What a step gives: the code and position of the row reached, "Null" past the end or
  // where nothing matches, or "failed" with a failure's text (neither Null nor "").
  auto step = [&](const mrvk::Variant& v) -> std::string {
    if (v.IsNull()) return "Null";
    if (!v.ToString().empty()) return "failed";
    return rs->Fields("业主编号").Value.ToString() + " " + pos;
  };
  auto nav = [&](const char* where, auto how, int32_t from, const char* key = "业主ID") {
    return step(bill.Navigate(pos, rs, sql, where, how, from, key, 1));
  };
  EXPECT_EQ(nav(" 类型=0", mrvk::navigate::kFirst, 0, "A.业主ID"), "N1 1/2");
  EXPECT_EQ(nav(" 类型=0", mrvk::navigate::kNext, a), "N3 2/2");  // N2 is filtered out
  EXPECT_EQ(nav(" 类型=0", mrvk::navigate::kNext, c), "Null");
  EXPECT_EQ(nav("", mrvk::navigate::kLast, 0), "N3 3/3");
  EXPECT_EQ(nav("", mrvk::navigate::kPrevious, c), "N2 2/3");
  EXPECT_EQ(step(bill.Locate(pos, rs, sql, "", " 名 like '%丙%'", "业主ID")), "N3 3/3");
  EXPECT_EQ(step(bill.Locate(pos, rs, sql, "", " 名='无'", "业主ID")), "Null");
  EXPECT_EQ(nav(" nosuch=1", mrvk::navigate::kFirst, 0), "failed");
}

TEST_P(DatabaseTest, OnSaveCodeRevisionIsReadFromTheBillAttributes) {
  EXPECT_FALSE(mrvk::RevisesOnSave(db(), 870201));  // seeded as 0
  Exec("update xt_BillAttribute set text='1' where progID=870201 and attribute='onsavecode'");
  EXPECT_TRUE(mrvk::RevisesOnSave(db(), 870201));
  EXPECT_FALSE(mrvk::RevisesOnSave(db(), 123));  // missing reads as 0
}

TEST_P(DatabaseTest, JetFunctionsGiveTheSameAnswersOnBothEngines) {
  struct Case {
    const char* expression;
    const char* answer;  // the value as text, or the failure's text
    bool fails;
  } cases[] = {
      {"val('2D2')", "200", false},
      {"val(' 1 2.5e1x')", "125", false},
      {"val('-.5d-1')", "-0.05", false},
      {"val('&HFF')", "255", false},
      {"val('&o17')", "15", false},
      {"val('&H')", "0", false},
      {"val('1e999')", "0", false},
      {"val('abc')", "0", false},
      {"coalesce(day('2012-02-30'),-1)", "-1", false},
      {"coalesce(year('2012-13-01'),-1)", "-1", false},
      {"day('2012-2-29')", "29", false},
      {"month('2012/03/05 10:00:00')", "3", false},
      {"mid('房屋租赁',2,2)", "屋租", false},
      {"mid('房屋租赁',3)", "租赁", false},
      {"mid('abc',4,2)", "", false},
      {"mid('abc',0,2)", "Mid: invalid start 0", true},
      {"mid('abc',0)", "Mid: invalid start 0", true},
      {"mid('abc',1,-1)", "Mid: invalid length -1", true},
  };
  for (const Case& c : cases) {
    const std::string sql =
        std::string("select ") + c.expression + " from xt_menu where progID=870004";
    const mrvk::Variant v = db().CreateCommand(sql, 1)->ExecuteScalar();
    EXPECT_EQ(c.fails ? db().Error().Description() : v.ToString(), c.answer) << c.expression;
  }
}

TEST_P(DatabaseTest, DateIsTheHostsLocalDate) {
  // A zone where the date is not UTC's at this moment: 13 hours ahead in the afternoon (UTC),
  // 12 hours behind in the morning.
  const std::time_t now = std::time(nullptr);
  std::tm utc{};
  gmtime_r(&now, &utc);
  const char* old_tz = std::getenv("TZ");
  const std::string saved = old_tz ? old_tz : "";
  setenv("TZ", utc.tm_hour >= 12 ? "XXX-13" : "XXX+12", /*overwrite=*/1);
  tzset();
  std::tm local{};
  localtime_r(&now, &local);
  char today[16];
  std::strftime(today, sizeof today, "%Y-%m-%d", &local);
  auto clerk = NewHost();  // its connection opens in this zone
  auto cmd = clerk->database().CreateCommand("select Date() from xt_menu where progID=870004", 1);
  const std::string answer = cmd->ExecuteScalar().ToString();
  if (old_tz)
    setenv("TZ", saved.c_str(), /*overwrite=*/1);
  else
    unsetenv("TZ");
  tzset();
  EXPECT_EQ(answer, today);
}

MRVK_ON_BOTH_ENGINES(DatabaseTest);

}  // namespace
}  // namespace kvhost
