// The main window with an analysis of everything that a page can show, read as it stands on the
// screen and driven by the mouse.
#pragma once

#include <sys/stat.h>

#include <QMenu>
#include <QMouseEvent>
#include <algorithm>
#include <clocale>

#include "platform/controls/ImageKeys.h"
#include "support/Rows.h"
#include "support/Variables.h"
#include "window/support/WindowFixture.h"

namespace sandrel::test {

using Numbers = std::vector<int>;

class BrowserFixture : public WindowFixture {
 protected:
  BrowserFixture() {
    std::setlocale(LC_TIME, "C");
    tzset();
  }

  /// Makes an analysis with rows in all nine tables.
  std::string MakeSample(const std::string& name = "x.mdb") {
    m_settings.SaveSetting("Enabled", "VersionInfo", "1");
    const std::string system = SampleMachine::SystemKeys() + "[Software\\\\Acme] 1\n";
    const std::string user = SampleMachine::UserKeys() + "[Software\\\\Acme] 1\n";
    m_sample.WriteFile("C:\\old.txt", "old");
    m_sample.WriteFile("C:\\app.ini", "[Main]\ndevice=a\ngone=1\n");
    for (const char* path : {"C:\\old.txt", "C:\\app.ini"}) m_sample.SetTime(path, 1000000000);
    m_sample.SetSystemReg(system + "\"change\"=\"a\"\n\"gone\"=\"x\"\n");
    m_sample.SetUserReg(user + "\"level\"=dword:00000001\n");
    return MakeAnalysis(name, [&] {
      const std::string acme = "C:\\Program Files\\Acme\\";
      m_sample.Remove("C:\\old.txt");
      m_sample.WriteProgram(acme + "acme.exe", 0x00020000, 0x00000001);
      m_sample.WriteFile(acme + "read.me", "acme");
      m_sample.WriteFile(acme + "Data\\DEEP\\a.dat", "12345678901");
      for (const char* file : {"acme.exe", "read.me", "Data\\DEEP\\a.dat"}) {
        m_sample.SetTime(acme + file, 1000000001);
      }
      chmod(m_sample.HostPath(acme + "read.me").c_str(), 0444);
      m_sample.MakeFolder("C:\\Zoo");
      m_sample.WriteFile("C:\\app.ini", "[Main]\ndevice=b\nfresh=2\n");
      m_sample.SetTime("C:\\app.ini", 1000000002);
      m_sample.SetSystemReg(system +
                            "\"change\"=\"b\"\n\"new\"=\"1\"\n[Software\\\\Acme\\\\Sub] 1\n"
                            "\"s\"=\"9\"\n\"t\"=\"10\"\n\"u\"=\"8\"\n");
      m_sample.SetUserReg(user + "\"level\"=dword:00000002\n\"user\"=\"me\"\n");
    });
  }
  void Open(const std::string& path) {
    m_boxes.Files = {path};
    EXPECT_TRUE(Choose("mnuFileOpen"));
  }
  std::string OpenSample() {
    const std::string path = MakeSample();
    Start();
    Open(path);
    return path;
  }
  /// Chooses an item of a menu that was opened for it.
  bool ChooseIn(const std::string& menu, const std::string& item) {
    Q_EMIT Find<QMenu>(menu)->aboutToShow();
    return Choose(item);
  }

  /// The numbers of the lists on the screen.
  Numbers OnScreen() {
    Numbers shown;
    for (int i = 0; i < page::Count; ++i) {
      if (ListWidget(i)->isVisible()) shown.push_back(i);
    }
    return shown;
  }
  int PageShown() { return PageIndex(Controls().PageTag()); }
  /// The cells of the view's row, or its headers for row -1, as they stand on the screen.
  std::string Line(QTreeView& view, int row) {
    std::string line;
    for (int place = 0; place < view.header()->count(); ++place) {
      const int column = view.header()->logicalIndex(place);
      const QAbstractItemModel& model = *view.model();
      const QVariant cell =
          row < 0 ? model.headerData(column, Qt::Horizontal) : model.data(model.index(row, column));
      line += (place > 0 ? "|" : "") + cell.toString().toStdString();
    }
    return line;
  }
  std::string Headers() { return Line(*ListWidget(PageShown()), -1); }
  /// The page on the screen: its headers, then each row as "icon source: cells".
  std::string Page() {
    EXPECT_EQ(OnScreen(), Numbers{PageShown()});
    QTreeView& view = *ListWidget(PageShown());
    EXPECT_FALSE(view.isHeaderHidden());
    std::string text = Headers() + "\n";
    for (std::size_t row = 0; row < Shown().RowCount(); ++row) {
      text += ImageKeys[static_cast<std::size_t>(Shown().SmallIcon(row))];
      text += " " + std::to_string(Shown().RowTag(row)) + ": " + Line(view, static_cast<int>(row)) +
              "\n";
    }
    return text;
  }
  /// One column of the page on the screen, from above, joined with blanks.
  std::string Column(std::size_t column) {
    std::string cells;
    for (std::size_t row = 0; row < Shown().RowCount(); ++row) {
      cells += (row > 0 ? " " : "") + std::string(Shown().Cell(row, column));
    }
    return cells;
  }
  Numbers Selected(int list) {
    Numbers rows;
    for (std::size_t row = 0; row < List(list).RowCount(); ++row) {
      if (List(list).Selected(row)) rows.push_back(static_cast<int>(row));
    }
    return rows;
  }
  /// Selects these rows of the page on show and no others.
  void Pick(const Numbers& rows) {
    Shown().SelectAll(false);
    for (const int row : rows) {
      ClickRow(PageShown(), static_cast<std::size_t>(row), Qt::ControlModifier);
    }
    EXPECT_EQ(Selected(PageShown()), rows);
  }
  Numbers Widths(int list) {
    Numbers widths;
    for (const ListColumn& column : List(list).Columns()) widths.push_back(column.Width);
    return widths;
  }
  Numbers EvenWidths(int list) {
    const std::size_t columns = List(list).Columns().size();
    return Numbers(columns, (List(list).Width - 350) / std::max(1, static_cast<int>(columns)));
  }
  /// The full path of the deepest bold node; every bold one must lie on it.
  std::string BoldPath() {
    std::string path;
    const std::function<void(const Node&)> look = [&](const Node& node) {
      if (node.Bold()) {
        path += (node.Parent() != nullptr ? "\\" : "") + node.Text();
        EXPECT_EQ(path, node.FullPath());
      }
      for (const auto& child : node.Children()) look(*child);
    };
    for (const auto& root : Tree().Roots()) look(*root);
    return path;
  }
  std::string SelectedNode() { return Tree().SelectedItem()->Key(); }

  /// Presses at a place of the widget, moves by `way` and lets go.
  static void Drag(QWidget* widget, QPoint from, QPoint way) {
    const QPoint start = widget->mapToGlobal(from);
    const auto send = [&](QEvent::Type type, QPoint at, Qt::MouseButton button,
                          Qt::MouseButtons held) {
      QMouseEvent event(type, widget->mapFromGlobal(at), at, button, held, {});
      QApplication::sendEvent(widget, &event);
    };
    send(QEvent::MouseButtonPress, start, Qt::LeftButton, Qt::LeftButton);
    send(QEvent::MouseMove, start + way / 2, Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseMove, start + way, Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, start + way, Qt::LeftButton, Qt::NoButton);
  }
  /// Where a column's header begins, with its middle and end.
  QPoint HeaderPlace(int list, int column, int part, int parts = 2) {
    QHeaderView& header = *ListWidget(list)->header();
    return {header.sectionViewportPosition(column) + header.sectionSize(column) * part / parts - 1,
            8};
  }
  void ClickHeader(int list, int column) {
    QTest::mouseClick(ListWidget(list)->header()->viewport(), Qt::LeftButton, {},
                      HeaderPlace(list, column, 1));
  }
  void DragWidth(int list, int column, int pixels) {
    Drag(ListWidget(list)->header()->viewport(), HeaderPlace(list, column, 2), {pixels, 0});
  }
  /// Moves a column behind another one.
  void DragColumn(int list, int column, int behind) {
    const QPoint from = HeaderPlace(list, column, 1);
    Drag(ListWidget(list)->header()->viewport(), from, HeaderPlace(list, behind, 9, 10) - from);
  }
  /// Presses a key where the focus is.
  void Key(Qt::Key key) {
    QApplication::setActiveWindow(m_form.get());
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    QTest::keyClick(QApplication::focusWidget(), key);
  }

  /// The captions of the recent files, without the hidden ones.
  Lines Recent() {
    Lines captions;
    for (int i = 1; i <= 5; ++i) {
      const auto* item = Find<QAction>(clsMainControls::Element("mnuFileRecent", i));
      if (item->isVisible()) captions.push_back(item->text().toStdString());
    }
    EXPECT_EQ(Controls().Menus["mnuFileSep2"].Visible(), !captions.empty());
    return captions;
  }
  /// The names of the recent files, as the menu shows them.
  std::string RecentNames() {
    std::string names;
    for (const std::string& caption : Recent()) {
      names += (names.empty() ? "" : " ") + caption.substr(caption.rfind('/') + 1);
    }
    return names;
  }
  void ExpectNothingOpen() {
    EXPECT_EQ(m_form->windowTitle(), "Untitled - Sandrel");
    EXPECT_EQ(Tree().Count(), 0U);
    EXPECT_EQ(OnScreen(), Numbers{});
    for (int i = 0; i < page::Count; ++i) {
      EXPECT_TRUE(List(i).RowCount() == 0 && List(i).Columns().empty()) << i;
    }
    EXPECT_FALSE(IsEnabled("mnuFileClose") || IsEnabled("mnuSettingsColumnsResetOrder"));
    EXPECT_FALSE(Find<QToolButton>("tlbarMain.Close")->isEnabled());
  }

 private:
  Variables m_zone{{"TZ", "TST-2"}};
};

}  // namespace sandrel::test
