// A file's content held in memory.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace sandrel {

/// A copy of a whole file that can be read here and, by a path, by a library that only opens files.
/// As it is a copy, a bad sector is an error when it is made and not a signal later, and nobody can
/// change it.
class clsMappedFile {
 public:
  /// Raises 75 when the file can't be read.
  explicit clsMappedFile(const std::string& path);
  ~clsMappedFile();
  clsMappedFile(const clsMappedFile&) = delete;
  clsMappedFile& operator=(const clsMappedFile&) = delete;

  std::string_view Bytes() const { return {m_bytes, m_size}; }

  /// Where the copy can be opened for reading, as long as this object lives.
  std::string Path() const;

 private:
  void Close();

  int m_copy = -1;
  const char* m_bytes = nullptr;
  std::size_t m_size = 0;
};

}  // namespace sandrel
