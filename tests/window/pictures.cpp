// Saves pictures of the window in its states, for a person to look at: pictures FOLDER [dark]
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFont>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPalette>
#include <QScreen>
#include <QStyleFactory>
#include <QTabWidget>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QTreeView>
#include <QTreeWidget>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

#include "config/clsFolderSource.h"
#include "config/frmFolderTreeview.h"
#include "export/frmAnimate.h"
#include "platform/qt/clsMarkdownPage.h"
#include "shell/frmHelp.h"
#include "shell/frmSplash.h"
#include "window/support/BoxAnswerer.h"
#include "window/support/SampleDesk.h"
#include "wizard/frmWizard.h"

namespace sandrel::test {
namespace {

class Session {
 public:
  Session(const QString& folder, const QString& kind) : m_folder(folder), m_kind(kind) {}

  void TakeAll() {
    TakeStart();
    const std::string analysis = m_desk.MakeAnalysis("Lanternfish Studio.mdb");
    m_desk.Settings.SaveSetting("Recent Files", "RecentFile1", analysis);
    m_desk.Settings.SaveSetting("Recent Files", "RecentFile2", "/media/disk/Kestrel Imaging.mdb");
    Start();
    TakePages();
    TakeConfiguration();
    TakeMenus();
    TakeBoxes();
    TakePicker();
    TakeCopy();
    TakePrinting();
    TakeWizard();
    TakeHelp();
    TakeScan();
    Stop();
  }

 private:
  void Take(QWidget& shown, const QString& name) const { Save(shown.grab(), name); }
  void Save(const QPixmap& picture, const QString& name) const {
    const QString path = m_folder + "/" + name + m_kind + ".png";
    if (!picture.save(path, "PNG", 0))
      throw std::runtime_error("can't write " + path.toStdString());
    std::puts(qPrintable(path));
  }
  /// Takes the box that a command brings up, and closes it.
  void TakeBox(const char* item, const QString& name) {
    m_boxes.OnBox = [this, name](QWidget& box) {
      QTest::qWait(300);
      Take(box, name);
      box.close();
    };
    m_form->Controls().Menus.Run(item);
    m_boxes.OnBox = nullptr;
  }

  void Start() {
    m_desk.Settings.SaveSetting("Main Form", "SplitPos", "3750");
    m_form = m_desk.MakeWindow();
    m_form->Form_Load();
    m_form->resize(1000, 620);  // more than the screen here would allow a start
    m_form->move(0, 0);         // where menus have room on a small screen
    m_form->activateWindow();
    QTest::qWait(50);
  }
  void Stop() {
    m_form->close();
    m_form.reset();
    // The end of a window is that of the program; boxes come up again after this.
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    QApplication::exec();
  }

  void TakeStart() {
    frmSplash splash("1.0.0");
    Take(splash, "splash");
    m_boxes.Buttons = {"No"};
    m_boxes.OnBox = [this](QWidget& box) { Take(box, "before-question"); };
    Start();
    m_boxes.OnBox = nullptr;
    Take(*m_form, "empty");
    Stop();
  }

  void Show(const std::string& key) {
    TreeView& tree = m_form->Controls().treeView;
    Node& node = tree.Item(key);
    tree.EnsureVisible(node);
    m_form->Browser().Tree.ShowNode(node);
    QTest::qWait(20);
  }
  void TakePages() {
    const std::string files = "Lanternfish Studio.mdb\\Files";
    TreeView& tree = m_form->Controls().treeView;
    m_form->findChild<QTreeView*>("treeView")->setFocus();
    Show("Root");
    Take(*m_form, "statistics");
    Show("ChangedFiles");
    tree.SetExpanded(tree.Item("ChangedFiles"), true);
    Take(*m_form, "even-columns");
    ListView& changed = m_form->Controls().List(page::ChangedFiles);
    std::size_t column = 0;
    for (const int twips : {3300, 1300, 1950, 1950, 1200, 1200}) changed.SetWidth(column++, twips);
    QTest::qWait(20);
    Take(*m_form, "changed-files");
    const std::pair<std::string, const char*> others[] = {
        {"Files", "all-files"},
        {"HKEY_LOCAL_MACHINE_NewRegistry", "hive"},
        {"NewRegistry", "new-registry"},
        {"Ini", "ini"},
        {files + "\\New\\C:\\Program files\\Lanternfish studio", "folder"},
        {files + "\\New\\C:", "drive"}};
    for (const auto& [key, name] : others) {
      Show(key);
      Take(*m_form, name);
    }
    Show("Root");
  }

  void TakeConfiguration() {
    m_boxes.OnBox = [this](QWidget& box) {
      box.findChild<QLabel*>("lblMachine")->setText("Machine: /home/anna/.wine");
      auto* const tabs = box.findChild<QTabWidget*>("tabStrip");
      for (int i = 0; i < tabs->count(); ++i) {
        tabs->setCurrentIndex(i);
        QTest::qWait(20);
        Take(box, QString("configuration-%1").arg(i + 1));
      }
      box.close();
    };
    m_form->Controls().Menus.Run("mnuSettingsConfig");
    m_boxes.OnBox = nullptr;
  }

  void TakeMenus() {
    const QList<QAction*> menus = m_form->menuBar()->actions();
    for (QAction* const action : menus) {
      if (!action->isVisible()) continue;
      m_form->menuBar()->setActiveAction(action);
      QTest::qWait(10);
      Take(*action->menu(), "menu-" + action->menu()->objectName());
      action->menu()->close();
      m_form->menuBar()->setActiveAction(nullptr);
    }
  }

  void TakeBoxes() {
    m_boxes.OnBox = [this](QWidget& box) { Take(box, "error"); };
    m_form->ReportError(
        52,
        "Bad file name or number: C:\\ProgramData\\Tallow\\ (Permission denied) - "
        "Processing: C:\\ProgramData\\Tallow\\\n\nMake sure you have access to this "
        "file or folder. You may wish to exclude file(s) or folder(s) using the "
        "Configuration option of Sandrels' Settings menu.",
        "clsScanDrive.DoXTree", "frmSandrel.mnuSnapShotBefore");
    TakeBox("mnuFileOpen", "file-dialog");
    TakeBox("mnuSettingsMachine", "folder-dialog");
  }

  void TakePicker() {
    frmFolderTreeview picker(MachineFolders(clsMachine::Open(m_desk.MachineFolder())),
                             m_form.get());
    picker.SetFolder(R"(C:\Program Files\Lanternfish Studio)");
    picker.show();
    QTest::qWait(50);
    Take(picker, "folder-picker");
  }

  void TakeCopy() {
    frmAnimate copy(m_form.get());
    copy.Show();
    copy.SetFile("render.dll");
    copy.SetFolder(
        R"('C:\Program Files\Lanternfish Studio' to '/home/anna/collected/Program Files')");
    copy.SetProgress(57);
    copy.SetMessage("Time Remaining: 2");
    QTest::qWait(700);  // a sheet flies
    Take(copy, "copying");
    copy.Close();
  }

  void TakePrinting() {
    m_desk.Settings.SaveSetting("Print Preview Form", "Width", "13500");
    m_desk.Settings.SaveSetting("Print Preview Form", "Height", "9900");
    m_desk.Settings.SaveSetting("Print Preview Form", "WindowState", "0");
    for (const char* zoom : {"50%", "100%", "200%"}) {
      m_desk.Settings.SaveSetting("PrintGridPreview", "ZoomPercent", zoom);
      TakeBox("mnuFilePrintPreview", QString("print-preview-") + QString(zoom).chopped(1));
    }
    TakeBox("mnuFilePrintSetup", "print-setup");
    TakeBox("mnuSettingsPrintFont", "print-font");
  }

  void TakeWizard() {
    m_form->Controls().Menus.Run("mnuSnapShotWizard");
    auto* const wizard = m_form->findChild<frmWizard*>();
    for (const int number : {0, 1, 2, 3, 4, 5}) {
      std::int16_t shown = static_cast<std::int16_t>(number);
      wizard->DisplayPage(shown, true, false);
      if (number == 3) {
        QTest::keyClicks(wizard->findChild<QLineEdit*>("txtRun"), R"("C:\Downloads\setup.exe" /S)");
      }
      QTest::qWait(20);
      Take(*wizard, QString("wizard-%1").arg(number));
    }
    wizard->Unload();
  }

  void TakeHelp() {
    m_form->Controls().Menus.Run("mnuHelpAbout");
    QDialog* const about = m_form->findChild<QDialog*>("frmAbout");
    QTest::qWait(20);
    Take(*about, "about");
    about->close();
    m_form->Controls().Menus.Run("mnuHelpIndex");
    frmHelp& help = *m_form->Help();
    help.resize(1000, 620);
    const auto take = [&](const QString& name) {
      QTest::qWait(50);
      Take(help, name);
    };
    QTest::keyClicks(help.findChild<QLineEdit*>("txtIndex"), "ex");
    QTest::keyClick(help.findChild<QLineEdit*>("txtIndex"), Qt::Key_Return);
    take("help-index");
    auto* const search = help.findChild<QLineEdit*>("txtSearch");
    help.findChild<QTabWidget*>("tabStrip")->setCurrentWidget(search->parentWidget());
    QTest::keyClicks(search, "registry key");
    QTest::keyClick(search, Qt::Key_Return);
    take("help-search");
    m_form->Controls().Menus.Run("mnuHelpContents");
    auto* const page = help.findChild<clsMarkdownPage*>();
    auto* const contents = help.findChild<QTreeWidget*>("treeContents");
    for (int chapter = 0; chapter < contents->topLevelItemCount(); ++chapter) {
      page->Show(contents->topLevelItem(chapter)->data(0, Qt::UserRole).toString());
      take(QString("help-%1").arg(chapter + 1, 2, 10, QChar('0')));
    }
    help.close();
  }

  // The picture is taken when messages are let through, with the panel about half full.
  void TakeScan() {
    constexpr int Least = 10;
    QPixmap picture;
    bool due = false;
    StatusBar& bar = m_form->Controls().stbrStatus;
    bar.Changed = [&, show = bar.Changed] {
      show();
      const std::string progress = bar.Progress();
      if (due || std::count(progress.begin(), progress.end(), '\1') < Least) return;
      due = true;
      QThread::msleep(20);  // messages are let through every 15
      QTimer::singleShot(0, [&] { picture = m_form->grab(); });
    };
    m_form->Controls().Menus.Run("mnuSnapShotBefore");
    bar.Changed = nullptr;
    if (picture.isNull()) throw std::runtime_error("the scan was over too soon for a picture");
    Save(picture, "scanning");
  }

  QString m_folder, m_kind;
  SampleDesk m_desk;
  BoxAnswerer m_boxes;
  std::unique_ptr<frmSandrel> m_form;
};

int Run(int argc, char** argv) {
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  QApplication::setFont(QFont("Liberation Sans", 9));
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 2) throw std::runtime_error("name the folder for the pictures");
  const bool dark = arguments.size() > 2 && arguments[2] == "dark";
  if (dark) QApplication::setPalette(QColor(45, 45, 48));
  QDir().mkpath(arguments[1]);
  const bool large = QApplication::primaryScreen()->devicePixelRatio() > 1;
  Session(arguments[1], QString(dark ? "-dark" : "") + (large ? "-2x" : "")).TakeAll();
  return 0;
}

}  // namespace
}  // namespace sandrel::test

int main(int argc, char** argv) {
  try {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    return sandrel::test::Run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "pictures: %s\n", error.what());
    return 2;
  }
}
