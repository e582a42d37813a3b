// The entries of INI files: what clsScanDrive records below a file's row.

#include <fmt/format.h>

#include <unordered_map>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/clsPathText.h"
#include "common/text.h"
#include "scan/clsScanDrive.h"

namespace sandrel {
namespace {

// False when the record's key is there already; the record then still waits.
bool TryUpdate(dao::Recordset& records) {
  try {
    records.Update();
    return true;
  } catch (const clsError& error) {
    if (error.Number() != errnum::DuplicateKey) throw;
    return false;
  }
}

constexpr std::size_t LongestShown = 60;  // of a name that doesn't fit
constexpr std::size_t LongestName = 255;  // UTF-16 units of a section's or parameter's field

}  // namespace

bool clsScanDrive::DoIniFile(const FileRow& row, std::string_view name,
                             const clsDirSearch& search) {
  if (text::Lower(clsPathText::ExtensionOf(name)) != "ini") return false;
  const std::string path = search.HostPath();
  RaiseAs("clsScanDrive.DoIniFile", [&] {
    const clsIniReader::Lines* sections = nullptr;
    try {
      sections = &m_iniReader.ListSections(path);
    } catch (const clsError& error) {
      if (error.Number() != errnum::PathFileAccess) throw;
      const std::string refusal = clsFileWorks::Refusal(path);
      LeaveOut(LeftOut::UnreadableIni, std::string(name), refusal.empty() ? "too large" : refusal);
      return;
    }
    for (const std::string_view section : *sections) {
      const clsIniReader::Lines& entries = m_iniReader.ListEntries(path, section);
      if (section.empty()) continue;
      if (text::Length(section) > LongestName) {
        m_context.LeftOut.Add({LeftOut::LongIniEntry, 0, m_folder,
                               fmt::format("{} [{}]", name, text::Left(section, LongestShown)), "",
                               entries.size()});
        continue;
      }
      const std::int64_t sectionId = SectionIdOf(section, row.Id);
      // Entries of a walk that stopped inside this file would count as repetitions.
      if (row.Known) ForgetEntries(*m_values, sectionId);
      AddEntries(sectionId, name, entries);
    }
  });
  return true;
}

std::int64_t clsScanDrive::SectionIdOf(std::string_view section, std::int64_t fileId) {
  m_sections->Seek("=", {section, fileId});
  if (!m_sections->NoMatch()) return m_sections->Get("Id").Integer();
  m_sections->AddNew();
  const std::int64_t id = m_sections->Get("Id").Integer();
  m_sections->Set("Section", section);
  m_sections->Set("FileId", fileId);
  m_sections->Update();
  return id;
}

void clsScanDrive::ForgetEntries(dao::Recordset& values, std::int64_t sectionId) {
  for (;;) {
    values.Seek(">=", {sectionId});
    if (values.NoMatch() || values.Get("SectionId").Integer() != sectionId) return;
    values.Delete();
  }
}

void clsScanDrive::AddEntries(std::int64_t sectionId, std::string_view file,
                              const clsIniReader::Lines& entries) {
  // The unique index knows which parameters repeat; only those are remembered, by the key that the
  // index compares, with the number of their next occurrence.
  std::unordered_map<std::string, std::int64_t> repeated;
  for (const std::string_view entry : entries) {
    const std::size_t equals = entry.find('=');
    if (equals == std::string_view::npos) continue;
    const std::string_view parameter = entry.substr(0, equals);
    if (text::Length(parameter) > LongestName) {
      LeaveOut(LeftOut::LongIniEntry,
               fmt::format("{} {}", file, text::Left(parameter, LongestShown)));
      continue;
    }
    m_values->AddNew();
    m_values->Set("SectionId", sectionId);
    m_values->Set("Parameter", parameter);
    m_values->Set("Occurance", 0);
    m_values->Set("Value", entry.substr(equals + 1));
    std::int64_t* next = nullptr;
    while (!TryUpdate(*m_values)) {
      if (next == nullptr) {
        std::string key = text::FoldAscii(parameter);
        text::ReplaceNul(key);
        next = &repeated.try_emplace(std::move(key), 1).first->second;
      }
      m_values->Set("Occurance", (*next)++);
    }
  }
}

}  // namespace sandrel
