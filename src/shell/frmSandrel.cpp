#include "shell/frmSandrel.h"

#include <fmt/format.h>

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QLayout>
#include <QMenu>
#include <QMenuBar>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "common/text.h"
#include "config/clsFolderSource.h"
#include "config/frmFolderTreeview.h"
#include "export/frmAnimate.h"
#include "platform/qt/Icons.h"
#include "platform/qt/clsListWidget.h"
#include "platform/qt/clsSplitBar.h"
#include "platform/qt/clsStatusBarWidget.h"
#include "platform/qt/clsToolbarWidget.h"
#include "platform/qt/clsTrayIcon.h"
#include "platform/qt/clsTreeWidget.h"
#include "platform/qt/modBoxes.h"
#include "platform/qt/modGuard.h"
#include "platform/qt/modMenus.h"
#include "platform/qt/modPump.h"
#include "platform/qt/modText.h"
#include "platform/qt/modTwips.h"
#include "shell/frmAbout.h"
#include "shell/frmHelp.h"
#include "shell/frmSplash.h"
#include "wizard/frmWizard.h"

namespace sandrel {
namespace {

constexpr int SplitWidth = 40;         // twips
constexpr int SmallestPane = 1000;     // twips
constexpr int BeforeTimeIndent = 100;  // twips

// Tells when the room that the layout divides has changed.
class clsClient final : public QWidget {
 public:
  clsClient(QWidget* parent, std::function<void()> resized)
      : QWidget(parent), m_resized(std::move(resized)) {}

 protected:
  void resizeEvent(QResizeEvent*) override { qt::Guard(this, m_resized); }

 private:
  std::function<void()> m_resized;
};

}  // namespace

// A snapshot command runs, however it ends.
class frmSandrel::clsBusy {
 public:
  explicit clsBusy(frmSandrel& form) : m_form(form) { form.State.Busy = true; }
  ~clsBusy() {
    m_form.State.Busy = false;
    m_form.UpdateCommandState();
  }
  clsBusy(const clsBusy&) = delete;
  clsBusy& operator=(const clsBusy&) = delete;

 private:
  frmSandrel& m_form;
};

frmSandrel::frmSandrel(clsSettings& settings, const clsHome& home, clsWindowList& windows,
                       StartOptions options)
    : m_settings(settings),
      m_home(home),
      m_windows(windows),
      m_options(std::move(options)),
      m_snapshots(*this, settings, home, nullptr),
      m_analysis(*this, settings, home, nullptr),
      m_browser(*this, settings, m_controls, home),
      m_export(*this, m_controls, m_browser.Pages, home),
      m_print(*this, m_settings, m_controls, m_browser, m_printer),
      m_commandState(*this, settings, home, m_controls),
      m_errorReport([this](const clsError& error, const std::string& where) {
        return ReportSlot(error, where);
      }) {
  setObjectName("frmSandrel");
  setWindowIcon(icons::Window());
  SetCommands();
  MakeControls();
}

// The widgets follow controls that end before them.
frmSandrel::~frmSandrel() {
  delete takeCentralWidget();
}

void frmSandrel::MakeControls() {
  m_client = new clsClient(this, [this] { Form_Resize(); });
  setCentralWidget(m_client);
  qt::ShowMenus(m_controls.Menus, *menuBar());
  tlbarMain = new clsToolbarWidget(m_controls.tlbarMain, m_client);
  txtLastBeforeSnapshot = new QLabel(m_client);
  txtLastBeforeSnapshot->setObjectName("txtLastBeforeSnapshot");
  txtLastBeforeSnapshot->setToolTip("Time of last before Snapshot");
  treeView = new clsTreeWidget(m_controls.treeView, m_client);
  treeView->setObjectName("treeView");
  treeView->setAccessibleName("Contents of the analysis");
  for (int index = 0; index < page::Count; ++index) {
    auto* const list = new clsListWidget(m_controls.List(index), m_client);
    list->setObjectName(qt::FromText(clsMainControls::Element("listView", index)));
    list->setAccessibleName("Rows of the page");
    list->hide();
    listView[static_cast<std::size_t>(index)] = list;
  }
  picSplit = new clsSplitBar(m_client);
  picSplit->setObjectName("picSplit");
  picSplit->MayStandAt = [this](int left) {
    const int twips = qt::ToTwips(left);
    return twips > SmallestPane && twips < qt::ToTwips(m_client->width()) - SmallestPane;
  };
  picSplit->Dropped = [this] {
    m_controls.treeView.Width = qt::ToTwips(picSplit->x());
    Form_Resize();
  };
  stbrStatus = new clsStatusBarWidget(m_controls.stbrStatus, m_client);
  Timer = new QTimer(this);
  Timer->setObjectName("Timer");
  qt::Connect(Timer, &QTimer::timeout, this, [this] { Timer_Tick(); });
  mnuSysTrayPopup = new QMenu(this);
  mnuSysTrayPopup->setObjectName("mnuSysTrayPopup");
  qt::ShowPopup(m_controls.Menus["mnuSysTrayPopup"], *mnuSysTrayPopup);
  new clsTrayIcon(m_controls.SysTray, this);
  m_controls.CaptionChanged = [this] {
    // Qt would read "[*]" in a file's name as a mark of its own.
    setWindowTitle(qt::FromText(m_controls.Caption()).replace("[*]", "[*][*]"));
  };
}

void frmSandrel::SetCommands() {
  const Menus& menus = m_controls.Menus;
  m_commandState.OnLayout = [this] { Form_Resize(); };
  menus["mnuFileExit"].Click = [this] { close(); };
  const auto snapshot = [this, &menus](const char* item, std::function<void()> command) {
    menus[item].Click = [this, command = std::move(command)] { SnapshotCommand(command); };
  };
  snapshot("mnuSnapShotBefore", [this] { m_snapshots.mnuSnapShotBefore_Click(); });
  snapshot("mnuSnapShotAfter", [this] { m_analysis.mnuSnapShotAfter_Click(m_snapshots); });
  snapshot("mnuSnapShotRollUp", [this] { m_snapshots.mnuSnapShotRollUp_Click(); });
  menus["mnuSnapShotCancelOperation"].Click = [this] { m_snapshots.ConfirmCancelScan(); };
  menus["mnuSettingsConfig"].Click = [this] { mnuSettingsConfig_Click(); };
  menus["mnuSettingsMachine"].Click = [this] { mnuSettingsMachine_Click(); };
  m_snapshots.FindMachine = [this] { return OpenMachine(); };
  SetExportCommands();
  SetPrintCommands();
  SetWizardCommands();
  SetHelpCommands();
  SetTrayEvents();
}

void frmSandrel::SetExportCommands() {
  m_export.Machine = [this] { return OpenMachine(); };
  m_export.ChooseDestination = [this](const std::string& caption) {
    frmFolderTreeview dialog(HostFolders(), BoxParent());
    dialog.setWindowTitle(qt::FromText(caption));
    dialog.SetLabel("Select or &Enter the folder that the copies go to");
    dialog.exec();
    return dialog.Folder();
  };
  m_export.MakeProgress = [this] { return std::make_unique<frmAnimate>(this); };
  m_controls.Menus["mnuFileExportToRegFile"].Click = [this] {
    m_browser.Command("frmSandrel.mnuFileExportToRegFile",
                      [this] { m_export.mnuFileExportToRegFile_Click(); });
  };
  m_controls.Menus["mnuFileExportFiles"].Click = [this] {
    m_browser.Command("frmSandrel.mnuFileExportFiles",
                      [this] { m_export.mnuFileExportFiles_Click(); });
  };
}

// One at a time: messages come through while one runs, and between a stop and its end as well.
void frmSandrel::SnapshotCommand(const std::function<void()>& command) {
  if (State.Busy) return;
  const clsBusy busy(*this);
  ForgetMachine();
  command();
}

// What leaves a slot is a fault of the program's own, or one that no command could report.
bool frmSandrel::ReportSlot(const clsError& error, const std::string& where) {
  const Answer answer =
      ReportError(error.Number(), error.Description(), error.Source(), "frmSandrel." + where);
  if (answer == Answer::Abort) Unload();
  return answer == Answer::Retry;
}

void frmSandrel::Form_Resize() {
  if (stbrStatus == nullptr) return;  // still being made
  const int width = m_client->width();
  const int top = m_controls.tlbarMain.Visible() ? qt::ToPixels(clsToolbarWidget::Height) : 0;
  const int status = qt::ToPixels(StatusBar::Height);
  const int bottom = m_controls.stbrStatus.Visible() ? status : 0;
  const int height = std::max(0, m_client->height() - top - bottom);
  // Both panes and the bar stay in sight; the stored width is that of a window with room for it.
  const int least = std::min(qt::ToPixels(SmallestPane), width / 2);
  const int split = std::clamp(qt::ToPixels(m_controls.treeView.Width), least, width - least);

  tlbarMain->setGeometry(0, 0, width, qt::ToPixels(clsToolbarWidget::Height));
  tlbarMain->setVisible(m_controls.tlbarMain.Visible());
  if (tlbarMain->layout() != nullptr) tlbarMain->layout()->activate();
  const QRect place = tlbarMain->PlaceHolder();
  txtLastBeforeSnapshot->setGeometry(
      place.adjusted(qt::ToPixels(BeforeTimeIndent), 0, 0, 0).translated(tlbarMain->pos()));
  // A time whose end is cut off would be another time.
  txtLastBeforeSnapshot->setText(txtLastBeforeSnapshot->fontMetrics().elidedText(
      m_beforeTime, Qt::ElideRight, txtLastBeforeSnapshot->width()));
  txtLastBeforeSnapshot->setVisible(m_controls.tlbarMain.Visible());
  txtLastBeforeSnapshot->raise();

  treeView->setGeometry(0, top, split, height);
  picSplit->setGeometry(split, top, qt::ToPixels(SplitWidth) + 1, height);
  for (int index = 0; index < page::Count; ++index) {
    m_controls.List(index).Width = qt::ToTwips(width - split);
    listView[static_cast<std::size_t>(index)]->setGeometry(split, top, width - split, height);
  }
  picSplit->raise();
  stbrStatus->setGeometry(0, m_client->height() - status, width, status);
  stbrStatus->setVisible(m_controls.stbrStatus.Visible());
}

void frmSandrel::changeEvent(QEvent* event) {
  qt::Guard(this, [&] {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
      qt::Later(this, [this] {
        if (State.Busy || m_unloaded) return;
        m_browser.AskIfReplacedOnce();
        TakeTray();
      });
    }
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) Form_Resize();
  });
}

void frmSandrel::closeEvent(QCloseEvent* event) {
  qt::Guard(this, [&] { event->setAccepted(!Form_Unload()); });
}

void frmSandrel::SetStatusText(std::string_view text) {
  m_controls.stbrStatus.SetStatus(std::string(text));
}

void frmSandrel::SetProgress(int percent) {
  m_controls.stbrStatus.SetProgress(ProgressText(percent));
}

// A box in the middle of a scan would stop it: what is to be told waits for its end.
void frmSandrel::Tell(std::string_view text) {
  if (!m_notes.empty()) m_notes += "\n\n";
  m_notes += text;
  qt::Later(this, [this] { ShowNotes(); });
}

void frmSandrel::ShowNotes() {
  if (State.Busy || m_unloaded || m_notes.empty()) return;
  Ask({std::exchange(m_notes, {}), "Sandrel Manager", Buttons::Ok, BoxIcon::Information});
}

void frmSandrel::UpdateCommandState() {
  if (m_unloaded) return;
  m_commandState.UpdateCommandState();
  if (!State.Busy && !m_notes.empty()) qt::Later(this, [this] { ShowNotes(); });
}

QWidget* frmSandrel::BoxParent() {
  if (QWidget* const dialog = QApplication::activeModalWidget()) return dialog;
  if (m_wizard != nullptr && m_wizard->isVisible()) return m_wizard.get();
  return isVisible() ? this : nullptr;
}

Answer frmSandrel::Ask(const MessageBox& box) {
  UnloadSplash();  // it would lie over the box
  if (!m_unloaded) return qt::AskBox(BoxParent(), box);
  // The window is gone, and with it the time for questions.
  fmt::print(stderr, "sandrel: {}\n", text::Escaped(box.Text));
  return box.Choice == Buttons::Ok      ? Answer::Ok
         : box.Choice == Buttons::YesNo ? Answer::No
                                        : Answer::Ignore;
}

Answer frmSandrel::ReportError(std::int32_t number, std::string_view description,
                               std::string_view source, std::string_view method) {
  return Ask({ErrorBoxText(number, description, source, method), "Sandrel Error Message",
              Buttons::AbortRetryIgnore, BoxIcon::Critical, RetryHelps(number)});
}

std::string frmSandrel::ChooseFile(const FileDialog& dialog) {
  UnloadSplash();
  return qt::ChooseFile(BoxParent(), dialog);
}

void frmSandrel::SetMousePointer(int shape) {
  qt::SetPointer(shape);
}

void frmSandrel::SetClipboard(std::string_view text) {
  QGuiApplication::clipboard()->setText(qt::FromText(text));
}

void frmSandrel::DoEvents(bool often) {
  qt::DoEvents(often);
}

void frmSandrel::ShowBeforeTime(std::string_view text) {
  m_beforeTime = qt::FromText(text);
  Form_Resize();
}

// A page that can't be shown is no reason to lose the analysis that was just made.
void frmSandrel::OpenAnalysis(const std::string& path) {
  m_browser.Command("frmSandrel.OpenAnalysis", [&] { m_browser.Open(path); });
}

// The end of an aborted command: nothing is asked any more.
void frmSandrel::Unload() {
  m_controls.SysTray.SetInTray(false);
  if (State.Scanning) {
    State.CloseDown = true;  // the scan's end unloads again
    m_snapshots.CancelScan();
    return;
  }
  Form_Unload();
}

}  // namespace sandrel
