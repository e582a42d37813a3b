#include "platform/qt/clsListWidget.h"

#include <gmock/gmock.h>

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QHelpEvent>
#include <QScrollBar>
#include <QTest>
#include <QToolTip>

#include "platform/controls/ImageKeys.h"

namespace sandrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ListWidgetTest : public testing::Test {
 protected:
  ListWidgetTest() {
    list.BeginUpdate();
    for (const char* const text : {"Path Name", "File Name", "Size"}) list.AddColumn(text, 1500);
    list.SetVisible(true);
    Fill(5000);
    list.EndUpdate();
    list.ColumnClick = [this](std::size_t column) {
      events.push_back("ColumnClick " + std::to_string(column));
    };
    list.ItemClick = [this] { events.push_back("ItemClick"); };
    list.DblClick = [this] {
      events.push_back("DblClick");
      list.SelectOnly(1);
    };
    list.KeyUp = [this](int code) { events.push_back("KeyUp " + std::to_string(code)); };
    widget.setGeometry(0, 0, 360, 300);
    window.resize(400, 400);
    window.show();
    QApplication::setActiveWindow(&window);
    widget.setFocus();
    QCoreApplication::processEvents();
  }

  void Fill(std::uint32_t rows) {
    list.BeginUpdate();
    list.ClearRows();
    for (std::uint32_t row = 0; row < rows; ++row) {
      const TextPool::Id cells[] = {texts.Intern(std::to_string(row * 7919 % rows)),
                                    texts.Intern("setup.exe")};
      list.AddRow({row + 1, 1}, cells, 2, ImageIndex("newfile"));
    }
    list.EndUpdate();
  }

  QRect Cell(int row, int column = 0) const {
    return widget.visualRect(widget.model()->index(row, column));
  }
  void ClickOn(int row, Qt::KeyboardModifiers modifiers = {}) {
    QTest::mouseClick(widget.viewport(), Qt::LeftButton, modifiers, Cell(row).center());
  }
  std::vector<std::size_t> SelectedRows() const {
    std::vector<std::size_t> rows;
    for (std::size_t row = 0; row < list.RowCount(); ++row) {
      if (list.Selected(row)) rows.push_back(row);
    }
    return rows;
  }
  /// The rows on the screen that are painted in the selection's colour.
  std::vector<std::size_t> PaintedRows() {
    const QImage picture = widget.viewport()->grab().toImage();
    const QColor highlight = widget.palette().color(QPalette::Highlight);
    std::vector<std::size_t> rows;
    for (int y = 4; y < picture.height(); y += Cell(0).height()) {
      const QModelIndex index = widget.indexAt({3, y});
      if (index.isValid() && picture.pixelColor(Cell(index.row(), 1).right() - 4, y) == highlight) {
        rows.push_back(static_cast<std::size_t>(index.row()));
      }
    }
    return rows;
  }

  TextPool texts;
  ListView list{texts};
  QWidget window;
  clsListWidget widget{list, &window};
  QAbstractItemModelTester tester{widget.model(),
                                  QAbstractItemModelTester::FailureReportingMode::Fatal};
  std::vector<std::string> events;
};

TEST_F(ListWidgetTest, ClicksAndKeysSelectAsOnWindows) {
  ClickOn(2);
  ClickOn(5, Qt::ControlModifier);
  EXPECT_THAT(SelectedRows(), ElementsAre(2, 5));
  ClickOn(8, Qt::ShiftModifier);  // from the row toggled last, without the others
  EXPECT_THAT(SelectedRows(), ElementsAre(5, 6, 7, 8));
  ClickOn(4, Qt::ShiftModifier);
  EXPECT_THAT(SelectedRows(), ElementsAre(4, 5));
  ClickOn(1, Qt::ControlModifier);
  ClickOn(2, Qt::ControlModifier | Qt::ShiftModifier);
  ClickOn(4, Qt::ControlModifier);
  EXPECT_THAT(SelectedRows(), ElementsAre(1, 2, 5));
  EXPECT_EQ(list.SelectedItem(), 4u);
  QTest::keyClick(&widget, Qt::Key_Down, Qt::ShiftModifier);
  QTest::keyClick(&widget, Qt::Key_Down, Qt::ShiftModifier);
  QTest::keyClick(&widget, Qt::Key_Down, Qt::ControlModifier);
  EXPECT_EQ(list.SelectedItem(), 7u);
  EXPECT_THAT(SelectedRows(), ElementsAre(4, 5, 6));
  QTest::keyClick(&widget, Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(list.SelectedCount(), 5000u);
  QTest::keyClick(&widget, Qt::Key_End);
  EXPECT_THAT(SelectedRows(), ElementsAre(4999));
  EXPECT_TRUE(widget.viewport()->rect().contains(Cell(4999).center()));
  QTest::keyClick(&widget, '7');  // the search by typing starts from the top again
  EXPECT_THAT(SelectedRows(), ElementsAre(list.SelectedItem()));
  EXPECT_EQ(list.Text(list.SelectedItem()).front(), '7');
}

TEST_F(ListWidgetTest, DraggingSelectsWhatLiesBetween) {
  QTest::mousePress(widget.viewport(), Qt::LeftButton, {}, Cell(3).center());
  QTest::mouseMove(widget.viewport(), {20, widget.viewport()->height() + 30});
  EXPECT_GT(list.SelectedCount(), 9u);  // on beyond the last row that shows
  QTest::mouseMove(widget.viewport(), Cell(6).center());
  EXPECT_THAT(events, IsEmpty());
  QTest::mouseRelease(widget.viewport(), Qt::LeftButton, {}, Cell(6).center());
  EXPECT_THAT(events, ElementsAre("ItemClick"));
  QTest::mouseMove(widget.viewport(), Cell(8).center());
  EXPECT_THAT(SelectedRows(), ElementsAre(3, 4, 5, 6));
}

TEST_F(ListWidgetTest, EventsComeOnceAndInOrder) {
  ClickOn(2);
  ClickOn(2);  // nothing changes
  QTest::mouseDClick(widget.viewport(), Qt::LeftButton, {}, Cell(2).center());
  QTest::keyClick(&widget, Qt::Key_Down);
  QTest::keyClick(&widget, Qt::Key_Backspace);
  QTest::keyClick(&widget, Qt::Key_Enter);
  QTest::mouseClick(widget.header()->viewport(), Qt::LeftButton, {}, {150, 8});
  list.SelectOnly(7);  // the program's own doing
  EXPECT_THAT(events, ElementsAre("ItemClick", "DblClick", "ItemClick", "KeyUp 40", "KeyUp 8",
                                  "KeyUp 13", "ColumnClick 1"));
  EXPECT_EQ(widget.currentIndex().row(), 7);
}

TEST_F(ListWidgetTest, AScatteredSelectionSurvivesASortAndIsPaintedRowByRow) {
  list.BeginUpdate();
  for (std::size_t row = 0; row < list.RowCount(); row += 2) list.Select(row, true);
  list.SetSelectedItem(4);
  list.EndUpdate();
  const std::string focused = list.KeyText(4);
  EXPECT_GE(PaintedRows().size(), 5u);
  widget.verticalScrollBar()->setValue(100);
  list.Sort(0, true);
  EXPECT_EQ(widget.verticalScrollBar()->value(), 100);
  EXPECT_EQ(list.KeyText(static_cast<std::size_t>(widget.currentIndex().row())), focused);
  const std::vector<std::size_t> painted = PaintedRows();
  ASSERT_FALSE(painted.empty());
  for (const std::size_t row : painted) EXPECT_TRUE(list.Selected(row)) << row;
  EXPECT_EQ(list.SelectedCount(), 2500u);

  // Another page of as many rows begins at the top; one that loses some stays.
  list.RemoveRows([](std::size_t row) { return row == 3000; });
  EXPECT_EQ(widget.verticalScrollBar()->value(), 100);
  Fill(4999);
  EXPECT_EQ(widget.verticalScrollBar()->value(), 0);
  EXPECT_THAT(PaintedRows(), IsEmpty());
}

TEST_F(ListWidgetTest, LongAndStrangeTextsStayOneShortLine) {
  list.SetCell(0, 0, "a\r\nb\tc\x01\x7F" + std::string(1 << 20, 'x'));
  const QString shown = widget.model()->index(0, 0).data().toString();
  EXPECT_TRUE(shown.startsWith(QString::fromUtf8("a  b c\u2401\uFFFDxxx"))) << shown.toStdString();
  EXPECT_LT(shown.size(), 1010);
  EXPECT_EQ(Cell(0).height(), Cell(1).height());

  list.SetCell(1, 0, "<b>a cut text's tip is no HTML</b>");
  for (const int row : {2, 1}) {
    QHelpEvent help(QEvent::ToolTip, Cell(row).center(), QCursor::pos());
    QApplication::sendEvent(widget.viewport(), &help);
    EXPECT_EQ(QToolTip::text().contains("&lt;b&gt;"), row == 1) << row;
  }
}

// While a page is filled, messages may pass: what is painted and clicked then has no rows behind
// it.
TEST_F(ListWidgetTest, AListThatIsBeingFilledIsSafeToPaintAndToClick) {
  const QPoint place = Cell(6).center();
  list.BeginUpdate();
  list.ClearRows();
  widget.grab();
  QTest::mouseClick(widget.viewport(), Qt::LeftButton, {}, place);
  QTest::keyClick(&widget, Qt::Key_PageDown);
  QTest::keyClick(&widget, Qt::Key_A, Qt::ControlModifier);
  Fill(3);
  list.EndUpdate();
  EXPECT_EQ(widget.model()->rowCount(), 3);
  EXPECT_EQ(list.SelectedCount(), 0u);
}

}  // namespace
}  // namespace sandrel
