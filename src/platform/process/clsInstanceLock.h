// Tells whether the program already runs on a home folder.
//
// It is a lock on a file of the user's own, outside the home folder, which may be missing or
// read-only when the program starts. The system releases it when the process ends, however that
// happens; the file stays, as deleting it would let two processes lock two files of one name.
#pragma once

#include <string>

namespace sandrel {

class clsInstanceLock {
 public:
  /// Takes the lock, or sees that it is taken. `homeFolder` is a host path, which need not exist;
  /// paths that lead to one folder share its lock.
  explicit clsInstanceLock(const std::string& homeFolder);
  ~clsInstanceLock();
  clsInstanceLock(const clsInstanceLock&) = delete;
  clsInstanceLock& operator=(const clsInstanceLock&) = delete;

  /// True when another process of this user held the lock as this object was made. False where no
  /// lock can be had: two windows do less harm than none.
  bool PrevInstance() const { return m_prevInstance; }

  /// A name that all programs of this user on this home folder agree on, and no others.
  const std::string& Name() const { return m_name; }

 private:
  std::string m_name;
  int m_file;
  bool m_prevInstance = false;
};

}  // namespace sandrel
