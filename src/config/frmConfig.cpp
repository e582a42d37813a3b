#include "config/frmConfig.h"

#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QSignalBlocker>
#include <QTabWidget>
#include <utility>

#include "config/frmFolderTreeview.h"
#include "platform/qt/modBoxes.h"
#include "platform/qt/modGuard.h"
#include "platform/qt/modText.h"
#include "snapshot/clsStatements.h"

namespace sandrel {
frmConfig::frmConfig(clsShell& shell, clsConfigModel& model, std::shared_ptr<clsMachine> machine,
                     std::string missing, QWidget* parent)
    : QDialog(parent),
      m_shell(shell),
      m_model(model),
      m_machine(std::move(machine)),
      m_missing(std::move(missing)) {
  setObjectName("frmConfig");
  setWindowTitle("Configuration");
  MakeControls();
  ShowMachine();
  Connect();
}

void frmConfig::Connect() {
  const auto click = [this](QPushButton* button, std::function<void()> body) {
    qt::Connect(
        button, &QPushButton::clicked, this,
        [this, body = std::move(body), method = "frmConfig." + button->objectName().toStdString()] {
          Command(method.c_str(), body);
        });
  };
  const auto toggle = [this](QCheckBox* box, void (frmConfig::*body)()) {
    qt::Connect(box, &QCheckBox::toggled, this, body);
  };
  click(cmdSave, [this] { cmdSave_Click(); });
  qt::Connect(cmdClose, &QPushButton::clicked, this, &frmConfig::reject);

  const Add addFolder = [this](const std::string& folder) { return m_model.AddFolder(folder); };
  toggle(chkEnableDiskScan, &frmConfig::chkEnableDiskScan_Click);
  ConnectList(lstDrives, txtDSZoom, m_model.Folders);
  click(cmdDSAdd, [=, this] {
    if (addFolder(txtDSZoom->text().toStdString())) txtDSZoom->clear();
    ShowList(lstDrives, m_model.Folders);
  });
  click(cmdAddFolder, [=, this] {
    PickMachineFolder("Select or &Enter a folder to include in this Disk Scan", addFolder);
    ShowList(lstDrives, m_model.Folders);
  });
  click(cmdRemoveFolder, [this] { RemoveSelected(lstDrives, m_model.Folders); });

  toggle(chkEnableRegScan, &frmConfig::chkEnableRegScan_Click);
  toggle(chkRemote, &frmConfig::chkRemote_Click);
  for (const auto& [button, scanned] :
       {std::pair(cmdSelectAll, true), std::pair(cmdSelectNone, false)}) {
    click(button, [this, all = scanned] {
      m_model.SelectHives(all);
      ShowHives();
    });
  }
  qt::Connect(lstRegHives, &QListWidget::itemChanged, this, [this](const QListWidgetItem* item) {
    m_model.SetScanned(item->text().toStdString(), item->checkState() == Qt::Checked);
  });
  qt::Connect(txtRemote, &QLineEdit::textChanged, this,
              [this](const QString& name) { m_model.RemoteName = name.toStdString(); });
  click(cmdAddRemote, [this] {
    const std::string name = Pick(NetworkComputers(), "Please select a remote computer", {});
    if (!name.empty()) txtRemote->setText(qt::FromText(name));
  });

  toggle(chkFileExclude, &frmConfig::chkFileExclude_Click);
  ConnectList(lstFileExclude, txtZoom, m_model.Excludes);
  click(cmdAddCustom, [this] {
    m_model.AddExclude(txtZoom->text().toStdString());
    txtZoom->clear();
    ShowList(lstFileExclude, m_model.Excludes);
  });
  qt::Connect(cmdAddFile, &QPushButton::clicked, this,
              [this] { Command("frmConfig.AddDialog", [this] { AddDialog(); }); });
  click(cmdExcludeAddFile, [this] {
    PickMachineFolder("Select a folder branch to exclude", [this](const std::string& folder) {
      return m_model.AddExcludeFolder(folder);
    });
    ShowList(lstFileExclude, m_model.Excludes);
  });
  click(cmdRemoveFile, [this] { RemoveSelected(lstFileExclude, m_model.Excludes); });
}

void frmConfig::ConnectList(QListWidget* list, QLineEdit* text, std::vector<std::string>& entries) {
  // Not the current entry, which is there as soon as the focus comes: a typed text would be lost.
  qt::Connect(list, &QListWidget::itemSelectionChanged, this, [list, text] {
    const QList<QListWidgetItem*> selected = list->selectedItems();
    if (selected.size() == 1) text->setText(selected.front()->text());
  });
  // The selected entry can be clicked too, when the text has gone on from it.
  qt::Connect(list, &QListWidget::itemClicked, this,
              [text](const QListWidgetItem* item) { text->setText(item->text()); });
  const auto remove = [this, list, &entries] { RemoveSelected(list, entries); };
  qt::Connect(list, &QListWidget::itemDoubleClicked, this, remove);
  auto* const key = new QShortcut(QKeySequence::Delete, list);
  key->setContext(Qt::WidgetShortcut);
  qt::Connect(key, &QShortcut::activated, this, remove);
}

void frmConfig::Command(const char* method, const std::function<void()>& body) {
  clsStatements run(m_shell, method);
  run.Command([&] { run(body); }, [this] { reject(); });
}

bool frmConfig::Form_Load() {
  clsStatements run(m_shell, "frmConfig.Form_Load");
  return run.Command(
      [&] {
        run([&] { m_model.LoadFolders(); });
        run([&] { m_model.LoadOptions(); });
        run([&] { m_model.LoadExcludes(); });
        ShowModel();
      },
      [] {});
}

void frmConfig::ShowModel() {
  for (const auto& [box, on] :
       {std::pair(chkEnableDiskScan, m_model.DiskScan),
        std::pair(chkVersionInfo, m_model.VersionInfo), std::pair(chkSizeInfo, m_model.SizeInfo),
        std::pair(chkAttribInfo, m_model.AttributeInfo),
        std::pair(chkHiddenFolders, m_model.HiddenFolders),
        std::pair(chkEnableRegScan, m_model.RegScan), std::pair(chkRemote, m_model.RemoteRegistry),
        std::pair(chkFileExclude, m_model.FileExclude)}) {
    box->setChecked(on);
  }
  txtRemote->setText(qt::FromText(m_model.RemoteName));
  ShowList(lstDrives, m_model.Folders);
  ShowList(lstFileExclude, m_model.Excludes);
  chkEnableDiskScan_Click();
  chkEnableRegScan_Click();
  chkFileExclude_Click();
}

// A path is one word; zero-width spaces let it break behind each folder.
void frmConfig::ShowMachine() {
  QString text = qt::FromText(m_machine != nullptr ? "Machine: " + m_machine->Folder() : m_missing);
  lblMachine->setText(text.replace('/', QString('/') + QChar(0x200B)));
}

void frmConfig::ShowList(QListWidget* list, const std::vector<std::string>& entries) {
  if (static_cast<std::size_t>(list->count()) == entries.size()) return;
  const QSignalBlocker quiet(list);
  list->clear();
  for (const std::string& entry : entries) list->addItem(qt::FromText(entry));
  list->scrollToBottom();
}

void frmConfig::ShowHives() {
  const QSignalBlocker quiet(lstRegHives);
  lstRegHives->clear();
  for (const ScanHive& hive : m_model.ShownHives()) {
    auto* const item = new QListWidgetItem(qt::FromText(hive.Name), lstRegHives);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    item->setCheckState(m_model.IsScanned(hive.Name) ? Qt::Checked : Qt::Unchecked);
  }
}

void frmConfig::chkEnableDiskScan_Click() {
  const std::initializer_list<QWidget*> controls = {lstDrives,      chkAttribInfo,    chkSizeInfo,
                                                    chkVersionInfo, chkHiddenFolders, cmdAddFolder,
                                                    cmdRemoveFolder};
  for (QWidget* const control : controls) control->setEnabled(m_model.DiskScan);
}

void frmConfig::chkEnableRegScan_Click() {
  const std::initializer_list<QWidget*> controls = {cmdSelectAll, cmdSelectNone, chkRemote};
  for (QWidget* const control : controls) control->setEnabled(m_model.RegScan);
  chkRemote_Click();
}

void frmConfig::chkRemote_Click() {
  ShowHives();
  txtRemote->setEnabled(m_model.RegScan && m_model.RemoteRegistry);
  cmdAddRemote->setEnabled(txtRemote->isEnabled());
}

void frmConfig::chkFileExclude_Click() {
  cmdAddCustom->setEnabled(m_model.FileExclude);
  lstFileExclude->setEnabled(m_model.FileExclude);
}

void frmConfig::RemoveSelected(QListWidget* list, std::vector<std::string>& entries) {
  const QSignalBlocker quiet(list);
  for (int row = list->count() - 1; row >= 0; --row) {
    if (!list->item(row)->isSelected()) continue;
    entries.erase(entries.begin() + row);
    delete list->takeItem(row);
  }
}

// The chosen path; empty when the user cancelled. The picker stays open while `add` refuses.
std::string frmConfig::Pick(std::unique_ptr<clsFolderSource> source, const char* prompt,
                            const Add& add) {
  frmFolderTreeview picker(std::move(source), this);
  picker.SetLabel(prompt);
  picker.Validate = add;
  picker.exec();
  return picker.Folder();
}

void frmConfig::PickMachineFolder(const char* prompt, const Add& add) {
  if (NeedMachine()) Pick(MachineFolders(m_machine), prompt, add);
}

bool frmConfig::NeedMachine() {
  if (m_machine != nullptr) return true;
  m_shell.Ask({m_missing, "Sandrel Manager", Buttons::Ok, BoxIcon::Exclamation});
  return false;
}

void frmConfig::AddDialog() {
  if (!NeedMachine()) return;
  FileDialog dialog;
  dialog.Title = "Select files(s) to Exclude from Disk Scan";
  dialog.Filter = "All Files *.*|*.*";
  dialog.Folder = m_machine->HostPath(m_machine->CurrentDrive() + "\\").value_or("");
  const std::vector<std::string> files = qt::ChooseFiles(this, dialog);
  for (const std::string& file : files) m_model.AddExcludeFile(file);
  ShowList(lstFileExclude, m_model.Excludes);
}

// Enter in a text box adds the text; anywhere else it saves.
void frmConfig::keyPressEvent(QKeyEvent* event) {
  qt::Guard(this, [&] {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    QPushButton* const add = focusWidget() == txtDSZoom ? cmdDSAdd
                             : focusWidget() == txtZoom ? cmdAddCustom
                                                        : nullptr;
    if (enter && add != nullptr) {
      add->click();
    } else {
      QDialog::keyPressEvent(event);
    }
  });
}

void frmConfig::cmdSave_Click() {
  if (Save()) accept();
}

}  // namespace sandrel
