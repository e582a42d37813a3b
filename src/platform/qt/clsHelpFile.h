// A help file on disk: chapters of Markdown, and the pictures that they show.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <string>

namespace sandrel {

class clsHelpFile {
 public:
  /// Reads the file at a host path whole. Raises errnum::FileNotFound or PathFileAccess when it
  /// can't be read, DeviceIo when it is damaged or no help file.
  static clsHelpFile Read(const std::string& path);

  /// By name, "01-start.md", in the order of the names; UTF-8.
  const QMap<QString, QByteArray>& Chapters() const { return m_chapters; }
  /// By name, "wizard.png", as files.
  const QMap<QString, QByteArray>& Pictures() const { return m_pictures; }

 private:
  QMap<QString, QByteArray> m_chapters, m_pictures;
};

}  // namespace sandrel
