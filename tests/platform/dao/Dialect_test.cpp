#include "platform/dao/Dialect.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "common/clsError.h"
#include "common/text.h"
#include "support/NumberOf.h"

namespace sandrel::dao {

using test::NumberOf;

namespace {

// Without the quotes of names, which the test of texts shows.
std::string Plain(std::string sql) {
  std::erase(sql, '"');
  return sql;
}

TEST(Dialect, JoinsBecomeARowThatIndexesCanAnswer) {
  // A RIGHT JOIN is turned round, and a chain of outer joins in parentheses is laid out in a row.
  EXPECT_EQ(Plain(TranslateSelect(
                "SELECT p.Name, v2.[Value] AS [New Value] FROM (v RIGHT JOIN v2 ON (v.S = v2.S) "
                "AND (v.P = v2.P)) LEFT JOIN ((s LEFT JOIN f ON s.F = f.Id) LEFT JOIN p ON f.P = "
                "p.Id) ON v2.S = s.Id WHERE (((v.S) Is Null));")),
            "SELECT p.Name AS Name, v2.Value AS New Value FROM v2 LEFT JOIN v ON (v.S = v2.S) AND "
            "(v.P = v2.P) LEFT JOIN s ON v2.S = s.Id LEFT JOIN f ON s.F = f.Id LEFT JOIN p ON f.P "
            "= p.Id WHERE ((v.S IS NULL))");
  // The same is kept together where the outer condition speaks of an inner table, or the inner
  // condition could hold for a missing row.
  for (const char* kept :
       {"SELECT a.X FROM a LEFT JOIN (b LEFT JOIN c ON b.I = c.I) ON a.I = c.I",
        "SELECT a.X FROM a LEFT JOIN (b LEFT JOIN c ON c.I = 1) ON a.I = b.I",
        "SELECT a.X FROM a LEFT JOIN (b INNER JOIN c ON b.I = c.I) ON a.I = b.I"}) {
    EXPECT_NE(TranslateSelect(kept).find("LEFT JOIN (\"b\" "), std::string::npos) << kept;
  }
}

TEST(Dialect, ConditionsKeepTheirGrouping) {
  EXPECT_EQ(Plain(TranslateSelect(
                "SELECT * FROM t WHERE (((t.A)<>[u].[a])) OR NOT ((t.B)=-1 AND t.C Is Not Null)")),
            "SELECT * FROM t WHERE ((t.A <> u.a)) OR NOT (t.B = -1 AND t.C IS NOT NULL)");
  // Text in either quotes is text even where a column has that name; doubled quotes stand for one.
  EXPECT_EQ(TranslateSelect(
                "SELECT t.A FROM t WHERE t.A = \"A\" OR t.A = 'it''s \"x\"' OR t.A = \"q\"\"q\""),
            "SELECT \"t\".\"A\" AS \"A\" FROM \"t\" WHERE \"t\".\"A\" = 'A' OR \"t\".\"A\" = "
            "'it''s \"x\"' OR \"t\".\"A\" = 'q\"q'");
}

TEST(Dialect, DeletesWithItsTextsAsParameters) {
  const Deletion one = TranslateDelete(
      "DELETE t.*, t.A, t.NotThere From t WHERE (((t.A)=\"it's\") AND (t.B=\"y\"));");
  EXPECT_EQ(Plain(one.Sql), "DELETE FROM t WHERE ((t.A = ?1) AND (t.B = ?2))");
  EXPECT_EQ(one.Texts, (std::vector<std::string>{"it's", "y"}));
}

// The table that loses the record comes last, whichever side of the join it stands on, so that it
// is searched through its index.
TEST(Dialect, DeletesByRowIdThroughAJoin) {
  const char* const tail = " ON t.H = h.H WHERE (((h.Name)=\"x\"));";
  for (const char* tables : {"t INNER JOIN h", "h INNER JOIN T"}) {
    EXPECT_EQ(text::Lower(Plain(
                  TranslateDelete(fmt::format("DELETE t.*, h.Name FROM {}{}", tables, tail)).Sql)),
              "delete from t where _rowid_ in (select t._rowid_ from h cross join t on t.h = h.h "
              "where ((h.name = ?1)))");
  }
  EXPECT_NE(TranslateDelete(fmt::format("DELETE t.* FROM t LEFT JOIN h{}", tail))
                .Sql.find("\"t\" LEFT JOIN \"h\""),
            std::string::npos);
}

TEST(Dialect, RefusesWhatItDoesNotKnow) {
  for (const char* sql :
       {"", "SELECT a FROM", "SELECT a FROM t; DROP TABLE t", "SELECT a FROM t -- x",
        "SELECT a FROM t ORDER BY a", "SELECT count(*) FROM t", "SELECT a FROM t WHERE a LIKE 'x'",
        "SELECT a FROM t, u", "SELECT a FROM t JOIN u ON t.a=u.a", "SELECT a FROM t WHERE 'x'='x'",
        "SELECT a FROM t WHERE \"open", "SELECT [a FROM t", "SELECT a FROM t WHERE a = 1x",
        "SELECT a FROM (t", "SELECT a FROM t WHERE ((a)=1", "DROP TABLE t",
        "SELECT a FROM t WHERE a IS 1", "SELECT FROM FROM t"}) {
    EXPECT_EQ(NumberOf([&] { TranslateSelect(sql); }), errnum::SyntaxError) << sql;
  }
  // What a value with quotes of its own would make of a DELETE.
  for (const char* sql :
       {"DELETE t.* FROM t WHERE (((t.A)=\"x\" OR \"1\"=\"1\"));",
        "DELETE t.* FROM t WHERE t.A=\"x\" OR t.A<>\"\"", "DELETE t.* FROM t WHERE t.A<>\"\"",
        "DELETE t.* FROM t WHERE NOT t.A=\"x\"", "DELETE t.* FROM u WHERE u.A=\"x\"",
        "DELETE FROM t", "DELETE t.A FROM t"}) {
    EXPECT_EQ(NumberOf([&] { TranslateDelete(sql); }), errnum::SyntaxError) << sql;
  }
}

}  // namespace
}  // namespace sandrel::dao
