// The controls of the configuration dialog and where they stand.
#include <QBoxLayout>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>

#include "config/frmConfig.h"
#include "platform/qt/clsCellDelegate.h"
#include "platform/qt/modGuard.h"

namespace sandrel {
namespace {

class clsTickDelegate final : public clsCellDelegate {
 public:
  using clsCellDelegate::clsCellDelegate;

 protected:
  // Styles frame a box in a shade of the window's ground, which a dark list swallows.
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    clsCellDelegate::initStyleOption(option, index);
    QPalette& palette = option->palette;
    if (palette.color(QPalette::Base).lightness() < 128) {
      palette.setColor(QPalette::Window, palette.color(QPalette::Text));
    }
  }
};

}  // namespace

// In the order of the Tab key.
void frmConfig::MakeControls() {
  tabStrip = new QTabWidget(this);
  tabStrip->setObjectName("tabStrip");
  const auto add = [this](QWidget* page, const char* caption, const char* key, const char* tip) {
    const int index = tabStrip->addTab(page, caption);
    tabStrip->tabBar()->setTabData(index, key);
    tabStrip->setTabToolTip(index, tip);
  };
  add(DiskScanPage(), "&File Scan", "DiskScan", "What folders to scan and how to scan them");
  add(RegistryScanPage(), "&Registry Scan", "registryscan", "What registry hives to scan");
  add(ExcludedFilesPage(), "File &Exclude", "ExcludedFiles2",
      "File(s) / folder(s) to excluded from disk scanning");

  lblMachine = new QLabel(this);
  lblMachine->setObjectName("lblMachine");
  lblMachine->setTextFormat(Qt::PlainText);
  lblMachine->setWordWrap(true);
  cmdSave = NewButton("cmdSave", "&Save", "", this);
  cmdClose = NewButton("cmdClose", "&Close", "", this);
  cmdSave->setDefault(true);

  auto* const buttons = new QHBoxLayout;
  buttons->addWidget(lblMachine, 1);
  buttons->addWidget(cmdSave, 0, Qt::AlignBottom);
  buttons->addWidget(cmdClose, 0, Qt::AlignBottom);
  auto* const column = new QVBoxLayout(this);
  column->addWidget(tabStrip, 1);
  column->addLayout(buttons);
  resize(540, 440);
}

QWidget* frmConfig::DiskScanPage() {
  QWidget* const page = NewPage(0);
  chkEnableDiskScan =
      NewCheckBox("chkEnableDiskScan", "&Enable Disk Scanning", &clsConfigModel::DiskScan, page);
  lstDrives = NewList("lstDrives", "Folders to scan", page);
  cmdAddFolder = NewButton("cmdAddFolder", "&Browse...", "Choose a folder to add", page);
  cmdRemoveFolder = NewButton("cmdRemoveFolder", "Re&move", "Remove the selected folders", page);
  txtDSZoom = NewText("txtDSZoom", "Folder to add", page);
  cmdDSAdd = NewButton("cmdDSAdd", "A&dd", "Add the typed folder", page);

  fraInclude = new QGroupBox("&Include", page);
  fraInclude->setObjectName("fraInclude");
  chkVersionInfo =
      NewCheckBox("chkVersionInfo", "&Version Info", &clsConfigModel::VersionInfo, fraInclude);
  chkSizeInfo = NewCheckBox("chkSizeInfo", "&Size Info", &clsConfigModel::SizeInfo, fraInclude);
  chkAttribInfo =
      NewCheckBox("chkAttribInfo", "&Attribute Info", &clsConfigModel::AttributeInfo, fraInclude);
  chkHiddenFolders = NewCheckBox("chkHiddenFolders", "&Hidden Folders",
                                 &clsConfigModel::HiddenFolders, fraInclude);
  chkHiddenFolders->setToolTip("Enter folders with the hidden or system attribute");
  auto* const details = new QHBoxLayout(fraInclude);
  for (QCheckBox* const box : {chkVersionInfo, chkSizeInfo, chkAttribInfo, chkHiddenFolders}) {
    details->addWidget(box);
  }
  details->addStretch();

  auto* const grid = new QGridLayout(page);
  grid->addWidget(chkEnableDiskScan, 0, 0, 1, 2);
  grid->addWidget(lstDrives, 1, 0, 3, 1);
  grid->addWidget(cmdAddFolder, 1, 1);
  grid->addWidget(cmdRemoveFolder, 2, 1);
  grid->setRowStretch(3, 1);
  grid->addWidget(txtDSZoom, 4, 0);
  grid->addWidget(cmdDSAdd, 4, 1);
  grid->addWidget(fraInclude, 5, 0, 1, 2);
  return page;
}

QWidget* frmConfig::RegistryScanPage() {
  QWidget* const page = NewPage(1);
  chkEnableRegScan =
      NewCheckBox("chkEnableRegScan", "&Enable Registry Scanning", &clsConfigModel::RegScan, page);
  lstRegHives = NewList("lstRegHives", "Registry hives to scan", page);
  lstRegHives->setSelectionMode(QListWidget::SingleSelection);
  lstRegHives->setItemDelegate(new clsTickDelegate(lstRegHives));
  cmdSelectAll = NewButton("cmdSelectAll", "Select &All", "Scan every hive", page);
  cmdSelectNone = NewButton("cmdSelectNone", "Select &None", "Scan no hive", page);
  chkRemote = NewCheckBox("chkRemote", "&Remote:", &clsConfigModel::RemoteRegistry, page);
  chkRemote->setToolTip("Scan the registry of another computer");
  txtRemote = NewText("txtRemote", "Name of the remote computer", page);
  cmdAddRemote = NewButton("cmdAddRemote", "&Browse...", "Choose a computer", page);

  auto* const remote = new QHBoxLayout;
  remote->addWidget(chkRemote);
  remote->addWidget(txtRemote, 1);
  auto* const grid = new QGridLayout(page);
  grid->addWidget(chkEnableRegScan, 0, 0, 1, 2);
  grid->addWidget(lstRegHives, 1, 0, 3, 1);
  grid->addWidget(cmdSelectAll, 1, 1);
  grid->addWidget(cmdSelectNone, 2, 1);
  grid->setRowStretch(3, 1);
  grid->addLayout(remote, 4, 0);
  grid->addWidget(cmdAddRemote, 4, 1);
  return page;
}

QWidget* frmConfig::ExcludedFilesPage() {
  QWidget* const page = NewPage(2);
  chkFileExclude =
      NewCheckBox("chkFileExclude", "&Enable File(s) Exclude", &clsConfigModel::FileExclude, page);
  lstFileExclude = NewList("lstFileExclude", "Files and folders to exclude", page);
  cmdAddFile = NewButton("cmdAddFile", "Add F&iles...", "Choose files to exclude", page);
  cmdExcludeAddFile = NewButton("cmdExcludeAddFile", "Add F&older...",
                                "Choose a folder to exclude with everything below it", page);
  cmdRemoveFile = NewButton("cmdRemoveFile", "Re&move", "Remove the selected entries", page);
  txtZoom = NewText("txtZoom", "File, pattern or folder to exclude", page);
  cmdAddCustom = NewButton("cmdAddCustom", "A&dd", "Add the typed file, pattern or folder", page);

  auto* const grid = new QGridLayout(page);
  grid->addWidget(chkFileExclude, 0, 0, 1, 2);
  grid->addWidget(lstFileExclude, 1, 0, 4, 1);
  grid->addWidget(cmdAddFile, 1, 1);
  grid->addWidget(cmdExcludeAddFile, 2, 1);
  grid->addWidget(cmdRemoveFile, 3, 1);
  grid->setRowStretch(4, 1);
  grid->addWidget(txtZoom, 5, 0);
  grid->addWidget(cmdAddCustom, 5, 1);
  return page;
}

QWidget* frmConfig::NewPage(int index) {
  auto* const page = new QWidget(tabStrip);
  page->setObjectName(QString("picContainer(%1)").arg(index));
  return page;
}

QPushButton* frmConfig::NewButton(const char* name, const char* caption, const char* tip,
                                  QWidget* page) {
  auto* const button = new QPushButton(caption, page);
  button->setObjectName(name);
  button->setToolTip(tip);
  return button;
}

QCheckBox* frmConfig::NewCheckBox(const char* name, const char* caption,
                                  bool clsConfigModel::*option, QWidget* parent) {
  auto* const box = new QCheckBox(caption, parent);
  box->setObjectName(name);
  qt::Connect(box, &QCheckBox::toggled, this, [this, option](bool on) { m_model.*option = on; });
  return box;
}

QListWidget* frmConfig::NewList(const char* name, const char* what, QWidget* page) {
  auto* const list = new QListWidget(page);
  list->setObjectName(name);
  list->setAccessibleName(what);
  list->setItemDelegate(new clsCellDelegate(list));
  list->setSelectionMode(QListWidget::ExtendedSelection);
  list->setTextElideMode(Qt::ElideNone);  // a long path is scrolled to
  list->setHorizontalScrollMode(QListWidget::ScrollPerPixel);
  return list;
}

QLineEdit* frmConfig::NewText(const char* name, const char* what, QWidget* page) {
  auto* const text = new QLineEdit(page);
  text->setObjectName(name);
  text->setAccessibleName(what);
  text->setPlaceholderText(what);
  return text;
}

}  // namespace sandrel
