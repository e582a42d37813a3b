// Taking excluded folders and files out of both snapshots.

#include <algorithm>

#include "common/clsError.h"
#include "common/clsPathText.h"
#include "common/text.h"
#include "config/clsScanSettings.h"
#include "config/clsSettingsSource.h"
#include "config/modFilePattern.h"
#include "scan/clsScanDrive.h"

namespace sandrel {
namespace {

// The store's keys compare ASCII letters without regard to case and all others exactly. A text with
// other letters is therefore looked for row by row, with all letters folded.
bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
}

}  // namespace

void clsScanDrive::CheckExcludes(clsSettingsSource& stored, const clsMachine& machine) {
  clsScanSettings settings(stored);
  if (!settings.FileExclude()) return;
  for (const std::string& entry : settings.List("ExcludeFiles")) {
    const std::string last = clsPathText::TextAfterLast(entry, "\\");
    if (!machine.FolderExists(clsPathText::TextBeforeLast(entry, "\\"))) continue;
    try {
      CheckPattern(last);
    } catch (const clsError& error) {
      throw clsError(error.Number(), entry + "\n\n" + error.Description(),
                     "clsScanDrive.CheckExcludes");
    }
  }
}

void clsScanDrive::DeleteExcludes() {
  clsScanSettings settings(m_context.Settings);
  if (!settings.FileExclude()) return;
  NeedTransaction();
  std::vector<std::string> entries = settings.List("ExcludeFiles");
  if (entries.empty()) entries = DefaultExcludes(m_context.Machine, m_context.AppPath, settings);
  for (const std::string& entry : entries) {
    if (entry.ends_with('\\')) {
      ExcludeBranch(entry);
    } else {
      ExcludeFiles(entry);
    }
  }
  if (m_firstValues) DeleteEntriesWithoutFile();
}

void clsScanDrive::ExcludeBranch(const std::string& entry) {
  if (m_paths->Bof() && m_paths->Eof()) return;
  const bool ascii = IsAscii(entry);
  if (ascii) {
    m_paths->Seek(">=", {entry});
  } else {
    m_paths->MoveFirst();
  }
  for (;;) {
    if (ascii ? m_paths->NoMatch() : m_paths->Eof()) return;
    const std::string_view path = m_paths->Get("PathName").Text();
    if (!text::StartsWithNoCase(path, entry)) {
      if (ascii) return;
      m_paths->MoveNext();
      continue;
    }
    const std::int64_t pathId = m_paths->Get("Id").Integer();
    DeleteFilesOf(*m_files, pathId);
    if (m_firstFiles) DeleteFilesOf(*m_firstFiles, pathId);
    m_paths->Delete();
    m_context.DoEvents();
    if (m_paths->Bof() || m_paths->Eof()) return;
    if (ascii) {
      m_paths->Seek(">=", {entry});
    } else {
      m_paths->MoveNext();
    }
  }
}

void clsScanDrive::ExcludeFiles(const std::string& entry) {
  const std::string last = clsPathText::TextAfterLast(entry, "\\");
  for (const std::int64_t pathId : FindFolders(clsPathText::TextBeforeLast(entry, "\\") + "\\")) {
    for (dao::Recordset* files : {m_files.get(), m_firstFiles.get()}) {
      if (files == nullptr || (files->Bof() && files->Eof())) continue;
      if (last == AllFiles) {
        DeleteFilesOf(*files, pathId);
      } else if (IsPattern(last)) {
        DeleteMatches(*files, pathId, last);
      } else {
        DeleteFile(*files, pathId, last);
      }
    }
  }
  m_context.DoEvents();
}

// More than one where the store tells folders apart that differ only in the case of other letters.
std::vector<std::int64_t> clsScanDrive::FindFolders(std::string_view folder) {
  std::vector<std::int64_t> found;
  if (IsAscii(folder)) {
    m_paths->Seek("=", {folder});
    if (!m_paths->NoMatch()) found.push_back(m_paths->Get("Id").Integer());
    return found;
  }
  if (m_paths->Bof() && m_paths->Eof()) return found;
  for (m_paths->MoveFirst(); !m_paths->Eof(); m_paths->MoveNext()) {
    if (text::EqualNoCase(m_paths->Get("PathName").Text(), folder)) {
      found.push_back(m_paths->Get("Id").Integer());
    }
  }
  return found;
}

void clsScanDrive::DeleteFilesOf(dao::Recordset& files, std::int64_t pathId) {
  for (;;) {
    files.Seek(">=", {pathId, ""});
    if (files.NoMatch() || files.Get("PathId").Integer() != pathId) return;
    files.Delete();
  }
}

void clsScanDrive::DeleteFile(dao::Recordset& files, std::int64_t pathId, std::string_view name) {
  if (IsAscii(name)) {
    files.Seek("=", {pathId, name});
    if (!files.NoMatch()) files.Delete();
    return;
  }
  files.Seek(">=", {pathId, ""});
  if (files.NoMatch()) return;
  for (; !files.Eof() && files.Get("PathId").Integer() == pathId; files.MoveNext()) {
    if (text::EqualNoCase(files.Get("FileName").Text(), name)) files.Delete();
  }
}

void clsScanDrive::DeleteMatches(dao::Recordset& files, std::int64_t pathId,
                                 std::string_view pattern) {
  files.Seek(">=", {pathId, ""});
  if (files.NoMatch()) return;
  while (!files.Eof() && files.Get("PathId").Integer() == pathId) {
    if (MatchFileName(files.Get("FileName").Text(), pattern)) files.Delete();
    files.MoveNext();
  }
}

// Entries left behind would have no path, and from the next snapshot on they would count as new.
void clsScanDrive::DeleteEntriesWithoutFile() {
  if (m_sections->Bof() && m_sections->Eof()) return;
  m_files->SetIndex("Id");
  m_firstFiles->SetIndex("Id");
  const auto stands = [](dao::Recordset& files, std::int64_t id) {
    files.Seek("=", {id});
    return !files.NoMatch();
  };
  for (m_sections->MoveFirst(); !m_sections->Eof(); m_sections->MoveNext()) {
    const std::int64_t file = m_sections->Get("FileId").Integer();
    if (stands(*m_files, file) || stands(*m_firstFiles, file)) continue;
    const std::int64_t section = m_sections->Get("Id").Integer();
    ForgetEntries(*m_values, section);
    ForgetEntries(*m_firstValues, section);
    m_sections->Delete();
    m_context.DoEvents();
  }
}

}  // namespace sandrel
