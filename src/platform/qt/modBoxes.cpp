#include "platform/qt/modBoxes.h"

#include <QAbstractButton>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QStringList>
#include <QTextLayout>
#include <algorithm>
#include <utility>
#include <vector>

#include "platform/qt/modCellText.h"
#include "platform/qt/modText.h"

namespace sandrel::qt {

namespace {

// The one override cursor. `Shape` is what the program asked for, `Boxes` how many are up.
struct PointerState {
  int Shape = pointer::Default;
  int Boxes = 0;

  void Show() const {
    const bool wanted = Shape != pointer::Default && Boxes == 0;
    const bool shown = QGuiApplication::overrideCursor() != nullptr;
    const QCursor cursor(Shape == pointer::Hourglass ? Qt::WaitCursor : Qt::BusyCursor);
    if (wanted && shown) {
      QGuiApplication::changeOverrideCursor(cursor);
    } else if (wanted) {
      QGuiApplication::setOverrideCursor(cursor);
    } else if (shown) {
      QGuiApplication::restoreOverrideCursor();
    }
  }
};
PointerState thePointer;

class clsBoxUp {
 public:
  clsBoxUp() { Count(1); }
  ~clsBoxUp() { Count(-1); }
  clsBoxUp(const clsBoxUp&) = delete;
  clsBoxUp& operator=(const clsBoxUp&) = delete;

 private:
  static void Count(int by) {
    thePointer.Boxes += by;
    thePointer.Show();
  }
};

struct BoxButton {
  Answer Gives;
  const char* Text;
  QMessageBox::ButtonRole Role;
};

// Abort has no role of refusal, as Escape would then press it; with one role for all three they
// keep this order on every desktop.
std::vector<BoxButton> ButtonsOf(Buttons choice) {
  switch (choice) {
    case Buttons::YesNo:
      return {{Answer::Yes, "&Yes", QMessageBox::YesRole},
              {Answer::No, "&No", QMessageBox::NoRole}};
    case Buttons::AbortRetryIgnore:
      return {{Answer::Abort, "&Abort", QMessageBox::ActionRole},
              {Answer::Retry, "&Retry", QMessageBox::ActionRole},
              {Answer::Ignore, "&Ignore", QMessageBox::ActionRole}};
    case Buttons::Ok:
      break;
  }
  return {{Answer::Ok, "OK", QMessageBox::AcceptRole}};
}

// What Enter answers does no harm: a warning is not passed by, and Retry, where it can help, loses
// nothing.
Answer DefaultOf(const MessageBox& box) {
  switch (box.Choice) {
    case Buttons::YesNo:
      return box.Icon == BoxIcon::Exclamation ? Answer::No : Answer::Yes;
    case Buttons::AbortRetryIgnore:
      return box.RetryHelps ? Answer::Retry : Answer::Ignore;
    case Buttons::Ok:
      break;
  }
  return Answer::Ok;
}

QMessageBox::Icon IconOf(BoxIcon icon) {
  switch (icon) {
    case BoxIcon::Critical:
      return QMessageBox::Critical;
    case BoxIcon::Question:
      return QMessageBox::Question;
    case BoxIcon::Exclamation:
      return QMessageBox::Warning;
    case BoxIcon::Information:
      return QMessageBox::Information;
    case BoxIcon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

// A long path or a row of digits is one word, and a label that can't break it cuts it. Zero-width
// spaces let it break after a separator of folders, or anyhow after a while.
QString Breakable(const QString& text) {
  static const QRegularExpression longWord(R"(\S{60,})");
  static const QRegularExpression piece(R"(([\\/]+|[^\\/]{50}))");
  static const QString afterPiece = QString(R"(\1)") + QChar(0x200B);
  QString broken;
  qsizetype from = 0;
  for (auto words = longWord.globalMatch(text); words.hasNext();) {
    const QRegularExpressionMatch word = words.next();
    broken += text.mid(from, word.capturedStart() - from);
    broken += word.captured().replace(piece, afterPiece);
    from = word.capturedEnd();
  }
  return broken + text.mid(from);
}

// Lines may break behind the colon of a drive: there the blank before the drive becomes a line end.
QString KeepDrives(QString text, const QFont& font, int width) {
  QTextLayout layout(QString(text).replace('\n', QChar::LineSeparator), font);
  layout.beginLayout();
  for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
    line.setLineWidth(width);
    const qsizetype end = line.textStart() + line.textLength();
    if (line.textLength() > 3 && text.mid(end - 1, 2) == ":\\" && text[end - 3] == ' ') {
      text[end - 3] = '\n';
    }
  }
  layout.endLayout();
  return text;
}

constexpr int FrameButtons = 120;  // pixels of a frame's title bar that its buttons take

// A text that would push the buttons off the screen is shown in part, and whole on demand.
void SetText(QMessageBox& window, const QString& text) {
  constexpr qsizetype Most = 2000;
  if (text.size() > Most) window.setDetailedText(text);
  window.setText(Breakable(text.size() > Most ? text.left(Most) + QChar(0x2026) : text));
  // The toolkit's own width breaks most paths. Nothing but the label's name leads to it.
  if (auto* const label = window.findChild<QLabel*>("qt_msgbox_label")) {
    const int whole = label->fontMetrics().size(0, window.text()).width();
    // No narrower than the title, which the frame would cut.
    const int title = QFontMetrics(QGuiApplication::font()).horizontalAdvance(window.windowTitle());
    const int width = std::max(std::min(whole, ReadableWidth(label->font())), title + FrameButtons);
    label->setMinimumWidth(width);
    window.setText(KeepDrives(window.text(), label->font(), width));
  }
}

// "words|pattern|words|pattern" to Qt's "words (pattern)". The dialog shows the words alone.
QStringList NameFilters(const std::string& filter) {
  const QStringList parts = QString::fromStdString(filter).split('|');
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    // Names of hosts need no dot.
    const QString pattern = parts[i + 1].trimmed().replace(';', ' ').replace("*.*", "*");
    filters += parts[i].trimmed() + " (" + pattern + ")";
  }
  return filters;
}

QString StartFolder(const std::string& folder) {
  const QString path = QFile::decodeName(QByteArray::fromStdString(folder));
  return !path.isEmpty() && QDir(path).exists() ? path : QDir::homePath();
}

// A file that is there is meant as it is named. "Office 2.0" has no extension, "office.db" has one.
QString WithExtension(const QString& path, const std::string& extension) {
  static const QRegularExpression own(R"(\.[A-Za-z0-9]*[A-Za-z][A-Za-z0-9]*$)");
  const QFileInfo file(path);
  if (own.match(file.fileName()).hasMatch() || file.exists()) return path;
  return path + QString::fromStdString(extension);
}

// A typed "~/x" reaches the dialog as a name in the folder that it shows.
QString Expanded(const QString& path, const QDir& folder) {
  const QString below = folder.relativeFilePath(path);
  return below.startsWith("~/") ? QDir::home().filePath(below.mid(2)) : path;
}

QStringList AskForFiles(QWidget* parent, const FileDialog& dialog, QFileDialog::AcceptMode accept,
                        QFileDialog::FileMode mode) {
  QFileDialog window(parent, QString::fromStdString(dialog.Title), StartFolder(dialog.Folder));
  window.setObjectName("commdlg");
  window.setOption(QFileDialog::DontUseNativeDialog);
  window.setOption(QFileDialog::DontConfirmOverwrite);
  window.setOption(QFileDialog::HideNameFilterDetails);
  window.setAcceptMode(accept);
  window.setFileMode(mode);
  window.setNameFilters(NameFilters(dialog.Filter));
  window.selectFile(QFile::decodeName(QByteArray::fromStdString(dialog.FileName)));

  const clsBoxUp up;
  if (window.exec() != QDialog::Accepted) return {};
  QStringList files;
  for (const QString& file : window.selectedFiles()) {
    files += Expanded(file, window.directory());
  }
  return files;
}

}  // namespace

Answer AskBox(QWidget* parent, const MessageBox& box) {
  QMessageBox window(parent);
  window.setObjectName("msgbox");
  window.setWindowTitle(QString::fromStdString(box.Title));
  window.setIcon(IconOf(box.Icon));
  window.setTextFormat(Qt::PlainText);
  SetText(window, VisibleText(QString::fromStdString(box.Text)));
  window.setTextInteractionFlags(Qt::TextSelectableByMouse);

  const Answer usual = DefaultOf(box);
  std::vector<std::pair<QAbstractButton*, Answer>> answers;
  for (const BoxButton& button : ButtonsOf(box.Choice)) {
    QPushButton* const made = window.addButton(QString(button.Text), button.Role);
    if (button.Gives == usual) window.setDefaultButton(made);
    if (button.Gives == Answer::No || button.Gives == Answer::Ok) window.setEscapeButton(made);
    answers.emplace_back(made, button.Gives);
  }

  const clsBoxUp up;
  window.exec();
  for (const auto& [button, answer] : answers) {
    if (button == window.clickedButton()) return answer;
  }
  return answers.back().second;  // the program closes its windows: the answer that changes least
}

std::string ChooseFile(QWidget* parent, const FileDialog& dialog) {
  const auto accept = dialog.Save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen;
  const QStringList files = AskForFiles(parent, dialog, accept, QFileDialog::AnyFile);
  if (files.isEmpty()) return {};
  return QFile::encodeName(WithExtension(files.front(), dialog.Extension)).toStdString();
}

std::vector<std::string> ChooseFiles(QWidget* parent, const FileDialog& dialog) {
  const QStringList files =
      AskForFiles(parent, dialog, QFileDialog::AcceptOpen, QFileDialog::ExistingFiles);
  std::vector<std::string> paths;
  for (const QString& file : files) paths.push_back(QFile::encodeName(file).toStdString());
  return paths;
}

std::string ChooseFolder(QWidget* parent, const std::string& title, const std::string& start) {
  QFileDialog window(parent, QString::fromStdString(title), StartFolder(start));
  window.setObjectName("commdlg");
  window.setOption(QFileDialog::DontUseNativeDialog);
  window.setFileMode(QFileDialog::Directory);
  window.setOption(QFileDialog::ShowDirsOnly);
  // Prefixes live in folders such as ~/.wine.
  window.setFilter(QDir::AllDirs | QDir::Hidden | QDir::NoDotAndDotDot);

  const clsBoxUp up;
  if (window.exec() != QDialog::Accepted) return {};
  const QStringList folders = window.selectedFiles();
  return folders.isEmpty() ? std::string() : QFile::encodeName(folders.front()).toStdString();
}

void SetPointer(int shape) {
  thePointer.Shape = shape;
  thePointer.Show();
}

}  // namespace sandrel::qt
