// The window of the snapshot and analysis wizard.
#pragma once

#include <QDialog>
#include <array>
#include <functional>

#include "wizard/clsWizardFlow.h"

class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QStackedLayout;
class QVBoxLayout;

namespace sandrel {

/// Stands modeless above its owner. Closing it ends the wizard; the object stays with its owner.
class frmWizard final : public QDialog, private clsWizardView {
 public:
  /// `commands` outlives the window; `owner` may be null. The first page shows.
  frmWizard(clsWizardCommands& commands, QWidget* owner);
  ~frmWizard() override;

  /// See the flow.
  void DisplayPage(std::int16_t& page, bool forward, bool runActions);
  /// Comes back after a snapshot, unless it has ended.
  void ShowAgain() { SetWizardVisible(true); }
  void Unload() override;
  /// True from its end on: the owner may delete it, unless it `IsRunning`.
  bool IsUnloaded() const { return m_unloaded; }
  /// True while what belongs to a page is done.
  bool IsRunning() const { return m_running; }
  const clsWizardFlow& Flow() const { return m_flow; }

  void reject() override;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void Refresh() override;
  void SetFocus(WizardControl control) override;
  void SetWizardVisible(bool visible) override;

  QVBoxLayout* MakePage(int index, const char* caption, const char* text);
  QRadioButton* AddOption(int page, const char* name, int index, const char* text);
  QLineEdit* AddEdit(const char* name);
  QPushButton* AddButton(const char* name, const char* text);
  void MakePages();
  void MakeBrowsePage(int page, const char* label, QLineEdit* edit, QPushButton* browse);
  void MakeWaitPage();
  void Arrange();
  void Connect();
  void Run(const std::function<void()>& action);

  clsWizardFlow m_flow;
  bool m_unloaded = false;
  bool m_running = false;

  QLabel* picWiz;
  QStackedLayout* m_pages = nullptr;
  std::array<QWidget*, clsWizardFlow::PageCount> picPage{};
  QLabel* lblmain = nullptr;
  std::array<QRadioButton*, 2> optScanSettings{};
  std::array<QRadioButton*, 3> optBeforeSS{};
  std::array<QRadioButton*, 2> optInstComplete{};
  QLabel* lblMachine;
  QLabel* lblBeforeSnapshotAge;
  QLabel* lblAfterSnapshotAge;
  QLabel* lblWait1;
  QLabel* lblWait2;
  QLineEdit* txtRun;
  QLineEdit* txtWait;
  QLineEdit* txtViewName;
  QPushButton* cmdBrowse;
  QPushButton* cmdSaveAnalysisBrowse;
  QPushButton* cmdPrevious;
  QPushButton* cmdNext;
  QPushButton* cmdFinish;
  QPushButton* cmdCancel;
};

}  // namespace sandrel
