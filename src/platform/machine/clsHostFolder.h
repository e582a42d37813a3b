// An open folder of the host.
#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <ctime>
#include <memory>
#include <string>

namespace sandrel {

/// What tells whether a folder's names may have changed.
struct FolderStamp {
  dev_t Device = 0;
  ino_t Inode = 0;
  timespec Modified{};
  timespec Changed{};

  FolderStamp() = default;
  explicit FolderStamp(const struct stat& status)
      : Device(status.st_dev),
        Inode(status.st_ino),
        Modified(status.st_mtim),
        Changed(status.st_ctim) {}
  bool operator==(const FolderStamp& other) const;
  /// False while a further change could leave the same times behind: a clock ticks too slowly to
  /// tell changes apart that follow closely.
  bool Settled() const;
};

class clsHostFolder {
 public:
  clsHostFolder() = default;
  ~clsHostFolder() { Close(); }
  clsHostFolder(const clsHostFolder&) = delete;
  clsHostFolder& operator=(const clsHostFolder&) = delete;

  /// Opens the folder at the host path `path`. Gives 0, or the system's error number.
  int Open(const std::string& path);
  void Close();

  /// Calls `each(name, type)` for every entry but "." and "..", in the order of the disk; `name`
  /// ends in NUL and `type` is the directory's own (DT_REG...), DT_UNKNOWN where it keeps none.
  /// Gives 0, or the system's error number. Reads on from where the last call ended.
  template <class Each>
  int Read(Each&& each);

  int Descriptor() const { return m_descriptor; }

 private:
  // One entry of the block that was read last; false at the folder's end.
  bool Next(const char*& name, unsigned char& type, int& failure);

  int m_descriptor = -1;
  std::unique_ptr<char[]> m_block;
  std::size_t m_at = 0;
  std::size_t m_end = 0;
};

template <class Each>
int clsHostFolder::Read(Each&& each) {
  const char* name = nullptr;
  unsigned char type = 0;
  int failure = 0;
  while (Next(name, type, failure)) each(name, type);
  return failure;
}

}  // namespace sandrel
