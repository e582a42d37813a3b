#include "export/clsTargetFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <vector>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/clsNewFile.h"
#include "store/modTarget.h"

namespace sandrel {
namespace {

class clsFile {
 public:
  explicit clsFile(int file) : m_file(file) {}
  ~clsFile() {
    if (m_file >= 0) close(m_file);
  }
  clsFile(const clsFile&) = delete;
  clsFile& operator=(const clsFile&) = delete;

  int Get() const { return m_file; }

 private:
  int m_file;
};

bool IsName(const std::string& part) {
  return !part.empty() && part != "." && part != ".." && part.find('/') == std::string::npos &&
         part.find('\0') == std::string::npos;
}

// That the system has no such file means the source alone. Of a target it says that nothing can be
// made there.
clsError TargetError(clsError error) {
  if (error.Number() != errnum::FileNotFound) return error;
  return {errnum::PathNotFound, error.Description()};
}

void CopyBytes(int from, int to, const std::string& source, const std::string& target) {
  std::vector<char> buffer(std::size_t{1} << 18);
  for (;;) {
    const ssize_t got = read(from, buffer.data(), buffer.size());
    if (got == 0) return;
    if (got < 0) {
      if (errno == EINTR) continue;
      throw ErrnoError(errno, "Can't read " + source);
    }
    for (ssize_t done = 0; done < got;) {
      const ssize_t put = write(to, buffer.data() + done, static_cast<std::size_t>(got - done));
      if (put >= 0) {
        done += put;
      } else if (errno != EINTR) {
        throw ErrnoError(errno, "Can't write " + target);
      }
    }
  }
}

}  // namespace

clsTargetFolder::clsTargetFolder(const std::string& path) : m_path(path), m_folder(-1) {
  try {
    clsFileWorks::MakeFolders(path);
  } catch (const clsError& error) {
    throw TargetError(error);
  }
  m_folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (m_folder < 0) throw TargetError(ErrnoError(errno, "Can't open the folder " + path));
}

clsTargetFolder::~clsTargetFolder() {
  close(m_folder);
}

// The descriptor of a folder below, -1 when there is none.
int clsTargetFolder::OpenFolder(const std::vector<std::string>& parts, bool make) const {
  int folder = fcntl(m_folder, F_DUPFD_CLOEXEC, 0);
  for (const std::string& part : parts) {
    const clsFile above(folder);
    if (above.Get() < 0 || !IsName(part)) return -1;
    if (make) mkdirat(above.Get(), part.c_str(), 0777);  // what fails shows in the next step
    folder = openat(above.Get(), part.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  }
  return folder;
}

bool clsTargetFolder::MakeFolder(const std::vector<std::string>& parts) {
  const clsFile folder(OpenFolder(parts, true));
  return folder.Get() >= 0;
}

void clsTargetFolder::Copy(const std::string& source, const std::vector<std::string>& parts,
                           const std::string& name) {
  std::string target = m_path;  // for messages alone
  for (const std::string& part : parts) target = clsFileWorks::Join(target, part);
  target = clsFileWorks::Join(target, name);
  const clsFile from(open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (from.Get() < 0 || fstat(from.Get(), &status) != 0) {
    throw ErrnoError(errno, "Can't read " + source);
  }
  if (!S_ISREG(status.st_mode)) {
    throw clsError(errnum::PathFileAccess, "Can't read " + source + ": it is no file");
  }
  const clsFile folder(OpenFolder(parts, false));
  if (folder.Get() < 0 || !IsName(name)) {
    throw clsError(errnum::PathNotFound, "Can't write " + target + ": its folder isn't there");
  }
  struct stat there {};
  if (fstatat(folder.Get(), name.c_str(), &there, AT_SYMLINK_NOFOLLOW) == 0 &&
      S_ISREG(there.st_mode)) {
    if (there.st_dev == status.st_dev && there.st_ino == status.st_ino) {
      throw clsError(errnum::PathFileAccess, "Can't write " + target + ": it is copied itself");
    }
    NeedCopyTarget(target);
  }
  try {
    clsNewFile copy(folder.Get(), name, target);
    CopyBytes(from.Get(), copy.Descriptor(), source, target);
    const std::array<timespec, 2> times = {status.st_atim, status.st_mtim};
    futimens(copy.Descriptor(), times.data());
    copy.Commit();
  } catch (const clsError& error) {
    throw TargetError(error);
  }
}

}  // namespace sandrel
