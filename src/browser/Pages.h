// The pages of an analysis: their numbers, names and statements.
//
// A page is one of fifteen lists. Thirteen are bound to SELECT statements; the page of one hive and
// the page of one folder are made from the rows of others.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace sandrel {

namespace page {
inline constexpr int NewRegistry = 0;
inline constexpr int NewIniFiles = 1;
inline constexpr int NewFiles = 2;
inline constexpr int ChangedRegistry = 3;
inline constexpr int ChangedIniFiles = 4;
inline constexpr int ChangedFiles = 5;
inline constexpr int DeletedRegistry = 6;
inline constexpr int DeletedIniFiles = 7;
inline constexpr int DeletedFiles = 8;
inline constexpr int Stats = 9;
inline constexpr int AllRegistry = 10;
inline constexpr int AllIniFiles = 11;
inline constexpr int AllFiles = 12;
inline constexpr int SharedPage = 13;
inline constexpr int FilteredPage = 14;
inline constexpr int Count = 15;
}  // namespace page

/// The number of a page by its exact name; 0 for a name that no page has.
int PageIndex(std::string_view name);
/// The name of a page by its number, as "ShowNewFiles"; empty outside 0 to 14. The page of one
/// folder is "ShowFilteredpage" here, and "ShowFilteredPage" in `PageIndex`.
std::string PageName(int index);

/// One statement of a page.
struct PageStatement {
  std::string Sql;
  const char* IconKey;
  int Source;  ///< page of the rows' own table
};

/// The value of a statistics row of the analysis by its description.
using StatReader = std::function<std::string(std::string_view description)>;

/// The statements of a page, in their order; none for the pages without. File pages have the
/// columns whose details were recorded, as the statistics tell.
std::vector<PageStatement> PageStatements(int index, const StatReader& getStat);

/// The page whose rows the statistics row of this description counts; -1 for other rows.
int CountedPage(std::string_view description);

}  // namespace sandrel
