// The SQL dialect of the program's statements, turned into SQLite's.
//
// The statements are written with bracketed names, text in double quotes, joins in parentheses,
// RIGHT JOIN, and "DELETE table.*, ... FROM a INNER JOIN b ...". What the dialect takes:
//
//   SELECT * | table.* | column [AS name], ... FROM tables [WHERE condition] [;]
//   DELETE table.* [, column, ...] FROM tables [WHERE condition] [;]
//   tables: table | (tables) | tables INNER|LEFT|RIGHT JOIN tables ON condition
//   condition: columns compared (= <> < > <= >=) with columns, texts or numbers, IS [NOT] NULL,
//              joined by AND, OR, NOT and parentheses
//
// Everything else raises 3075 before the database is touched. Text in double or single quotes is
// always text, a quote inside it is doubled. A DELETE takes columns compared by "=" and joined by
// AND only, and a comparison has a column on at least one side: so a value pasted in with quotes of
// its own doesn't widen the statement to rows that it does not name.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace sandrel::dao {

/// A DELETE with its texts as parameters: deletes that differ in their texts alone give one `Sql`.
struct Deletion {
  std::string Sql;
  std::vector<std::string> Texts;  ///< of the parameters ?1, ?2, ...
};

/// Raise 3075 for what the dialect doesn't know.
std::string TranslateSelect(std::string_view sql);
Deletion TranslateDelete(std::string_view sql);

}  // namespace sandrel::dao
