// Exporting rows to a registry file and copying files out of the machine through the main window.
#include <filesystem>
#include <set>

#include "window/support/BrowserFixture.h"

namespace sandrel::test {
namespace {

constexpr const char* Acme = "x.mdb\\Files\\New\\C:\\Program files\\Acme";
constexpr const char* Picker = "Selection a destination folder for the selected file(s)";

class frmExportTest : public BrowserFixture {
 protected:
  /// Exports these rows of the page on show; the boxes that came up.
  Lines Export(const Numbers& rows, const std::string& file, std::deque<std::string> answers = {}) {
    Pick(rows);
    return Run("mnuFileExportToRegFile", file, std::move(answers));
  }
  Lines Copy(const Numbers& rows, std::deque<std::string> answers = {}) {
    Pick(rows);
    return Run("mnuFileExportFiles", m_to, std::move(answers));
  }
  Lines Run(const char* item, const std::string& target, std::deque<std::string> answers = {}) {
    m_boxes.Log.clear();
    m_boxes.Files = {target};
    m_boxes.Buttons = std::move(answers);
    EXPECT_TRUE(Choose(item));
    EXPECT_TRUE(m_boxes.Buttons.empty());
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_TRUE(m_form->isEnabled());
    return m_boxes.Log;
  }
  /// The box at the end of a copy.
  static std::string Summary(const std::string& lines) {
    return "Sandrel Manager Copy Results|" + lines;
  }
  /// What lies below the folder that copies go to, folders with a slash.
  std::string Copies() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(m_to)) {
      names.insert(entry.path().string().substr(m_to.size() + 1) +
                   (entry.is_directory() ? "/" : ""));
    }
    std::string all;
    for (const std::string& name : names) all += (all.empty() ? "" : " ") + name;
    return all;
  }

  const std::string m_reg = m_temp.Of("out.reg"), m_to = m_temp.Of("to");
};

TEST_F(frmExportTest, WritesTheSelectedRowsOfARegistryPage) {
  OpenSample();
  struct Case {
    const char* Node;
    Numbers Rows;
    const char* Keys;  // of the file, behind its head; LF for CR LF
  };
  const Case cases[] = {{"NewRegistry", {0, 2, 4}, R"(
[HKEY_CURRENT_USER\Software\Acme]
"user"="me"

[HKEY_LOCAL_MACHINE\Software\Acme\Sub]
"s"="9"
"u"="8"
)"},
                        {"Registry", {1, 7}, R"(
[HKEY_CURRENT_USER\Software\Acme]
"level"=dword:00000002

[HKEY_LOCAL_MACHINE\Software\Acme]
"gone"="x"
)"},
                        {"HKEY_USERS_ChangedRegistry", {0}, R"(
[HKEY_USERS\S-1-5-21-0-0-0-1000\Software\Acme]
"level"=dword:00000002
)"}};
  for (const Case& one : cases) {
    SCOPED_TRACE(one.Node);
    ClickNode(one.Node);
    std::filesystem::remove(m_reg);
    EXPECT_EQ(Export(one.Rows, m_reg), Lines{"Export To Registry File|"});
    const QString expected = QString("REGEDIT4\n") + one.Keys;
    EXPECT_EQ(clsFileWorks::ReadWhole(m_reg),
              QString(expected).replace("\n", "\r\n").toStdString());
  }
}

TEST_F(frmExportTest, IsOfferedWhereItFits) {
  OpenSample();
  std::string offered;
  for (const char* node : {"Root", "Registry", "HKEY_USERS_NewRegistry", "DeletedRegistry", "Ini",
                           "NewIni", "Files", "NewFiles", "ChangedFiles", "DeletedFiles", Acme}) {
    ClickNode(node);
    offered += IsEnabled("mnuFileExportToRegFile") ? "registry " : "";
    offered += IsEnabled("mnuFileExportFiles") ? "files " : "";
    offered += IsEnabled("mnuFileExport") ? "" : "- ";
  }
  EXPECT_EQ(offered, "- registry registry registry - - files files files - files ");
  ClickNode("NewRegistry");
  ClickRow(0, 0, Qt::ControlModifier);  // selects nothing
  EXPECT_FALSE(IsEnabled("mnuFileExport"));
}

TEST_F(frmExportTest, KeepsTheOldRegistryFileUntilTheNewOneStands) {
  const std::string path = MakeSample();
  test::Rows(path, "UPDATE tblNewRegistryEnteries SET Value = '\u2603' WHERE ValueName = 's'");
  Start();
  Open(path);
  ClickNode("NewRegistry");
  clsFileWorks::ReplaceWhole(m_reg, "old");
  EXPECT_EQ(Export({0}, "").size(), 1U);
  EXPECT_EQ(Export({0}, m_reg, {"No"}),
            (Lines{"Export To Registry File|",
                   "Confirmation Required|WARNING! An existing file by that name (out.reg) has "
                   "been found!\n\nOverwrite the existing file?"}));
  Export({0}, path, {"OK"});  // asks for another one, which isn't named
  EXPECT_TRUE(m_boxes.Has("that file holds an analysis or snapshots") && IsWhole(path));
  EXPECT_EQ(clsFileWorks::ReadWhole(m_reg), "old");
  Export({0}, m_temp.Of("none/out.reg"), {"Retry", "Ignore"});  // the file isn't asked for again
  EXPECT_TRUE(m_boxes.Has("frmSandrel.mnuFileExportToRegFile"));
  Export({0}, m_temp.Of("out"), {"Yes"});  // as out.reg
  EXPECT_NE(clsFileWorks::ReadWhole(m_reg).find("\"user\"=\"me\""), std::string::npos);
  Export({2}, m_temp.Of("lost.reg"));
  QTRY_VERIFY(m_boxes.Has("1 value(s) were left out:"));
}

TEST_F(frmExportTest, CopiesTheFilesOfEachPage) {
  OpenSample();
  ClickNode("NewFiles");
  EXPECT_EQ(Run("mnuFileExportFiles", ""), Lines{Picker});  // cancelled
  EXPECT_EQ(Copy({0, 1, 2, 3, 4}),                          // two of them are folders
            (Lines{Picker, Summary("3 File(s) were successfully copied.")}));
  EXPECT_EQ(Copies(), "a.dat acme.exe read.me");
  std::filesystem::remove_all(m_to);

  ClickNode("Files");
  EXPECT_EQ(Copy({1, 2})[1], Summary("1 File(s) were successfully copied.\n1 File(s) were ignored "
                                     "because they were Deleted Files"));
  EXPECT_EQ(Copies(), "acme.exe");
  std::filesystem::remove_all(m_to);

  ClickNode(Acme);
  EXPECT_EQ(Copy({0, 2})[1], Summary("2 File(s) were successfully copied."));  // a folder's too
  EXPECT_EQ(Copies(), "Data/ Data/DEEP/ Data/DEEP/a.dat read.me");
}

}  // namespace
}  // namespace sandrel::test
