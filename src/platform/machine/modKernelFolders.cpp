#include "platform/machine/modKernelFolders.h"

#include <linux/magic.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <sstream>

namespace sandrel {
namespace {

// Those whose numbers the system's header lacks.
constexpr std::uint32_t Resctrl = 0x07655821;
constexpr std::uint32_t Configfs = 0x62656570;
constexpr std::uint32_t Fusectl = 0x65735543;
constexpr std::uint32_t Mqueue = 0x19800202;
constexpr std::uint32_t RpcPipes = 0x67596969;
constexpr std::uint32_t Nfsd = 0x6E667364;

constexpr std::array<std::uint32_t, 23> Kernel = {PROC_SUPER_MAGIC,
                                                  SYSFS_MAGIC,
                                                  DEVPTS_SUPER_MAGIC,
                                                  CGROUP_SUPER_MAGIC,
                                                  CGROUP2_SUPER_MAGIC,
                                                  TRACEFS_MAGIC,
                                                  DEBUGFS_MAGIC,
                                                  SECURITYFS_MAGIC,
                                                  SELINUX_MAGIC,
                                                  SMACK_MAGIC,
                                                  PSTOREFS_MAGIC,
                                                  EFIVARFS_MAGIC,
                                                  BPF_FS_MAGIC,
                                                  BINFMTFS_MAGIC,
                                                  HUGETLBFS_MAGIC,
                                                  NSFS_MAGIC,
                                                  Resctrl,
                                                  XENFS_SUPER_MAGIC,
                                                  Configfs,
                                                  Fusectl,
                                                  Mqueue,
                                                  RpcPipes,
                                                  Nfsd};

// The device tree answers as any other file system in memory does; only the list of mounts tells.
bool IsDeviceTree(dev_t device) {
  std::ifstream mounts("/proc/self/mountinfo");
  const std::string number = std::to_string(major(device)) + ":" + std::to_string(minor(device));
  std::string line;
  while (std::getline(mounts, line)) {
    std::istringstream fields(line);
    std::string id;
    std::string parent;
    std::string where;
    fields >> id >> parent >> where;
    if (where == number) return line.find(" - devtmpfs ") != std::string::npos;
  }
  return false;
}

}  // namespace

bool IsKernelFolder(const std::string& path, dev_t device) {
  struct statfs status {};
  if (statfs(path.c_str(), &status) != 0) return false;
  const auto magic = static_cast<std::uint32_t>(status.f_type);
  if (magic == TMPFS_MAGIC) return IsDeviceTree(device);
  return std::find(Kernel.begin(), Kernel.end(), magic) != Kernel.end();
}

}  // namespace sandrel
