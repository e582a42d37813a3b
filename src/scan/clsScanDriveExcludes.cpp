// Taking excluded folders and files out of both snapshots.

#include <algorithm>

#include "common/clsError.h"
#include "common/clsPathText.h"
#include "common/text.h"
#include "config/clsScanSettings.h"
#include "config/clsSettingsSource.h"
#include "scan/clsScanDrive.h"

namespace sandrel {
namespace {

// The store's keys compare ASCII letters without regard to case and all others exactly. A text with
// other letters is therefore looked for row by row, with all letters folded.
bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
}

// Names as the platform counts them, in UTF-16 units.
std::u16string Units(std::string_view text) {
  const std::string bytes = text::ToUtf16Le(text);
  std::u16string units(bytes.size() / 2, u'\0');
  for (std::size_t i = 0; i < units.size(); ++i) {
    units[i] = static_cast<char16_t>(static_cast<unsigned char>(bytes[2 * i]) |
                                     static_cast<unsigned char>(bytes[2 * i + 1]) << 8);
  }
  return units;
}

struct Parts {
  std::u16string Base, Extension;
};

Parts SplitName(std::string_view name) {
  const std::string lower = text::Lower(name);
  const std::size_t dot = lower.find('.');
  if (dot == std::string::npos) return {Units(lower), {}};
  return {Units(lower.substr(0, dot)), Units(text::Trim(std::string_view(lower).substr(dot + 1)))};
}

// Where the pattern holds "*", both texts are cut to what stands from the place before it.
void CutAtStar(std::u16string& name, std::u16string& pattern) {
  const std::size_t star = pattern.find(u'*');
  if (star == std::u16string::npos) return;
  if (star == 0) {
    throw clsError(
        errnum::InvalidArgument,
        "Invalid procedure call or argument: the exclusions hold a pattern whose name or "
        "extension begins with '*'. Use '?' for single characters, or '*.*' for all files "
        "of a folder.");
  }
  pattern.erase(0, star - 1);
  name.erase(0, std::min(star - 1, name.size()));
}

bool Matches(std::u16string name, const std::u16string& pattern) {
  if (name.size() != pattern.size()) return false;
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (pattern[i] == u'?') name[i] = u'?';
  }
  return name == pattern;
}

// All files of the folder.
constexpr std::string_view AllFiles = "*.*";

bool IsPattern(std::string_view name) {
  return name.find_first_of("?*") != std::string::npos;
}

}  // namespace

bool clsScanDrive::MatchFileName(std::string_view name, std::string_view pattern) {
  Parts names = SplitName(name);
  Parts patterns = SplitName(pattern);
  CutAtStar(names.Base, patterns.Base);
  CutAtStar(names.Extension, patterns.Extension);
  // A pattern without an extension matches names with any.
  return Matches(names.Base, patterns.Base) &&
         (patterns.Extension.empty() || Matches(names.Extension, patterns.Extension));
}

void clsScanDrive::CheckExcludes(clsSettingsSource& stored, const clsMachine& machine) {
  clsScanSettings settings(stored);
  if (!settings.FileExclude()) return;
  for (const std::string& entry : settings.List("ExcludeFiles")) {
    const std::string last = clsPathText::TextAfterLast(entry, "\\");
    if (last == AllFiles || !IsPattern(last)) continue;
    if (!machine.FolderExists(clsPathText::TextBeforeLast(entry, "\\"))) continue;
    try {
      MatchFileName("", last);
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
