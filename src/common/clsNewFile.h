// A file of the user's in the making: written beside its place, put there whole or not at all.
//
// A process that is killed leaves the old file as it was, and beside it a hidden file that the next
// writer of the same name takes over. A link at the path is followed, even to a file that isn't
// there yet.
#pragma once

#include <string>

namespace sandrel {

class clsNewFile {
 public:
  /// Begins an empty file for the host path `path`, with the permissions and, where possible, the
  /// owner of the one that it is to replace. Raises 75 where what stands there is no regular
  /// file, may not be written, or is being written by another process, and the number of any other
  /// failure.
  explicit clsNewFile(const std::string& path);
  /// The same for `name` in the open folder `folder`, which stays the caller's and open as long.
  /// A link there is replaced, not followed. Messages name the host path `shown`; `Path` and
  /// `CopyFrom` are not for this one.
  clsNewFile(int folder, const std::string& name, const std::string& shown);
  /// Deletes what was not put in its place.
  ~clsNewFile();
  clsNewFile(const clsNewFile&) = delete;
  clsNewFile& operator=(const clsNewFile&) = delete;

  /// Host path at which the content is to be written. The file there must stay the same one: opened
  /// and written, not replaced.
  const std::string& Path() const { return m_path; }
  /// Host path of its place, links followed.
  const std::string& Target() const { return m_target; }
  /// Where a file for the host path `target`, links followed, is written until then. Always the
  /// same for it, so that what a killed process left is found again.
  static std::string PlaceBeside(const std::string& target);
  /// The same file's open descriptor, owned by the object.
  int Descriptor() const { return m_descriptor; }

  /// Begins with the content of the file at the host path `source`.
  void CopyFrom(const std::string& source);

  /// Waits until the content is on disk and puts the file in its place. Raises the number of the
  /// failure; the old file is as it was then. Called once, when nobody else has it open any more.
  void Commit();

 private:
  void Begin(int linkFlag);
  bool OpenLocked();
  void Discard();

  std::string m_shown;   // the path as given, for messages
  int m_folder;          // what the other two lie below, unless they are absolute
  std::string m_target;  // where its links lead
  std::string m_path;
  int m_descriptor = -1;
};

}  // namespace sandrel
