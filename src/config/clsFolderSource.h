// Folders as the folder dialog shows them: trees that are read one folder at a time, when asked.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/machine/clsMachine.h"

namespace sandrel {

class clsFolderSource {
 public:
  struct Root {
    std::string Name;  ///< as shown
    std::string Path;
  };

  virtual ~clsFolderSource() = default;

  /// Where the trees begin, in the order shown.
  virtual std::vector<Root> Roots() = 0;
  /// The names of the folders in the folder `path`, sorted without regard to case. A folder that
  /// can't be read has none.
  std::vector<std::string> Children(const std::string& path);
  /// Whether `Children` would give any; stops at the first.
  bool HasChildren(const std::string& path);
  virtual bool IsFolder(const std::string& path) = 0;

  /// The path that a typed text means, in the form that roots and `Join` give; nothing says that it
  /// is there.
  virtual std::string Normalise(std::string_view text) const = 0;
  /// The path of the folder `name` in the folder `path`.
  std::string Join(const std::string& path, std::string_view name) const;
  /// The names on the way from `root` down to `path`, none when the two are the same; nothing when
  /// `path` lies elsewhere. Both are normalised.
  std::optional<std::vector<std::string>> PartsBelow(const std::string& root,
                                                     const std::string& path) const;
  bool SameName(std::string_view a, std::string_view b) const;

 protected:
  clsFolderSource(char separator, bool matchCase)
      : m_separator(separator), m_matchCase(matchCase) {}

  /// Gives the name of each folder in the folder `path` to `each`, until that says false.
  virtual void Read(const std::string& path,
                    const std::function<bool(const std::string& name)>& each) = 0;

 private:
  char m_separator;
  bool m_matchCase;
};

/// The host's folders, hidden ones too, by host paths: the user's home, then "/". In a typed text ~
/// is the home, and what doesn't begin with "/" lies below it.
std::unique_ptr<clsFolderSource> HostFolders();

/// The Windows path that a typed text means on `machine`: with backslashes, without "." and "..",
/// and with the current drive where it begins at a drive's root. Nothing says that it is there.
std::string MachinePath(const clsMachine& machine, std::string_view text);

/// The machine's folders that a search of it gives, hidden ones too, by Windows paths: "C:\" and
/// further drives.
std::unique_ptr<clsFolderSource> MachineFolders(std::shared_ptr<clsMachine> machine);

/// The computers of $SANDREL_NETWORK by their names, below one root whose path is empty.
std::unique_ptr<clsFolderSource> NetworkComputers();

}  // namespace sandrel
