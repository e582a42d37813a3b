#include "cli/clsPageWriter.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "browser/FormatCell.h"
#include "browser/Pages.h"
#include "common/clsError.h"
#include "common/text.h"
#include "platform/dao/Workspace.h"
#include "snapshot/StatsReport.h"

namespace sandrel {
namespace {

void AppendEscaped(std::string& line, std::string_view cell) {
  for (const char c : cell) {
    switch (c) {
      case '\t':
        line += "\\t";
        break;
      case '\n':
        line += "\\n";
        break;
      case '\r':
        line += "\\r";
        break;
      default:
        line += c;
    }
  }
}

void Write(std::FILE* out, std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), out) != text.size()) {
    throw clsError(errnum::DeviceIo,
                   "Can't write the page: the output was closed or its disk is full.");
  }
}

nlohmann::ordered_json JsonOf(std::string_view field, const dao::Value& value) {
  switch (value.Type()) {
    case dao::Value::Kind::Null:
      return nullptr;
    case dao::Value::Kind::Integer:
      if (field.ends_with("Attributes")) return AttributeLetters(value.Integer());
      return value.Integer();
    case dao::Value::Kind::Real:
      return value.Real();
    case dao::Value::Kind::Text:
      break;
  }
  return std::string(value.Text());
}

}  // namespace

int PageByName(const std::string& name) {
  std::string known;
  for (int i = 0; i < page::SharedPage; ++i) {
    if (text::EqualNoCase(PageName(i), name)) return i;
    known += (known.empty() ? "" : ", ") + PageName(i);
  }
  throw clsError(errnum::InvalidArgument,
                 fmt::format("There is no page '{}'. Pages: {}.", name, known));
}

std::string clsPageWriter::GetStat(std::string_view description) const {
  return ReadStat(dao::DBEngine::FirstWorkspace(), m_analysis, description);
}

std::int64_t clsPageWriter::CountRows(int page) const {
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

// Calls `header` with the first statement's fields, then `row` with each record. On the statistics
// page the counts are those of the rows that the pages show now.
template <class Header, class Row>
void clsPageWriter::EachRow(int page, Header&& header, Row&& row) {
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
      row(rows->Fields(), values);
    }
  }
}

void clsPageWriter::WriteText(int page) {
  std::string line;
  const auto end = [&] {
    line += '\n';
    Write(m_out, line);
  };
  EachRow(
      page,
      [&](const std::vector<dao::Field>& fields) {
        for (const dao::Field& field : fields) line += (line.empty() ? "" : "\t") + field.Name;
        end();
      },
      [&](const std::vector<dao::Field>& fields, const std::vector<dao::Value>& values) {
        line.clear();
        for (std::size_t i = 0; i < fields.size(); ++i) {
          if (i > 0) line += '\t';
          AppendEscaped(line, FormatCell(fields[i].Name, values[i]));
        }
        end();
      });
}

void clsPageWriter::WriteJson(int page) {
  bool first = true;
  EachRow(
      page, [&](const std::vector<dao::Field>&) { Write(m_out, "["); },
      [&](const std::vector<dao::Field>& fields, const std::vector<dao::Value>& values) {
        nlohmann::ordered_json object = nlohmann::ordered_json::object();
        for (std::size_t i = 0; i < fields.size(); ++i) {
          object[fields[i].Name] = JsonOf(fields[i].Name, values[i]);
        }
        Write(m_out, first ? "\n" : ",\n");
        first = false;
        Write(m_out, object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
      });
  Write(m_out, first ? "]\n" : "\n]\n");
}

}  // namespace sandrel
