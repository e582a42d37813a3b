#include "config/modSettingCheck.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <vector>

#include "common/clsError.h"
#include "common/clsPathText.h"
#include "common/text.h"
#include "config/clsScanSettings.h"
#include "config/modFilePattern.h"

namespace sandrel {
namespace {

constexpr std::array Switches = {"DiskScan", "VersionInfo",    "SizeInfo",    "AttributeInfo",
                                 "RegScan",  "RemoteRegistry", "FileExclude", "HiddenFolders"};
constexpr std::array Views = {"Statusbar", "Toolbar", "Systray"};

template <class Names>
bool IsOneOf(std::string_view name, const Names& names) {
  return std::any_of(std::begin(names), std::end(names),
                     [&](const auto& one) { return text::EqualNoCase(name, one); });
}

clsError Refusal(std::string_view text, std::string_view why) {
  return {errnum::InvalidArgument, fmt::format("\"{}\" {}", text, why)};
}

bool IsOnDrive(std::string_view path) {
  const char letter = path.empty() ? ' ' : path[0];
  const bool drive = (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z');
  return drive && path.size() >= 2 && path[1] == ':' && (path.size() == 2 || path[2] == '\\') &&
         path.find(':', 2) == std::string_view::npos;
}

void CheckBoolean(std::string_view text, std::string_view key) {
  if (IsOneOf(text, std::array{"True", "False"})) return;
  throw Refusal(text, fmt::format("is nothing that {} can be: it is True or False.", key));
}

void CheckNumber(std::string_view section, std::string_view key) {
  const bool digits =
      std::all_of(key.begin(), key.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (!key.empty() && digits && key[0] != '0') return;
  throw Refusal(key, fmt::format("is no number of an entry of {}: they are 1, 2, 3...", section));
}

}  // namespace

void CheckScanFolder(const std::string& folder, const clsMachine* machine) {
  constexpr const char* Example = "Give a folder of the machine, as C: or C:\\Program Files.";
  if (!IsOnDrive(folder)) throw Refusal(folder, fmt::format("names no drive. {}", Example));
  if (folder.find_first_of("*?\"<>|") != std::string::npos) {
    throw Refusal(folder, fmt::format("is no folder's name. {}", Example));
  }
  if (machine == nullptr) return;
  const std::vector<std::string> drives = machine->Drives();
  if (IsOneOf(folder.substr(0, 2), drives)) return;
  throw Refusal(folder, fmt::format("lies on a drive that the machine lacks. It has {}.",
                                    fmt::join(drives, ", ")));
}

void CheckExclusion(const std::string& entry) {
  if (!IsOnDrive(entry)) {
    throw Refusal(entry,
                  "names no drive. Give a file, a pattern or a folder, as C:\\Temp\\ or "
                  "C:\\Windows\\*.*.");
  }
  try {
    CheckPattern(clsPathText::TextAfterLast(entry, "\\"));
  } catch (const clsError& error) {
    throw error.WithDescription(entry + "\n\n" + error.Description());
  }
}

void CheckSetting(std::string_view section, std::string_view key, const std::string& text,
                  const clsMachine* machine) {
  if (text::EqualNoCase(section, "Enabled")) {
    if (IsOneOf(key, Views)) return CheckBoolean(text, key);
    if (!IsOneOf(key, Switches)) {
      throw Refusal(key, fmt::format("is no key of Enabled: they are {}, {}.",
                                     fmt::join(Switches, ", "), fmt::join(Views, ", ")));
    }
    if (text == "0" || text == "1") return;
    throw Refusal(text, fmt::format("is nothing that {} can be: it is 0 or 1.", key));
  }
  if (text::EqualNoCase(section, "RegScan")) {
    if (text::EqualNoCase(key, "RemoteName")) return;
    for (const ScanHive& hive : ScanHives(false)) {
      if (text::EqualNoCase(key, hive.Name)) return CheckBoolean(text, key);
    }
    throw Refusal(key, "is no key of RegScan: they are RemoteName and the names of the hives.");
  }
  const bool folders = text::EqualNoCase(section, "ScanFolders");
  if (!folders && !text::EqualNoCase(section, "ExcludeFiles")) return;
  CheckNumber(section, key);
  if (text.empty()) return;
  folders ? CheckScanFolder(clsPathText::NormaliseFolder(text), machine) : CheckExclusion(text);
}

}  // namespace sandrel
