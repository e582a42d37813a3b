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

void clsPageWriter::WriteText(int page) {
  std::string line;
  const auto end = [&] {
    line += '\n';
    Write(m_out, line);
  };
  m_reader.Read(
      page,
      [&](const std::vector<dao::Field>& fields) {
        for (const dao::Field& field : fields) line += (line.empty() ? "" : "\t") + field.Name;
        end();
      },
      [&](const std::vector<dao::Field>& fields, const std::vector<dao::Value>& values, int) {
        line.clear();
        for (std::size_t i = 0; i < fields.size(); ++i) {
          if (i > 0) line += '\t';
          line += text::Escaped(FormatCell(fields[i].Name, values[i]));
        }
        end();
      });
}

void clsPageWriter::WriteJson(int page) {
  bool first = true;
  m_reader.Read(
      page, [&](const std::vector<dao::Field>&) { Write(m_out, "["); },
      [&](const std::vector<dao::Field>& fields, const std::vector<dao::Value>& values, int) {
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
