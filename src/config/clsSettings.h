// The user's settings: texts addressed by section and key, in one readable file.
//
// The file holds "[section]" lines and "key=value" lines. A name or value that would not survive as
// a plain line (blanks at its ends, a line end, a quote in front...) stands in double quotes with
// \n, \r, \t, \" and \\ inside. Lines that are neither are kept where they are. Sections and keys
// compare without regard to case.
//
// Every write replaces the file whole under a lock, after reading what another process has written
// since, so that a crash loses nothing and two processes that write different keys lose neither.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "config/clsSettingsSource.h"

namespace sandrel {

class clsSettings final : public clsSettingsSource {
 public:
  /// Works on the file at the host path `path`, which need not exist. Reads nothing yet.
  explicit clsSettings(std::string path);

  /// $SANDREL_SETTINGS, else settings.ini in the folder "sandrel" of the user's configuration.
  static std::string DefaultPath();

  const std::string& Path() const { return m_path; }

  using clsSettingsSource::GetSetting;
  std::string GetSetting(std::string_view section, std::string_view key,
                         std::string_view fallback) override;
  /// Raises the number of the failure when the file can't be written.
  void SaveSetting(std::string_view section, std::string_view key, std::string_view text);
  /// Deletes a key, or a whole section; one without keys is none. Raises 5 when there is none.
  void DeleteSetting(std::string_view section, std::string_view key);
  void DeleteSetting(std::string_view section);

  /// Runs `body`. What it saves and deletes is written together when it ends, in one replacement of
  /// the file; nothing of it when it raises. Calls nest. `then`, when given, runs once the file is
  /// written; when it raises, the file gets back what it held.
  void Together(const std::function<void()>& body, const std::function<void()>& then = {});

  /// Raises now what `SaveSetting` would raise later, as far as that can be known.
  void NeedWritable();

  std::vector<std::string> Sections();
  std::vector<std::string> Keys(std::string_view section);

 private:
  struct Entry {
    std::string Key;    // as written; of a line that is kept as it is, empty
    std::string Value;  // of a line that is kept as it is, the line
    bool IsLine = false;
    bool operator==(const Entry&) const = default;
  };
  struct Section {
    std::string Name;  // of the lines before the first section, empty
    std::vector<Entry> Entries;
    bool operator==(const Section&) const = default;
  };
  struct Stamp {
    std::int64_t Seconds = -1, Nanoseconds = 0, Size = 0;
    std::uint64_t Inode = 0;
    bool operator==(const Stamp&) const = default;
  };

  Section* FindSection(std::string_view name);
  static Entry* FindEntry(Section& section, std::string_view key);
  Stamp Look() const;
  void Refresh(bool forWriting);
  void Parse(std::string_view content);
  std::string Format() const;
  template <class Change>
  void Write(Change&& change, const std::function<void()>& then = {});
  void WriteFile();

  std::string m_path;
  Stamp m_stamp;
  bool m_together = false;  // the file is locked and written later
  std::vector<Section> m_sections;
};

}  // namespace sandrel
