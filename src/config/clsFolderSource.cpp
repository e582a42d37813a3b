#include "config/clsFolderSource.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/clsPathText.h"
#include "common/text.h"

namespace sandrel {
namespace {

using Each = std::function<bool(const std::string& name)>;

// Gives the folders in the host folder `path`, those behind links too.
void ReadHostFolder(const std::string& path, const Each& each) {
  std::error_code failure;
  std::filesystem::directory_iterator at(path, failure);
  while (!failure && at != std::filesystem::directory_iterator()) {
    std::error_code unknown;
    if (at->is_directory(unknown) && !each(at->path().filename().string())) return;
    at.increment(failure);
  }
}

class clsHostFolders final : public clsFolderSource {
 public:
  clsHostFolders() : clsFolderSource('/', true) {
    if (const char* const home = std::getenv("HOME"); home != nullptr && *home == '/') {
      m_home = WithoutSpareSeparators(home);
    }
  }

  std::vector<Root> Roots() override {
    std::vector<Root> roots;
    if (m_home != "/" && IsFolder(m_home)) roots.push_back({"Home", m_home});
    roots.push_back({"/", "/"});
    return roots;
  }
  bool IsFolder(const std::string& path) override { return clsFileWorks::FolderExists(path); }

  std::string Normalise(std::string_view text) const override {
    text = text::Trim(text);
    if (text.empty() || text.starts_with('/')) return WithoutSpareSeparators(text);
    if (text == "~" || text.starts_with("~/")) text.remove_prefix(1);
    return WithoutSpareSeparators(clsFileWorks::Join(m_home, text));
  }

 protected:
  void Read(const std::string& path, const Each& each) override { ReadHostFolder(path, each); }

 private:
  static std::string WithoutSpareSeparators(std::string_view path) {
    std::string result;
    for (const char c : path) {
      if (c != '/' || !result.ends_with('/')) result += c;
    }
    if (result.size() > 1 && result.ends_with('/')) result.pop_back();
    return result;
  }

  std::string m_home = "/";
};

class clsMachineFolders final : public clsFolderSource {
 public:
  explicit clsMachineFolders(std::shared_ptr<clsMachine> machine)
      : clsFolderSource('\\', false), m_machine(std::move(machine)) {}

  std::vector<Root> Roots() override {
    std::vector<Root> roots;
    const std::vector<std::string> drives = m_machine->Drives();
    roots.reserve(drives.size());
    for (const std::string& drive : drives) roots.push_back({drive, drive + '\\'});
    return roots;
  }
  bool IsFolder(const std::string& path) override { return m_machine->FolderExists(path); }

  std::string Normalise(std::string_view text) const override {
    std::string path = clsPathText::RemoveSeparator(MachinePath(*m_machine, text));
    if (path.size() == 2 && path[1] == ':') path = text::Upper(path) + '\\';
    return path;
  }

 protected:
  void Read(const std::string& path, const Each& each) override {
    try {
      clsDirSearch search =
          m_machine->Dir(path, fileattr::Directory | fileattr::Hidden | fileattr::System);
      std::string name;
      while (search.Next(name)) {
        if (search.IsFolder() && !each(name)) return;
      }
    } catch (const clsError&) {
      // A folder that can't be read.
    }
  }

 private:
  std::shared_ptr<clsMachine> m_machine;
};

class clsNetworkComputers final : public clsFolderSource {
 public:
  clsNetworkComputers() : clsFolderSource('\\', false) {
    if (const char* const network = std::getenv("SANDREL_NETWORK")) m_network = network;
  }

  std::vector<Root> Roots() override { return {{"Network Neighborhood", {}}}; }
  bool IsFolder(const std::string& path) override {
    bool found = false;
    Read({}, [&](const std::string& name) { return !(found = SameName(name, path)); });
    return found;
  }
  std::string Normalise(std::string_view text) const override {
    return clsPathText::BareMachineName(text);
  }

 protected:
  void Read(const std::string& path, const Each& each) override {
    if (!path.empty() || m_network.empty()) return;
    ReadHostFolder(m_network, [&](const std::string& name) {
      return !IsMachine(clsFileWorks::Join(m_network, name)) || each(name);
    });
  }

 private:
  static bool IsMachine(const std::string& folder) {
    try {
      return clsMachine::Open(folder) != nullptr;
    } catch (const clsError&) {
      return false;
    }
  }

  std::string m_network;
};

// A path without its parts "." and "..", which lead no higher than the drive.
std::string WithoutSteps(const std::string& path) {
  const std::size_t root = path.find_first_not_of('\\', path.find(":\\") == 1 ? 2 : 0);
  if (root == std::string::npos) return path;
  std::vector<std::string_view> parts;
  for (std::string_view rest = std::string_view(path).substr(root); !rest.empty();) {
    const std::string_view part = rest.substr(0, rest.find('\\'));
    if (part != "." && part != "..") {
      parts.push_back(part);
    } else if (part == ".." && !parts.empty()) {
      parts.pop_back();
    }
    rest.remove_prefix(std::min(part.size() + 1, rest.size()));
  }
  const char* const end = path.ends_with('\\') && !parts.empty() ? "\\" : "";
  return fmt::format("{}{}{}", path.substr(0, root), fmt::join(parts, "\\"), end);
}

}  // namespace

std::vector<std::string> clsFolderSource::Children(const std::string& path) {
  std::vector<std::pair<std::string, std::string>> sorted;  // the folded name and the name
  Read(path, [&](const std::string& name) {
    sorted.emplace_back(text::Fold(name), name);
    return true;
  });
  std::sort(sorted.begin(), sorted.end());
  std::vector<std::string> names;
  names.reserve(sorted.size());
  for (auto& [folded, name] : sorted) names.push_back(std::move(name));
  return names;
}

bool clsFolderSource::HasChildren(const std::string& path) {
  bool found = false;
  Read(path, [&](const std::string&) {
    found = true;
    return false;
  });
  return found;
}

std::string clsFolderSource::Join(const std::string& path, std::string_view name) const {
  std::string joined = path;
  if (!joined.empty() && !joined.ends_with(m_separator)) joined += m_separator;
  return joined += name;
}

std::optional<std::vector<std::string>> clsFolderSource::PartsBelow(const std::string& root,
                                                                    const std::string& path) const {
  std::string_view rest = path;
  if (!SameName(rest.substr(0, root.size()), root)) return std::nullopt;
  rest.remove_prefix(root.size());
  const bool wholeName =
      root.empty() || root.ends_with(m_separator) || rest.empty() || rest.starts_with(m_separator);
  if (!wholeName) return std::nullopt;
  std::vector<std::string> parts;
  while (!rest.empty()) {
    const std::string_view part = rest.substr(0, rest.find(m_separator));
    if (!part.empty()) parts.emplace_back(part);
    rest.remove_prefix(std::min(rest.size(), part.size() + 1));
  }
  return parts;
}

bool clsFolderSource::SameName(std::string_view a, std::string_view b) const {
  return m_matchCase ? a == b : text::EqualNoCase(a, b);
}

std::string MachinePath(const clsMachine& machine, std::string_view text) {
  std::string path = clsPathText::NormaliseFolder(text);
  const bool noDrive = path.starts_with('\\') && !path.starts_with("\\\\");
  return WithoutSteps(noDrive ? machine.CurrentDrive() + path : path);
}

std::unique_ptr<clsFolderSource> HostFolders() {
  return std::make_unique<clsHostFolders>();
}

std::unique_ptr<clsFolderSource> MachineFolders(std::shared_ptr<clsMachine> machine) {
  return std::make_unique<clsMachineFolders>(std::move(machine));
}

std::unique_ptr<clsFolderSource> NetworkComputers() {
  return std::make_unique<clsNetworkComputers>();
}

}  // namespace sandrel
