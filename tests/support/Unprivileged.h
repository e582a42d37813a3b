// A user whom the permissions of files bind, for as long as the object lives. The superuser, whom
// they don't, gives the folders to another user and becomes that one meanwhile.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <initializer_list>
#include <string>

namespace sandrel::test {

class Unprivileged {
 public:
  explicit Unprivileged(std::initializer_list<std::string> folders) {
    if (geteuid() != 0) return;
    for (const std::string& folder : folders) {
      lchown(folder.c_str(), Nobody, Nobody);
      for (const auto& item : std::filesystem::recursive_directory_iterator(folder)) {
        lchown(item.path().c_str(), Nobody, Nobody);
      }
    }
    m_changed = seteuid(Nobody) == 0;
  }
  ~Unprivileged() { [[maybe_unused]] const int back = m_changed ? seteuid(0) : 0; }
  Unprivileged(const Unprivileged&) = delete;
  Unprivileged& operator=(const Unprivileged&) = delete;

 private:
  static constexpr uid_t Nobody = 65534;
  static void lchown(const char* path, uid_t user, gid_t group) {
    [[maybe_unused]] const int ignored = ::lchown(path, user, group);
  }

  bool m_changed = false;
};

}  // namespace sandrel::test
