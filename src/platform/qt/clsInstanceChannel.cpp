#include "platform/qt/clsInstanceChannel.h"

#include <QLocalSocket>

#include "platform/qt/modGuard.h"

namespace sandrel {
namespace {

constexpr int Patience = 2000;  // milliseconds

}  // namespace

void clsInstanceChannel::Listen(const std::string& name) {
  const QString address = QString::fromStdString(name);
  QLocalServer::removeServer(address);  // what a killed program left
  m_server.setSocketOptions(QLocalServer::UserAccessOption);
  qt::Connect(&m_server, &QLocalServer::newConnection, &m_server, [this] { Take(); });
  m_server.listen(address);
}

// The path is whole when the caller has hung up.
void clsInstanceChannel::Take() {
  QLocalSocket* const caller = m_server.nextPendingConnection();
  if (caller == nullptr) return;
  const auto end = [this, caller] {
    const std::string file = caller->readAll().toStdString();
    caller->deleteLater();
    if (Called) Called(file);
  };
  if (caller->state() == QLocalSocket::UnconnectedState) return end();
  qt::Connect(caller, &QLocalSocket::disconnected, &m_server, end);
}

bool clsInstanceChannel::Call(const std::string& name, const std::string& file) {
  QLocalSocket socket;
  socket.connectToServer(QString::fromStdString(name));
  if (!socket.waitForConnected(Patience)) return false;
  socket.write(QByteArray::fromStdString(file));
  while (socket.bytesToWrite() > 0 && socket.waitForBytesWritten(Patience)) {
  }
  const bool written = socket.bytesToWrite() == 0;
  socket.disconnectFromServer();
  return written;
}

}  // namespace sandrel
