// The configuration dialog over the main window, by clicks and keys.
#include "config/frmConfig.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <algorithm>
#include <filesystem>

#include "support/Rows.h"
#include "support/Variables.h"
#include "window/support/WindowFixture.h"

namespace sandrel::test {
namespace {

class frmConfigTest : public WindowFixture {
 protected:
  frmConfigTest() { m_boxes.Buttons = {"No"}; }  // no Before snapshot at the start

  /// Opens the dialog, runs `script` while it is up and closes it unless the script did.
  void Configure(const std::function<void()>& script) {
    if (m_form == nullptr) Start();
    m_boxes.Log.clear();
    m_boxes.OnBox = [this, script](QWidget& box) {
      if (m_dialog != nullptr || dynamic_cast<frmConfig*>(&box) == nullptr) return;
      m_dialog = &box;
      ++m_opened;
      QTimer::singleShot(0, &box, [this, script] {
        Activate();
        script();
        if (IsOpen()) Press("cmdClose");
      });
    };
    m_opened = 0;
    EXPECT_TRUE(Choose("mnuSettingsConfig"));
    EXPECT_EQ(m_opened, 1);
    m_boxes.OnBox = nullptr;
  }
  void Activate() { QApplication::setActiveWindow(m_dialog); }  // as a desktop does after a box
  bool IsOpen() const { return m_dialog->isVisible(); }

  template <class Widget = QWidget>
  Widget* Of(const char* name) {
    auto* const found = m_dialog->findChild<Widget*>(name);
    EXPECT_NE(found, nullptr) << name;
    return found;
  }
  void Tab(int index) {
    auto* const bar = Of<QTabWidget>("tabStrip")->tabBar();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(index).center());
  }
  void Press(const char* name) { QTest::mouseClick(Of<QPushButton>(name), Qt::LeftButton); }
  void Tick(const char* name) { QTest::keyClick(Of<QCheckBox>(name), Qt::Key_Space); }
  void Type(const char* name, const char* text) {
    Of<QLineEdit>(name)->clear();
    Of(name)->setFocus();
    QTest::keyClicks(Of(name), text);
  }
  void Enter(const char* name) { QTest::keyClick(Of(name), Qt::Key_Return); }
  std::string Text(const char* name) { return Of<QLineEdit>(name)->text().toStdString(); }
  void ClickItem(const char* list, int row, Qt::KeyboardModifiers keys = {}, bool twice = false) {
    auto* const view = Of<QListWidget>(list);
    const QPoint place = view->visualItemRect(view->item(row)).center();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, keys, place);
    if (twice) QTest::mouseDClick(view->viewport(), Qt::LeftButton, keys, place);
  }
  void DoubleClickItem(const char* list, int row) { ClickItem(list, row, {}, true); }
  /// The entries of a list.
  Lines Items(const char* list) {
    Lines items;
    auto* const view = Of<QListWidget>(list);
    for (int row = 0; row < view->count(); ++row)
      items.push_back(view->item(row)->text().toStdString());
    return items;
  }
  /// The hives without "HKEY_", the ticked ones followed by "+".
  std::string Hives() {
    std::string hives;
    auto* const view = Of<QListWidget>("lstRegHives");
    for (int row = 0; row < view->count(); ++row) {
      const QListWidgetItem& item = *view->item(row);
      hives += item.text().mid(5).toStdString() + (item.checkState() == Qt::Checked ? "+ " : " ");
    }
    return hives;
  }
  /// How many of the controls are enabled.
  int Enabled(std::initializer_list<const char*> names) {
    return static_cast<int>(std::count_if(
        names.begin(), names.end(), [this](const char* name) { return Of(name)->isEnabled(); }));
  }
  Lines Stored(const std::string& section) {
    Lines lines;
    for (const std::string& key : m_settings.Keys(section)) {
      lines.push_back(key + "=" + m_settings.GetSetting(section, key));
    }
    return lines;
  }

 private:
  QPointer<QWidget> m_dialog;
  int m_opened = 0;
};

TEST_F(frmConfigTest, FoldersComeAndGo) {
  Configure([this] {
    // The page's switch has the key E too.
    auto* const tabs = Of<QTabWidget>("tabStrip");
    for (const auto& [key, index] :
         {std::pair(Qt::Key_R, 1), {Qt::Key_E, 1}, {Qt::Key_E, 2}, {Qt::Key_F, 0}}) {
      QTest::keyClick(tabs, key, Qt::AltModifier);
      EXPECT_EQ(tabs->currentIndex(), index);
    }
    Type("txtDSZoom", "C:\\windows");
    Enter("txtDSZoom");
    EXPECT_EQ(Text("txtDSZoom"), "C:\\windows");  // refused
    DoubleClickItem("lstDrives", 0);
    EXPECT_EQ(Text("txtDSZoom"), "C:");
    Type("txtDSZoom", "C:\\windows");
    Press("cmdDSAdd");
    EXPECT_EQ(Text("txtDSZoom"), "");
    // The picker stays open while the folder is refused, and gives nothing when it is cancelled.
    m_boxes.Files = {"C:\\users", "C:\\users\\tester", ""};
    Press("cmdAddFolder");
    Press("cmdAddFolder");
    EXPECT_EQ(Items("lstDrives"), (Lines{"C:\\windows", "C:\\users"}));
    ClickItem("lstDrives", 1);
    EXPECT_EQ(Text("txtDSZoom"), "C:\\users");
    ClickItem("lstDrives", 0, Qt::ControlModifier);
    Press("cmdRemoveFolder");
    EXPECT_EQ(Items("lstDrives"), Lines{});
  });
  EXPECT_EQ(m_boxes.Log.size(), 5U);
  EXPECT_EQ(m_boxes.Log[3],
            "Sandrel Manager|You are already scanning this folder or one of it's parent folder");
  EXPECT_EQ(Stored("ScanFolders"), Lines{"1=C:"});  // closing stores the default alone
}

TEST_F(frmConfigTest, ExclusionsComeAndGo) {
  m_sample.WriteFile("C:\\a.txt", "");
  m_sample.WriteFile("C:\\b.txt", "");
  Configure([this] {
    Tab(2);
    m_boxes.Buttons = {"No", "Yes"};
    for (int i = 0; i < 2; ++i) {
      Type("txtZoom", "C:\\gone.txt");
      Enter("txtZoom");
      EXPECT_EQ(Text("txtZoom"), "");
    }
    m_boxes.Files = {"\"a.txt\" \"b.txt\"", "C:\\windows", ""};
    Press("cmdAddFile");
    Press("cmdExcludeAddFile");
    Press("cmdAddFile");
    EXPECT_EQ(Items("lstFileExclude"), (Lines{"C:\\users\\tester\\Temp\\", "C:\\gone.txt",
                                              "C:\\a.txt", "C:\\b.txt", "C:\\windows\\"}));
    ClickItem("lstFileExclude", 1);
    EXPECT_EQ(Text("txtZoom"), "C:\\gone.txt");
    Activate();
    QTest::keyClick(Of("lstFileExclude"), Qt::Key_Delete);
    ClickItem("lstFileExclude", 0);
    Press("cmdRemoveFile");
    DoubleClickItem("lstFileExclude", 2);
    EXPECT_EQ(Items("lstFileExclude"), (Lines{"C:\\a.txt", "C:\\b.txt"}));
  });
  EXPECT_EQ(m_boxes.Log.size(), 5U);
  EXPECT_EQ(m_boxes.Log[2], "Select files(s) to Exclude from Disk Scan|");
}

TEST_F(frmConfigTest, SwitchesEnableWhatDependsOnThem) {
  const TempFolder network;
  std::filesystem::create_directory_symlink(m_sample.Folder(), network.Of("BOX"));
  const Variables variables{{"SANDREL_NETWORK", network.Path()}};
  const std::string all = "CLASSES_ROOT CURRENT_CONFIG+ CURRENT_USER+ LOCAL_MACHINE+ ";
  Configure([&] {
    const auto disk = {"lstDrives",        "chkAttribInfo", "chkSizeInfo",    "chkVersionInfo",
                       "chkHiddenFolders", "cmdAddFolder",  "cmdRemoveFolder"};
    Tick("chkEnableDiskScan");
    EXPECT_EQ(Enabled(disk), 0);

    Tab(1);
    const auto local = {"cmdSelectAll", "cmdSelectNone", "chkRemote"};
    const auto remote = {"txtRemote", "cmdAddRemote"};
    EXPECT_EQ(Hives(), all + "USERS+ ");
    Of<QListWidget>("lstRegHives")->setCurrentRow(4);
    QTest::keyClick(Of("lstRegHives"), Qt::Key_Space);
    Tick("chkRemote");
    EXPECT_EQ(Hives(), "LOCAL_MACHINE+ USERS ");
    EXPECT_EQ(Enabled(remote), 2);
    m_boxes.Files = {"box"};
    Press("cmdAddRemote");
    EXPECT_EQ(Text("txtRemote"), "BOX");
    Press("cmdSelectAll");
    Tick("chkRemote");
    EXPECT_EQ(Hives(), all + "USERS+ ");
    Tick("chkRemote");
    Tick("chkEnableRegScan");
    EXPECT_EQ(Enabled(local) + Enabled(remote), 0);

    Tab(2);
    Tick("chkFileExclude");
    EXPECT_EQ(Enabled({"cmdAddCustom", "lstFileExclude"}), 0);
    Press("cmdSave");
  });
  EXPECT_EQ(Stored("Enabled"),
            (Lines{"DiskScan=0", "VersionInfo=0", "SizeInfo=1", "AttributeInfo=1",
                   "HiddenFolders=1", "RegScan=0", "RemoteRegistry=1", "FileExclude=0"}));
  EXPECT_EQ(m_settings.GetSetting("RegScan", "RemoteName"), "BOX");
}

TEST_F(frmConfigTest, WhatIsSavedChangesTheNextScan) {
  m_sample.WriteFile("C:\\outside.txt", "");
  Configure([this] {
    DoubleClickItem("lstDrives", 0);
    Type("txtDSZoom", "C:\\windows");
    Enter("txtDSZoom");
    Tick("chkVersionInfo");
    Tab(1);
    Tick("chkEnableRegScan");
    QTest::keyClick(Of("tabStrip"), Qt::Key_S, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !IsOpen(); }));
  });
  EXPECT_EQ(m_boxes.Log, Lines{});  // nothing to lose, nothing to ask
  ASSERT_TRUE(Choose("mnuSnapShotBefore"));
  EXPECT_EQ(Cell(Working(), "SELECT Version FROM tblFiles WHERE FileName = 'sample.dll'"),
            "1.2.3.4");
  EXPECT_EQ(test::Rows(Working(), "SELECT PathName FROM tblPaths"),
            (Lines{"C:\\windows\\", "C:\\windows\\system32\\"}));
  EXPECT_EQ(Cell(Working(), "SELECT count(*) FROM tblRegKey"), "0");

  // Saving asks each time now. No leaves all as it is, Yes clears the snapshot.
  Configure([this] {
    Tick("chkVersionInfo");
    m_boxes.Buttons = {"No", "Yes"};
    Press("cmdSave");
    EXPECT_TRUE(IsOpen());
    EXPECT_EQ(m_settings.GetSetting("Enabled", "VersionInfo"), "1");
    Press("cmdSave");
    EXPECT_FALSE(IsOpen());
  });
  EXPECT_EQ(m_boxes.Log.size(), 2U);
  EXPECT_EQ(m_settings.GetSetting("Enabled", "VersionInfo"), "0");
  EXPECT_FALSE(clsFileWorks::FileExists(Working()));
  EXPECT_EQ(Commands(), "Before Menus");
  EXPECT_EQ(Find<QLabel>("txtLastBeforeSnapshot")->text(), "Last 'Before' Snapshot: None");
}

TEST_F(frmConfigTest, ASaveThatFailsSaysSoAndLosesNothing) {
  m_sample.MapDrive('d', m_temp.Path());
  Configure([this] {
    Type("txtDSZoom", "D:\\");
    Enter("txtDSZoom");
    const std::string lock = m_settings.Path() + ".lock";
    std::filesystem::remove(lock);
    std::filesystem::create_directory(lock);  // the settings can't be written
    m_boxes.Buttons = {"Ignore"};
    Press("cmdSave");
    EXPECT_TRUE(m_boxes.Has("frmConfig.cmdSave") && IsOpen());
    std::filesystem::remove(lock);
    Press("cmdSave");
  });
  EXPECT_EQ(Stored("ScanFolders"), (Lines{"1=C:", "2=D:\\"}));
}

TEST_F(frmConfigTest, WithoutAMachineItTellsWhatIsMissing) {
  Start();
  const std::string folder = m_sample.Folder();
  std::filesystem::rename(folder + "/drive_c", folder + "/gone");
  Configure([this] {
    EXPECT_TRUE(Of<QLabel>("lblMachine")->text().contains("no Windows machine"));
    EXPECT_EQ(Items("lstDrives"), Lines{});
    Press("cmdAddFolder");
    Tab(2);
    Press("cmdAddFile");
    Press("cmdExcludeAddFile");
    EXPECT_TRUE(m_boxes.Has("There is no Windows machine in"));
    EXPECT_EQ(m_boxes.Log.size(), 3U);
    m_boxes.Buttons = {"Yes"};
    Type("txtZoom", "C:\\Games\\Cache\\");
    Enter("txtZoom");
    Press("cmdSave");
  });
  EXPECT_EQ(Stored("ExcludeFiles"), Lines{"1=C:\\Games\\Cache\\"});
}

}  // namespace
}  // namespace sandrel::test
