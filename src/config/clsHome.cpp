#include "config/clsHome.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <map>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/modInstallation.h"

namespace sandrel {
namespace {

std::string Variable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

std::string Absolute(const std::string& path) {
  std::string result = clsFileWorks::Absolute(path);
  while (result.size() > 1 && result.ends_with('/')) result.pop_back();
  return result;
}

}  // namespace

clsHome clsHome::Find(const std::string& given) {
  std::string folder = given.empty() ? Variable("SANDREL_HOME") : given;
  if (folder.empty()) {
    const std::string beside = ProgramFolder();
    if (!beside.empty() && access(beside.c_str(), W_OK) == 0) {
      folder = beside;
    } else {
      std::string data = Variable("XDG_DATA_HOME");
      if (data.empty()) data = clsFileWorks::Join(Variable("HOME"), ".local/share");
      folder = clsFileWorks::Join(data, "sandrel");
    }
  }
  return clsHome(Absolute(folder));
}

std::string clsHome::WorkingDatabase() const {
  return clsFileWorks::Join(m_folder, "SandrelTemp.zqd");
}

struct clsHomeLock::LockedFile {
  explicit LockedFile(const std::string& path)
      : Descriptor(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {}
  ~LockedFile() { close(Descriptor); }
  LockedFile(const LockedFile&) = delete;
  LockedFile& operator=(const LockedFile&) = delete;
  int Descriptor;
};

clsHomeLock::clsHomeLock(const clsHome& home) {
  static std::map<std::string, std::weak_ptr<LockedFile>> held;  // by path, for nesting
  const std::string path = clsFileWorks::Join(home.Path(), "SandrelTemp.lock");
  std::weak_ptr<LockedFile>& known = held[path];
  m_file = known.lock();
  if (m_file != nullptr) return;
  clsFileWorks::MakeFolders(home.Path());
  m_file = std::make_shared<LockedFile>(path);
  if (m_file->Descriptor < 0)
    throw ErrnoError(errno, "Can't write in the home folder " + home.Path());
  if (flock(m_file->Descriptor, LOCK_EX | LOCK_NB) != 0) {
    throw clsError(errnum::HomeBusy,
                   fmt::format("Another snapshot command works on {}. Wait until it has ended, or "
                               "give this one another home folder.",
                               home.Path()));
  }
  known = m_file;
}

std::string MachineFolder(const std::string& given, clsSettings& settings) {
  if (!given.empty()) return Absolute(given);
  for (const char* name : {"SANDREL_MACHINE", "WINEPREFIX"}) {
    if (const std::string folder = Variable(name); !folder.empty()) return Absolute(folder);
  }
  const std::string chosen = settings.GetSetting("Machine", "Folder");
  return Absolute(!chosen.empty() ? chosen : clsFileWorks::Join(Variable("HOME"), ".wine"));
}

}  // namespace sandrel
