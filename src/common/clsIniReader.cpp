#include "common/clsIniReader.h"

#include <unordered_map>

#include "common/clsFileWorks.h"
#include "common/text.h"

namespace sandrel {
namespace {

std::string AsText(std::string bytes) {
  const std::string_view view = bytes;
  if (view.starts_with("\xEF\xBB\xBF")) return bytes.substr(3);
  if (view.starts_with("\xFF\xFE")) return text::FromUtf16Le(view.substr(2));
  if (view.starts_with("\xFE\xFF")) return text::FromUtf16Be(view.substr(2));
  return text::IsValidUtf8(view) ? bytes : text::FromCp1252(view);
}

}  // namespace

const std::vector<std::string>& clsIniReader::ListSections(const std::string& path) {
  m_path.clear();
  m_names.clear();
  m_entries.clear();
  Parse(AsText(clsFileWorks::ReadWhole(path)));
  m_path = path;
  return m_names;
}

const std::vector<std::string>& clsIniReader::ListEntries(const std::string& path,
                                                          std::string_view section) {
  static const std::vector<std::string> None;
  if (path != m_path) ListSections(path);
  for (std::size_t i = 0; i < m_names.size(); ++i) {
    if (m_names[i] == section) return m_entries[i];
  }
  for (std::size_t i = 0; i < m_names.size(); ++i) {
    if (text::EqualNoCase(m_names[i], section)) return m_entries[i];
  }
  return None;
}

void clsIniReader::Parse(std::string_view content) {
  std::unordered_map<std::string, std::size_t> known;  // folded name to its index
  std::vector<std::string>* current = nullptr;
  while (!content.empty()) {
    const std::size_t end = content.find_first_of("\r\n");
    const std::string_view line = text::TrimWhite(content.substr(0, end));
    content.remove_prefix(end == std::string_view::npos ? content.size() : end + 1);
    if (line.empty() || line.front() == ';') continue;
    const std::size_t close = line.front() == '[' ? line.find(']') : std::string_view::npos;
    if (close == std::string_view::npos) {
      if (current != nullptr) current->emplace_back(line);
      continue;
    }
    const std::string_view name = line.substr(1, close - 1);
    const auto [found, added] = known.try_emplace(text::Fold(name), m_names.size());
    if (added) {
      m_names.emplace_back(name);
      m_entries.emplace_back();
    }
    current = &m_entries[found->second];
  }
}

}  // namespace sandrel
