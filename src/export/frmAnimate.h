// The box that shows a running copy of files.
#pragma once

#include <QDialog>
#include <QPointer>
#include <string>
#include <string_view>

#include "export/clsCopyProgress.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace sandrel {

class clsFileFlight;

/// Stays above other windows without blocking; its owner takes no input meanwhile. Cancel, Escape
/// and the box's own close button only set CancelAnimate.
class frmAnimate final : public QDialog, public clsCopyProgress {
 public:
  /// `owner` may be null.
  explicit frmAnimate(QWidget* owner);
  ~frmAnimate() override;

  void Show() override;
  void SetFile(std::string_view name) override;
  void SetFolder(std::string_view text) override;
  void SetMessage(std::string_view text) override;
  void SetProgress(int percent) override;
  bool CancelAnimate() const override { return m_cancelAnimate; }
  void Close() override;

  void reject() override;

 protected:
  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  QLabel* AddLabel(const char* name, const QString& text = {});
  void Arrange();
  void Cancel();

  QPointer<QWidget> m_owner;
  clsFileFlight* Animation1;
  QLabel* lblFrom;
  QLabel* lblFolder;
  QLabel* lblCurrent;
  QLabel* lblFile;
  QProgressBar* prgProgress;
  QLabel* lblMessage;
  QPushButton* cmdCancel;
  bool m_cancelAnimate = false;
  bool m_shown = false;  // between Show and Close
};

}  // namespace sandrel
