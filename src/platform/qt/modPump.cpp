#include "platform/qt/modPump.h"

#include <QCoreApplication>
#include <chrono>

namespace sandrel::qt {

void DoEvents(bool often) {
  using Clock = std::chrono::steady_clock;
  static Clock::time_point next{};
  if (often && Clock::now() < next) return;
  QCoreApplication::processEvents();
  next = Clock::now() + std::chrono::milliseconds(15);
}

}  // namespace sandrel::qt
