#include "common/clsIniReader.h"

#include <utility>

#include "common/clsFileWorks.h"
#include "common/text.h"

namespace sandrel {
namespace {

std::string AsText(std::string&& bytes) {
  const std::string_view view = bytes;
  if (view.starts_with("\xEF\xBB\xBF")) return bytes.substr(3);
  if (view.starts_with("\xFF\xFE")) return text::FromUtf16Le(view.substr(2));
  if (view.starts_with("\xFE\xFF")) return text::FromUtf16Be(view.substr(2));
  return text::IsValidUtf8(view) ? std::move(bytes) : text::FromCp1252(view);
}

}  // namespace

const clsIniReader::Lines& clsIniReader::ListSections(const std::string& path) {
  m_path.clear();
  m_names.clear();
  m_entries.clear();
  m_indexes.clear();
  m_text = AsText(clsFileWorks::ReadWhole(path));
  Parse();
  m_path = path;
  return m_names;
}

const clsIniReader::Lines& clsIniReader::ListEntries(const std::string& path,
                                                     std::string_view section) {
  static const Lines None;
  if (path != m_path) ListSections(path);
  const auto found = m_indexes.find(text::Fold(section));
  return found == m_indexes.end() ? None : m_entries[found->second];
}

void clsIniReader::Parse() {
  std::string_view rest = m_text;
  std::size_t current = m_entries.size();
  while (!rest.empty()) {
    const std::size_t end = rest.find_first_of("\r\n");
    const std::string_view line = text::TrimWhite(rest.substr(0, end));
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    if (line.empty() || line.front() == ';') continue;
    const std::size_t close = line.front() == '[' ? line.find(']') : std::string_view::npos;
    if (close == std::string_view::npos) {
      if (current < m_entries.size()) m_entries[current].push_back(line);
      continue;
    }
    const std::string_view name = line.substr(1, close - 1);
    const auto [found, added] = m_indexes.try_emplace(text::Fold(name), m_names.size());
    if (added) {
      m_names.push_back(name);
      m_entries.emplace_back();
    }
    current = found->second;
  }
}

}  // namespace sandrel
