#include "kvhost/db/sql_rewriter.h"

#include <gtest/gtest.h>

#include <map>

namespace kvhost::db {
namespace {

// A small schema of our own, so that these cases do not move with the real one.
ColumnTypeLookup TestTypes() {
  static const std::map<std::string, ColType> types = {
      {"合同id", ColType::Long}, {"合同编号", ColType::Text}, {"合同日期", ColType::Date},
      {"金额", ColType::Double}, {"名称", ColType::Text},     {"编号", ColType::Text},
      {"progid", ColType::Long}, {"是否已收", ColType::Flag},
  };
  return [](std::string_view name) -> std::optional<ColType> {
    std::string k(name);
    for (char& c : k) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    auto it = types.find(k);
    if (it == types.end()) return std::nullopt;
    return it->second;
  };
}

struct Out {
  bool ok;
  std::string sql;
  std::vector<std::string> params;
  std::string error;
};

Out Rewrite(Dialect d, const std::string& sql) {
  SqlRewriter rw(d, TestTypes());
  RewrittenSql out;
  std::string error;
  Out r{rw.Rewrite(sql, out, error), out.sql, {}, error};
  for (const auto& p : out.params) r.params.push_back(p.text);
  return r;
}

TEST(SqlRewriter, TopBecomesALimitAtTheEndOfItsSelect) {
  auto r = Rewrite(Dialect::Sqlite, "select top 1 合同ID from fwhd where 合同ID>5 order by 合同ID");
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.sql, "select 合同ID from fwhd where 合同ID>? order by 合同ID LIMIT 1");
  EXPECT_EQ(r.params, std::vector<std::string>{"5"});

  // In a subquery the limit closes the subquery, not the statement.
  r = Rewrite(Dialect::Postgres,
              "select * from fwhd where 合同ID in (select top 3 合同ID from fwhdmx order by "
              "合同ID) and progid=870201");
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.sql,
            "select * from fwhd where 合同ID in (select 合同ID from fwhdmx order by 合同ID LIMIT "
            "3) and progid=$1");

  r = Rewrite(Dialect::Sqlite, "SELECT DISTINCT TOP 2 名称 FROM t");
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.sql, "SELECT DISTINCT 名称 FROM t LIMIT 2");
}

TEST(SqlRewriter, RefusesWhatItCannotRewriteFaithfully) {
  struct Case {
    const char* sql;
    const char* error_part;
  } cases[] = {
      {"select top 10 percent * from t", "percent"},
      {"select top x * from t", "whole number"},
      {"select top 1 a from t union select b from u", "union"},
      {"select * from t where a='x", "unterminated text"},
      {"select * from t where d=#2012-02-30#", "not a date"},
      {"select * from t where d=#2012-02-01", "unterminated date"},
      {"select * from t; delete from t", "one statement"},
      {"select * from t -- comment", "comments"},
      {"select * from t where a=@x", "unexpected character"},
      {"select (a from t", "parentheses"},
      {"", "empty"},
      {"insert into t (合同日期) values ('2012-13-01')", "not a date for column 合同日期"},
      {"update t set 金额='abc' where 合同ID=1", "not a number for column 金额"},
      {"select [a b] from t", "bracketed"},
  };
  for (const auto& c : cases) {
    for (Dialect d : {Dialect::Sqlite, Dialect::Postgres}) {
      auto r = Rewrite(d, c.sql);
      EXPECT_FALSE(r.ok) << c.sql;
      EXPECT_NE(r.error.find(c.error_part), std::string::npos) << c.sql << " -> " << r.error;
    }
  }
}

TEST(SqlRewriter, DateLiteralsBecomeCheckedIsoTexts) {
  auto r = Rewrite(Dialect::Postgres,
                   "select 合同ID from fwhd where 合同日期>=#2012-3-1# and 合同日期<#04/01/2012#");
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.sql, "select 合同ID from fwhd where 合同日期>=$1 and 合同日期<$2");
  EXPECT_EQ(r.params, (std::vector<std::string>{"2012-03-01", "2012-04-01"}));

  // A date column compared with a quoted short date is normalised the same way.
  r = Rewrite(Dialect::Sqlite, "select 1 from fwhd where 合同日期='2012-3-5'");
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.params, std::vector<std::string>{"2012-03-05"});
}

TEST(SqlRewriter, TextsJoinedByPlusOrAmpersandUseTheConcatenationOperator) {
  auto r = Rewrite(Dialect::Sqlite, "select 编号+' '+名称, 金额+1, 编号 & 名称 from t");
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.sql, "select 编号||' '||名称, 金额+1, 编号 || 名称 from t");
}

TEST(SqlRewriter, LiftsComparedAndInsertedLiteralsAndLeavesOthers) {
  auto r = Rewrite(Dialect::Postgres,
                   "insert into fwhd (合同ID,合同编号,合同日期,金额,是否已收) values "
                   "(12,'HT''01',#2012-10-11#,-3.5,'1')");
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.sql,
            "insert into fwhd (合同ID,合同编号,合同日期,金额,是否已收) values ($1,$2,$3,$4,$5)");
  EXPECT_EQ(r.params, (std::vector<std::string>{"12", "HT'01", "2012-10-11", "-3.5", "1"}));

  // Literals in the select list or in expressions keep their place: their type is the text's.
  r = Rewrite(Dialect::Sqlite,
              "select 'x' as a, 0 as b from t where 金额 > 1 + 2 and 名称 like '%张%'");
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.sql, "select 'x' as a, 0 as b from t where 金额 > 1 + 2 and 名称 like ?");
  EXPECT_EQ(r.params, std::vector<std::string>{"%张%"});
}

TEST(SqlRewriter, MarkersStayApartFromTheWordsAroundThem) {
  // The statements splice values against keywords without a blank ("like'%x%'", "'x'and").
  const std::string sql =
      "select 1 from t where 名称 like'%张%'and 合同编号 ='HT1'and progid =5 and 金额>=0";
  auto r = Rewrite(Dialect::Postgres, sql);
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.sql,
            "select 1 from t where 名称 ilike $1 and 合同编号 =$2 and progid =$3 and 金额>=$4");
  EXPECT_EQ(r.params, (std::vector<std::string>{"%张%", "HT1", "5", "0"}));
  r = Rewrite(Dialect::Sqlite, sql);
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.sql, "select 1 from t where 名称 like ? and 合同编号 =? and progid =? and 金额>=?");
}

TEST(SqlRewriter, ABareNumberComparedWithATextColumnIsTheTextAsWritten) {
  // The approval tests write "smark=02" without quotes; the mark is the text "02".
  for (Dialect d : {Dialect::Sqlite, Dialect::Postgres}) {
    SqlRewriter rw(d, TestTypes());
    RewrittenSql out;
    std::string error;
    ASSERT_TRUE(
        rw.Rewrite("select 编号 from t where 合同ID=703 And 编号=02 and 名称<>-1.50", out, error))
        << error;
    ASSERT_EQ(out.params.size(), 3u);
    EXPECT_EQ(out.params[0].kind, SqlParam::Kind::Integer);
    EXPECT_EQ(out.params[1].kind, SqlParam::Kind::Text);
    EXPECT_EQ(out.params[1].text, "02");
    EXPECT_EQ(out.params[2].kind, SqlParam::Kind::Text);
    EXPECT_EQ(out.params[2].text, "-1.50");
    // Stored by a VALUES list a number stays a number, as Jet stores it.
    ASSERT_TRUE(rw.Rewrite("insert into t (编号,金额) values (02,3)", out, error)) << error;
    ASSERT_EQ(out.params.size(), 2u);
    EXPECT_EQ(out.params[0].kind, SqlParam::Kind::Integer);
    EXPECT_EQ(out.params[1].kind, SqlParam::Kind::Integer);
  }
}

TEST(SqlRewriter, PostgresComparesLikeWithoutRegardToCaseAsJetDoes) {
  auto r = Rewrite(Dialect::Postgres, "select 1 from t where 名称 like 'ab%'");
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.sql, "select 1 from t where 名称 ilike $1");
  r = Rewrite(Dialect::Postgres, "select Date(), Now() from t");
  ASSERT_TRUE(r.ok) << r.error;
  EXPECT_EQ(r.sql, "select current_date, localtimestamp from t");
}

TEST(SqlRewriter, TextInsideLiteralsIsNeverRewritten) {
  const std::string tricky = "select top 1 名称 from t where 名称='top 5 #1# -- ; + '' [x]'";
  for (Dialect d : {Dialect::Sqlite, Dialect::Postgres}) {
    auto r = Rewrite(d, tricky);
    ASSERT_TRUE(r.ok) << r.error;
    EXPECT_EQ(r.params, std::vector<std::string>{"top 5 #1# -- ; + ' [x]"});
  }
}

TEST(SqlRewriter, StatementsOfOneShapeShareTheirRewritingButNotTheirValues) {
  SqlRewriter rw(Dialect::Postgres, TestTypes());
  RewrittenSql a, b, c, d;
  std::string error;
  ASSERT_TRUE(rw.Rewrite("select top 1 名称 from t where 合同ID=5 and 名称<>'x'", a, error));
  ASSERT_TRUE(rw.Rewrite("select top 1 名称 from t where 合同ID=77 and 名称<>'y''z'", b, error));
  EXPECT_EQ(a.sql, b.sql);
  EXPECT_EQ(a.shape_id, b.shape_id);
  EXPECT_EQ(b.params[0].text, "77");
  EXPECT_EQ(b.params[1].text, "y'z");
  // The number of a top is part of the shape.
  ASSERT_TRUE(rw.Rewrite("select top 5 名称 from t where 合同ID=5 and 名称<>'x'", c, error));
  EXPECT_NE(c.shape_id, a.shape_id);
  EXPECT_NE(c.sql.find("LIMIT 5"), std::string::npos);
  // A number where a text stood is another shape: the text joins, the number adds.
  ASSERT_TRUE(rw.Rewrite("select 金额 + 'a' from t", a, error));
  ASSERT_TRUE(rw.Rewrite("select 金额 + 1 from t", d, error));
  EXPECT_EQ(a.sql, "select 金额 || 'a' from t");
  EXPECT_EQ(d.sql, "select 金额 + 1 from t");
  // Values left in the text are the statement's own, not the first statement's.
  ASSERT_TRUE(rw.Rewrite("select 'first' as a from t", a, error));
  ASSERT_TRUE(rw.Rewrite("select 'sec''ond' as a from t", b, error));
  EXPECT_EQ(b.sql, "select 'sec''ond' as a from t");
  // A value checked against its column is checked every time, not only the first.
  ASSERT_TRUE(rw.Rewrite("update t set 合同日期='2012-01-31' where 合同ID=1", a, error));
  EXPECT_FALSE(rw.Rewrite("update t set 合同日期='2012-02-31' where 合同ID=1", b, error));
  EXPECT_NE(error.find("not a date"), std::string::npos);
  // Negative numbers keep their sign in either place.
  ASSERT_TRUE(rw.Rewrite("update t set 金额=-3 where 合同ID=-4", a, error));
  EXPECT_EQ(a.sql, "update t set 金额=$1 where 合同ID=$2");
  EXPECT_EQ(a.params[0].text, "-3");
  EXPECT_EQ(a.params[1].text, "-4");
}

TEST(SqlRewriter, SurvivesArbitraryBytes) {
  // Nothing the rewriter is fed may crash it; what it refuses it explains.
  std::string junk;
  uint32_t x = 12345;
  for (int round = 0; round < 2000; ++round) {
    junk.clear();
    const int len = static_cast<int>(x % 60);
    for (int i = 0; i < len; ++i) {
      x = x * 1103515245 + 12345;
      const char alphabet[] = "select top 1 * from where #'\"[]()=<>+-&;,.0123456789 张三";
      junk.push_back(alphabet[(x >> 16) % (sizeof(alphabet) - 1)]);
    }
    for (Dialect d : {Dialect::Sqlite, Dialect::Postgres}) {
      auto r = Rewrite(d, junk);
      if (!r.ok) {
        EXPECT_FALSE(r.error.empty()) << junk;
      }
    }
  }
}

}  // namespace
}  // namespace kvhost::db
