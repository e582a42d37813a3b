#include "platform/process/clsProcess.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <thread>
#include <utility>

namespace sandrel {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds Step(20);

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

// This process' environment with the variables on top.
std::vector<std::string> EnvironmentWith(const std::vector<std::string>& variables) {
  std::vector<std::string> all = variables;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view own = *entry;
    const std::string_view name = own.substr(0, own.find('=') + 1);
    const bool replaced =
        std::any_of(variables.begin(), variables.end(),
                    [&](const std::string& variable) { return variable.starts_with(name); });
    if (!replaced) all.emplace_back(own);
  }
  return all;
}

// Processes that outlived their objects. Each leaves an entry in the system's table until it is
// asked for.
std::vector<pid_t> theForgotten;

void ReapForgotten() {
  std::erase_if(theForgotten, [](pid_t pid) { return waitpid(pid, nullptr, WNOHANG) != 0; });
}

}  // namespace

clsProcess::clsProcess(clsProcess&& other) noexcept
    : m_pid(std::exchange(other.m_pid, 0)),
      m_startError(other.m_startError),
      m_exitStatus(other.m_exitStatus),
      m_ended(other.m_ended) {}

clsProcess::~clsProcess() {
  if (!IsNull() && !m_ended) theForgotten.push_back(m_pid);
}

clsProcess clsProcess::Start(const HostCommand& command) {
  ReapForgotten();
  clsProcess process;
  if (command.Words.empty()) return process;
  std::vector<std::string> words = command.Words;
  std::vector<std::string> variables = EnvironmentWith(command.Variables);
  pid_t pid = 0;
  process.m_startError = posix_spawn(&pid, words[0].c_str(), nullptr, nullptr,
                                     Pointers(words).data(), Pointers(variables).data());
  if (process.m_startError == 0) process.m_pid = pid;
  return process;
}

bool clsProcess::HasEnded() {
  if (m_ended) return true;
  int status = 0;
  const pid_t got = waitpid(m_pid, &status, WNOHANG);
  if (got == 0 || (got < 0 && errno == EINTR)) return false;
  m_ended = true;
  constexpr int BySignal = 128;
  if (got > 0) {
    m_exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : BySignal + WTERMSIG(status);
  }
  return true;
}

bool clsProcess::Wait(milliseconds limit, const std::function<bool()>& goOn) {
  if (IsNull()) return false;
  const auto start = steady_clock::now();
  while (!HasEnded()) {
    const auto passed = std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
    const bool endless = limit.count() < 0;
    if (!endless && passed >= limit) return false;
    if (!goOn()) return false;
    std::this_thread::sleep_for(endless ? Step : std::min(Step, limit - passed));
  }
  return true;
}

}  // namespace sandrel
