// What is to be run once at the user's next logon: an autostart entry of the desktop.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sandrel {

class clsRunOnce {
 public:
  /// Name of the entry of the wizard over a home folder; each has its own.
  static std::string WizardEntry(std::string_view home);

  /// In the user's own autostart folder, or in `folder`.
  clsRunOnce();
  explicit clsRunOnce(std::string folder) : m_folder(std::move(folder)) {}

  /// Stores a command, its program and arguments as words, run with the variables ("NAME=text") in
  /// its environment. Replaces an entry of the name. Raises the number of the failure.
  void SetValue(std::string_view name, const std::vector<std::string>& words,
                const std::vector<std::string>& variables) const;
  /// Removes an entry; one that isn't there is no error.
  void DeleteValue(std::string_view name) const;

  bool HasValue(std::string_view name) const;

  /// Host path of an entry, which need not exist.
  std::string PathOf(std::string_view name) const;

 private:
  std::string m_folder;
};

}  // namespace sandrel
