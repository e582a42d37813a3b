// Lets a second start speak to the program that runs already: come forward, and open this file.
#pragma once

#include <QLocalServer>
#include <functional>
#include <string>

namespace sandrel {

class clsInstanceChannel {
 public:
  /// A start has called; `file` is the host path that it was to open, empty for none.
  std::function<void(const std::string& file)> Called;

  /// Listens under a name, which only the holder of the instance lock does. Where that fails,
  /// nobody is heard.
  void Listen(const std::string& name);

  /// Calls the program that listens under the name. False when nobody does.
  static bool Call(const std::string& name, const std::string& file);

 private:
  void Take();

  QLocalServer m_server;
};

}  // namespace sandrel
