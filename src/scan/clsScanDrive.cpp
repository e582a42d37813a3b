#include "scan/clsScanDrive.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/clsPathText.h"
#include "common/text.h"
#include "config/clsScanSettings.h"
#include "platform/version/clsVersionInfo.h"

namespace sandrel {
namespace {

constexpr int FoldersPerCommit = 101;
constexpr std::size_t LargestVersionResource = 64000;

std::int64_t LastId(const dao::Database& database, const std::string& table) {
  const auto files = database.OpenRecordset(table, dao::RecordsetType::Table);
  if (files->Bof()) return 0;
  files->SetIndex("Id");
  files->MoveLast();
  return files->Get("Id").Integer();
}

std::int64_t LastSectionFile(const dao::Database& database, const std::string& table) {
  if (table.empty()) return 0;
  std::int64_t last = 0;
  const auto rows = database.OpenRecordset(fmt::format("SELECT [{0}].FileId FROM [{0}];", table),
                                           dao::RecordsetType::Dynaset);
  for (; !rows->Eof(); rows->MoveNext()) last = std::max(last, rows->Get(0).Integer());
  return last;
}

}  // namespace

void clsScanDrive::StartDBTransaction(bool bNoIni) {
  RaiseAs("clsScanDrive.StartDBTransaction", [&] {
    m_workspace = dao::DBEngine::CreateWorkspace("", Durability);
    m_database = m_workspace->OpenDatabase(Database);
    const auto open = [&](const std::string& table) {
      auto records = m_database->OpenRecordset(table, dao::RecordsetType::Table);
      records->SetIndex("PrimaryKey");
      return records;
    };
    m_paths = open(PathTable);
    m_files = open(FileTable);
    m_id = m_files->FieldNumber("Id");
    m_pathId = m_files->FieldNumber("PathId");
    m_fileName = m_files->FieldNumber("FileName");
    m_date = m_files->FieldNumber("Date");
    m_version = m_files->FieldNumber("Version");
    m_size = m_files->FieldNumber("Size");
    m_attributes = m_files->FieldNumber("Attributes");
    if (!bNoIni) {
      m_sections = open(IniSectionTable);
      m_values = open(IniValueTable);
      if (!FirstIniValueTable.empty()) m_firstValues = open(FirstIniValueTable);
    }
    if (!FirstFileTable.empty()) {
      m_firstFiles = open(FirstFileTable);
      // INI sections find their file by an id that may come from either table, so a file has one id
      // in both, and a new file one that no file of either has and no section left over from
      // earlier walks.
      m_nextFileId = std::max({LastId(*m_database, FileTable), LastId(*m_database, FirstFileTable),
                               LastSectionFile(*m_database, IniSectionTable)}) +
                     1;
    }
    m_workspace->BeginTrans();
    m_transactionOpen = true;
  });
}

void clsScanDrive::CommitDBTransaction(bool bNoIni) {
  if (!m_transactionOpen) return;
  RaiseAs("clsScanDrive.CommitDBTransaction", [&] {
    m_workspace->CommitTrans();
    m_transactionOpen = false;
    m_paths.reset();
    m_files.reset();
    m_firstFiles.reset();
    if (!bNoIni) {
      m_sections.reset();
      m_values.reset();
      m_firstValues.reset();
    }
    m_database.reset();
    m_workspace.reset();
  });
}

void clsScanDrive::DoXTreeFiles(const std::string& Pathname) {
  NeedTransaction();
  DoXTree(Pathname, true);
  if (m_cancelled && AckCancel) AckCancel();
}

void clsScanDrive::NeedTransaction() const {
  Need(m_transactionOpen ? m_database.get() : nullptr);
}

void clsScanDrive::DoXTree(const std::string& given, bool isRoot) {
  // Here alone a cancel takes effect: the folder in progress is finished, and the queues of its
  // parents drain through this test without touching the disk.
  if (m_cancelled) return;
  const std::string folder = clsPathText::AddSeparator(given);
  std::vector<std::string> subfolders;
  try {
    m_processing = m_folder = folder;
    clsScanSettings settings(m_context.Settings);
    const Details details{settings.VersionInfo(), settings.SizeInfo(), settings.AttributeInfo()};
    clsDirSearch search = m_context.Machine.Dir(folder, fileattr::Files);
    m_context.DoEvents();
    const std::int64_t pathId = PathIdOf(folder);
    std::string name;
    bool empty = true;
    while (search.Next(name)) {
      empty = false;
      DoFile(search, pathId, name, details);
      m_context.DoEvents();
    }
    m_context.LeftOut.Add(search.LeftOutItems());
    if (empty) {
      // A folder without files takes part in the comparison through a row with an empty name.
      BeginFileRow(pathId, "");
      EndFileRow(pathId, "");
    }
    CountFolder();
    subfolders = Subfolders(folder);
  } catch (const clsError& error) {
    // Temporary folders come and go while a machine runs, and every machine has folders that can't
    // be read: neither ends a walk.
    if (!isRoot && error.Number() == errnum::BadFileName) {
      const auto refusal = m_context.Machine.Refusal(folder);
      const LeftOut kind = refusal ? LeftOut::UnreadableFolder : LeftOut::VanishedFolder;
      m_context.LeftOut.Add({kind, 0, folder, "", refusal.value_or("")});
      return;
    }
    throw error.WithSource("clsScanDrive.DoXTree")
        .WithDescription(fmt::format("{} - Processing: {}", error.Description(), m_processing));
  }
  // Outside the trap above: an error of a nested walk carries its text already.
  for (const std::string& subfolder : subfolders) {
    ++m_foldersStarted;
    ReportProgress();
    DoXTree(subfolder, false);
  }
}

std::int64_t clsScanDrive::PathIdOf(const std::string& folder) {
  m_paths->Seek("=", {folder});
  if (!m_paths->NoMatch()) return m_paths->Get("Id").Integer();
  m_paths->AddNew();
  m_paths->Set("PathName", folder);
  const std::int64_t id = m_paths->Get("Id").Integer();
  m_paths->Update();
  return id;
}

void clsScanDrive::BeginFileRow(std::int64_t pathId, std::string_view name) {
  std::int64_t id = 0;
  if (m_firstFiles) {
    m_firstFiles->Seek("=", {pathId, name});
    id = m_firstFiles->NoMatch() ? m_nextFileId : m_firstFiles->Get("Id").Integer();
  }
  m_files->AddNew();
  if (m_firstFiles) m_files->SetInteger(m_id, id);
  m_files->SetInteger(m_pathId, pathId);
  m_files->SetText(m_fileName, name);
}

clsScanDrive::FileRow clsScanDrive::EndFileRow(std::int64_t pathId, std::string_view name) {
  const std::int64_t id = m_files->Get(m_id).Integer();
  try {
    m_files->Update();
  } catch (const clsError& error) {
    if (error.Number() != errnum::DuplicateKey) throw;
    // A walk that was started again after an error, or a folder listed twice: the first row stays.
    m_files->CancelUpdate();
    m_files->Seek("=", {pathId, name});
    if (m_files->NoMatch()) throw;
    return {m_files->Get(m_id).Integer(), true};
  }
  if (m_firstFiles && id == m_nextFileId) ++m_nextFileId;
  return {id, false};
}

void clsScanDrive::DoFile(const clsDirSearch& search, std::int64_t pathId, const std::string& name,
                          const Details& details) {
  m_processing.resize(m_processing.rfind('\\') + 1);
  m_processing += name;
  BeginFileRow(pathId, name);
  const bool mayOpen = SetDetails(search, name, details);
  const FileRow row = EndFileRow(pathId, name);
  if (m_sections && mayOpen) DoIniFile(row, name, search);
}

void clsScanDrive::LeaveOut(LeftOut kind, std::string name, std::string detail) const {
  m_context.LeftOut.Add({kind, 0, m_folder, std::move(name), std::move(detail)});
}

// False for a file that must not be opened.
bool clsScanDrive::SetDetails(const clsDirSearch& search, const std::string& name,
                              const Details& details) {
  // A locked, odd or vanished file costs details of its row, which stay Null, not the walk.
  bool isOpenDatabase = false;
  try {
    const FileDetails found = search.Details();
    isOpenDatabase = dao::DBEngine::IsOpen(found.Device, found.Inode);
    m_files->SetText(m_date, dao::DateText(found.LastWritten));
    if (details.Size) m_files->SetInteger(m_size, static_cast<std::int64_t>(found.Length));
    if (details.Attributes) m_files->SetInteger(m_attributes, found.Attributes);
  } catch (const clsError& error) {
    if (error.Number() != errnum::PathFileAccess && error.Number() != errnum::InvalidArgument)
      throw;
    LeaveOut(LeftOut::UnreadableFile, name, clsFileWorks::Refusal(search.HostPath()));
  }
  if (!details.Version) return !isOpenDatabase;
  if (isOpenDatabase) {
    m_files->SetText(m_version, "");
  } else {
    SetVersion(search, name);
  }
  return !isOpenDatabase;
}

// A version that isn't known stays Null, so that it is compared with none.
void clsScanDrive::SetVersion(const clsDirSearch& search, const std::string& name) {
  std::string failure;
  const std::string version = GetVersionInfo(search.HostPath(), &failure);
  if (!failure.empty()) {
    LeaveOut(LeftOut::UnreadableFile, name, failure);
  } else if (version.size() > static_cast<std::size_t>(m_files->Fields()[m_version].Size)) {
    LeaveOut(LeftOut::LongVersion, name);
  } else {
    m_files->SetText(m_version, version);
  }
}

void clsScanDrive::CountFolder() {
  if (++m_foldersSinceCommit < FoldersPerCommit) return;
  m_workspace->CommitTrans();
  m_workspace->BeginTrans();
  m_foldersSinceCommit = 0;
}

std::vector<std::string> clsScanDrive::Subfolders(const std::string& folder) {
  std::vector<std::string> found;
  const bool hidden = clsScanSettings(m_context.Settings).HiddenFolders();
  clsDirSearch search = m_context.Machine.Dir(folder, SubfolderMask(hidden));
  std::string name;
  while (search.Next(name)) {
    if (!search.IsFolder()) continue;
    found.push_back(folder + name);
    ++m_foldersFound;
  }
  m_context.LeftOut.Add(search.LeftOutItems());
  return found;
}

void clsScanDrive::ReportProgress() {
  if (m_foldersFound == 0) return;
  const int percent = static_cast<int>(m_foldersStarted * 100 / m_foldersFound);
  if (percent <= m_lastPercent) return;
  m_lastPercent = percent;
  if (PercentComplete) PercentComplete(percent);
  m_context.DoEvents();
}

std::string clsScanDrive::GetVersionInfo(const std::string& path, std::string* failure) {
  const std::size_t size = clsVersionInfo::GetFileVersionInfoSize(path, failure);
  if (size == 0) return {};
  clsVersionInfo::FixedFileInfo info;
  if (!clsVersionInfo::GetFileVersionInfo(path, std::min(size, LargestVersionResource),
                                          m_versionBuffer) ||
      !clsVersionInfo::VerQueryRoot(m_versionBuffer, info)) {
    m_versionBuffer.clear();
    return {};
  }
  const auto high = [](std::uint32_t word) { return static_cast<std::int32_t>(word) / 65535; };
  const auto low = [](std::uint32_t word) { return word & 0xFFFFu; };
  return fmt::format("{}.{}.{}.{}", high(info.FileVersionMS), low(info.FileVersionMS),
                     high(info.FileVersionLS), low(info.FileVersionLS));
}

}  // namespace sandrel
