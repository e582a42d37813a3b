#include "config/clsSettings.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/text.h"

namespace sandrel {
namespace {

class clsFileLock {
 public:
  explicit clsFileLock(const std::string& path)
      : m_file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
    if (m_file < 0) throw ErrnoError(errno, "Can't write the settings beside " + path);
    while (flock(m_file, LOCK_EX) != 0 && errno == EINTR) {
    }
  }
  ~clsFileLock() { close(m_file); }
  clsFileLock(const clsFileLock&) = delete;
  clsFileLock& operator=(const clsFileLock&) = delete;

 private:
  int m_file;
};

bool NeedsQuotes(std::string_view text, std::string_view special) {
  if (text.empty()) return false;
  if (text.front() == '"' || text::TrimWhite(text).size() != text.size()) return true;
  return std::any_of(text.begin(), text.end(), [&](char c) {
    return static_cast<unsigned char>(c) < 0x20 || special.find(c) != std::string_view::npos;
  });
}

std::string Quoted(std::string_view text, std::string_view special) {
  if (!NeedsQuotes(text, special)) return std::string(text);
  std::string result = "\"";
  for (const char c : text) {
    switch (c) {
      case '\n':
        result += "\\n";
        break;
      case '\r':
        result += "\\r";
        break;
      case '\t':
        result += "\\t";
        break;
      case '"':
      case '\\':
        result += '\\';
        [[fallthrough]];
      default:
        result += c;
    }
  }
  return result + '"';
}

// Takes a text off the line's front: a quoted one, or everything up to `end`.
std::string TakeText(std::string_view& line, char end) {
  std::string result;
  if (!line.starts_with('"')) {
    const std::size_t at = end == '\0' ? std::string_view::npos : line.find(end);
    result = line.substr(0, at);
    line.remove_prefix(at == std::string_view::npos ? line.size() : at);
    return result;
  }
  std::size_t i = 1;
  for (; i < line.size() && line[i] != '"'; ++i) {
    if (line[i] != '\\' || i + 1 >= line.size()) {
      result += line[i];
      continue;
    }
    ++i;
    result += line[i] == 'n' ? '\n' : line[i] == 'r' ? '\r' : line[i] == 't' ? '\t' : line[i];
  }
  line.remove_prefix(std::min(i + 1, line.size()));
  return result;
}

}  // namespace

clsSettings::clsSettings(std::string path)
    : m_path(std::filesystem::absolute(std::move(path)).string()) {}

std::string clsSettings::DefaultPath() {
  const auto variable = [](const char* name) {
    const char* value = std::getenv(name);
    return std::string(value != nullptr ? value : "");
  };
  if (std::string own = variable("SANDREL_SETTINGS"); !own.empty()) return own;
  std::string folder = variable("XDG_CONFIG_HOME");
  if (folder.empty()) folder = clsFileWorks::Join(variable("HOME"), ".config");
  return clsFileWorks::Join(folder, "sandrel/settings.ini");
}

std::string clsSettings::GetSetting(std::string_view section, std::string_view key,
                                    std::string_view fallback) {
  Refresh(false);
  Section* found = FindSection(section);
  const Entry* entry = found == nullptr ? nullptr : FindEntry(*found, key);
  return entry == nullptr ? std::string(fallback) : entry->Value;
}

void clsSettings::SaveSetting(std::string_view section, std::string_view key,
                              std::string_view text) {
  Write([&] {
    Section* found = FindSection(section);
    if (found == nullptr) found = &m_sections.emplace_back(Section{std::string(section), {}});
    Entry* entry = FindEntry(*found, key);
    if (entry == nullptr) entry = &found->Entries.emplace_back(Entry{std::string(key), {}, false});
    entry->Value = text;
  });
}

void clsSettings::DeleteSetting(std::string_view section, std::string_view key) {
  Write([&] {
    Section* found = FindSection(section);
    Entry* entry = found == nullptr ? nullptr : FindEntry(*found, key);
    if (entry == nullptr) {
      throw clsError(errnum::InvalidArgument,
                     fmt::format("There is no setting {} / {}.", section, key));
    }
    found->Entries.erase(found->Entries.begin() + (entry - found->Entries.data()));
    if (found->Entries.empty()) m_sections.erase(m_sections.begin() + (found - m_sections.data()));
  });
}

void clsSettings::DeleteSetting(std::string_view section) {
  Write([&] {
    Section* found = FindSection(section);
    if (found == nullptr) {
      throw clsError(errnum::InvalidArgument, fmt::format("There is no section {}.", section));
    }
    m_sections.erase(m_sections.begin() + (found - m_sections.data()));
  });
}

std::vector<std::string> clsSettings::Sections() {
  Refresh(false);
  std::vector<std::string> names;
  for (const Section& section : m_sections) {
    if (!section.Name.empty()) names.push_back(section.Name);
  }
  return names;
}

std::vector<std::string> clsSettings::Keys(std::string_view section) {
  Refresh(false);
  std::vector<std::string> names;
  if (const Section* found = FindSection(section)) {
    for (const Entry& entry : found->Entries) {
      if (!entry.IsLine) names.push_back(entry.Key);
    }
  }
  return names;
}

clsSettings::Section* clsSettings::FindSection(std::string_view name) {
  for (Section& section : m_sections) {
    if (text::EqualNoCase(section.Name, name)) return &section;
  }
  return nullptr;
}

clsSettings::Entry* clsSettings::FindEntry(Section& section, std::string_view key) {
  for (Entry& entry : section.Entries) {
    if (!entry.IsLine && text::EqualNoCase(entry.Key, key)) return &entry;
  }
  return nullptr;
}

clsSettings::Stamp clsSettings::Look() const {
  struct stat status {};
  if (stat(m_path.c_str(), &status) != 0) return {};
  return {status.st_mtim.tv_sec, status.st_mtim.tv_nsec, status.st_size, status.st_ino};
}

void clsSettings::Refresh(bool forWriting) {
  if (m_together) return;
  const Stamp now = Look();
  if (now == m_stamp) return;
  m_sections.clear();
  m_stamp = now;
  if (now == Stamp{}) return;
  try {
    Parse(clsFileWorks::ReadWhole(m_path));
  } catch (const clsError&) {
    // Reading never fails, but what can't be read is not overwritten either.
    m_stamp = {};
    if (forWriting) throw;
  }
}

void clsSettings::Parse(std::string_view content) {
  Section* current = &m_sections.emplace_back();
  if (content.starts_with("\xEF\xBB\xBF")) content.remove_prefix(3);
  while (!content.empty()) {
    const std::size_t end = content.find('\n');
    const std::string_view whole = content.substr(0, end);
    content.remove_prefix(end == std::string_view::npos ? content.size() : end + 1);
    std::string_view line = text::TrimWhite(whole);
    if (line.ends_with('\r')) line = text::TrimWhite(line.substr(0, line.size() - 1));
    if (line.starts_with('[')) {
      line.remove_prefix(1);
      std::string name = TakeText(line, ']');
      if (line.starts_with(']')) {
        current = FindSection(name);
        if (current == nullptr) current = &m_sections.emplace_back(Section{std::move(name), {}});
        continue;
      }
    } else if (!line.empty() && line.front() != ';' && line.front() != '#') {
      const bool quoted = line.starts_with('"');
      std::string key = TakeText(line, '=');
      if (!quoted) key = text::TrimWhite(key);
      line = text::TrimWhite(line);
      if (line.starts_with('=')) {
        line = text::TrimWhite(line.substr(1));
        Entry entry{std::move(key), TakeText(line, '\0'), false};
        current->Entries.push_back(std::move(entry));
        continue;
      }
    }
    if (!whole.empty()) current->Entries.push_back({{}, std::string(whole), true});
  }
}

std::string clsSettings::Format() const {
  std::string content;
  for (const Section& section : m_sections) {
    if (!section.Name.empty()) {
      if (!content.empty()) content += '\n';
      content += fmt::format("[{}]\n", Quoted(section.Name, "]"));
    }
    for (const Entry& entry : section.Entries) {
      if (entry.IsLine) {
        content += entry.Value + '\n';
      } else {
        // A key that looks like a header or a comment would not be read back as a key.
        content += fmt::format("{}={}\n", Quoted(entry.Key, "=[];#"), Quoted(entry.Value, ""));
      }
    }
  }
  return content;
}

void clsSettings::Together(const std::function<void()>& body, const std::function<void()>& then) {
  if (m_together) {
    body();
    if (then) then();
    return;
  }
  Write(
      [&] {
        m_together = true;
        try {
          body();
        } catch (...) {
          m_together = false;
          throw;
        }
        m_together = false;
      },
      then);
}

template <class Change>
void clsSettings::Write(Change&& change, const std::function<void()>& then) {
  if (m_together) {
    change();
    return;
  }
  clsFileWorks::MakeFolders(std::filesystem::path(m_path).parent_path().string());
  const clsFileLock lock(m_path + ".lock");
  Refresh(true);
  std::vector<Section> before = m_sections;
  try {
    change();
    if (m_sections != before) WriteFile();
  } catch (const clsError&) {
    m_sections = before;
    throw;
  }
  if (!then) return;
  try {
    then();
  } catch (const clsError&) {
    std::swap(m_sections, before);
    if (m_sections != before) WriteFile();
    throw;
  }
}

void clsSettings::NeedWritable() {
  Write([] {});
  const std::string folder = std::filesystem::path(m_path).parent_path().string();
  if (access(folder.empty() ? "." : folder.c_str(), W_OK | X_OK) != 0) {
    throw ErrnoError(errno, "Can't write " + m_path);
  }
}

void clsSettings::WriteFile() {
  clsFileWorks::ReplaceWhole(m_path, Format());
  m_stamp = Look();
}

}  // namespace sandrel
