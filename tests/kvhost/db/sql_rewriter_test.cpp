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

// One row per rewriting: what the engine is given, then "<-" and the values lifted out of the
// text.
TEST(SqlRewriter, RewritesJetStatementsForEachEngine) {
  constexpr Dialect kLite = Dialect::Sqlite, kPg = Dialect::Postgres;
  struct Case {
    Dialect dialect;
    const char* sql;
    const char* want;
  } cases[] = {
      // A top becomes a limit at the end of its own select, also in a subquery.
      {kLite, "select top 1 合同ID from fwhd where 合同ID>5 order by 合同ID",
       "select 合同ID from fwhd where 合同ID>? order by 合同ID LIMIT 1 <- 5"},
      {kPg,
       "select * from fwhd where 合同ID in (select top 3 合同ID from fwhdmx order by 合同ID) and "
       "progid=870201",
       "select * from fwhd where 合同ID in (select 合同ID from fwhdmx order by 合同ID LIMIT 3) "
       "and progid=$1 <- 870201"},
      {kLite, "SELECT DISTINCT TOP 2 名称 FROM t", "SELECT DISTINCT 名称 FROM t LIMIT 2"},
      // Date literals become checked ISO texts, as does a quoted short date for a date column.
      {kPg, "select 合同ID from fwhd where 合同日期>=#2012-3-1# and 合同日期<#04/01/2012#",
       "select 合同ID from fwhd where 合同日期>=$1 and 合同日期<$2 <- 2012-03-01, 2012-04-01"},
      {kLite, "select 1 from fwhd where 合同日期='2012-3-5'",
       "select 1 from fwhd where 合同日期=? <- 2012-03-05"},
      // Texts joined by + or & use the concatenation operator; numbers still add.
      {kLite, "select 编号+' '+名称, 金额+1, 编号 & 名称 from t",
       "select 编号||' '||名称, 金额+1, 编号 || 名称 from t"},
      // Compared and inserted literals are lifted; those of the select list or of expressions
      // keep their place, their type being the text's.
      {kPg,
       "insert into fwhd (合同ID,合同编号,合同日期,金额,是否已收) values "
       "(12,'HT''01',#2012-10-11#,-3.5,'1')",
       "insert into fwhd (合同ID,合同编号,合同日期,金额,是否已收) values ($1,$2,$3,$4,$5) <- 12, "
       "HT'01, 2012-10-11, -3.5, 1"},
      {kLite, "select 'x' as a, 0 as b from t where 金额 > 1 + 2 and 名称 like '%张%'",
       "select 'x' as a, 0 as b from t where 金额 > 1 + 2 and 名称 like ? <- %张%"},
      // Values spliced against keywords without a blank ("like'%x%'", "'x'and"); like ignores
      // case on the server as Jet does.
      {kPg, "select 1 from t where 名称 like'%张%'and 合同编号 ='HT1'and progid =5 and 金额>=0",
       "select 1 from t where 名称 ilike $1 and 合同编号 =$2 and progid =$3 and 金额>=$4 <- %张%, "
       "HT1, 5, 0"},
      {kLite, "select 1 from t where 名称 like'%张%'and 合同编号 ='HT1'and progid =5 and 金额>=0",
       "select 1 from t where 名称 like ? and 合同编号 =? and progid =? and 金额>=? <- %张%, HT1, "
       "5, 0"},
      {kPg, "select Date(), Now() from t", "select current_date, localtimestamp from t"},
      // Text inside literals is never rewritten.
      {kPg, "select top 1 名称 from t where 名称='top 5 #1# -- ; + '' [x]'",
       "select 名称 from t where 名称=$1 LIMIT 1 <- top 5 #1# -- ; + ' [x]"},
  };
  for (const Case& c : cases) {
    const Out r = Rewrite(c.dialect, c.sql);
    ASSERT_TRUE(r.ok) << c.sql << ": " << r.error;
    std::string got = r.sql;
    for (size_t i = 0; i < r.params.size(); ++i) got += (i ? ", " : " <- ") + r.params[i];
    EXPECT_EQ(got, c.want) << c.sql;
  }
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

TEST(SqlRewriter, ABareNumberComparedWithATextColumnIsTheTextAsWritten) {
  // The approval tests write "smark=02" without quotes; the mark is the text "02". Stored by a
  // VALUES list a number stays a number, as Jet stores it.
  auto kinds = [](Dialect d, const std::string& sql) {
    SqlRewriter rw(d, TestTypes());
    RewrittenSql out;
    std::string error, got;
    EXPECT_TRUE(rw.Rewrite(sql, out, error)) << error;
    for (const SqlParam& p : out.params)
      got += std::string(" IRTN").substr(static_cast<int>(p.kind) + 1, 1) + ":" + p.text + " ";
    return got;
  };
  for (Dialect d : {Dialect::Sqlite, Dialect::Postgres}) {
    EXPECT_EQ(kinds(d, "select 编号 from t where 合同ID=703 And 编号=02 and 名称<>-1.50"),
              "I:703 T:02 T:-1.50 ");
    EXPECT_EQ(kinds(d, "insert into t (编号,金额) values (02,3)"), "I:02 I:3 ");
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
