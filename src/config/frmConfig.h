// The dialog in which the user edits what a snapshot scans: folders, registry hives, exclusions.
#pragma once

#include <QDialog>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "common/clsShell.h"
#include "config/clsConfigModel.h"
#include "config/clsFolderSource.h"

class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTabWidget;

namespace sandrel {

class frmConfig final : public QDialog {
 public:
  /// Edits `model`, which must outlive the dialog, for `machine`. Where that is null, `missing`
  /// (UTF-8) says why: the pickers of its folders and files then tell that. `parent` may be null.
  frmConfig(clsShell& shell, clsConfigModel& model, std::shared_ptr<clsMachine> machine,
            std::string missing, QWidget* parent);

  /// Reads the settings. False when the user aborted it: the dialog is not to be shown.
  bool Form_Load();
  /// Stores the model; the dialog closes when it says true. It may raise, which is reported.
  std::function<bool()> Save;

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  using Add = std::function<bool(const std::string& text)>;

  // frmConfigPages.cpp
  void MakeControls();
  QWidget* DiskScanPage();
  QWidget* RegistryScanPage();
  QWidget* ExcludedFilesPage();
  QWidget* NewPage(int index);
  QPushButton* NewButton(const char* name, const char* caption, const char* tip, QWidget* page);
  QCheckBox* NewCheckBox(const char* name, const char* caption, bool clsConfigModel::*option,
                         QWidget* parent);
  QListWidget* NewList(const char* name, const char* what, QWidget* page);
  QLineEdit* NewText(const char* name, const char* what, QWidget* page);

  // frmConfig.cpp
  void Connect();
  void ConnectList(QListWidget* list, QLineEdit* text, std::vector<std::string>& entries);
  void Command(const char* method, const std::function<void()>& body);
  void ShowModel();
  void ShowMachine();
  void ShowList(QListWidget* list, const std::vector<std::string>& entries);
  void ShowHives();
  void chkEnableDiskScan_Click();
  void chkEnableRegScan_Click();
  void chkRemote_Click();
  void chkFileExclude_Click();
  void RemoveSelected(QListWidget* list, std::vector<std::string>& entries);
  std::string Pick(std::unique_ptr<clsFolderSource> source, const char* prompt, const Add& add);
  void PickMachineFolder(const char* prompt, const Add& add);
  bool NeedMachine();
  void AddDialog();
  void cmdSave_Click();

  clsShell& m_shell;
  clsConfigModel& m_model;
  std::shared_ptr<clsMachine> m_machine;
  std::string m_missing;

  // Owned by Qt.
  QTabWidget* tabStrip;
  QLabel* lblMachine;
  QPushButton *cmdSave, *cmdClose;
  QCheckBox* chkEnableDiskScan;
  QListWidget* lstDrives;
  QLineEdit* txtDSZoom;
  QPushButton *cmdDSAdd, *cmdAddFolder, *cmdRemoveFolder;
  QGroupBox* fraInclude;
  QCheckBox *chkVersionInfo, *chkSizeInfo, *chkAttribInfo, *chkHiddenFolders;
  QCheckBox* chkEnableRegScan;
  QListWidget* lstRegHives;
  QPushButton *cmdSelectAll, *cmdSelectNone;
  QCheckBox* chkRemote;
  QLineEdit* txtRemote;
  QPushButton* cmdAddRemote;
  QCheckBox* chkFileExclude;
  QListWidget* lstFileExclude;
  QLineEdit* txtZoom;
  QPushButton *cmdAddCustom, *cmdAddFile, *cmdExcludeAddFile, *cmdRemoveFile;
};

}  // namespace sandrel
