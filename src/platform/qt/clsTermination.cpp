#include "platform/qt/clsTermination.h"

#include <fcntl.h>
#include <unistd.h>

#include <QGuiApplication>
#include <QSocketNotifier>
#include <array>
#include <csignal>
#include <utility>

#include "platform/qt/modGuard.h"

namespace sandrel {
namespace {

std::array<int, 2> thePipe = {-1, -1};  // a signal writes, the event loop reads

void OnSignal(int) {
  const char byte = 0;
  [[maybe_unused]] const ssize_t written = write(thePipe[1], &byte, 1);
}

constexpr int Signals[] = {SIGTERM, SIGINT, SIGHUP};

}  // namespace

clsTermination::clsTermination(std::function<void()> end, std::function<void()> save) {
  if (pipe2(thePipe.data(), O_CLOEXEC | O_NONBLOCK) == 0) {
    auto* const notifier = new QSocketNotifier(thePipe[0], QSocketNotifier::Read, this);
    qt::Connect(notifier, &QSocketNotifier::activated, this, [end = std::move(end)] {
      char byte = 0;
      while (read(thePipe[0], &byte, 1) > 0) {
      }
      end();
    });
    for (const int number : Signals) std::signal(number, OnSignal);
  }
  qt::Connect(qGuiApp, &QGuiApplication::commitDataRequest, this,
              [save = std::move(save)](QSessionManager&) { save(); });
}

clsTermination::~clsTermination() {
  for (const int number : Signals) std::signal(number, SIG_DFL);
  for (int& end : thePipe) {
    if (end >= 0) close(std::exchange(end, -1));
  }
}

}  // namespace sandrel
