// Answers the modal boxes and dialogs of the window, from a timer.
#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "config/frmFolderTreeview.h"

namespace sandrel::test {

class BoxAnswerer {
 public:
  BoxAnswerer() {
    m_timer.setInterval(5);
    QObject::connect(&m_timer, &QTimer::timeout, [this] { Look(); });
    m_timer.start();
  }

  /// Every box that came up: "title|text"; of a file dialog "title|proposed name", of a folder's
  /// "title".
  std::vector<std::string> Log;
  /// The button texts (without "&") of the next boxes; used up, the default button is pressed.
  std::deque<std::string> Buttons;
  /// What the next file and folder dialogs are given; empty cancels. Used up, they are cancelled.
  std::deque<std::string> Files;
  /// Called with each box before it is answered, to look at it.
  std::function<void(QWidget& box)> OnBox;

  bool Has(const std::string& part) const {
    for (const std::string& box : Log) {
      if (box.find(part) != std::string::npos) return true;
    }
    return false;
  }

 private:
  void Look() {
    QWidget* const box = QApplication::activeModalWidget();
    if (box == nullptr || box == m_answered) return;
    m_answered = box;
    QObject::connect(box, &QObject::destroyed, &m_timer, [this, box] {
      if (m_answered == box) m_answered = nullptr;
    });
    if (OnBox) OnBox(*box);
    if (auto* const message = qobject_cast<QMessageBox*>(box)) AnswerBox(*message);
    if (auto* const dialog = qobject_cast<QFileDialog*>(box)) AnswerDialog(*dialog);
    if (auto* const picker = dynamic_cast<frmFolderTreeview*>(box)) AnswerPicker(*picker);
  }

  void AnswerBox(QMessageBox& box) {
    QString text = box.text();
    text.remove(QChar(0x200B));  // lets long paths break
    Log.push_back((box.windowTitle() + "|" + text).toStdString());
    if (Buttons.empty()) {
      box.defaultButton() != nullptr ? box.defaultButton()->click() : box.accept();
      return;
    }
    const QString wanted = QString::fromStdString(Buttons.front());
    Buttons.pop_front();
    const QList<QAbstractButton*> buttons = box.buttons();
    for (QAbstractButton* const button : buttons) {
      if (button->text().remove('&') == wanted) return button->click();
    }
    Log.push_back("no button " + wanted.toStdString());
    box.reject();
  }

  void AnswerDialog(QFileDialog& dialog) {
    auto* const name = dialog.findChild<QLineEdit*>("fileNameEdit");
    Log.push_back((dialog.windowTitle() + "|" + name->text()).toStdString());
    if (Files.empty() || Files.front().empty()) {
      if (!Files.empty()) Files.pop_front();
      return dialog.reject();
    }
    name->setText(QString::fromStdString(Files.front()));
    Files.pop_front();
    QMetaObject::invokeMethod(&dialog, "accept");
  }

  void AnswerPicker(frmFolderTreeview& picker) {
    Log.push_back(picker.windowTitle().toStdString());
    const std::string folder = Files.empty() ? "" : Files.front();
    if (!Files.empty()) Files.pop_front();
    if (folder.empty()) return picker.reject();
    // Outside of the timer, which looks at the box that may come up here; after that box the picker
    // is given the next folder.
    QTimer::singleShot(0, &picker, [&picker, folder] {
      picker.SetFolder(folder);
      picker.accept();
    });
  }

  QTimer m_timer;
  QWidget* m_answered = nullptr;
};

}  // namespace sandrel::test
