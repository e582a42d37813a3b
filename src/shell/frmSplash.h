// The card that greets the user while the program starts.
#pragma once

#include <QWidget>
#include <functional>
#include <string>

class QLabel;
class QTimer;

namespace sandrel {

/// Stays on top until its timer ticks, it is clicked or Unload is called.
class frmSplash : public QWidget {
 public:
  /// `version` is "major.minor.revision".
  explicit frmSplash(const std::string& version);

  /// Raised when Shift is pressed while the card has the focus.
  std::function<void()> OnShift;
  /// Raised once, when the card is gone. The owner may delete it with deleteLater from there.
  std::function<void()> OnUnload;

  /// True once Shift was pressed here, or while it is held down anywhere.
  bool ShiftIsDown() const;
  /// Hides and closes the card. Calling it again does nothing.
  void Unload();

 protected:
  void showEvent(QShowEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  QLabel* AddLabel(const char* name, const QString& text, double scale);
  QLabel* AddPicture(const char* name, int size);
  void Arrange();

  QLabel* lblVersion;
  QLabel* Label1;
  QLabel* Label2;
  QLabel* Label3;
  QLabel* Picture1;
  QLabel* pic1;
  QTimer* Timer1;
  bool m_shift = false;
  bool m_unloaded = false;
};

}  // namespace sandrel
