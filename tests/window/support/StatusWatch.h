// Follows a window's status bar, and acts from inside a scan.
#pragma once

#include <QThread>
#include <QTimer>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/controls/Bars.h"

namespace sandrel::test {

class StatusWatch {
 public:
  /// What the status panel was told, in order.
  std::vector<std::string> Statuses;
  /// Milliseconds to wait at every change: a scan of a small machine is over before it lets window
  /// messages through, which it does every 15.
  unsigned Pause = 0;

  /// The bar must outlive what is done to it from now on, the watch the bar.
  void Follow(StatusBar& bar) {
    Statuses.clear();
    bar.Changed = [this, &bar, show = std::move(bar.Changed)] {
      if (show) show();
      QThread::msleep(Pause);
      if (bar.Status() == (Statuses.empty() ? "" : Statuses.back())) return;
      Statuses.push_back(bar.Status());
      Act(bar.Status());
    };
  }

  /// Runs `action` once, from the window messages that are let through next after the status has
  /// become a text that begins with `status`.
  void During(std::string status, std::function<void()> action) {
    m_status = std::move(status);
    m_action = std::move(action);
  }

 private:
  void Act(const std::string& status) {
    if (!m_action || !status.starts_with(m_status)) return;
    QThread::msleep(20);
    QTimer::singleShot(0, std::exchange(m_action, nullptr));
  }

  std::string m_status;
  std::function<void()> m_action;
};

}  // namespace sandrel::test
