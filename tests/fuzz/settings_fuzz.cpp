// A file of settings: read, changed, and read again by another.
#include "Fuzz.h"
#include "config/clsSettings.h"

using namespace sandrel;
using namespace sandrel::test;

namespace {

std::string All(clsSettings& settings) {
  std::string all;
  for (const std::string& section : settings.Sections()) {
    for (const std::string& key : settings.Keys(section)) {
      all += section + '\0' + key + '\0' + settings.GetSetting(section, key, "") + '\0';
    }
  }
  return all;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static InputFile input;
  const std::string_view text = Text(data, size);
  clsSettings settings(input.Hold(text));
  All(settings);
  Try([&] {
    settings.SaveSetting("Enabled", "Text", text);
    const std::string kept = settings.GetSetting("Enabled", "Text", "");
    const std::string all = All(settings);
    clsSettings again(settings.Path());
    Need(again.GetSetting("Enabled", "Text", "") == kept);
    Need(All(again) == all);
  });
  return 0;
}
