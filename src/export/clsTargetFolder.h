// Writes files below one folder of the host, and nowhere else: whatever a path of an analysis
// holds, no part of it leads out of the folder, and no link inside is followed.
#pragma once

#include <string>
#include <vector>

namespace sandrel {

class clsTargetFolder {
 public:
  /// Opens the folder at the host path, made with those above it when it is missing. Raises the
  /// number of the failure, never 53.
  explicit clsTargetFolder(const std::string& path);
  ~clsTargetFolder();
  clsTargetFolder(const clsTargetFolder&) = delete;
  clsTargetFolder& operator=(const clsTargetFolder&) = delete;

  /// Makes the folders `parts` (host names), each below the one before. False when one can't be
  /// made, is a link, or is no name of a folder's.
  bool MakeFolder(const std::vector<std::string>& parts);

  /// Copies the file at the host path `source` into the folder `parts`, which exists, as `name`; a
  /// file there is replaced in one step. The copy has the modification time of `source`. Raises 53
  /// only when `source` has gone, else the number of the failure; no part of a file is left then.
  void Copy(const std::string& source, const std::vector<std::string>& parts,
            const std::string& name);

 private:
  int OpenFolder(const std::vector<std::string>& parts, bool make) const;

  std::string m_path;
  int m_folder;
};

}  // namespace sandrel
