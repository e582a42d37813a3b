// The user profiles of an offline Windows volume.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/registry/clsRegistry.h"

namespace sandrel {

/// The path of `path` (parts joined by "\" or "/") below a folder of the host, found without regard
/// to case; an exact name wins, else the first in byte order. Empty when it doesn't exist.
std::string FindHostPath(const std::string& folder, std::string_view path);

/// Where a file stands whose path is that of Windows on the volume mounted at `folder`, as
/// "C:\Users\x" or "%SystemDrive%\Users\x". Empty when it doesn't exist or lies on another drive.
struct VolumePaths {
  std::string folder;      ///< where the volume is mounted
  std::string systemRoot;  ///< its Windows folder by its own name, as "C:\Windows"
  std::string HostPath(std::string_view windowsPath) const;
};

/// A user of the machine by its key in the list of profiles.
struct VolumeProfile {
  std::string sid;
  std::string path;         ///< as the registry has it
  std::string name;         ///< of the profile's folder
  std::string userHive;     ///< host path of NTUSER.DAT; empty when there is none
  std::string classesHive;  ///< host path of UsrClass.dat; empty when there is none
  bool isPerson = false;    ///< no account of a service
};

/// The text of a value of a key, empty when there is none.
std::string ReadRegText(clsRegistry& registry, const clsRegistry::Handle& key,
                        std::string_view name);

/// The profiles that the key SOFTWARE\Microsoft\Windows NT\CurrentVersion\ProfileList lists.
std::vector<VolumeProfile> ReadProfiles(clsRegistry& registry,
                                        const clsRegistry::Handle& profileList,
                                        const VolumePaths& paths);

/// The place of the profile that `user`, a SID, an account ("NAME", "COMPUTER\NAME") or the name of
/// a profile's folder, means; `profiles.size()` when there is none. An account's folder can have
/// the name of the computer or domain behind its own, as "name.COMPUTER".
std::size_t FindProfile(const std::vector<VolumeProfile>& profiles, std::string_view user);

}  // namespace sandrel
