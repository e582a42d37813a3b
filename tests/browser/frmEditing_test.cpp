// Deleting, undoing, copying and selecting rows of an analysis through the main window.
#include <sys/resource.h>
#include <unistd.h>

#include <QClipboard>
#include <QGuiApplication>
#include <csignal>
#include <filesystem>
#include <set>

#include "window/support/BrowserFixture.h"

namespace sandrel::test {
namespace {

// The node of the page of one table.
std::string NodeOf(int index) {
  static constexpr const char* Kinds[] = {"New", "Changed", "Deleted"};
  static constexpr const char* Groups[] = {"Registry", "Ini", "Files"};
  return std::string(Kinds[index / 3]) + Groups[index % 3];
}

constexpr const char* Acme = "x.mdb\\Files\\New\\C:\\Program files\\Acme";
constexpr const char* Deep = "x.mdb\\Files\\New\\C:\\Program files\\Acme\\Data\\Deep";
constexpr const char* Hklm = "HKEY_LOCAL_MACHINE_NewRegistry";
constexpr const char* One = "Sandrel Manager|Are you sure you want to delete the selected item.";
constexpr const char* Several =
    "Sandrel Manager|Are you sure you want to delete all the selected items.";

class frmEditingTest : public BrowserFixture {
 protected:
  /// Chooses Delete for these rows and answers the question; the boxes that came up, the question
  /// without what it names.
  Lines Delete(const Numbers& rows, std::deque<std::string> answers = {"Yes"}) {
    Pick(rows);
    m_boxes.Log.clear();
    m_boxes.Buttons = std::move(answers);
    EXPECT_TRUE(Choose("mnuEditDelete"));
    EXPECT_TRUE(m_boxes.Buttons.empty());
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    Lines boxes = m_boxes.Log;
    if (!boxes.empty()) boxes[0].resize(std::min(boxes[0].find("\n\n"), boxes[0].size()));
    return boxes;
  }
  /// What the Edit menu offers; "?" behind one whose button says otherwise.
  std::string Offered() {
    std::string offered;
    for (const char* name : {"Undo", "Copy", "Delete", "SelectAll"}) {
      const bool item = IsEnabled(std::string("mnuEdit") + name);
      const auto* button = m_form->findChild<QToolButton*>(QString("tlbarMain.") + name);
      const bool agree = button == nullptr || button->isEnabled() == item;
      if (item || !agree) offered += (offered.empty() ? "" : " ") + std::string(name);
      if (!agree) offered += "?";
    }
    return offered;
  }
  /// A row with its icon and what an "All" page shows of its cells.
  std::string Twin(const ListView& list, std::size_t row, const char* ending) {
    std::string text = list.KeyText(row) + ending + ImageKeys[list.SmallIcon(row)];
    for (std::size_t i = 0; i < list.Columns().size(); ++i) {
      if (!list.Columns()[i].Text.starts_with("Old ")) text += "|" + std::string(list.Cell(row, i));
    }
    return text;
  }
  /// The "All" pages and the statistics tell of the rows of the single pages.
  void ExpectTwins() {
    for (int all = 0; all < 3; ++all) {
      std::multiset<std::string> single, twins;
      for (int page = all; page < page::Stats; page += 3) {
        for (std::size_t row = 0; row < List(page).RowCount(); ++row) {
          single.insert(Twin(List(page), row, page < 3 ? "" : page < 6 ? "-2" : "-3"));
        }
      }
      const ListView& list = List(page::AllRegistry + all);
      for (std::size_t row = 0; row < list.RowCount(); ++row) twins.insert(Twin(list, row, ""));
      EXPECT_EQ(single, twins) << "page " << page::AllRegistry + all;
    }
    for (std::size_t row = 0; row < 9; ++row) {
      const ListView& stats = List(page::Stats);
      EXPECT_EQ(stats.Cell(row, 1), std::to_string(List(CountedPage(stats.Text(row))).RowCount()));
    }
  }
  /// The rows of all lists but the views.
  std::vector<Lines> AllRows() {
    std::vector<Lines> rows;
    for (int index = 0; index < page::SharedPage; ++index) rows.push_back(Rows(List(index)));
    return rows;
  }
  /// The records of the nine tables, as another program sees them: without what is pending.
  static std::string Records(const std::string& path) {
    std::string counts;
    for (int index = 0; index < page::Stats; ++index) {
      const std::string table = "tbl" + NodeOf(index) + (index % 3 < 2 ? "Enteries" : "");
      counts += Cell(path, "SELECT count(*) FROM " + table) + " ";
    }
    return counts;
  }
};

TEST_F(frmEditingTest, OffersWhatCanBeDone) {
  OpenSample();
  EXPECT_EQ(Offered(), "SelectAll");
  ClickNode("HKEY_CLASSES_ROOT_NewRegistry");
  EXPECT_EQ(Offered(), "");
  for (const char* node : {"Ini", "DeletedFiles", Hklm}) {
    ClickNode(node);  // its first row is selected, and nobody chose it
    EXPECT_EQ(Offered(), "SelectAll") << node;
    ClickRow(PageShown(), 0);
    EXPECT_EQ(Offered(), "Copy Delete SelectAll") << node;
  }
  ClickNode(Acme);
  ClickRow(page::FilteredPage, 0);  // a folder is no record
  EXPECT_EQ(Offered(), "SelectAll");
  ClickRow(page::FilteredPage, 1, Qt::ControlModifier);
  EXPECT_EQ(Offered(), "Copy Delete SelectAll");
  ASSERT_TRUE(Choose("mnuFileClose"));
  EXPECT_EQ(Offered(), "");
}

TEST_F(frmEditingTest, AsksAndNoKeepsAllIncludingTheLastDelete) {
  const std::string path = OpenSample();
  ClickNode("NewRegistry");
  const std::vector<Lines> before = AllRows();
  const std::string records = Records(path);
  EXPECT_EQ(Delete({1}, {"No"}), Lines{One});
  EXPECT_EQ(m_boxes.Log[0].substr(m_boxes.Log[0].find("\n\n")),
            "\n\nHKEY_LOCAL_MACHINE  Software\\Acme  new");
  EXPECT_TRUE(AllRows() == before && IsFree(path));

  EXPECT_EQ(Delete({0, 5}), Lines{Several});
  EXPECT_EQ(Column(2), "new s t u");
  EXPECT_EQ(Delete({0}, {"No"}), Lines{One});
  EXPECT_FALSE(IsFree(path));
  EXPECT_EQ(Records(path), records);
  EXPECT_EQ(Offered(), "Undo Copy Delete SelectAll");
  std::string meanwhile = "?";  // no other command comes in between
  m_watch.During("Loading...", [&] { meanwhile = Commands(); });
  PressButton("Undo");
  EXPECT_EQ(meanwhile, "");
  EXPECT_EQ(AllRows(), before);
  EXPECT_EQ(PageShown(), page::NewRegistry);
  EXPECT_FALSE(IsEnabled("mnuEditUndo"));
  EXPECT_TRUE(IsFree(path));
}

TEST_F(frmEditingTest, DeletesOnThePagesOfOneTable) {
  const std::string path = OpenSample();
  ExpectTwins();
  for (int index = 0; index < 9; ++index) {
    SCOPED_TRACE(NodeOf(index));
    ClickNode(NodeOf(index));
    const std::size_t rows = Shown().RowCount();
    Delete({0});
    EXPECT_EQ(Shown().RowCount(), rows - 1);
    EXPECT_EQ(PageShown(), index);
    ExpectTwins();
  }
  EXPECT_EQ(Tree().Find("x.mdb\\Files\\Deleted\\C:"), nullptr);
  EXPECT_EQ(Records(path), "5 0 4 2 0 0 0 0 1 ");  // the last is pending
  const std::vector<Lines> rows = AllRows();
  ASSERT_TRUE(Choose("mnuFileClose"));
  EXPECT_EQ(Records(path), "5 0 4 2 0 0 0 0 0 ");
  EXPECT_TRUE(IsWhole(path));
  Open(path);
  EXPECT_EQ(AllRows(), rows);
}

TEST_F(frmEditingTest, DeletesOnThePagesOfThreeTables) {
  const std::string path = OpenSample(), deep = std::string(Acme) + "\\Data";
  ClickNode("Registry");
  Delete({0, 1, 7});
  ExpectTwins();
  ClickNode("Ini");
  Delete({0, 1, 2});
  EXPECT_EQ(Offered(), "Undo");
  Tree().EnsureVisible(Tree().Item(deep));
  ClickNode("Files");
  Delete({1, 6});
  EXPECT_EQ(Column(1), "app.ini acme.exe read.me  a.dat");
  EXPECT_EQ(Tree().Find("x.mdb\\Files\\Deleted\\C:"), nullptr);
  EXPECT_EQ(Tree().Find("x.mdb\\Files\\New\\C:\\Zoo"), nullptr);
  EXPECT_TRUE(Tree().Item(Acme).Expanded());
  EXPECT_EQ(SelectedNode(), "Files");
  ExpectTwins();
  ASSERT_TRUE(Choose("mnuEditUndo"));
  EXPECT_NE(Tree().Find("x.mdb\\Files\\New\\C:\\Zoo"), nullptr);
  ExpectTwins();
  Stop();  // with nothing pending: the two deletes before are final
  EXPECT_EQ(Records(path), "5 0 5 2 0 1 0 0 1 ");
}

TEST_F(frmEditingTest, DeletesInTheViewsOfAHiveAndAFolder) {
  OpenSample();
  ClickNode("NewRegistry");
  Pick({0, 1, 5});
  ClickNode(Hklm);
  EXPECT_EQ(Delete({0, 2}), Lines{Several});
  EXPECT_EQ(Column(1), "s u");
  EXPECT_EQ(SelectedNode(), Hklm);
  EXPECT_EQ(Selected(page::NewRegistry), (Numbers{0, 3}));  // what is left of its own selection
  ExpectTwins();
  ASSERT_TRUE(Choose("mnuEditUndo"));
  EXPECT_EQ(Column(1), "new s t u");

  ClickNode(Acme);
  const std::vector<Lines> before = AllRows();
  EXPECT_EQ(Delete({0, 2}), Lines{One});  // the folder stays
  EXPECT_EQ(Column(0), "Data acme.exe");
  ExpectTwins();
  ASSERT_TRUE(Choose("mnuEditUndo"));
  EXPECT_EQ(SelectedNode(), Acme);
  EXPECT_EQ(Column(0), "Data acme.exe read.me");
  EXPECT_EQ(AllRows(), before);
  Tree().EnsureVisible(Tree().Item(Deep));
  ClickNode(Deep);
  Delete({0});  // the folder's last file
  EXPECT_EQ(Tree().Find(Deep), nullptr);
  EXPECT_EQ(SelectedNode(), "NewFiles");
  EXPECT_EQ(BoldPath(), Tree().Item("NewFiles").FullPath());
  ExpectTwins();
}

TEST_F(frmEditingTest, EveryRowCanBeDeletedWhateverItHolds) {
  const std::string path = MakeSample();
  test::Rows(path, "INSERT INTO tblDeletedIniEnteries SELECT * FROM tblDeletedIniEnteries");
  test::Rows(path, R"(UPDATE tblNewIniEnteries SET Value = '" OR "1"="1', PathName = NULL)");
  test::Rows(path, "UPDATE tblDeletedIniEnteries SET PathName = NULL, FileName = NULL");
  test::Rows(path, R"(UPDATE tblNewFiles SET PathName = 'C:\a"b\' WHERE FileName = 'read.me')");
  test::Rows(path, R"(UPDATE tblNewFiles SET FileName = 'x" OR "1"="1' WHERE FileName = 'a.dat')");
  Start();
  Open(path);
  ClickNode("DeletedIni");
  Delete({0});  // takes both records, which are equal
  EXPECT_EQ(Shown().RowCount(), 0U);
  ClickNode("NewIni");
  EXPECT_EQ(Delete({0}), Lines{One});
  EXPECT_EQ(Shown().RowCount(), 0U);
  ClickNode("NewFiles");
  ASSERT_EQ(Column(1), "read.me acme.exe  x\" OR \"1\"=\"1 ");
  EXPECT_EQ(Delete({0, 3, 4}), Lines{Several});
  EXPECT_EQ(Column(1), "acme.exe ");
  EXPECT_EQ(Selected(PageShown()), Numbers{0}) << "the row that took their place";
  // All of it twice, with an Undo between.
  for (int round = 0; round < 2; ++round) {
    for (const char* node : {"Registry", "Ini", "Files"}) {
      ClickNode(node);
      if (Shown().RowCount() == 0) continue;
      ASSERT_TRUE(Choose("mnuEditSelectAll"));
      m_boxes.Buttons = {"Yes"};
      ASSERT_TRUE(Choose("mnuEditDelete"));
      EXPECT_EQ(Shown().RowCount(), 0U) << node;
      if (round == 0) {
        ASSERT_TRUE(Choose("mnuEditUndo"));
      }
    }
  }
  Stop();
  EXPECT_EQ(Records(path), "0 0 0 0 0 0 0 0 0 ");
  EXPECT_TRUE(IsWhole(path));
}

TEST_F(frmEditingTest, ACrashUndoesWhatIsPending) {
  const std::string path = MakeSample();
  test::Rows(
      path,
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000) "
      "INSERT INTO tblNewRegistryEnteries (Hive, Branch, ValueName, Value, ValueType) SELECT "
      "(SELECT min(Hive) FROM tblHives), 'Software\\Big', i, hex(randomblob(200)), 1 FROM n");
  Start();
  Open(path);
  ClickNode("NewRegistry");
  ASSERT_TRUE(Choose("mnuEditSelectAll"));
  m_boxes.Buttons = {"Yes"};
  PressButton("Delete");
  EXPECT_EQ(Shown().RowCount(), 0U);
  const std::string crashed = m_temp.Of("crashed.mdb");
  for (const char* part : {"", "-journal"}) {
    std::filesystem::copy_file(path + part, crashed + part);
  }
  EXPECT_EQ(Records(crashed), "1006 1 5 3 1 1 1 1 1 ");
  EXPECT_TRUE(IsWhole(crashed));
}

TEST_F(frmEditingTest, ADiskThatRefusesADeleteUndoesItAndTheNextOneWorks) {
  const std::string path = OpenSample();
  ClickNode("NewRegistry");
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  m_boxes.OnBox = [&](QWidget& box) {  // the disk is full between the question and the delete
    rlimit full = before;
    full.rlim_cur = box.windowTitle() == "Sandrel Manager" ? 0 : before.rlim_cur;
    setrlimit(RLIMIT_FSIZE, &full);
  };
  const Lines boxes = Delete({0, 1}, {"Yes", "Ignore"});
  m_boxes.OnBox = nullptr;
  setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_EQ(boxes.size(), 2U);
  EXPECT_EQ(Shown().RowCount(), 6U);
  EXPECT_EQ(Delete({0}), Lines{One});
  EXPECT_EQ(Offered(), "Undo Copy Delete SelectAll");
  Stop();
  EXPECT_EQ(Records(path), "5 1 5 3 1 1 1 1 1 ");
}

TEST_F(frmEditingTest, AnAnalysisThatCantBeWrittenKeepsItsRows) {
  const std::filesystem::path path = MakeSample();
  const auto protect = [&path](unsigned file, unsigned folder) {
    std::filesystem::permissions(path, std::filesystem::perms(file));
    std::filesystem::permissions(path.parent_path(), std::filesystem::perms(folder));
  };
  protect(0444, 0555);
  ASSERT_TRUE(geteuid() != 0 || seteuid(65534) == 0);  // not even root
  Start();
  Open(path);
  ClickNode("NewRegistry");
  const Lines boxes = Delete({0, 1, 2}, {"Yes", "Ignore"});  // told once for all
  EXPECT_NE(boxes.back().find("is read-only"), std::string::npos) << boxes.back();
  EXPECT_EQ(Shown().RowCount(), 6U);
  Stop();
  ASSERT_TRUE(getuid() != 0 || seteuid(0) == 0);
  protect(0644, 0755);
}

TEST_F(frmEditingTest, KeysCopySelectDeleteAndUndo) {
  OpenSample();
  ClickNode("NewFiles");
  const auto press = [&](Qt::Key key, Qt::KeyboardModifiers keys) {
    QApplication::setActiveWindow(m_form.get());
    ListWidget(PageShown())->setFocus();
    QTest::keyClick(QApplication::focusWidget(), key, keys);
  };
  Pick({1, 2});
  press(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(),
            "C:\\Program Files\\Acme\\\tread.me\t2001-09-09 03:46:41\t\t4\tRA\r\n"
            "C:\\Program Files\\Acme\\Data\\\t\t\t\t\t\r\n");
  press(Qt::Key_A, Qt::ControlModifier);
  m_boxes.Buttons = {"Yes"};
  press(Qt::Key_Delete, {});
  EXPECT_EQ(Shown().RowCount(), 0U);
  EXPECT_EQ(m_boxes.Log.back(), std::string(Several) + "\n\n5 items");
  press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(Shown().RowCount(), 5U);
}

}  // namespace
}  // namespace sandrel::test
