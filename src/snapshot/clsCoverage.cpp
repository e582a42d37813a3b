#include "snapshot/clsCoverage.h"

#include <fmt/format.h>

#include "common/text.h"

namespace sandrel {
namespace {

// "2147483650\Software\Vendor\"
std::string KeyPlace(std::int64_t hive, std::string_view branch) {
  return branch.empty() ? fmt::format("{}\\", hive) : fmt::format("{}\\{}\\", hive, branch);
}

std::string FieldText(dao::Recordset& row, std::string_view field) {
  return row.Get(field).ToText();
}

}  // namespace

void clsCoverage::clsPlaces::Add(const std::string& path) {
  m_paths.insert(text::Fold(path));
}

bool clsCoverage::clsPlaces::Has(const std::string& path) const {
  return !m_paths.empty() && m_paths.contains(text::Fold(path));
}

bool clsCoverage::clsPlaces::HasAbove(const std::string& path) const {
  if (m_paths.empty()) return false;
  const std::string folded = text::Fold(path);
  for (std::size_t end = folded.find('\\'); end != std::string::npos;
       end = folded.find('\\', end + 1)) {
    if (m_paths.contains(folded.substr(0, end + 1))) return true;
  }
  return false;
}

clsCoverage::Gaps::Gaps(const std::vector<LeftOutRow>& rows) {
  for (const LeftOutRow& row : rows) {
    if (row.What == scope::Folder) Folders.Add(row.Path);
    if (row.What == scope::IniEntries) IniFiles.Add(row.Path + row.Name);
    if (row.What == scope::Key) Keys.Add(KeyPlace(row.Hive, row.Path));
    if (row.What == scope::Subkeys) Subkeys.Add(KeyPlace(row.Hive, row.Path));
    if (row.What == scope::Values) Values.Add(KeyPlace(row.Hive, row.Path));
  }
}

clsCoverage::clsCoverage(const std::vector<LeftOutRow>& before,
                         const std::vector<LeftOutRow>& after,
                         const std::vector<std::string>& ownFiles)
    : m_before(before), m_after(after) {
  for (const std::string& file : ownFiles) m_ownFiles.Add(file);
}

bool clsCoverage::IsOwn(const Difference& difference, dao::Recordset& row) const {
  return difference.Of != DifferenceOf::Registry && !m_ownFiles.IsEmpty() &&
         m_ownFiles.Has(FieldText(row, "PathName") + FieldText(row, "FileName"));
}

bool clsCoverage::Hides(const Difference& difference, dao::Recordset& row) const {
  static const Gaps nothing({});
  const Gaps& other = difference.Kind == DifferenceKind::New       ? m_before
                      : difference.Kind == DifferenceKind::Deleted ? m_after
                                                                   : nothing;
  if (difference.Of == DifferenceOf::Registry) {
    if (other.Keys.IsEmpty() && other.Subkeys.IsEmpty() && other.Values.IsEmpty()) return false;
    const std::int64_t hive = row.Get("Hive").Integer();
    const std::string branch = FieldText(row, "Branch");
    const std::string key = KeyPlace(hive, branch);
    const std::string above =
        branch.empty() ? std::string() : key.substr(0, key.rfind('\\', key.size() - 2) + 1);
    return other.Keys.HasAbove(key) || other.Subkeys.HasAbove(above) || other.Values.Has(key);
  }
  if (other.Folders.IsEmpty() && other.IniFiles.IsEmpty()) return false;
  const std::string folder = FieldText(row, "PathName");
  return other.Folders.HasAbove(folder) ||
         (difference.Of == DifferenceOf::IniEntries &&
          other.IniFiles.Has(folder + FieldText(row, "FileName")));
}

}  // namespace sandrel
