// Browsing an analysis in the main window: its pages, their layout, folders, tree and files.
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "window/support/BrowserFixture.h"

namespace sandrel::test {
namespace {

using namespace std::string_literals;

constexpr const char* Hklm = "HKEY_LOCAL_MACHINE_NewRegistry";
constexpr const char* Hkcu = "HKEY_CURRENT_USER_NewRegistry";

class frmBrowserTest : public BrowserFixture {};

// Headers, then each row as "icon source: cells".
struct PageCase {
  const char* Node;
  int Index;
  const char* Caption;
  const char* Shown;
};
constexpr PageCase Pages[] = {
    {"NewRegistry", 0, "Registry - New", R"(Hive|Branch|Value Name|Value|Value Type
newelement 0: HKEY_CURRENT_USER|Software\Acme|user|me|STRING
newelement 0: HKEY_LOCAL_MACHINE|Software\Acme|new|1|STRING
newelement 0: HKEY_LOCAL_MACHINE|Software\Acme\Sub|s|9|STRING
newelement 0: HKEY_LOCAL_MACHINE|Software\Acme\Sub|t|10|STRING
newelement 0: HKEY_LOCAL_MACHINE|Software\Acme\Sub|u|8|STRING
newelement 0: HKEY_USERS|S-1-5-21-0-0-0-1000\Software\Acme|user|me|STRING
)"},
    {"NewIni", 1, "IniEntries - New", R"(Path Name|File Name|Section|Parameter|Value
newini 1: C:\|app.ini|Main|fresh|2
)"},
    {"NewFiles", 2, "Files - New", R"(Path Name|File Name|Date|Version|Size|Attributes
newfile 2: C:\Program Files\Acme\|acme.exe|2001-09-09 03:46:41|2.0.0.1|1536|A
newfile 2: C:\Program Files\Acme\|read.me|2001-09-09 03:46:41||4|RA
newfile 2: C:\Program Files\Acme\Data\|||||
newfile 2: C:\Program Files\Acme\Data\DEEP\|a.dat|2001-09-09 03:46:41||11|A
newfile 2: C:\Zoo\|||||
)"},
    {"ChangedRegistry", 3, "Registry - Changed",
     R"(Hive|Branch|Value Name|New Value|Old Value|Value Type
changedelement 3: HKEY_CURRENT_USER|Software\Acme|level|2|1|DWORD
changedelement 3: HKEY_LOCAL_MACHINE|Software\Acme|change|b|a|STRING
changedelement 3: HKEY_USERS|S-1-5-21-0-0-0-1000\Software\Acme|level|2|1|DWORD
)"},
    {"ChangedIni", 4, "IniEntries - Changed",
     R"(Path Name|File Name|Section|Parameter|New Value|Old Value
changedini 4: C:\|app.ini|Main|device|b|a
)"},
    {"ChangedFiles", 5, "Files - Changed",
     R"(Path Name|File Name|New Date|Old Date|New Version|Old Version|New Size|Old Size|New Attributes|Old Attributes
changedfile 5: C:\|app.ini|2001-09-09 03:46:42|2001-09-09 03:46:40|||24|23|A|A
)"},
    {"DeletedRegistry", 6, "Registry - Deleted", R"(Hive|Branch|Value Name|Value|Value Type
deletedelement 6: HKEY_LOCAL_MACHINE|Software\Acme|gone|x|STRING
)"},
    {"DeletedIni", 7, "IniEntries - Deleted", R"(Path Name|File Name|Section|Parameter|Value
deletedini 7: C:\|app.ini|Main|gone|1
)"},
    {"DeletedFiles", 8, "Files - Deleted", R"(Path Name|File Name|Date|Version|Size|Attributes
deletedfile 8: C:\|old.txt|2001-09-09 03:46:40||3|A
)"},
    {"HKEY_USERS_ChangedRegistry", 13, "Registry - Changed HKEY_USERS",
     R"(Branch|Value Name|New Value|Old Value|Value Type
changedelement 3: S-1-5-21-0-0-0-1000\Software\Acme|level|2|1|DWORD
)"},
    {"x.mdb\\Files\\New\\C:\\Program files\\Acme", 14, "Files - New C:\\Program files\\Acme",
     R"(File Name|Date|Version|Size|Attributes
newfolder 2: Data||||
newfile 2: acme.exe|2001-09-09 03:46:41|2.0.0.1|1536|A
newfile 2: read.me|2001-09-09 03:46:41||4|RA
)"},
};
TEST_F(frmBrowserTest, EveryNodeShowsItsPage) {
  const std::string path = MakeSample();
  test::Rows(path, "UPDATE tblStats SET Value = '99' WHERE id <= 9");  // the lists tell the numbers
  Start();
  Open(path);
  EXPECT_EQ(m_boxes.Log, Lines{"Open Sandrel Database|Sandrel.mdb"});
  EXPECT_EQ(m_form->windowTitle(), "x.mdb - Sandrel");
  EXPECT_EQ(Status(), "");
  EXPECT_EQ(Tree().Count(), 13U + 15U + 8U);
  for (const PageCase& one : Pages) {
    SCOPED_TRACE(one.Node);
    ClickNode(one.Node);
    EXPECT_EQ(PageShown(), one.Index);
    EXPECT_EQ(Page(), one.Shown);
    EXPECT_EQ(m_form->Browser().Tree.PageCaption(), one.Caption + std::string(" - x.mdb"));
    EXPECT_EQ(BoldPath(), Tree().Item(one.Node).FullPath());
    EXPECT_EQ(Selected(one.Index), Shown().RowCount() > 0 ? Numbers{0} : Numbers{});
  }
  ClickNode("Root");
  EXPECT_EQ(PageShown(), page::Stats);
  EXPECT_TRUE(Page().starts_with("Description|Value\nnewregistry 9: Registry - New|6\n")) << Page();
  std::string icons;
  for (std::size_t row = 1; row < 11; ++row) icons += ImageKeys[List(9).SmallIcon(row)] + " "s;
  EXPECT_EQ(icons,
            "changedregistry deletedregistry newfolder changedfolder deletedfolder newini "
            "changedini deletedini none controlpanel ");
  EXPECT_EQ(m_form->Browser().Tree.PageCaption(), "Sandrel Statistics - x.mdb");
  EXPECT_EQ(BoldPath(), "x.mdb");
  DoubleClickRow(page::Stats, 3);  // a folder's icon, but no folder
  EXPECT_EQ(SelectedNode(), "Root");
}

TEST_F(frmBrowserTest, AHivesViewKeepsItsLayout) {
  OpenSample();
  ClickNode(Hklm);
  EXPECT_EQ(Widths(13), EvenWidths(13));
  EXPECT_EQ(Selected(13), Numbers{0});
  DragWidth(13, 1, 45);
  DragColumn(13, 0, 1);
  const Numbers widths = Widths(13);
  EXPECT_NE(widths, EvenWidths(13));
  const std::string headers = "Value Name|Branch|Value|Value Type";
  ClickHeader(13, 2);
  ClickRow(13, 1);
  ClickRow(13, 3, Qt::ControlModifier);

  ClickNode(Hkcu);
  EXPECT_EQ(Widths(13), EvenWidths(13));
  EXPECT_EQ(Headers(), "Branch|Value Name|Value|Value Type");
  EXPECT_EQ(List(13).SortKey(), 0U);
  EXPECT_EQ(Selected(13), Numbers{0});
  ClickNode("NewRegistry");
  ClickNode(Hklm);
  EXPECT_EQ(Widths(13), widths);
  EXPECT_EQ(Headers(), headers);
  EXPECT_EQ(Column(2), "9 8 10 1");
  EXPECT_EQ(Selected(13), (Numbers{1, 3}));

  Stop();  // the next start opens the analysis again, without its sort and selection
  Start();
  ClickNode(Hklm);
  EXPECT_EQ(Widths(13), widths);
  EXPECT_EQ(Headers(), headers);
  EXPECT_EQ(Column(2), "1 9 10 8");
  EXPECT_EQ(Selected(13), Numbers{0});
}

TEST_F(frmBrowserTest, FoldersAreWalkedDownAndUp) {
  const std::string path = MakeSample();
  test::Rows(path, "UPDATE tblNewFiles SET PathName = upper(PathName) WHERE FileName = 'read.me'");
  Start();
  Open(path);
  const std::string drive = "x.mdb\\Files\\New\\C:", programs = drive + "\\Program files";
  EXPECT_EQ(Tree().Item("NewFiles").Children().size(), 1U);
  ClickNode(drive);
  EXPECT_EQ(Page(),
            "File Name|Date|Version|Size|Attributes\nnewfolder 2: Program files||||\n"
            "newfolder 2: Zoo||||\n");
  EXPECT_EQ(Widths(14), EvenWidths(14));
  DoubleClickRow(14, 0);
  EXPECT_EQ(SelectedNode(), programs);
  EXPECT_EQ(Column(0), "Acme");  // one folder, in whichever case its paths are written
  EXPECT_TRUE(Tree().SelectedItem()->Expanded());
  ClickRow(14, 0);
  Key(Qt::Key_Return);
  DoubleClickRow(14, 1);  // a file leads nowhere
  EXPECT_EQ(SelectedNode(), programs + "\\Acme");
  EXPECT_EQ(Column(0), "Data acme.exe read.me");
  DoubleClickRow(14, 0);
  DoubleClickRow(14, 0);
  EXPECT_EQ(Column(0), "a.dat");
  for (const std::string& above :
       {programs + "\\Acme\\Data", programs + "\\Acme", programs, drive, std::string("NewFiles"),
        std::string("Files"), std::string("Root"), std::string("Root")}) {
    QTest::keyClick(ListWidget(PageShown()), Qt::Key_Backspace);
    EXPECT_EQ(SelectedNode(), above);
    EXPECT_EQ(BoldPath(), Tree().Item(above).FullPath());
    EXPECT_EQ(OnScreen(), Numbers{PageShown()});
  }
  EXPECT_EQ(PageShown(), page::Stats);
}

TEST_F(frmBrowserTest, OtherPagesAreSortedUntilTheyAreRefilled) {
  const std::string path = OpenSample();
  ClickNode("NewRegistry");
  EXPECT_EQ(Column(3), "me 1 9 10 8 me");
  ClickHeader(0, 3);
  EXPECT_EQ(Column(3), "me me 9 8 10 1");
  ClickHeader(0, 3);
  ClickNode("Root");
  const std::string stats = Page();
  ClickHeader(9, 0);
  ClickHeader(9, 1);
  EXPECT_EQ(Page(), stats);
  EXPECT_FALSE(ListWidget(9)->header()->isSortIndicatorShown());
  ClickNode("NewRegistry");
  EXPECT_EQ(Column(3), "1 10 8 9 me me");
  Open(path);
  ClickNode("NewRegistry");
  EXPECT_EQ(Column(3), "me 1 9 10 8 me");
}

TEST_F(frmBrowserTest, ColumnsAreReset) {
  OpenSample();
  const std::string headers = "Path Name|File Name|Date|Version|Size|Attributes";
  const std::string hive = "New HKEY_LOCAL_MACHINE";
  for (const auto& [node, list] : {std::pair("DeletedFiles", 8), {Hkcu, 13}, {Hklm, 13}}) {
    ClickNode(node);
    DragColumn(list, 0, 1);
    DragWidth(list, 0, 30);
    EXPECT_NE(Widths(list), EvenWidths(list));
  }
  EXPECT_TRUE(Choose("mnuSettingsColumnsResetWidthsCurrent"));
  EXPECT_EQ(Widths(13), EvenWidths(13));
  EXPECT_TRUE(Choose("mnuSettingsColumnsResetOrderCurrent"));
  EXPECT_TRUE(m_settings.Keys(hive).empty() && m_settings.Keys(hive + " Column Position").empty());
  EXPECT_EQ(Headers(), "Branch|Value Name|Value|Value Type");
  m_boxes.Log.clear();
  for (const char* answer : {"No", "Yes"}) {  // what the others keep
    const bool yes = std::string(answer) == "Yes";
    m_boxes.Buttons = {answer, answer};
    EXPECT_TRUE(Choose("mnuSettingsColumnsResetWidthsAll"));
    EXPECT_TRUE(Choose("mnuSettingsColumnsResetOrderAll"));
    ClickNode("DeletedFiles");
    EXPECT_EQ(Widths(8) == EvenWidths(8), yes);
    EXPECT_EQ(Headers() == headers, yes);
    ClickNode(Hkcu);
    EXPECT_EQ(Widths(13) == EvenWidths(13), yes);
    EXPECT_EQ(Headers() == "Branch|Value Name|Value|Value Type", yes);
  }
  const std::string widths = "Sandrel Manager|Reset all columns to their default widths";
  const std::string order = "Sandrel Manager|Reset all columns to their default order";
  EXPECT_EQ(m_boxes.Log, (Lines{widths, order, widths, order}));
}

TEST_F(frmBrowserTest, TheTreeFollowsKeysAndCommands) {
  OpenSample();
  struct Step {
    Qt::Key Pressed;
    const char* Node;
    int Page;
  };
  ClickNode("NewRegistry");
  for (const Step& step : {Step{Qt::Key_Right, "NewRegistry", 0},
                           {Qt::Key_Down, "HKEY_CLASSES_ROOT_NewRegistry", 13},
                           {Qt::Key_Backspace, "NewRegistry", 0},
                           {Qt::Key_End, "DeletedIni", 7},
                           {Qt::Key_Home, "Root", 9}}) {
    Key(step.Pressed);
    EXPECT_EQ(SelectedNode(), step.Node);
    EXPECT_EQ(OnScreen(), Numbers{step.Page});
    EXPECT_EQ(BoldPath(), Tree().Item(step.Node).FullPath());
  }
  // A collapsed node takes the selection from those below it, with its page; a command doesn't.
  ClickNode(Hklm);
  Find<QTreeView>("treeView")->collapse(IndexOf(Tree().Item("NewRegistry")));
  EXPECT_EQ(SelectedNode(), "NewRegistry");
  EXPECT_EQ(OnScreen(), Numbers{0});
  ClickNode(Hklm);
  EXPECT_TRUE(ChooseIn("mnuView", "mnuViewCollapseAll"));
  EXPECT_EQ(OnScreen(), Numbers{13});
  EXPECT_FALSE(Tree().Item("Root").Expanded());
  EXPECT_TRUE(ChooseIn("mnuView", "mnuViewExpandAll"));
  const std::string deep = "x.mdb\\Files\\New\\C:\\Program files\\Acme";
  ClickNode("NewFiles");
  EXPECT_TRUE(ChooseIn("mnuView", "mnuViewCollapseCurrent"));
  EXPECT_FALSE(Tree().Item("NewFiles").Expanded() || Tree().Item(deep).Expanded());
  EXPECT_TRUE(Tree().Item("NewRegistry").Expanded());
  EXPECT_TRUE(ChooseIn("mnuView", "mnuViewExpandCurrent"));
  EXPECT_TRUE(Tree().Item("NewFiles").Expanded() && Tree().Item(deep).Expanded());
}

TEST_F(frmBrowserTest, TheSplitterStopsBeforeEitherPaneIsLost) {
  OpenSample();
  QWidget& bar = *Find("picSplit");
  const int width = bar.parentWidget()->width();
  // 1001 twips are 66.7 pixels.
  for (const auto& [left, stands] : {std::pair(200, 200),
                                     {67, 67},
                                     {66, 67},
                                     {width - 67, width - 67},
                                     {width - 66, width - 67}}) {
    Drag(&bar, bar.rect().center(), {left - bar.x(), 0});
    EXPECT_EQ(bar.x(), stands) << left;
    EXPECT_EQ(Find("treeView")->width(), stands);
    EXPECT_EQ(ListWidget(9)->geometry().left(), stands);
    EXPECT_EQ(List(0).Width, (width - stands) * 15);
  }
}

TEST_F(frmBrowserTest, FilesThatCanNotBeOpened) {
  OpenSample();
  m_boxes.Log.clear();
  const std::string missing = m_temp.Of("none.mdb");
  Open(missing);
  EXPECT_EQ(m_boxes.Log.back(),
            "Sandrel Manager|File " + missing +
                " not found. An analysis file must exist before it can be opened.\n\nIf you wish "
                "to create a new file, select 'After Snapshot and Analysis' from Sandrel's "
                "'Snapshot' menu. If you wish to open an existing file, please try again. ");
  Open("");
  EXPECT_EQ(OnScreen(), Numbers{page::Stats});

  std::ofstream(m_temp.Of("text.mdb")) << "no database at all, but long enough to be read as one";
  std::ofstream(m_temp.Of("empty.mdb")).flush();
  for (const std::string name : {"text.mdb", "empty.mdb", "home/SandrelTemp.zqd"}) {
    const std::string path = m_temp.Of(name);
    m_settings.SaveSetting("Recent Files", "RecentFile2", path);
    m_form->Browser().Files.UpdateRecentFileMenu();
    m_boxes.Log.clear();
    EXPECT_TRUE(Choose("mnuFileRecent(2)"));
    EXPECT_EQ(m_boxes.Log,
              Lines{"Sandrel Error Message|" + path +
                    " is an invalid or corrupt Sandrel Database.\n\nTry the database repair "
                    "utility if you are certian this is valid Sandrel database. Otherwise, please "
                    "select a different database."});
    ExpectNothingOpen();
    EXPECT_EQ(RecentNames(), "x.mdb");
    EXPECT_TRUE(Choose("mnuFileRecent(1)"));
  }
}

TEST_F(frmBrowserTest, RecentFilesStandInTheirOrder) {
  const std::string first = MakeSample("a.mdb");
  for (const char* name : {"b.mdb", "c.mdb", "d.mdb", "e.mdb", "f.mdb", "C.MDB"}) {
    std::filesystem::copy_file(first, m_temp.Of(name));
  }
  Start();
  EXPECT_EQ(Recent(), Lines{});
  for (const char* name : {"a.mdb", "b.mdb", "c.mdb", "d.mdb", "e.mdb", "f.mdb"}) {
    Open(m_temp.Of(name));
  }
  EXPECT_EQ(RecentNames(), "f.mdb e.mdb d.mdb c.mdb b.mdb");
  EXPECT_TRUE(Choose("mnuFileRecent(3)"));
  EXPECT_EQ(m_form->windowTitle(), "d.mdb - Sandrel");
  Open(m_temp.Of("C.MDB"));
  EXPECT_EQ(RecentNames(), "C.MDB d.mdb f.mdb e.mdb b.mdb");
  std::filesystem::remove(m_temp.Of("f.mdb"));
  m_boxes.Log.clear();
  EXPECT_TRUE(Choose("mnuFileRecent(3)"));
  EXPECT_EQ(m_boxes.Log, Lines{"Sandrel Manager|File " + m_temp.Of("f.mdb") + " not found"});
  EXPECT_EQ(RecentNames(), "C.MDB d.mdb e.mdb b.mdb");
  EXPECT_EQ(m_form->windowTitle(), "C.MDB - Sandrel");
}

TEST_F(frmBrowserTest, AFilesNameMayHoldAnything) {
  const std::string name = R"(R&D größe 日本\neu[*].mdb)";
  const std::string path = m_temp.Of(name);
  std::filesystem::copy_file(MakeSample(), path);
  chmod(path.c_str(), 0444);
  m_settings.SaveSetting("Recent Files", "RecentFile1", path);
  Start();
  EXPECT_EQ(m_boxes.Log, Lines{});
  EXPECT_EQ(Controls().Caption(), name + " - Sandrel");
  EXPECT_NE(Recent().front().find(R"(R&&D größe 日本\neu[*].mdb)"), std::string::npos);
  const std::string folder = name + "\\Files\\New\\C:\\Program files\\Acme";
  ClickNode(folder);
  EXPECT_EQ(m_form->Browser().Tree.PageCaption(), "Files - New C:\\Program files\\Acme - " + name);
  DoubleClickRow(14, 0);
  EXPECT_EQ(SelectedNode(), folder + "\\Data");
}

TEST_F(frmBrowserTest, SettingsThatCanNotBeWrittenCostTheLayoutOnly) {
  const std::string path = OpenSample();
  std::filesystem::remove(m_settings.Path());
  std::filesystem::create_directories(m_settings.Path() + "/in the way");
  m_boxes.Log.clear();
  ClickNode(Hklm);
  ClickHeader(13, 2);
  EXPECT_EQ(Column(2), "9 8 10 1");
  EXPECT_TRUE(Status().starts_with("The columns' layout can't be saved.")) << Status();
  EXPECT_TRUE(Choose("mnuSettingsColumnsResetWidthsCurrent"));
  EXPECT_TRUE(Choose("mnuFileClose"));
  Open(path);
  EXPECT_EQ(m_form->windowTitle(), "x.mdb - Sandrel");
  Stop();
  EXPECT_EQ(m_boxes.Log, Lines{"Open Sandrel Database|Sandrel.mdb"});
}

}  // namespace
}  // namespace sandrel::test
