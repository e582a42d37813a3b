#include "scan/clsScanReg.h"

#include "common/clsError.h"
#include "common/clsPathText.h"
#include "common/text.h"

namespace sandrel {
namespace {

constexpr int KeysPerCommit = 10001;
// UTF-16 units.
constexpr std::size_t LongestKey = 32767;  // a key's path
constexpr std::size_t LongestValueName = 16383;

std::string ChildOf(const std::string& branch, const std::string& name) {
  return branch.empty() ? name : branch + "\\" + name;
}

bool Fits(std::string_view text, std::size_t longest) {
  return text.size() <= longest || text::Length(text) <= longest;
}

// Calls `visit` with the path of every subkey that can be stored, and `leaveOut` with the names of
// the others.
template <class Visit, class LeaveOut>
void EachSubkey(clsRegistry& registry, const clsRegistry::Handle& key, const std::string& branch,
                Visit&& visit, LeaveOut&& leaveOut) {
  std::string name;
  for (std::size_t i = 0;; ++i) {
    const std::int32_t status = registry.RegEnumKey(key, i, name);
    if (status != regstatus::Success && status != regstatus::MoreData) return;
    const std::string child = status == regstatus::Success ? ChildOf(branch, name) : std::string();
    if (status == regstatus::Success && Fits(child, LongestKey)) {
      visit(child);
    } else {
      leaveOut(name);
    }
  }
}

}  // namespace

void clsScanReg::StartDBTransaction() {
  RaiseAs("clsScanReg.StartDBTransaction", [&] {
    m_workspace = dao::DBEngine::CreateWorkspace("", Durability);
    m_database = m_workspace->OpenDatabase(Database);
    m_keys = m_database->OpenRecordset(KeyTable, dao::RecordsetType::Table);
    m_keys->SetIndex("PrimaryKey");
    m_values = m_database->OpenRecordset(ValueTable, dao::RecordsetType::Table);
    m_keyFields = {m_keys->FieldNumber("Id"), m_keys->FieldNumber("Hive"),
                   m_keys->FieldNumber("Branch")};
    m_valueFields = {m_values->FieldNumber("KeyId"), m_values->FieldNumber("ValueName"),
                     m_values->FieldNumber("Value"), m_values->FieldNumber("ValueType")};
    m_workspace->BeginTrans();
    m_transactionOpen = true;
  });
}

void clsScanReg::CommitDBTransaction() {
  if (!m_transactionOpen) return;
  RaiseAs("clsScanReg.CommitDBTransaction", [&] {
    m_workspace->CommitTrans();
    m_transactionOpen = false;
    m_keys.reset();
    m_values.reset();
    m_database.reset();
    m_workspace.reset();
  });
}

clsRegistry* clsScanReg::RegistryOf(const std::string& machine) {
  if (machine.empty()) return &m_context.Machine.Registry();
  const std::string name = clsPathText::MachineNameForConnect(machine);
  if (m_remote == nullptr || name != m_remoteName) {
    m_remote = m_context.Machine.RegConnectRegistry(name);
    m_remoteName = name;
  }
  return m_remote.get();
}

void clsScanReg::SetBranchCount(const std::string& psvBranch, std::uint32_t plHive,
                                const std::string& psvMachine) {
  m_branchCount = 0;
  if (clsRegistry* registry = RegistryOf(psvMachine)) CountKeys(*registry, psvBranch, plHive);
}

void clsScanReg::CountKeys(clsRegistry& registry, const std::string& branch, std::uint32_t hive) {
  clsRegistry::Handle key;
  if (registry.RegOpenKeyEx(hive, branch, key) != regstatus::Success) return;
  EachSubkey(
      registry, key, branch,
      [&](const std::string& child) {
        ++m_branchCount;
        CountKeys(registry, child, hive);
      },
      [](const std::string&) {});
  m_context.DoEvents();
}

void clsScanReg::DoXTreeBranch(const std::string& psvBranch, std::uint32_t plHive,
                               const std::string& psvMachine) {
  NeedTransaction();
  Hive = plHive;
  m_keysWalked = 0;
  DoXTree(RegistryOf(psvMachine), psvBranch);
  if (m_cancelled && AckCancel) AckCancel();
}

void clsScanReg::NeedTransaction() const {
  Need(m_transactionOpen ? m_database.get() : nullptr);
}

std::int64_t clsScanReg::KeyIdOf(const std::string& branch) {
  // Keys mostly come as the one before did: all new in a Before walk, nearly all known in an After
  // walk.
  std::int64_t id = 0;
  if (m_lastKeyWasNew ? AddKey(branch, id) || FindKey(branch, id)
                      : FindKey(branch, id) || AddKey(branch, id)) {
    return id;
  }
  throw clsError(errnum::DuplicateKey,
                 "The registry key is in the table and can't be found there.");
}

bool clsScanReg::FindKey(const std::string& branch, std::int64_t& id) {
  m_keys->Seek("=", {static_cast<std::int32_t>(Hive), branch});
  if (m_keys->NoMatch()) return false;
  id = m_keys->Get(m_keyFields.Id).Integer();
  m_lastKeyWasNew = false;
  return true;
}

bool clsScanReg::AddKey(const std::string& branch, std::int64_t& id) {
  m_keys->AddNew();
  id = m_keys->Get(m_keyFields.Id).Integer();
  m_keys->SetInteger(m_keyFields.Hive, static_cast<std::int32_t>(Hive));
  m_keys->SetText(m_keyFields.Branch, branch);
  try {
    m_keys->Update();
  } catch (const clsError& error) {
    if (error.Number() != errnum::DuplicateKey) throw;
    m_keys->CancelUpdate();
    return false;
  }
  m_lastKeyWasNew = true;
  return true;
}

void clsScanReg::DoXTree(clsRegistry* registry, const std::string& branch) {
  if (m_cancelled) return;
  m_currentKeyId = KeyIdOf(branch);
  // A key that can't be opened has its row, but neither subkeys nor values.
  clsRegistry::Handle key;
  const std::int32_t status =
      registry == nullptr ? regstatus::FileNotFound : registry->RegOpenKeyEx(Hive, branch, key);
  if (status == regstatus::AccessDenied) LeaveOut(LeftOut::UnreadableKey, branch);
  if (status != regstatus::Success) return;
  DoValues(*registry, key, branch);
  TellGaps(key, branch);
  EachSubkey(
      *registry, key, branch,
      [&](const std::string& child) {
        ReportProgress();
        ++m_keysWalked;
        DoXTree(registry, child);
      },
      [&](const std::string& name) { LeaveOut(LeftOut::LongKey, branch, name); });
}

void clsScanReg::LeaveOut(LeftOut kind, const std::string& branch, const std::string& name,
                          std::uint64_t count) const {
  if (count == 0) return;
  m_context.LeftOut.Add({kind, static_cast<std::int32_t>(Hive), branch, name, "", count});
}

void clsScanReg::TellGaps(const clsRegistry::Handle& key, const std::string& branch) const {
  const KeyGaps gaps = clsRegistry::Gaps(key);
  LeaveOut(LeftOut::RefusedKey, branch, "", gaps.Subkeys);
  LeaveOut(LeftOut::RefusedValue, branch, "", gaps.Values);
  LeaveOut(LeftOut::DeepKey, branch, "", gaps.Deep);
}

void clsScanReg::DoValues(clsRegistry& registry, const clsRegistry::Handle& key,
                          const std::string& branch) {
  RaiseAs("clsScanReg.DoValues", [&] {
    for (std::size_t i = 0; registry.RegEnumValue(key, i, m_element.Name) == regstatus::Success;
         ++i) {
      if (!Fits(m_element.Name, LongestValueName)) {
        LeaveOut(LeftOut::LongValueName, branch, m_element.Name);
        continue;
      }
      if (registry.RegQueryValueEx(key, m_element.Name, m_element.RegType, m_data) !=
          regstatus::Success) {
        LeaveOut(LeftOut::RefusedValue, branch, m_element.Name);
        continue;
      }
      m_lastType = m_element.RegType;
      Decode(m_element.RegType, m_element.Value);
      m_values->AddNew();
      m_values->SetInteger(m_valueFields.KeyId, m_currentKeyId);
      m_values->SetText(m_valueFields.Name, m_element.Name);
      m_values->Exchange(m_valueFields.Value, m_element.Value);
      m_values->SetInteger(m_valueFields.Type, static_cast<std::int32_t>(m_element.RegType));
      try {
        m_values->Update();
      } catch (const clsError& error) {
        if (error.Number() != errnum::DuplicateKey) throw;
        m_values->CancelUpdate();  // names that differ only in case: the first one stays
      }
    }
    if (++m_keysSinceCommit < KeysPerCommit) return;
    m_workspace->CommitTrans();
    m_workspace->BeginTrans();
    m_keysSinceCommit = 0;
  });
}

void clsScanReg::ReportProgress() {
  if (m_branchCount > 0 && PercentComplete) {
    PercentComplete(static_cast<int>(m_keysWalked * 100 / m_branchCount));
  }
  m_context.DoEvents();
}

}  // namespace sandrel
