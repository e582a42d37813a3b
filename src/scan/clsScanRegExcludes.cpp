// Taking out of the snapshots what changes by itself: the program's own settings and the copies of
// the current control set.

#include <fmt/format.h>

#include "common/clsError.h"
#include "common/text.h"
#include "config/clsScanSettings.h"
#include "scan/clsScanReg.h"

namespace sandrel {
namespace {

constexpr const char* OwnSettings = "\\Software\\VB and VBA Program Settings\\Sandrel";

bool RootByName(std::string_view name, std::int32_t& root) {
  static constexpr std::pair<const char*, std::uint32_t> Roots[] = {
      {"HKEY_CLASSES_ROOT", hkey::ClassesRoot},
      {"HKEY_CURRENT_CONFIG", hkey::CurrentConfig},
      {"HKEY_CURRENT_USER", hkey::CurrentUser},
      {"HKEY_LOCAL_MACHINE", hkey::LocalMachine},
      {"HKEY_USERS", hkey::Users},
  };
  for (const auto& [known, key] : Roots) {
    if (text::EqualNoCase(name, known)) {
      root = static_cast<std::int32_t>(key);
      return true;
    }
  }
  return false;
}

}  // namespace

std::vector<std::string> clsScanReg::BuiltInExcludes(clsRegistry* registry) {
  std::vector<std::string> entries{fmt::format("HKEY_CURRENT_USER{}", OwnSettings)};
  clsRegistry::Handle users;
  if (registry != nullptr && registry->RegOpenKeyEx(hkey::Users, "", users) == regstatus::Success) {
    std::string name;
    for (std::size_t i = 0; registry->RegEnumKey(users, i, name) == regstatus::Success; ++i) {
      entries.push_back(fmt::format("HKEY_USERS\\{}{}", name, OwnSettings));
    }
  }
  entries.emplace_back("HKEY_LOCAL_MACHINE\\System\\Clone");
  for (int i = 1; i <= 6; ++i) {
    entries.push_back(fmt::format("HKEY_LOCAL_MACHINE\\System\\ControlSet{:03}", i));
  }
  return entries;
}

void clsScanReg::DeleteExcludes(bool KillKey) {
  NeedTransaction();
  clsScanSettings settings(m_context.Settings);
  clsRegistry* registry = RegistryIfNeeded(m_context.Machine, settings);
  m_keys->SetIndex("PrimaryKey");
  m_values->SetIndex("PrimaryKey");
  for (const std::string& entry : BuiltInExcludes(registry)) DeleteBranch(entry, KillKey);
}

void clsScanReg::DeleteBranch(std::string_view entry, bool killKey) {
  const std::size_t separator = entry.find('\\');
  std::int32_t root = 0;
  if (separator == std::string_view::npos || !RootByName(entry.substr(0, separator), root)) return;
  const std::string_view path = text::Trim(entry.substr(separator + 1));
  if (m_keys->Bof() && m_keys->Eof()) return;
  m_keys->Seek(">=", {root, path});
  while (!m_keys->NoMatch() && !m_keys->Eof()) {
    // A plain comparison of beginnings: System\Clone takes System\Clone2 as well.
    if (!text::StartsWithNoCase(m_keys->Get("Branch").Text(), path)) return;
    if (m_keys->Get("Hive").Integer() == root) {
      const std::int64_t keyId = m_keys->Get("Id").Integer();
      for (;;) {
        m_values->Seek(">=", {keyId, ""});
        if (m_values->NoMatch() || m_values->Get("KeyId").Integer() != keyId) break;
        m_values->Delete();
      }
    }
    if (killKey) m_keys->Delete();
    m_context.DoEvents();
    if (m_keys->Bof() && m_keys->Eof()) return;
    if (killKey) {
      m_keys->Seek(">=", {root, path});
    } else {
      m_keys->MoveNext();
    }
  }
}

}  // namespace sandrel
