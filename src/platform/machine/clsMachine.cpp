#include "platform/machine/clsMachine.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <map>
#include <system_error>
#include <utility>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/clsPathText.h"
#include "common/text.h"
#include "platform/machine/clsEnvironment.h"
#include "platform/machine/clsPathMap.h"

namespace sandrel {
namespace {

// The folder below `folder` with these parts, each without regard to case; empty when there is
// none.
std::string FindFolder(std::string folder, std::initializer_list<std::string_view> parts) {
  for (const std::string_view part : parts) {
    const std::string name = FindNameNoCase(folder, part);
    if (name.empty()) return {};
    folder = clsFileWorks::Join(folder, name);
  }
  return clsFileWorks::FolderExists(folder) ? folder : std::string();
}

std::string HostVariable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

std::string_view NameOf(std::string_view windowsPath) {
  while (windowsPath.ends_with('\\')) windowsPath.remove_suffix(1);
  const std::size_t at = windowsPath.rfind('\\');
  return at == std::string_view::npos ? std::string_view() : windowsPath.substr(at + 1);
}

clsError NoMachine(std::string_view folder, std::string_view reason) {
  return {
      errnum::Machine,
      fmt::format("There is no Windows machine in {}: {}. A machine is a folder that holds drive_c "
                  "(a Wine prefix) or Windows/System32/config (an offline Windows volume).",
                  folder, reason)};
}

clsError SearchError(std::string_view folder, int reason) {
  return {errnum::BadFileName, fmt::format("Bad file name or number: {} ({})", folder,
                                           std::generic_category().message(reason))};
}

}  // namespace

struct clsMachine::State {
  State(Kind kind, std::string folder, clsPathMap paths)
      : MachineKind(kind), Folder(std::move(folder)), Paths(std::move(paths)) {}

  Kind MachineKind;
  std::string Folder;
  clsPathMap Paths;
  std::shared_ptr<SearchShare> Share = std::make_shared<SearchShare>();
  // Of the search for files that was started last, for the search for folders that follows it.
  std::shared_ptr<clsFolderListing> LastFiles;
  std::shared_ptr<clsRegistry> Registry;
  std::map<std::string, std::shared_ptr<clsMachine>> Remotes;  // by folded name

  std::shared_ptr<clsFolderListing> Listing(std::string_view folder, bool folders);
  clsEnvironment Environment(clsRegistry& registry) { return {registry, Paths}; }
};

clsMachine::clsMachine(std::unique_ptr<State> state) : m_state(std::move(state)) {}
clsMachine::~clsMachine() = default;

std::shared_ptr<clsMachine> clsMachine::Open(const std::string& folder) {
  return RaiseAs("clsMachine.Open", [&]() -> std::shared_ptr<clsMachine> {
    std::error_code failure;
    const std::string path = std::filesystem::canonical(folder, failure).string();
    if (failure) throw NoMachine(folder, failure.message());
    const auto make = [&](Kind kind, clsPathMap paths) {
      auto state = std::make_unique<State>(kind, path, std::move(paths));
      return std::shared_ptr<clsMachine>(new clsMachine(std::move(state)));
    };
    if (clsFileWorks::FolderExists(clsFileWorks::Join(path, "drive_c"))) {
      return make(Kind::WinePrefix, clsPathMap::OfPrefix(path));
    }
    if (!FindFolder(path, {"Windows", "System32", "config"}).empty()) {
      return make(Kind::OfflineVolume, clsPathMap::OfVolume(path));
    }
    const bool readable = access(path.c_str(), R_OK | X_OK) == 0;
    throw NoMachine(
        folder, readable ? "nothing of one stands there" : std::generic_category().message(errno));
  });
}

clsMachine::Kind clsMachine::MachineKind() const {
  return m_state->MachineKind;
}
const std::string& clsMachine::Folder() const {
  return m_state->Folder;
}

std::vector<std::string> clsMachine::Drives() const {
  return m_state->Paths.Drives();
}

std::string clsMachine::CurrentDrive() const {
  const std::vector<std::string> drives = Drives();
  for (const std::string& drive : drives) {
    if (drive == "C:") return drive;
  }
  return drives.empty() ? std::string() : drives.front();
}

std::optional<std::string> clsMachine::HostPath(std::string_view windowsPath) const {
  return m_state->Paths.HostPath(windowsPath);
}

std::optional<std::string> clsMachine::WindowsPath(const std::string& hostPath) const {
  return m_state->Paths.WindowsPath(hostPath);
}

std::vector<std::string> clsMachine::WindowsPaths(const std::string& hostPath) const {
  return m_state->Paths.WindowsPaths(hostPath);
}

bool clsMachine::FileExists(std::string_view windowsPath) const {
  const std::optional<std::string> path = HostPath(windowsPath);
  return path && clsFileWorks::FileExists(*path);
}

bool clsMachine::FolderExists(std::string_view windowsPath) const {
  const std::optional<std::string> path = HostPath(windowsPath);
  return path && clsFileWorks::FolderExists(*path);
}

std::optional<std::string> clsMachine::Refusal(std::string_view windowsPath) const {
  if (!m_state->Paths.ExactHostPath(windowsPath.substr(0, 2))) return "there is no such drive";
  int reason = 0;
  const std::optional<std::string> path = m_state->Paths.HostPath(windowsPath, &reason);
  if (path) reason = clsHostFolder().Open(*path);
  if (reason == ENOENT || reason == ENOTDIR) return {};
  return std::generic_category().message(reason);
}

FileDetails clsMachine::Details(std::string_view windowsPath) const {
  int reason = 0;
  struct stat status {};
  const std::optional<std::string> path = m_state->Paths.HostPath(windowsPath, &reason);
  if (path) reason = stat(path->c_str(), &status) == 0 ? 0 : errno;
  if (reason != 0) throw AccessError(windowsPath, reason).WithSource("clsMachine.Details");
  return DetailsOf(status,
                   m_state->Share->Attributes.Of(status, path->c_str(), NameOf(windowsPath)));
}

// The listing of a folder, read from the disk unless the search for files of the same folder has
// just done so.
std::shared_ptr<clsFolderListing> clsMachine::State::Listing(std::string_view folder,
                                                             bool folders) {
  std::string withSeparator = clsPathText::AddSeparator(folder);
  std::shared_ptr<clsFolderListing> last = std::exchange(LastFiles, nullptr);
  if (folders && last && last->WindowsFolder() == withSeparator && last->IsCurrent()) return last;

  auto listing = std::make_shared<clsFolderListing>();
  std::optional<std::string> path = Paths.ExactHostPath(folder);
  int reason = path ? listing->Read(*path, withSeparator) : ENOENT;
  if (reason == ENOENT || reason == ENOTDIR) {
    path = Paths.HostPath(folder, &reason);
    if (path) {
      listing = std::make_shared<clsFolderListing>();
      reason = listing->Read(*path, withSeparator);
    }
  }
  if (reason != 0) throw SearchError(folder, reason);
  if (!folders) LastFiles = listing;
  return listing;
}

clsDirSearch clsMachine::Dir(std::string_view folder, int mask) {
  return RaiseAs("clsMachine.Dir", [&] {
    return clsDirSearch(m_state->Listing(folder, (mask & fileattr::Directory) != 0), mask,
                        m_state->Share);
  });
}

std::string clsMachine::WindowsFolder() {
  return m_state->Environment(Registry()).WindowsFolder();
}

std::string clsMachine::SystemFolder() {
  return WindowsFolder() + "\\system32";
}

std::string clsMachine::Environ(std::string_view name) {
  return m_state->Environment(Registry()).Variable(name);
}

clsRegistry& clsMachine::Registry() {
  if (!m_state->Registry) {
    m_state->Registry = m_state->MachineKind == Kind::WinePrefix
                            ? OpenPrefixRegistry(m_state->Folder)
                            : OpenVolumeRegistry(m_state->Folder, HostVariable("SANDREL_USER"));
  }
  return *m_state->Registry;
}

void clsMachine::CloseRegistry() {
  m_state->Registry.reset();
  m_state->Remotes.clear();
}

std::shared_ptr<clsMachine> clsMachine::Connect(std::string_view name) {
  const std::string bare = clsPathText::BareMachineName(name);
  const std::string network = HostVariable("SANDREL_NETWORK");
  if (bare.empty() || network.empty()) return nullptr;
  std::shared_ptr<clsMachine>& remote = m_state->Remotes[text::Fold(bare)];
  if (remote) return remote;
  const std::string folder = FindFolder(network, {bare});
  if (folder.empty()) return nullptr;
  try {
    remote = Open(folder);
  } catch (const clsError& error) {
    // A folder that holds no machine is a computer that isn't there.
    if (error.Number() != errnum::Machine) throw;
  }
  return remote;
}

std::shared_ptr<clsRegistry> clsMachine::RegConnectRegistry(std::string_view name) {
  const std::shared_ptr<clsMachine> remote = Connect(name);
  if (remote == nullptr) return nullptr;
  return {remote, &remote->Registry()};  // keeps the machine as long as its registry is used
}

}  // namespace sandrel
