#include "platform/machine/clsEnvironment.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "common/clsPathText.h"
#include "common/text.h"

namespace sandrel {
namespace {

struct Source {
  std::uint32_t Root;
  std::string_view Path;
};
constexpr std::array<Source, 3> Sources = {
    {{hkey::CurrentUser, "Environment"},
     {hkey::CurrentUser, "Volatile Environment"},
     {hkey::LocalMachine, "System\\CurrentControlSet\\Control\\Session Manager\\Environment"}}};

constexpr std::string_view CurrentVersion = "Software\\Microsoft\\Windows NT\\CurrentVersion";
constexpr std::string_view ProfileList =
    "Software\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList";

// Variables that refer to each other could grow without end.
constexpr int MostReferences = 200;
constexpr std::size_t LongestText = 32767;

}  // namespace

std::optional<std::string> clsEnvironment::Text(std::uint32_t root, std::string_view path,
                                                std::string_view name) {
  clsRegistry::Handle key;
  std::uint32_t type = 0;
  std::string data;
  if (m_registry.RegOpenKeyEx(root, path, key) != regstatus::Success ||
      m_registry.RegQueryValueEx(key, name, type, data) != regstatus::Success ||
      (type != regtype::Sz && type != regtype::ExpandSz)) {
    return {};
  }
  std::string result = text::FromUtf16Le(data);
  result.resize(std::min(result.find('\0'), result.size()));
  return result;
}

std::string clsEnvironment::WindowsFolder() {
  std::string folder = clsPathText::RemoveSeparator(
      Text(hkey::LocalMachine, CurrentVersion, "SystemRoot").value_or(std::string()));
  if (!folder.empty() && m_paths.HostPath(folder)) return folder;
  // A volume that is not mounted as the drive it was on, or a registry without the entry.
  const std::optional<std::string> host = m_paths.HostPath("C:\\windows");
  if (host) return "C:\\" + clsPathText::TextAfterLast(*host, "/");
  return folder.empty() ? "C:\\windows" : folder;
}

std::string clsEnvironment::Variable(std::string_view name) {
  m_open.clear();
  m_references = 0;
  return Find(name, 0).value_or(std::string());
}

std::optional<std::string> clsEnvironment::Find(std::string_view name, std::size_t firstSource) {
  for (std::size_t i = firstSource; i < Sources.size(); ++i) {
    const std::optional<std::string> found = Text(Sources[i].Root, Sources[i].Path, name);
    if (!found) continue;
    m_open.push_back({std::string(name), i});
    std::string expanded = Expand(*found);
    m_open.pop_back();
    return expanded;
  }
  return Known(name);
}

// What the system sets by itself when it starts.
std::optional<std::string> clsEnvironment::Known(std::string_view name) {
  if (text::EqualNoCase(name, "SystemRoot") || text::EqualNoCase(name, "windir")) {
    return WindowsFolder();
  }
  if (text::EqualNoCase(name, "SystemDrive")) return WindowsFolder().substr(0, 2);
  if (text::EqualNoCase(name, "USERPROFILE")) {
    std::string folder = UserProfile();
    if (!folder.empty()) return folder;
  }
  return {};
}

std::string clsEnvironment::Expand(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t start = text.find('%');
    const std::size_t end = start == std::string_view::npos ? start : text.find('%', start + 1);
    if (end == std::string_view::npos) break;
    const std::string_view name = text.substr(start + 1, end - start - 1);
    // A variable that refers to itself means the one it stands in front of.
    std::size_t source = 0;
    for (const Open& open : m_open) {
      if (text::EqualNoCase(open.Name, name)) source = open.Source + 1;
    }
    std::optional<std::string> value;
    if (!name.empty() && result.size() < LongestText && ++m_references <= MostReferences) {
      value = Find(name, source);
    }
    if (value) {
      result += text.substr(0, start);
      result += *value;
      text.remove_prefix(end + 1);
    } else {
      result += text.substr(0, end);  // the second % may begin another reference
      text.remove_prefix(end);
    }
  }
  result += text;
  return result;
}

// A live system has it in the volatile environment; on a disk only the list of profiles is left.
std::string clsEnvironment::UserProfile() {
  const std::string& sid = m_registry.CurrentUserSid();
  if (sid.empty()) return {};
  const std::optional<std::string> image =
      Text(hkey::LocalMachine, std::string(ProfileList) + "\\" + sid, "ProfileImagePath");
  return image ? clsPathText::RemoveSeparator(Expand(*image)) : std::string();
}

}  // namespace sandrel
