#include "common/clsLeftOut.h"

#include <fmt/format.h>

namespace sandrel {
namespace {

struct Words {
  const char* One;
  const char* Many;
};

constexpr std::array<Words, static_cast<std::size_t>(LeftOut::Count_)> Kinds{{
    {"name that differs from another only in case", "names that differ from others only in case"},
    {"name that Windows can't have", "names that Windows can't have"},
    {"path that is too long", "paths that are too long"},
    {"hidden folder", "hidden folders"},
    {"symbolic link", "symbolic links"},
    {"folder that vanished meanwhile", "folders that vanished meanwhile"},
    {"folder of the kernel's", "folders of the kernel's"},
    {"version text that is too long", "version texts that are too long"},
    {"unreadable INI file", "unreadable INI files"},
    {"INI entry that is too long", "INI entries that are too long"},
    {"registry key whose path is too long", "registry keys whose paths are too long"},
    {"registry value whose name is too long", "registry values whose names are too long"},
    {"registry key that lies too deep", "registry keys that lie too deep"},
    {"unreadable registry key", "unreadable registry keys"},
    {"unreadable registry value", "unreadable registry values"},
}};

}  // namespace

std::string clsLeftOut::Summary() const {
  std::string list;
  for (std::size_t i = 0; i < Kinds.size(); ++i) {
    if (m_counts[i] == 0) continue;
    if (!list.empty()) list += ", ";
    list += fmt::format("{} {}", m_counts[i], m_counts[i] == 1 ? Kinds[i].One : Kinds[i].Many);
  }
  return list.empty() ? list : "Left out: " + list + ".";
}

}  // namespace sandrel
