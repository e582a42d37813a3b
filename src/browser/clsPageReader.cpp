#include "browser/clsPageReader.h"

#include <fmt/format.h>

#include "browser/Pages.h"
#include "common/clsError.h"
#include "common/text.h"
#include "platform/dao/Workspace.h"
#include "snapshot/StatsReport.h"

namespace sandrel {

int PageByName(const std::string& name) {
  std::string known;
  for (int i = 0; i < page::SharedPage; ++i) {
    if (text::EqualNoCase(PageName(i), name)) return i;
    known += (known.empty() ? "" : ", ") + PageName(i);
  }
  throw clsError(errnum::InvalidArgument,
                 fmt::format("There is no page '{}'. Pages: {}.", name, known));
}

std::string clsPageReader::GetStat(std::string_view description) const {
  return ReadStat(dao::DBEngine::FirstWorkspace(), m_analysis, description);
}

std::int64_t clsPageReader::CountRows(int page) const {
  std::int64_t count = 0;
  const auto database = dao::DBEngine::FirstWorkspace().OpenDatabase(m_analysis);
  const auto getStat = [this](std::string_view description) { return GetStat(description); };
  for (const PageStatement& statement : PageStatements(page, getStat)) {
    for (const auto rows = database->OpenRecordset(statement.Sql, dao::RecordsetType::Dynaset);
         !rows->Eof(); rows->MoveNext()) {
      ++count;
    }
  }
  return count;
}

void clsPageReader::Read(int page, const Header& header, const Row& row) const {
  const auto database = dao::DBEngine::FirstWorkspace().OpenDatabase(m_analysis);
  const auto getStat = [this](std::string_view description) { return GetStat(description); };
  bool first = true;
  for (const PageStatement& statement : PageStatements(page, getStat)) {
    const auto rows = database->OpenRecordset(statement.Sql, dao::RecordsetType::Dynaset);
    if (first) header(rows->Fields());
    first = false;
    std::vector<dao::Value> values(rows->Fields().size());
    for (int number = 1; !rows->Eof(); rows->MoveNext(), ++number) {
      for (std::size_t i = 0; i < values.size(); ++i) values[i] = rows->Get(i);
      if (page == page::Stats && number <= page::Stats) {
        const int counted = CountedPage(values[0].Text());
        if (counted >= 0) values[1].SetText(fmt::to_string(CountRows(counted)));
      }
      row(rows->Fields(), values, statement.Source);
    }
  }
}

}  // namespace sandrel
