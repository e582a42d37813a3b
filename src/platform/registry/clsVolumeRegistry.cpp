// The registry of an offline Windows volume.
#include <fmt/format.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/text.h"
#include "platform/registry/clsRegfHive.h"
#include "platform/registry/composedkeys.h"
#include "platform/registry/keypath.h"
#include "platform/registry/volumeprofiles.h"

namespace sandrel {
namespace {

using HivePointer = std::shared_ptr<clsRegfHive>;

constexpr std::string_view ClassesPath = "Software\\Classes";
constexpr std::string_view WindowsNtPath = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
constexpr std::string_view LogonPath =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Authentication\\LogonUI";
constexpr const char* SystemAccount = "S-1-5-18";  // its key is another name of the default user's

std::shared_ptr<clsRegKey> SubkeyNamed(const std::shared_ptr<clsRegKey>& key,
                                       std::string_view name) {
  const std::vector<std::string>& names = key->SubkeyNames();
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (clsNameIndex::SameName(names[i], name)) return key->Subkey(i);
  }
  return {};
}

class clsVolumeRegistry : public clsRegistry {
 public:
  clsVolumeRegistry(const std::string& folder, std::string_view user);

 protected:
  Handle OpenRoot(std::uint32_t root) override;

 private:
  struct User {
    std::string sid;
    HivePointer hive;
    HivePointer classes;  // null when the user has none of its own
    std::shared_ptr<clsRegKey> Open() const;
  };

  HivePointer OpenHive(const std::string& key, const std::string& path);
  void OpenMachineHives(const std::string& folder);
  void FindControlSet();
  std::vector<VolumeProfile> OpenProfiles(const std::string& folder);
  void ChooseUser(const std::vector<VolumeProfile>& profiles, std::string_view user);
  std::string LastUser();

  std::map<std::string, HivePointer> m_machine;  // by the names of their keys
  HivePointer m_defaultUser;
  std::string m_controlSet;  // the key that is CurrentControlSet
  std::vector<User> m_users;
  std::optional<std::size_t> m_currentUser;
};

std::shared_ptr<clsRegKey> clsVolumeRegistry::User::Open() const {
  if (classes == nullptr) return hive->Root();
  return std::make_shared<clsGraftedKey>(hive->Root(), std::string(ClassesPath),
                                         [top = classes] { return top->Root(); });
}

clsVolumeRegistry::clsVolumeRegistry(const std::string& folder, std::string_view user) {
  OpenMachineHives(folder);
  FindControlSet();
  ChooseUser(OpenProfiles(folder), user);
  if (m_currentUser.has_value()) m_currentUserSid = m_users[*m_currentUser].sid;
  FindRoots();
}

HivePointer clsVolumeRegistry::OpenHive(const std::string& key, const std::string& path) {
  HivePointer hive = clsRegfHive::Open(path);
  m_hiveFiles.push_back({key, path});
  if (hive->HasPendingLog()) {
    m_remarks.push_back(fmt::format(
        "The last changes to the registry hive {} stand in its log only and are not seen; "
        "shut Windows down properly to have them.",
        path));
  }
  return hive;
}

void clsVolumeRegistry::OpenMachineHives(const std::string& folder) {
  const std::string config = FindHostPath(folder, "Windows\\System32\\config");
  for (const char* name : {"SAM", "SECURITY", "SOFTWARE", "SYSTEM", "DEFAULT"}) {
    const std::string path = config.empty() ? "" : FindHostPath(config, name);
    if (!path.empty()) {
      const bool isUsers = name == std::string_view("DEFAULT");
      m_machine[name] = OpenHive(
          isUsers ? "HKEY_USERS\\.DEFAULT" : fmt::format("HKEY_LOCAL_MACHINE\\{}", name), path);
    } else if (name == std::string_view("SOFTWARE") || name == std::string_view("SYSTEM")) {
      throw clsError(
          errnum::Hive,
          fmt::format("Can't read the registry of the Windows volume {}: its hive "
                      "Windows/System32/config/{} is missing. Check that the whole volume is "
                      "mounted there.",
                      folder, name));
    }
  }
  const auto found = m_machine.find("DEFAULT");
  if (found == m_machine.end()) return;
  m_defaultUser = found->second;
  m_machine.erase(found);
}

void clsVolumeRegistry::FindControlSet() {
  const Handle select = FindKey(hkey::LocalMachine, "SYSTEM\\Select");
  for (const char* name : {"Current", "Default"}) {
    std::uint32_t type = 0;
    std::string data;
    if (!m_controlSet.empty()) return;
    if (RegQueryValueEx(select, name, type, data) != regstatus::Success || data.size() != 4)
      continue;
    const std::string key =
        fmt::format("ControlSet{:03}",
                    static_cast<unsigned char>(data[0]) | static_cast<unsigned char>(data[1]) << 8);
    if (FindKey(hkey::LocalMachine, "SYSTEM\\" + key) != nullptr) m_controlSet = key;
  }
}

std::vector<VolumeProfile> clsVolumeRegistry::OpenProfiles(const std::string& folder) {
  VolumePaths paths;
  paths.folder = folder;
  paths.systemRoot = ReadRegText(*this, FindKey(hkey::LocalMachine, WindowsNtPath), "SystemRoot");
  if (paths.systemRoot.size() < 3 || paths.systemRoot[1] != ':') paths.systemRoot = "C:\\Windows";

  const std::vector<VolumeProfile> listed = ReadProfiles(
      *this, FindKey(hkey::LocalMachine, keypath::Join(WindowsNtPath, "ProfileList")), paths);
  std::vector<VolumeProfile> opened;
  for (const VolumeProfile& profile : listed) {
    const bool isSystem = text::EqualNoCase(profile.sid, SystemAccount);
    if (isSystem && m_defaultUser != nullptr) {
      m_users.push_back({profile.sid, m_defaultUser, nullptr});
    } else if (profile.userHive.empty()) {
      if (!isSystem) {
        m_remarks.push_back(
            fmt::format("The registry of the user {} is not seen: there is no NTUSER.DAT of the "
                        "profile \"{}\" on "
                        "the volume.",
                        profile.sid, profile.path));
      }
      continue;
    } else {
      const std::string key = "HKEY_USERS\\" + profile.sid;
      const HivePointer hive = OpenHive(key, profile.userHive);
      m_users.push_back({profile.sid, hive,
                         profile.classesHive.empty()
                             ? nullptr
                             : OpenHive(key + "_Classes", profile.classesHive)});
    }
    opened.push_back(profile);
  }
  return opened;
}

// The profiles are in step with m_users.
void clsVolumeRegistry::ChooseUser(const std::vector<VolumeProfile>& profiles,
                                   std::string_view user) {
  if (!user.empty()) {
    const std::size_t found = FindProfile(profiles, user);
    if (found == profiles.size()) {
      std::string names;
      for (const VolumeProfile& profile : profiles) {
        if (profile.isPerson) names += (names.empty() ? "" : ", ") + profile.name;
      }
      throw clsError(
          errnum::Hive,
          fmt::format("The Windows volume has no profile of the user \"{}\" with a registry "
                      "hive. Name one of these: {}.",
                      user, names.empty() ? "(there is none)" : names));
    }
    m_currentUser = found;
    return;
  }
  const std::string last = LastUser();
  const std::size_t found = last.empty() ? profiles.size() : FindProfile(profiles, last);
  if (found < profiles.size()) m_currentUser = found;
  for (std::size_t i = 0; i < profiles.size() && !m_currentUser.has_value(); ++i) {
    if (profiles[i].isPerson) m_currentUser = i;
  }
}

std::string clsVolumeRegistry::LastUser() {
  const Handle logon = FindKey(hkey::LocalMachine, LogonPath);
  for (const char* name : {"LastLoggedOnUserSID", "LastLoggedOnSAMUser", "LastLoggedOnUser"}) {
    std::string user = ReadRegText(*this, logon, name);
    if (!user.empty()) return user;
  }
  return ReadRegText(*this, FindKey(hkey::LocalMachine, keypath::Join(WindowsNtPath, "Winlogon")),
                     "DefaultUserName");
}

clsRegistry::Handle clsVolumeRegistry::OpenRoot(std::uint32_t root) {
  switch (root) {
    case hkey::LocalMachine: {
      auto machine = std::make_shared<clsFolderKey>();
      for (const auto& [name, hive] : m_machine) {
        const KeyMaker open = [top = hive] { return top->Root(); };
        if (name == "SYSTEM" && !m_controlSet.empty()) {
          machine->Add(name, [open, set = m_controlSet] {
            return std::make_shared<clsGraftedKey>(
                open(), "CurrentControlSet", [open, set] { return SubkeyNamed(open(), set); });
          });
        } else {
          machine->Add(name, open);
        }
      }
      return machine;
    }
    case hkey::CurrentUser:
      return m_currentUser.has_value() ? m_users[*m_currentUser].Open() : Handle();
    case hkey::Users: {
      auto users = std::make_shared<clsFolderKey>();
      if (m_defaultUser != nullptr) {
        users->Add(".DEFAULT", [hive = m_defaultUser] { return hive->Root(); });
      }
      for (const User& user : m_users) {
        users->Add(user.sid, [user] { return user.Open(); });
        if (user.classes != nullptr) {
          users->Add(user.sid + "_Classes", [hive = user.classes] { return hive->Root(); });
        }
      }
      return users;
    }
    default:
      return OpenView(root);
  }
}

}  // namespace

std::unique_ptr<clsRegistry> OpenVolumeRegistry(const std::string& folder, std::string_view user) {
  return std::make_unique<clsVolumeRegistry>(folder, user);
}

}  // namespace sandrel
