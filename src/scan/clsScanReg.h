// Walks registry hives into the working database: a row for every key, shared by both snapshots,
// and one for every value of this snapshot. Also reads and writes single values.
//
// An instance serves one snapshot: set the properties, StartDBTransaction, then SetBranchCount and
// DoXTreeBranch for each hive, CommitDBTransaction. Both events are raised on the caller's thread,
// inside the walk.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dao/Workspace.h"
#include "platform/registry/clsRegistry.h"
#include "scan/clsScanContext.h"

namespace sandrel {

/// One registry value, decoded: a text for most types, a number for REG_DWORD and its big-endian
/// twin.
struct clsRegElement {
  std::string Name;
  std::uint32_t RegType = 0;
  dao::Value Value;
};

class clsScanReg {
 public:
  /// `context` must outlive the scanner.
  explicit clsScanReg(clsScanContext& context) : m_context(context) {}

  std::string Database;    ///< host path of the working database
  std::string KeyTable;    ///< keys of both snapshots
  std::string ValueTable;  ///< values of this snapshot
  std::uint32_t Hive = 0;  ///< root key of the running walk

  dao::Durability Durability = dao::Durability::Full;  ///< of the walk's commits

  /// The exact share of the hive that is walked, raised at every subkey.
  std::function<void(int)> PercentComplete;
  /// A walk has ended because of `Cancel`.
  std::function<void()> AckCancel;

  void StartDBTransaction();
  /// Commits and closes; nothing without an open transaction.
  void CommitDBTransaction();

  /// Counts the keys below a key. `psvMachine` names another computer; empty for the machine looked
  /// at. A count of 0 on another computer means that it can't be reached.
  void SetBranchCount(const std::string& psvBranch, std::uint32_t plHive,
                      const std::string& psvMachine);
  std::int64_t BranchCount() const { return m_branchCount; }
  /// Walks a hive or a branch of it; the empty branch is the whole hive.
  void DoXTreeBranch(const std::string& psvBranch, std::uint32_t plHive,
                     const std::string& psvMachine);
  /// Ends this walk and all further ones of this instance.
  void Cancel() { m_cancelled = true; }
  bool IsCancelled() const { return m_cancelled; }
  void ReportProgress();

  /// Deletes the rows of the program's own settings and of copies of the current control set from
  /// `ValueTable`, and with `KillKey` those of the keys too.
  void DeleteExcludes(bool KillKey);

  // Single values. What writes raises what `CheckRegOK` raises, under its own source.

  /// The value as stored, undecoded; Null when it can't be read.
  dao::Value GetElement(std::uint32_t KeyRoot, const std::string& KeyName,
                        const std::string& SubKeyRef);
  /// Reads a value of an open key, undecoded; the type is left in `LastType`. Gives the registry's
  /// status and, on failure, leaves `value` an empty text and the type as it was.
  std::int32_t QueryValueEx(clsRegistry& registry, const clsRegistry::Handle& key,
                            std::string_view name, dao::Value& value);
  std::uint32_t LastType() const { return m_lastType; }

  /// The pairs of digits of the number's hexadecimal form, which has no leading zeros, in reverse
  /// order.
  static std::int32_t SwapEndian(std::int32_t KeyVal);
  /// The number of a hexadecimal text in capitals, wrapping to a negative one from 80000000 upward.
  static std::int32_t Dec(std::string_view psvHex);
  /// The text's code page 1252 bytes as pairs of hexadecimal digits with a blank between them.
  static std::string DecodeBinary(std::string_view psvBinStr);

  /// Writes a value of the types 1, 2, 3, 4 and 7, making the key where it is missing; any other
  /// type writes nothing. `vValue` holds a text, or for type 4 a number.
  void SetValue(std::uint32_t plHiveKey, const std::string& KeyName,
                const std::string& psvValueName, std::uint32_t plValueType,
                const dao::Value& vValue, const std::string& psvMachineName = {});
  /// Removes a value, making the key on the way where it is missing.
  void DeleteValue(std::uint32_t plHiveKey, const std::string& psvKey,
                   const std::string& psvValueName, const std::string& psvMachineName = {});
  /// True for status 0; raises an error with the status' text for any other.
  static bool CheckRegOK(std::int32_t status);

 private:
  /// The registry of `machine`, or of the machine looked at; null when the computer can't be
  /// reached.
  clsRegistry* RegistryOf(const std::string& machine);
  /// The registry in which the key now exists.
  clsRegistry& GetHKey(std::uint32_t hive, const std::string& path, const std::string& machine);

  /// Writes what was changed to disk, whatever became of the last change, whose status is given.
  void Finish(clsRegistry& registry, std::int32_t status);

  void NeedTransaction() const;
  void CountKeys(clsRegistry& registry, const std::string& branch, std::uint32_t hive);
  void DoXTree(clsRegistry* registry, const std::string& branch);
  std::int64_t KeyIdOf(const std::string& branch);
  bool FindKey(const std::string& branch, std::int64_t& id);
  bool AddKey(const std::string& branch, std::int64_t& id);
  void DoValues(clsRegistry& registry, const clsRegistry::Handle& key, const std::string& branch);
  void TellGaps(const clsRegistry::Handle& key, const std::string& branch) const;
  void LeaveOut(LeftOut kind, const std::string& branch, const std::string& name = {},
                std::uint64_t count = 1) const;
  /// Turns `m_data` of a type into the text or number that the store holds.
  void Decode(std::uint32_t type, dao::Value& value);

  static std::vector<std::string> BuiltInExcludes(clsRegistry* registry);
  void DeleteBranch(std::string_view entry, bool killKey);

  clsScanContext& m_context;

  std::shared_ptr<dao::Workspace> m_workspace;
  std::unique_ptr<dao::Database> m_database;
  std::unique_ptr<dao::Recordset> m_keys, m_values;
  bool m_transactionOpen = false;
  // Fields of the recordsets, found once.
  struct {
    std::size_t Id, Hive, Branch;
  } m_keyFields{};
  struct {
    std::size_t KeyId, Name, Value, Type;
  } m_valueFields{};
  bool m_lastKeyWasNew = true;

  std::shared_ptr<clsRegistry> m_remote;
  std::string m_remoteName;

  std::int64_t m_keysWalked = 0;
  std::int64_t m_branchCount = 0;
  std::int64_t m_currentKeyId = 0;
  int m_keysSinceCommit = 0;
  bool m_cancelled = false;
  std::uint32_t m_lastType = 0;
  std::string m_data;       // of the value being read, kept for its buffer
  std::string m_text;       // likewise, decoded
  clsRegElement m_element;  // likewise
};

}  // namespace sandrel
