// Tells the program that it is to end: a signal of the system's, or the end of the user's session.
#pragma once

#include <QObject>
#include <functional>

namespace sandrel {

class clsTermination : public QObject {
 public:
  /// `end` is called from the event loop when SIGTERM, SIGINT or SIGHUP came; `save` when the
  /// session is about to end and may still go on. At most one object lives at a time.
  clsTermination(std::function<void()> end, std::function<void()> save);
  ~clsTermination() override;
  clsTermination(const clsTermination&) = delete;
  clsTermination& operator=(const clsTermination&) = delete;
};

}  // namespace sandrel
