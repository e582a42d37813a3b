// Walks one folder tree into the working database: a row for every folder, for every file (or one
// row with an empty name for a folder without files), and for every entry of the INI files among
// them.
//
// An instance serves one walk: set the properties, StartDBTransaction, DoXTreeFiles,
// CommitDBTransaction. Both events are raised on the caller's thread, inside the walk.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "common/clsIniReader.h"
#include "platform/dao/Workspace.h"
#include "scan/clsScanContext.h"

namespace sandrel {

class clsScanDrive {
 public:
  /// `context` must outlive the scanner.
  explicit clsScanDrive(clsScanContext& context) : m_context(context) {}

  std::string Database;         ///< host path of the working database
  std::string PathTable;        ///< folders of both snapshots
  std::string FileTable;        ///< files of this snapshot
  std::string FirstFileTable;   ///< files of the Before snapshot during an After walk, else empty
  std::string IniSectionTable;  ///< INI sections of both snapshots
  std::string IniValueTable;    ///< INI entries of this snapshot
  std::string
      FirstIniValueTable;  ///< INI entries of the Before snapshot, for `DeleteExcludes` alone

  dao::Durability Durability = dao::Durability::Full;  ///< of the walk's commits

  /// The share of the work that is done, a whole percentage that only grows.
  std::function<void(int)> PercentComplete;
  /// A walk has ended because of `Cancel`.
  std::function<void()> AckCancel;

  /// Opens the database in a workspace of its own and begins a transaction; with `bNoIni` the INI
  /// tables are not touched.
  void StartDBTransaction(bool bNoIni);
  /// Commits and closes; nothing without an open transaction. `bNoIni` as at the start.
  void CommitDBTransaction(bool bNoIni);

  /// Walks the tree below the Windows path `Pathname`. What a walk that failed has recorded already
  /// is recognised, so that it can be started again.
  void DoXTreeFiles(const std::string& Pathname);
  /// Lets the folder in progress be finished and ends the walk.
  void Cancel() { m_cancelled = true; }
  bool IsCancelled() const { return m_cancelled; }

  /// The version of the file at a host path, as "1.2.3.4"; empty when it has none. The high half of
  /// each word is its signed value divided by 65535. `failure`, when given, tells in the system's
  /// words why the file can't be read.
  std::string GetVersionInfo(const std::string& path, std::string* failure = nullptr);

  /// Raises `PercentComplete` when the percentage has grown.
  void ReportProgress();

  /// Deletes the rows of excluded folders and files from both snapshots: `FileTable` holds the
  /// After files, `FirstFileTable` the Before files. INI entries go with their files. Raises 5 for
  /// a pattern whose base or extension begins with "*".
  void DeleteExcludes();

  /// Raises 5, naming the exclusion, where `DeleteExcludes` would over the folders that there are.
  static void CheckExcludes(clsSettingsSource& settings, const clsMachine& machine);

 private:
  struct Details {
    bool Version, Size, Attributes;
  };

  struct FileRow {
    std::int64_t Id;
    bool Known;  // the snapshot had the file's row already
  };

  void NeedTransaction() const;
  void DoXTree(const std::string& folder, bool isRoot);
  std::vector<std::string> Subfolders(const std::string& folder);
  std::int64_t PathIdOf(const std::string& folder);
  void DoFile(const clsDirSearch& search, std::int64_t pathId, const std::string& name,
              const Details& details);
  void BeginFileRow(std::int64_t pathId, std::string_view name);
  FileRow EndFileRow(std::int64_t pathId, std::string_view name);
  bool SetDetails(const clsDirSearch& search, const std::string& name, const Details& details);
  void SetVersion(const clsDirSearch& search, const std::string& name);
  void LeaveOut(LeftOut kind, std::string name, std::string detail = {}) const;
  void CountFolder();

  bool DoIniFile(const FileRow& row, std::string_view name, const clsDirSearch& search);
  std::int64_t SectionIdOf(std::string_view section, std::int64_t fileId);
  static void ForgetEntries(dao::Recordset& values, std::int64_t sectionId);
  void AddEntries(std::int64_t sectionId, std::string_view file,
                  const clsIniReader::Lines& entries);

  void ExcludeBranch(const std::string& entry);
  void ExcludeFiles(const std::string& entry);
  std::vector<std::int64_t> FindFolders(std::string_view folder);
  void DeleteEntriesWithoutFile();
  static void DeleteFilesOf(dao::Recordset& files, std::int64_t pathId);
  static void DeleteFile(dao::Recordset& files, std::int64_t pathId, std::string_view name);
  static void DeleteMatches(dao::Recordset& files, std::int64_t pathId, std::string_view pattern);

  clsScanContext& m_context;

  std::shared_ptr<dao::Workspace> m_workspace;
  std::unique_ptr<dao::Database> m_database;
  std::unique_ptr<dao::Recordset> m_paths, m_files, m_firstFiles, m_sections, m_values,
      m_firstValues;
  bool m_transactionOpen = false;
  // Fields of m_files, found once.
  std::size_t m_id = 0, m_pathId = 0, m_fileName = 0, m_date = 0, m_version = 0, m_size = 0,
              m_attributes = 0;
  std::int64_t m_nextFileId = 1;  // in an After walk: above every id of both file tables

  std::int64_t m_foldersFound = 0;
  std::int64_t m_foldersStarted = 0;
  int m_lastPercent = 0;
  int m_foldersSinceCommit = 0;
  bool m_cancelled = false;
  std::string m_folder;      // the one in progress
  std::string m_processing;  // the last full path, for the error's text
  std::string m_versionBuffer;
  clsIniReader m_iniReader;
};

}  // namespace sandrel
