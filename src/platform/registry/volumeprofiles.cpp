#include "platform/registry/volumeprofiles.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <initializer_list>

#include "common/clsFileWorks.h"
#include "common/clsPathText.h"
#include "common/text.h"

namespace sandrel {
namespace {

bool Exists(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0;
}

std::string FindHostName(const std::string& folder, const std::string& name) {
  if (Exists(clsFileWorks::Join(folder, name))) return name;
  DIR* entries = opendir(folder.c_str());
  if (entries == nullptr) return {};
  std::string found;
  while (const dirent* entry = readdir(entries)) {
    const std::string candidate = entry->d_name;
    if (text::EqualNoCase(candidate, name) && (found.empty() || candidate < found))
      found = candidate;
  }
  closedir(entries);
  return found;
}

}  // namespace

std::string FindHostPath(const std::string& folder, std::string_view path) {
  std::string found = folder;
  while (!path.empty()) {
    const std::size_t end = path.find_first_of("\\/");
    const std::string part(path.substr(0, end));
    path.remove_prefix(end == std::string_view::npos ? path.size() : end + 1);
    if (part.empty()) continue;
    const std::string name = FindHostName(found, part);
    if (name.empty()) return {};
    found = clsFileWorks::Join(found, name);
  }
  return found;
}

std::string VolumePaths::HostPath(std::string_view windowsPath) const {
  const std::string drive = systemRoot.substr(0, 2);
  std::string path(windowsPath);
  for (const std::string_view variable : {"%SystemRoot%", "%windir%"}) {
    if (text::StartsWithNoCase(path, variable)) path.replace(0, variable.size(), systemRoot);
  }
  constexpr std::string_view Drive = "%SystemDrive%";
  if (text::StartsWithNoCase(path, Drive)) path.replace(0, Drive.size(), drive);
  if (!text::StartsWithNoCase(path, drive + "\\")) return {};
  return FindHostPath(folder, std::string_view(path).substr(drive.size()));
}

std::string ReadRegText(clsRegistry& registry, const clsRegistry::Handle& key,
                        std::string_view name) {
  std::uint32_t type = 0;
  std::string data;
  if (registry.RegQueryValueEx(key, name, type, data) != regstatus::Success) return {};
  if (type != regtype::Sz && type != regtype::ExpandSz) return {};
  const std::string value = text::FromUtf16Le(data);
  return value.substr(0, value.find('\0'));
}

std::vector<VolumeProfile> ReadProfiles(clsRegistry& registry,
                                        const clsRegistry::Handle& profileList,
                                        const VolumePaths& paths) {
  std::vector<VolumeProfile> profiles;
  if (profileList == nullptr) return profiles;
  const std::vector<std::string>& sids = profileList->SubkeyNames();
  for (std::size_t i = 0; i < sids.size(); ++i) {
    // Windows sets a profile that it couldn't load aside under the same name with this ending.
    if (!text::StartsWithNoCase(sids[i], "S-1-") || sids[i].ends_with(".bak")) continue;
    const clsRegistry::Handle key = profileList->Subkey(i);
    VolumeProfile profile;
    profile.sid = sids[i];
    profile.path = ReadRegText(registry, key, "ProfileImagePath");
    profile.name = clsPathText::TextAfterLast(clsPathText::RemoveSeparator(profile.path), "\\");
    profile.isPerson = text::StartsWithNoCase(profile.sid, "S-1-5-21-") ||
                       text::StartsWithNoCase(profile.sid, "S-1-12-1-");
    const std::string folder = profile.path.empty() ? "" : paths.HostPath(profile.path);
    if (!folder.empty()) {
      profile.userHive = FindHostPath(folder, "NTUSER.DAT");
      for (const char* local : {"AppData\\Local", "Local Settings\\Application Data"}) {
        if (!profile.classesHive.empty()) break;
        profile.classesHive =
            FindHostPath(folder, std::string(local) + "\\Microsoft\\Windows\\UsrClass.dat");
      }
    }
    profiles.push_back(std::move(profile));
  }
  return profiles;
}

std::size_t FindProfile(const std::vector<VolumeProfile>& profiles, std::string_view user) {
  const std::string account = clsPathText::TextAfterLast(user, "\\");
  const auto find = [&](auto&& fits) {
    return static_cast<std::size_t>(std::find_if(profiles.begin(), profiles.end(), fits) -
                                    profiles.begin());
  };
  const std::size_t exact = find([&](const VolumeProfile& profile) {
    return text::EqualNoCase(profile.sid, user) || text::EqualNoCase(profile.name, account);
  });
  if (exact < profiles.size() || account.empty()) return exact;
  return find([&](const VolumeProfile& profile) {
    return text::StartsWithNoCase(profile.name, account + ".");
  });
}

}  // namespace sandrel
