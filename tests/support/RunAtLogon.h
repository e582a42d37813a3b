// Runs an autostart entry as a desktop does at the user's logon.
#pragma once

#include <cstdlib>
#include <string>

#include "common/clsFileWorks.h"

namespace sandrel::test {

/// The exit status of the entry's command; -1 when there is none. The text is unescaped as a value
/// of the file, then as a command, whose quotes are those of the shell but for "%%".
inline int RunAtLogon(const std::string& entry) {
  const std::string text = clsFileWorks::ReadWhole(entry);
  std::size_t at = text.find("\nExec=");
  if (at == std::string::npos) return -1;
  std::string command;
  for (at += 6; at < text.size() && text[at] != '\n'; ++at) {
    const char next = at + 1 < text.size() ? text[at + 1] : '\0';
    if (text[at] == '\\') {
      ++at;
      command += next == 's' ? ' ' : next == 'n' ? '\n' : next == 't' ? '\t' : next;
    } else {
      if (text[at] == '%') ++at;
      command += text[at];
    }
  }
  const int status = std::system(command.c_str());
  return status < 0 ? -1 : WEXITSTATUS(status);
}

}  // namespace sandrel::test
