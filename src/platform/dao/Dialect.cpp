#include "platform/dao/Dialect.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <memory>
#include <utility>
#include <vector>

#include "common/clsError.h"
#include "common/text.h"
#include "platform/dao/Connection.h"

namespace sandrel::dao {
namespace {

struct Token {
  enum class Kind { Word, Name, Text, Number, Symbol, End };
  Kind What = Kind::End;
  std::string Value;
};

[[noreturn]] void Refuse(std::string_view sql, std::string_view near) {
  throw clsError(errnum::SyntaxError,
                 fmt::format("Syntax error in query expression near '{}' in '{}'.", near,
                             text::Left(sql, 400)));
}

std::vector<Token> Tokens(std::string_view sql) {
  std::vector<Token> tokens;
  const auto wordByte = [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || (c & 0x80) != 0;
  };
  for (std::size_t i = 0; i < sql.size();) {
    const char c = sql[i];
    if (std::isspace(static_cast<unsigned char>(c)) != 0) {
      ++i;
    } else if (c == '"' || c == '\'') {
      std::string value;
      for (++i;; ++i) {
        if (i >= sql.size()) Refuse(sql, "a text without its closing quote");
        if (sql[i] != c) {
          value.push_back(sql[i]);
        } else if (i + 1 < sql.size() && sql[i + 1] == c) {
          value.push_back(sql[i++]);
        } else {
          break;
        }
      }
      ++i;
      tokens.push_back({Token::Kind::Text, std::move(value)});
    } else if (c == '[') {
      const std::size_t close = sql.find(']', i);
      if (close == std::string_view::npos || close == i + 1) Refuse(sql, "[");
      tokens.push_back({Token::Kind::Name, std::string(sql.substr(i + 1, close - i - 1))});
      i = close + 1;
    } else if (std::isdigit(static_cast<unsigned char>(c)) != 0) {
      std::size_t end = i;
      while (end < sql.size() &&
             (std::isdigit(static_cast<unsigned char>(sql[end])) != 0 || sql[end] == '.'))
        ++end;
      if (end < sql.size() && wordByte(sql[end])) Refuse(sql, sql.substr(i, end - i + 1));
      tokens.push_back({Token::Kind::Number, std::string(sql.substr(i, end - i))});
      i = end;
    } else if (wordByte(c)) {
      std::size_t end = i;
      while (end < sql.size() && wordByte(sql[end])) ++end;
      tokens.push_back({Token::Kind::Word, std::string(sql.substr(i, end - i))});
      i = end;
    } else {
      const std::string_view two = sql.substr(i, 2);
      const bool pair = two == "<>" || two == "<=" || two == ">=";
      if (!pair && std::string_view("().,;=<>*-").find(c) == std::string_view::npos) {
        Refuse(sql, sql.substr(i, 1));
      }
      tokens.push_back({Token::Kind::Symbol, std::string(sql.substr(i, pair ? 2 : 1))});
      i += pair ? 2 : 1;
    }
  }
  tokens.emplace_back();
  return tokens;
}

// A tree of joins. A RIGHT JOIN is the LEFT JOIN of its sides exchanged, which SQLite answers
// through the index of the inner table instead of by a second pass.
struct Tables {
  std::string Table;  // quoted name of a leaf
  std::unique_ptr<Tables> Left, Right;
  bool Outer = false;
  std::string On;
  bool PlainOn = false;  // only "column = column", joined by AND: never true for a row of NULLs
  std::vector<std::string> OnTables;
};

class Parser {
 public:
  explicit Parser(std::string_view sql) : m_sql(sql), m_tokens(Tokens(sql)) {}

  std::string Select();
  Deletion Delete();

 private:
  const Token& Now() const { return m_tokens[m_at]; }
  [[noreturn]] void Refuse() const {
    dao::Refuse(m_sql, Now().What == Token::Kind::End ? "the end" : Now().Value);
  }
  bool IsWord(std::string_view word) const {
    // Most words differ in their length already, and a DELETE of each of many rows asks often.
    return Now().What == Token::Kind::Word && Now().Value.size() == word.size() &&
           text::EqualNoCase(Now().Value, word);
  }
  bool TakeWord(std::string_view word) {
    if (!IsWord(word)) return false;
    ++m_at;
    return true;
  }
  void NeedWord(std::string_view word) {
    if (!TakeWord(word)) Refuse();
  }
  bool TakeSymbol(std::string_view symbol) {
    if (Now().What != Token::Kind::Symbol || Now().Value != symbol) return false;
    ++m_at;
    return true;
  }
  void NeedSymbol(std::string_view symbol) {
    if (!TakeSymbol(symbol)) Refuse();
  }
  bool IsReserved() const;
  std::string Name();
  std::string Column();
  void End();

  std::unique_ptr<Tables> ParseTables();
  std::unique_ptr<Tables> ParseTablePrimary();
  std::string From(const Tables& tables) const;
  std::string FromToward(const std::string& target, const Tables& tables) const;
  std::string Where();

  std::string Condition();
  std::string Conjunction();
  std::string Term();
  bool AtColumnInParentheses() const;
  std::string Comparison();
  std::string Operand(bool& isColumn);
  std::string Text(const std::string& value);

  std::string_view m_sql;
  std::vector<Token> m_tokens;
  std::size_t m_at = 0;
  bool m_textsAsParameters = false;
  std::vector<std::string> m_texts;
  bool m_equalitiesOnly = false;  // the rule of a DELETE's condition
  bool m_plain = true;            // the condition read last was "column = column" and AND only
  std::vector<std::string> m_mentioned;  // tables that the condition read last names
};

bool Parser::IsReserved() const {
  for (const char* word :
       {"SELECT", "DELETE", "FROM", "WHERE", "INNER",   "LEFT", "RIGHT",    "OUTER", "JOIN",
        "ON",     "AND",    "OR",   "NOT",   "IS",      "NULL", "AS",       "ORDER", "GROUP",
        "HAVING", "UNION",  "LIKE", "IN",    "BETWEEN", "INTO", "DISTINCT", "TOP"}) {
    if (IsWord(word)) return true;
  }
  return false;
}

std::string Parser::Name() {
  const bool bracketed = Now().What == Token::Kind::Name;
  if (!bracketed && (Now().What != Token::Kind::Word || IsReserved())) Refuse();
  return QuoteName(m_tokens[m_at++].Value);
}

std::string Parser::Column() {
  std::string name = Name();
  if (!TakeSymbol(".")) return name;
  m_mentioned.push_back(name);
  return name + "." + Name();
}

void Parser::End() {
  TakeSymbol(";");
  if (Now().What != Token::Kind::End) Refuse();
}

std::string Parser::Select() {
  NeedWord("SELECT");
  std::string list;
  do {
    if (!list.empty()) list += ", ";
    if (TakeSymbol("*")) {
      list += "*";
      continue;
    }
    std::string item = Name();
    std::string alias;
    if (TakeSymbol(".")) {
      if (TakeSymbol("*")) {
        list += item + ".*";
        continue;
      }
      alias = Name();
      item += "." + alias;
    } else {
      alias = item;
    }
    if (TakeWord("AS")) alias = Name();
    // Always named: without AS, SQLite leaves the name of a result column open.
    list += item + " AS " + alias;
  } while (TakeSymbol(","));
  NeedWord("FROM");
  const auto tables = ParseTables();
  std::string sql = "SELECT " + list + " FROM " + From(*tables) + Where();
  End();
  return sql;
}

Deletion Parser::Delete() {
  NeedWord("DELETE");
  m_textsAsParameters = true;
  const std::string target = Name();
  NeedSymbol(".");
  NeedSymbol("*");
  // Of the list only the table counts; its columns need not even exist.
  while (TakeSymbol(",")) Column();
  NeedWord("FROM");
  const auto tables = ParseTables();
  const bool single = tables->Left == nullptr;
  if (single && !text::EqualNoCase(tables->Table, target)) Refuse();
  const std::string from = FromToward(target, *tables);
  m_equalitiesOnly = true;
  const std::string where = Where();
  End();
  std::string sql =
      single ? "DELETE FROM " + target + where
             : fmt::format("DELETE FROM {0} WHERE _rowid_ IN (SELECT {0}._rowid_ FROM {1}{2})",
                           target, from, where);
  return {std::move(sql), std::move(m_texts)};
}

std::unique_ptr<Tables> Parser::ParseTablePrimary() {
  if (TakeSymbol("(")) {
    auto tables = ParseTables();
    NeedSymbol(")");
    return tables;
  }
  auto leaf = std::make_unique<Tables>();
  leaf->Table = Name();
  return leaf;
}

std::unique_ptr<Tables> Parser::ParseTables() {
  auto tables = ParseTablePrimary();
  for (;;) {
    const bool inner = TakeWord("INNER");
    const bool left = !inner && TakeWord("LEFT");
    const bool right = !inner && !left && TakeWord("RIGHT");
    if (!inner && !left && !right) return tables;
    if (!inner) TakeWord("OUTER");
    NeedWord("JOIN");
    auto join = std::make_unique<Tables>();
    join->Outer = !inner;
    join->Left = std::move(tables);
    join->Right = ParseTablePrimary();
    if (right) std::swap(join->Left, join->Right);
    NeedWord("ON");
    m_plain = true;
    m_mentioned.clear();
    join->On = Condition();
    join->PlainOn = m_plain;
    join->OnTables = m_mentioned;
    tables = std::move(join);
  }
}

// The joins in a row, left to right. a LEFT JOIN (b LEFT JOIN c ON bc) ON ab is (a LEFT JOIN b ON
// ab) LEFT JOIN c ON bc as long as ab doesn't speak of c and bc is never true for a missing b; in
// this form SQLite reads b and c through their indexes instead of building the inner join first.
std::string Parser::From(const Tables& tables) const {
  if (tables.Left == nullptr) return tables.Table;
  std::string sql = From(*tables.Left);
  std::vector<const Tables*> row;  // the joins inside the right side, innermost first
  const Tables* right = tables.Right.get();
  bool inRow = true;
  while (right->Left != nullptr) {
    inRow =
        inRow && tables.Outer && right->Outer && right->PlainOn && right->Right->Left == nullptr;
    for (const std::string& mentioned : tables.OnTables) {
      if (right->Right->Left == nullptr && text::EqualNoCase(mentioned, right->Right->Table))
        inRow = false;
    }
    row.insert(row.begin(), right);
    right = right->Left.get();
  }
  const char* word = tables.Outer ? " LEFT JOIN " : " INNER JOIN ";
  if (!inRow) return sql + word + "(" + From(*tables.Right) + ") ON " + tables.On;
  sql += word + right->Table + " ON " + tables.On;
  for (const Tables* join : row) sql += " LEFT JOIN " + join->Right->Table + " ON " + join->On;
  return sql;
}

// The joins of a DELETE. SQLite keeps the order of a CROSS JOIN: the target comes last, to be found
// through its index. Left to choose, it may go through all of the target for each record.
std::string Parser::FromToward(const std::string& target, const Tables& tables) const {
  if (tables.Left == nullptr || tables.Outer) return From(tables);
  const auto isTarget = [&](const Tables& side) { return text::EqualNoCase(side.Table, target); };
  const bool turned = isTarget(*tables.Left);
  const Tables& first = turned ? *tables.Right : *tables.Left;
  const Tables& last = turned ? *tables.Left : *tables.Right;
  if (first.Left != nullptr || !isTarget(last)) return From(tables);
  return fmt::format("{} CROSS JOIN {} ON {}", first.Table, last.Table, tables.On);
}

std::string Parser::Where() {
  if (!TakeWord("WHERE")) return {};
  return " WHERE " + Condition();
}

std::string Parser::Condition() {
  std::string sql = Conjunction();
  while (IsWord("OR")) {
    if (m_equalitiesOnly) Refuse();
    ++m_at;
    m_plain = false;
    sql += " OR " + Conjunction();
  }
  return sql;
}

std::string Parser::Conjunction() {
  std::string sql = Term();
  while (TakeWord("AND")) sql += " AND " + Term();
  return sql;
}

std::string Parser::Term() {
  if (IsWord("NOT")) {
    if (m_equalitiesOnly) Refuse();
    ++m_at;
    m_plain = false;
    return "NOT " + Term();
  }
  if (AtColumnInParentheses() || !TakeSymbol("(")) return Comparison();
  const std::string inside = Condition();
  NeedSymbol(")");
  return "(" + inside + ")";
}

// True before "(column)": a parenthesis that is part of an operand, where any other opens a
// condition.
bool Parser::AtColumnInParentheses() const {
  const auto at = [&](std::size_t offset) -> const Token& {
    return m_tokens[std::min(m_at + offset, m_tokens.size() - 1)];
  };
  const auto symbol = [&](std::size_t offset, const char* what) {
    const Token& token = at(offset);
    return token.What == Token::Kind::Symbol && token.Value == what;
  };
  const auto name = [&](std::size_t offset) {
    const Token& token = at(offset);
    return token.What == Token::Kind::Name || token.What == Token::Kind::Word;
  };
  if (!symbol(0, "(") || !name(1)) return false;
  return symbol(2, ")") || (symbol(2, ".") && name(3) && symbol(4, ")"));
}

std::string Parser::Comparison() {
  bool leftIsColumn = false;
  const std::string left = Operand(leftIsColumn);
  if (TakeWord("IS")) {
    if (m_equalitiesOnly || !leftIsColumn) Refuse();
    m_plain = false;
    const bool no = TakeWord("NOT");
    NeedWord("NULL");
    return left + (no ? " IS NOT NULL" : " IS NULL");
  }
  const std::string symbol = Now().What == Token::Kind::Symbol ? Now().Value : std::string();
  const bool equal = symbol == "=";
  if (!equal && (m_equalitiesOnly || (symbol != "<>" && symbol != "<=" && symbol != ">=" &&
                                      symbol != "<" && symbol != ">"))) {
    Refuse();
  }
  ++m_at;
  bool rightIsColumn = false;
  // A page shows Null as an empty text, so a row is named by one where it holds the other.
  const bool empty = m_textsAsParameters && Now().What == Token::Kind::Text && Now().Value.empty();
  const std::string right = Operand(rightIsColumn);
  if (equal && leftIsColumn && empty) return fmt::format("ifnull({}, '') = {}", left, right);
  if (!leftIsColumn && !rightIsColumn) Refuse();
  if (!equal || !leftIsColumn || !rightIsColumn) m_plain = false;
  return left + " " + symbol + " " + right;
}

std::string Parser::Text(const std::string& value) {
  if (!m_textsAsParameters) return QuoteText(value);
  m_texts.push_back(value);
  return fmt::format("?{}", m_texts.size());
}

std::string Parser::Operand(bool& isColumn) {
  isColumn = false;
  const bool minus = TakeSymbol("-");
  if (Now().What == Token::Kind::Number) return (minus ? "-" : "") + m_tokens[m_at++].Value;
  if (minus) Refuse();
  if (Now().What == Token::Kind::Text) return Text(m_tokens[m_at++].Value);
  isColumn = true;
  if (!AtColumnInParentheses()) return Column();
  NeedSymbol("(");
  std::string column = Column();
  NeedSymbol(")");
  return column;
}

}  // namespace

std::string TranslateSelect(std::string_view sql) {
  return Parser(sql).Select();
}
Deletion TranslateDelete(std::string_view sql) {
  return Parser(sql).Delete();
}

}  // namespace sandrel::dao
