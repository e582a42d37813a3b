#include "common/clsLeftOut.h"

#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <tuple>

namespace sandrel {
namespace {

constexpr auto KindCount = static_cast<std::size_t>(LeftOut::Count_);

struct KindWords {
  std::string_view Scope;
  const char* One;
  const char* Many;
};

constexpr std::array<KindWords, KindCount> Kinds{{
    {scope::Name, "name that differs from another only in case",
     "names that differ from others only in case"},
    {scope::Name, "name that Windows can't have", "names that Windows can't have"},
    {scope::Name, "path that is too long", "paths that are too long"},
    {scope::Folder, "hidden folder", "hidden folders"},
    {scope::Folder, "symbolic link", "symbolic links"},
    {scope::Name, "folder that vanished meanwhile", "folders that vanished meanwhile"},
    {scope::Folder, "folder of the kernel's", "folders of the kernel's"},
    {scope::Folder, "unreadable folder", "unreadable folders"},
    {scope::Folder, "unfinished folder scan", "unfinished folder scans"},
    {scope::Detail, "unreadable file", "unreadable files"},
    {scope::Detail, "version text that is too long", "version texts that are too long"},
    {scope::IniEntries, "unreadable INI file", "unreadable INI files"},
    {scope::Name, "INI entry that is too long", "INI entries that are too long"},
    {scope::Name, "registry key whose path is too long", "registry keys whose paths are too long"},
    {scope::Name, "registry value whose name is too long",
     "registry values whose names are too long"},
    {scope::Name, "registry key that lies too deep", "registry keys that lie too deep"},
    {scope::Key, "registry key that can't be opened", "registry keys that can't be opened"},
    {scope::Key, "unfinished hive scan", "unfinished hive scans"},
    {scope::Subkeys, "unreadable registry key", "unreadable registry keys"},
    {scope::Values, "unreadable registry value", "unreadable registry values"},
}};

const KindWords& WordsOf(LeftOut kind) {
  return Kinds[static_cast<std::size_t>(kind)];
}

const char* Words(LeftOut kind, std::uint64_t count) {
  return count == 1 ? WordsOf(kind).One : WordsOf(kind).Many;
}

}  // namespace

std::string_view LeftOutItem::Scope() const {
  return WordsOf(Kind).Scope;
}

std::string LeftOutItem::Reason() const {
  std::string reason =
      Count == 1 ? WordsOf(Kind).One : fmt::format("{} {}", Count, WordsOf(Kind).Many);
  if (!Detail.empty()) reason += ": " + Detail;
  return reason;
}

bool LeftOutItem::operator<(const LeftOutItem& other) const {
  return std::tie(Kind, Hive, Path, Name) <
         std::tie(other.Kind, other.Hive, other.Path, other.Name);
}

std::uint64_t clsLeftOut::Of(LeftOut kind) const {
  std::uint64_t count = 0;
  for (const LeftOutItem& item : m_items) count += item.Kind == kind ? item.Count : 0;
  return count;
}

std::string clsLeftOut::Summary() const {
  std::array<std::uint64_t, KindCount> counts{};
  for (const LeftOutItem& item : m_items) counts[static_cast<std::size_t>(item.Kind)] += item.Count;
  std::string list;
  for (std::size_t i = 0; i < KindCount; ++i) {
    if (counts[i] == 0) continue;
    if (!list.empty()) list += ", ";
    list += fmt::format("{} {}", counts[i], Words(static_cast<LeftOut>(i), counts[i]));
  }
  return list.empty() ? list : "Left out: " + list + ".";
}

}  // namespace sandrel
