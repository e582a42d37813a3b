#include "platform/qt/clsHelpFile.h"

#include <fmt/format.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QResource>
#include <algorithm>

#include "common/clsError.h"
#include "common/clsFileWorks.h"

namespace sandrel {
namespace {

constexpr const char* Root = "/sandrel.hlp";
constexpr qsizetype HashLength = 64;  // the hexadecimal SHA-256 behind the resource

QMap<QString, QByteArray> FilesIn(const QString& folder) {
  QMap<QString, QByteArray> files;
  const QString path = QString(":") + Root + "/" + folder;
  const QStringList names = QDir(path).entryList(QDir::Files);
  for (const QString& name : names) {
    QFile file(path + "/" + name);
    if (file.open(QIODevice::ReadOnly)) files.insert(name, file.readAll());
  }
  return files;
}

}  // namespace

// The resource reader trusts the offsets in its data, so these are looked at only if they are
// whole.
clsHelpFile clsHelpFile::Read(const std::string& path) {
  if (!clsFileWorks::FileExists(path)) {
    throw clsError(errnum::FileNotFound, fmt::format("There is no file {}.", path),
                   "clsHelpFile.Read");
  }
  const QByteArray whole = QByteArray::fromStdString(clsFileWorks::ReadWhole(path));
  const QByteArray content = whole.chopped(std::min(HashLength, whole.size()));
  const QByteArray hash = QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex();
  const auto* const data = reinterpret_cast<const uchar*>(content.constData());
  if (whole.sliced(content.size()) != hash || !QResource::registerResource(data, Root)) {
    throw clsError(errnum::DeviceIo, fmt::format("The file {} is damaged.", path),
                   "clsHelpFile.Read");
  }
  clsHelpFile read;
  read.m_chapters = FilesIn("manual");
  read.m_pictures = FilesIn("pictures");
  QResource::unregisterResource(data, Root);
  return read;
}

}  // namespace sandrel
