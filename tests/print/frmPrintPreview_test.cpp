// The preview by itself: zoom, pages, place; and that its pages are the printed ones.
#include "print/frmPrintPreview.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QWheelEvent>
#include <tuple>

#include "common/clsFileWorks.h"
#include "platform/qt/clsPreviewPane.h"
#include "platform/qt/clsQtPrintDevice.h"
#include "print/clsPrintData.h"
#include "support/ShellRecorder.h"
#include "support/TempFolder.h"

namespace sandrel::test {
namespace {

// Passes everything on, and notes what is drawn on each page.
class Spy final : public clsPrintDevice {
 public:
  using Drawn = std::tuple<std::string, int, int, int, int>;

  explicit Spy(clsPrintDevice& device) : m_device(device) {}
  std::vector<std::vector<Drawn>> Pages{{}};

  bool IsPrinter() const override { return m_device.IsPrinter(); }
  double ScaleWidth() const override { return There().ScaleWidth(); }
  double ScaleHeight() const override { return There().ScaleHeight(); }
  int PhysicalOffsetX() const override { return m_device.PhysicalOffsetX(); }
  int PhysicalOffsetY() const override { return m_device.PhysicalOffsetY(); }
  double DpiX() const override { return m_device.DpiX(); }
  double DpiY() const override { return m_device.DpiY(); }
  void SetFont(const PrintFont& font) override { m_device.SetFont(font); }
  const PrintFont& Font() const override { return m_device.Font(); }
  int TextHeight() const override { return m_device.TextHeight(); }
  double TextWidth(std::string_view text) const override { return There().TextWidth(text); }
  PrintRect DrawText(std::string_view text, const PrintRect& rect, unsigned flags) override {
    if ((flags & drawtext::CalcRect) == 0) Note(std::string(text), rect);
    return There().DrawText(text, rect, flags);
  }
  void Line(int x1, int y1, int x2, int y2) override {
    Note("line", {x1, y1, x2, y2});
    m_device.Line(x1, y1, x2, y2);
  }
  void NewPage() override {
    Pages.emplace_back();
    m_device.NewPage();
  }
  void Cls() override {
    Pages = {{}};
    m_device.Cls();
  }
  void SetSize(double width, double height) override { m_device.SetSize(width, height); }

 private:
  clsPrintDevice& There() const {
    m_device.Mode = Mode;
    return m_device;
  }
  void Note(const std::string& text, const PrintRect& rect) {
    Pages.back().emplace_back(text, rect.Left, rect.Top, rect.Right, rect.Bottom);
  }

  clsPrintDevice& m_device;
};

class SpyPictures final : public clsPictures {
 public:
  explicit SpyPictures(clsQtPictures& pictures) : m_pictures(pictures) { Load(0); }
  Spy& Item(int index) override { return *m_spies.at(static_cast<std::size_t>(index)); }
  void Load(int index) override {
    m_pictures.Load(index);
    while (static_cast<int>(m_spies.size()) < m_pictures.Count()) {
      m_spies.push_back(std::make_unique<Spy>(m_pictures.Item(static_cast<int>(m_spies.size()))));
    }
  }

 private:
  clsQtPictures& m_pictures;
  std::vector<std::unique_ptr<Spy>> m_spies;
};

class frmPrintPreviewTest : public testing::Test {
 protected:
  /// A list of new files, whose paths wrap. Four columns fit the paper.
  void MakeRows(int rows, bool twoBands = false) {
    m_data.Fields = {};
    m_data.Tag = "ShowNewFiles";
    m_data.Caption = "Files - New - x.mdb";
    int column = 0;
    for (const char* header : {"Path Name", "File Name", "Size", "Date"}) {
      m_data.Fields.Add(1, ++column, header);
    }
    if (twoBands) m_data.Fields.Add(1, ++column, "Version");
    for (int row = 2; row <= rows + 1; ++row) {
      const std::string number = std::to_string(row);
      m_data.Fields.Add(row, 1, "C:\\Program Files\\Lanternfish Studio\\plugins\\" + number);
      m_data.Fields.Add(row, 2, "file" + number + ".dat");
      m_data.Fields.Add(row, 3, number);
      m_data.Fields.Add(row, 4, "2019-07-13 06:40:00");
    }
  }
  void Show() {
    m_form = std::make_unique<frmPrintPreview>(m_shell, m_settings, m_printer, m_data, nullptr);
    m_form->show();
    Drawn();
  }
  /// Waits for the pages that a change brings.
  void Drawn() {
    QTest::qWait(1);
    if (Find<QTimer>("Timer")->isActive()) QTest::qWait(200);
    QTest::qWait(1);
  }
  void SaveZoom(const char* zoom) {
    m_settings.SaveSetting("PrintGridPreview", "ZoomPercent", zoom);
  }
  std::string SavedZoom() { return m_settings.GetSetting("PrintGridPreview", "ZoomPercent"); }
  std::string ZoomText() { return Find<QComboBox>("cbxZoomList")->currentText().toStdString(); }
  void TypeZoom(const char* text) {
    auto* const box = Find<QComboBox>("cbxZoomList")->lineEdit();
    box->selectAll();
    QTest::keyClick(box, Qt::Key_Delete);
    QTest::keyClicks(box, text);
    QTest::keyClick(box, Qt::Key_Return);
    Drawn();
  }
  void Press(const char* key) {
    QTest::mouseClick(Find<QToolButton>((std::string("tlbToolbar.") + key).c_str()),
                      Qt::LeftButton);
    Drawn();
  }
  void Key(Qt::Key key) {
    QTest::keyClick(m_form->findChild<QWidget*>("picBack"), key);
    Drawn();
  }
  void Turn(int delta, Qt::KeyboardModifiers keys = {}) {
    auto* const pane = Find<clsPreviewPane>("picBack");
    QWheelEvent event({5, 5}, pane->mapToGlobal(QPointF(5, 5)), {}, {0, delta}, Qt::NoButton, keys,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(pane, &event);
    Drawn();
  }
  template <class Widget>
  Widget* Find(const char* name) {
    for (auto* const child : m_form->findChildren<QObject*>(name)) {
      if (auto* const widget = dynamic_cast<Widget*>(child)) return widget;
    }
    ADD_FAILURE() << name;
    return nullptr;
  }
  /// The page on show, the block's first one, and how many are drawn; the one picture that is
  /// visible is that of the page.
  std::string Where() {
    auto* const pane = Find<clsPreviewPane>("picBack");
    const clsPreviewBlock& block = m_form->Block();
    for (int i = 0; i < pane->PageCount(); ++i) {
      EXPECT_EQ(pane->Page(i).isVisible(), i == block.CurrentPage() - block.FirstPage()) << i;
      EXPECT_EQ(pane->Page(i).objectName(), QString("picPreview(%1)").arg(i));
      EXPECT_FALSE(pane->Page(i).Picture().isNull());
    }
    EXPECT_EQ(Find<QLabel>("lblPage")->text(),
              QString("Page %1 of %2").arg(block.CurrentPage()).arg(block.TotalPages()));
    return std::to_string(block.CurrentPage()) + "@" + std::to_string(block.FirstPage()) + "+" +
           std::to_string(pane->PageCount());
  }

  TempFolder m_temp;
  ShellRecorder m_shell;
  clsSettings m_settings{m_temp.Of("settings.ini")};
  clsQtPrinter m_printer{true};
  PrintData m_data;
  std::unique_ptr<frmPrintPreview> m_form;
};

TEST_F(frmPrintPreviewTest, ZoomIsNormalisedAndKept) {
  MakeRows(3);
  for (const auto& [saved, shown] : {std::pair{"500%", "200%"}, {"5%", "10%"}}) {
    SaveZoom(saved);
    Show();
    EXPECT_EQ(ZoomText(), shown);
  }
  m_settings.DeleteSetting("PrintGridPreview");
  Show();
  EXPECT_EQ(ZoomText(), "50%");
  const auto width = [this] { return Find<clsPreviewPane>("picBack")->PageSize().width(); };
  const int half = width();
  EXPECT_NEAR(half, m_printer.Sheet().width() * 48, 1);
  TypeZoom("7x0");
  EXPECT_EQ(ZoomText(), "70%");
  EXPECT_EQ(SavedZoom(), "70%");
  EXPECT_EQ(Find<QComboBox>("cbxZoomList")->count(), 8);
  EXPECT_NEAR(width(), half * 1.4, 1);
  for (const char* none : {"", "%"}) {
    TypeZoom(none);
    EXPECT_EQ(SavedZoom(), "70%");
  }
  TypeZoom("900");
  EXPECT_NEAR(width(), half * 4, 2);
  EXPECT_EQ(ZoomText(), "200%");  // what is shown, not what was typed
  for (const auto& [delta, zoom] : {std::pair{120, "200%"}, {-120, "150%"}}) {
    Turn(delta, Qt::ControlModifier);
    EXPECT_EQ(SavedZoom(), zoom);
  }
}

TEST_F(frmPrintPreviewTest, MovesThroughPagesAndBlocks) {
  MakeRows(720);
  SaveZoom("100%");
  Show();
  ASSERT_EQ(m_form->Block().TotalPages(), 23);
  EXPECT_EQ(Where(), "1@1+5");
  for (const auto& [button, where] : {std::pair{"MovePrevious", "1@1+5"},
                                      {"MoveFirst", "1@1+5"},
                                      {"MoveNext", "2@1+5"},
                                      {"MoveNext", "3@1+5"},
                                      {"MoveNext", "4@1+5"},
                                      {"MoveNext", "5@1+5"},
                                      {"MoveNext", "6@6+5"},
                                      {"MovePrevious", "5@1+5"},
                                      {"MoveLast", "23@19+5"},
                                      {"MoveNext", "23@19+5"},
                                      {"MoveLast", "23@19+5"}}) {
    Press(button);
    EXPECT_EQ(Where(), where);
  }
  for (const auto& [key, where] : {std::pair{Qt::Key_Home, "1@1+5"},
                                   {Qt::Key_End, "23@19+5"},
                                   {Qt::Key_PageUp, "22@19+5"},
                                   {Qt::Key_Home, "1@1+5"}}) {
    Key(key);
    EXPECT_EQ(Where(), where);
  }
  for (int i = 0; i < 3; ++i) Key(Qt::Key_PageDown);
  TypeZoom("150");  // its block has two pages
  EXPECT_EQ(Where(), "4@4+2");
  TypeZoom("50");
  EXPECT_EQ(Where(), "4@4+10");
  // The wheel scrolls, and turns the page at its end.
  TypeZoom("100");
  Turn(-120);
  EXPECT_EQ(Where(), "4@4+5");
  EXPECT_EQ(Find<QScrollBar>("VScroll")->value(), 120);
  Turn(-99999);
  Turn(-120);
  EXPECT_EQ(Where(), "5@4+5");
  EXPECT_EQ(Find<QScrollBar>("VScroll")->value(), 0);
}

TEST_F(frmPrintPreviewTest, OnePageStaysAndCanBeReachedWhole) {
  MakeRows(0);
  SaveZoom("200%");
  Show();
  for (const char* key : {"MoveNext", "MoveLast", "MovePrevious", "MoveFirst"}) {
    Press(key);
    EXPECT_EQ(Where(), "1@1+1") << key;
  }
  auto* const pane = Find<clsPreviewPane>("picBack");
  const auto ends = [&] {
    const QRect page = pane->Page(0).geometry();
    return QPoint(pane->width() - page.right(), pane->height() - page.bottom());
  };
  EXPECT_GE(pane->Page(0).x(), 0);
  for (const char* name : {"HScroll", "VScroll"}) {
    auto* const bar = Find<QScrollBar>(name);
    EXPECT_TRUE(bar->isVisible());
    bar->setValue(bar->maximum());
  }
  EXPECT_GE(ends().x(), 0);
  EXPECT_GE(ends().y(), 0);
  TypeZoom("10");
  EXPECT_FALSE(Find<QScrollBar>("VScroll")->isVisible());
  EXPECT_NEAR(pane->Page(0).geometry().center().x(), pane->rect().center().x(), 1);
  EXPECT_NEAR(pane->Page(0).geometry().center().y(), pane->rect().center().y(), 1);
}

TEST_F(frmPrintPreviewTest, KeepsItsPlaceButNotMinimised) {
  MakeRows(1);
  m_settings.SaveSetting("Print Preview Form", "WindowState", "1");
  Show();
  EXPECT_FALSE(m_form->isMinimized());
  m_form->move(45, 30);
  m_form->resize(510, 405);
  Press("Close");
  EXPECT_FALSE(m_form->isVisible());
  Show();
  EXPECT_EQ(m_form->size(), QSize(510, 405));
  EXPECT_EQ(m_form->pos(), QPoint(45, 30));
}

TEST_F(frmPrintPreviewTest, TellsOnceWhatIsLeftOut) {
  MakeRows(clsPrintGrid::MaxRows + 5);
  Show();
  const std::vector<std::string> told = m_shell.Log;
  EXPECT_EQ(told, std::vector<std::string>{"ask: Only the first 10000 items will be displayed"});
  Press("MoveLast");
  EXPECT_EQ(m_shell.Log, told);
  EXPECT_EQ(m_form->Block().CurrentPage(), m_form->Block().TotalPages());
}

TEST_F(frmPrintPreviewTest, PagesAreThePrintedOnesAtEveryZoom) {
  MakeRows(100, true);
  const auto load = [this](clsPrintGrid& grid) {
    printdata::LoadGrid(m_data.Fields, m_data.Tag, grid);
    grid.Caption = m_data.Caption;
  };
  const auto document = m_printer.StartDoc("", m_temp.Of("x.pdf"));
  Spy printed(document->Device());
  clsPrintGrid grid(m_settings);
  load(grid);
  PrintArea area = AreaOf(grid, m_printer);
  grid.PrintGrid(area, m_printer, printed);
  document->EndDoc();
  const int pages = grid.NumPages();
  ASSERT_GT(pages, 4);
  const std::string pdf = clsFileWorks::ReadWhole(m_temp.Of("x.pdf"));
  EXPECT_NE(pdf.find("/Count " + std::to_string(pages)), std::string::npos);

  clsPrintGrid previewed(m_settings);
  load(previewed);
  for (const int zoom : {37, 50, 100}) {
    clsQtPictures real(m_printer.Measure(), m_printer.Sheet(), 1.0);
    SpyPictures pictures(real);
    previewed.ScalePicPreviewToPrinterInches(pictures.Item(0), m_printer, zoom);
    area = AreaOf(previewed, m_printer);
    previewed.PrintGrid(area, m_printer, pictures, 1.0, {1, pages});
    ASSERT_EQ(previewed.NumPages(), pages);
    for (int page = 0; page < pages; ++page) {
      EXPECT_EQ(pictures.Item(page).Pages[0], printed.Pages[static_cast<std::size_t>(page)])
          << zoom << " page " << page + 1;
    }
  }
}

}  // namespace
}  // namespace sandrel::test
