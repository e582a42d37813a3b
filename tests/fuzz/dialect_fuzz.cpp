// The dialect of SQL: as a statement of its own, and as a cell's text pasted into one.
#include "Fuzz.h"
#include "platform/dao/Dialect.h"

using namespace sandrel;
using namespace sandrel::test;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view sql = Text(data, size);
  Try([&] { dao::TranslateSelect(sql); });
  Try([&] { dao::TranslateDelete(sql); });
  if (sql.empty()) return 0;  // an empty cell stands for Null too

  std::string quoted;
  for (const char c : sql) quoted.append(c == '"' ? 2 : 1, c);
  const std::string start = "DELETE t.* FROM t WHERE t.Name = \"";
  static const std::string One = dao::TranslateDelete(start + "x\"").Sql;
  const dao::Deletion pasted = dao::TranslateDelete(start + quoted + "\"");
  Need(pasted.Sql == One && pasted.Texts == std::vector<std::string>{std::string(sql)});
  return 0;
}
