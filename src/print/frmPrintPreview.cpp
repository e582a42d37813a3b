#include "print/frmPrintPreview.h"

#include <fmt/format.h>

#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpressionValidator>
#include <QScrollBar>
#include <QStyle>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "common/text.h"
#include "config/frmPlacement.h"
#include "config/modKeep.h"
#include "platform/qt/Icons.h"
#include "platform/qt/clsPreviewPane.h"
#include "platform/qt/clsQtPrintDevice.h"
#include "platform/qt/modGuard.h"
#include "print/clsPrintData.h"
#include "print/clsPrintGrid.h"
#include "snapshot/clsStatements.h"

namespace sandrel {
namespace {

constexpr const char* FormSection = "Print Preview Form";
constexpr const char* ZoomSection = "PrintGridPreview";
constexpr int ZoomList[] = {200, 150, 125, 100, 75, 50, 25, 10};
constexpr int MostZoom = 200;
constexpr int LeastZoom = 10;
constexpr int SettleTime = 150;  // milliseconds between a change of zoom and its drawing
constexpr int ScrollStep = 48;

}  // namespace

frmPrintPreview::frmPrintPreview(clsShell& shell, clsSettings& settings, clsQtPrinter& printer,
                                 const PrintData& printed, QWidget* parent)
    : QDialog(parent),
      m_shell(shell),
      m_settings(settings),
      m_printer(printer),
      m_data(printed),
      m_pageCaption(printed.Caption),
      tlbToolbar(new QToolBar(this)),
      cbxZoomList(new QComboBox(this)),
      lblPage(new QLabel(this)),
      picBack(new clsPreviewPane(this)),
      HScroll(new QScrollBar(Qt::Horizontal, this)),
      VScroll(new QScrollBar(Qt::Vertical, this)),
      Timer(new QTimer(this)) {
  setObjectName("frmPrintPreview");
  setWindowTitle("Print Preview");
  setWindowIcon(icons::Tool("PrintPreview"));
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  setModal(true);
  HScroll->setObjectName("HScroll");
  VScroll->setObjectName("VScroll");
  MakeToolbar();
  LoadZoom();
  for (QScrollBar* const bar : {HScroll, VScroll}) {
    bar->setSingleStep(ScrollStep);
    qt::Connect(bar, &QScrollBar::valueChanged, this, [this] { MovePages(); });
  }
  picBack->Wheel = [this](QWheelEvent& event) { Wheel(event); };
  picBack->Dragged = [this](QPoint by) {
    HScroll->setValue(HScroll->value() - by.x());
    VScroll->setValue(VScroll->value() - by.y());
  };
  Timer->setObjectName("Timer");
  Timer->setSingleShot(true);
  Timer->setInterval(SettleTime);
  qt::Connect(Timer, &QTimer::timeout, this, [this] { Timer_Tick(); });
  placement::Load(*this, settings, FormSection);
  setWindowState(windowState() & ~Qt::WindowMinimized);
  picBack->setFocus();
}

// A box that goes while it has the focus tells that its text is finished.
frmPrintPreview::~frmPrintPreview() {
  cbxZoomList->disconnect(this);
  cbxZoomList->lineEdit()->disconnect(this);
}

void frmPrintPreview::MakeToolbar() {
  tlbToolbar->setObjectName("tlbToolbar");
  tlbToolbar->setIconSize(QSize(16, 16));
  AddButton("Close", "Close", QKeySequence::Close, [this] { close(); });
  AddButton("Print", "Print", QKeySequence::Print, [this] {
    Command("frmPrintPreview.Print", [this] {
      if (Print) Print();
    });
  });
  tlbToolbar->addSeparator();
  AddButton("MoveFirst", "First Page", {}, [this] { Move(&clsPreviewBlock::MoveFirst); });
  AddButton("MovePrevious", "Previous Page", {}, [this] { Move(&clsPreviewBlock::MovePrevious); });
  AddButton("MoveNext", "Next Page", {}, [this] { Move(&clsPreviewBlock::MoveNext); });
  AddButton("MoveLast", "Last Page", {}, [this] { Move(&clsPreviewBlock::MoveLast); });
  lblPage->setObjectName("lblPage");
  lblPage->setContentsMargins(8, 0, 8, 0);
  tlbToolbar->addWidget(lblPage);
  tlbToolbar->addSeparator();

  cbxZoomList->setObjectName("cbxZoomList");
  cbxZoomList->setToolTip("Percent Zoom");
  cbxZoomList->setAccessibleName("Percent Zoom");
  cbxZoomList->setEditable(true);
  cbxZoomList->setInsertPolicy(QComboBox::NoInsert);
  cbxZoomList->setCompleter(nullptr);
  cbxZoomList->setValidator(
      new QRegularExpressionValidator(QRegularExpression("[0-9]{0,4}%?"), cbxZoomList));
  for (const int zoom : ZoomList) cbxZoomList->addItem(QString("%1%").arg(zoom));
  qt::Connect(cbxZoomList, &QComboBox::activated, this, [this] { cbxZoomList_Click(); });
  qt::Connect(cbxZoomList->lineEdit(), &QLineEdit::editingFinished, this,
              [this] { cbxZoomList_Click(); });
  tlbToolbar->addWidget(cbxZoomList);
}

void frmPrintPreview::AddButton(const char* key, const char* tip, const QKeySequence& shortcut,
                                std::function<void()> click) {
  QAction* const action = tlbToolbar->addAction(icons::Tool(key), tip);
  action->setToolTip(tip);
  action->setShortcut(shortcut);
  qt::Connect(action, &QAction::triggered, this, std::move(click));
  auto* const button = static_cast<QToolButton*>(tlbToolbar->widgetForAction(action));
  button->setObjectName(QString("tlbToolbar.") + key);
  button->setAccessibleName(tip);
}

// An aborted command ends the program, and the form with it.
void frmPrintPreview::Command(const char* method, const std::function<void()>& body) {
  clsStatements run(m_shell, method);
  if (!run.Command([&] { run(body); }, [] {})) reject();
}

void frmPrintPreview::LoadZoom() {
  std::string zoom = m_settings.GetSetting(ZoomSection, "ZoomPercent", "50%");
  const double percent = text::Val(zoom);
  if (percent > MostZoom) zoom = fmt::format("{}%", MostZoom);
  if (percent < LeastZoom) zoom = fmt::format("{}%", LeastZoom);
  cbxZoomList->setEditText(QString::fromStdString(zoom));
  m_drawnZoom = zoom;
}

double frmPrintPreview::Zoom() const {
  return text::Val(cbxZoomList->currentText().toStdString());
}

void frmPrintPreview::cbxZoomList_Click() {
  std::string zoom = cbxZoomList->currentText().toStdString();
  if (zoom.empty() || zoom == "%") return;
  const double percent = std::clamp<double>(text::Val(zoom), LeastZoom, MostZoom);
  zoom = fmt::format("{}%", static_cast<int>(percent));
  cbxZoomList->setEditText(QString::fromStdString(zoom));
  if (zoom != m_settings.GetSetting(ZoomSection, "ZoomPercent", "50%")) {
    Keep(m_shell, m_settings, "The preview's zoom",
         [&] { m_settings.SaveSetting(ZoomSection, "ZoomPercent", zoom); });
  }
  if (std::exchange(m_drawnZoom, zoom) != zoom) Timer->start();
}

// To the next zoom of the list; by is 1 for larger, -1 for smaller.
void frmPrintPreview::StepZoom(int by) {
  int next = 0;
  for (const int zoom : ZoomList) {  // from large to small
    if (by > 0 && zoom > Zoom()) next = zoom;
    if (by < 0 && zoom < Zoom() && next == 0) next = zoom;
  }
  if (next == 0) return;
  cbxZoomList->setEditText(QString("%1%").arg(next));
  cbxZoomList_Click();
}

// The words that are broken for the paper are broken for every zoom: a picture has the paper's
// inches at all of them.
void frmPrintPreview::Timer_Tick() {
  Timer->stop();
  FillPages();
}

void frmPrintPreview::FillPages() {
  if (m_filling) return;
  m_filling = true;
  Command("frmSandrel.FillPages", [this] { Fill(); });
  m_filling = false;
}

void frmPrintPreview::Fill() {
  const clsPointerGuard pointer(m_shell, pointer::Hourglass);
  clsPrintGrid grid(m_settings);
  grid.Caption = m_pageCaption;
  Command("frmSandrel.LoadGrid", [&] { LoadGrid(grid); });
  m_shell.SetMousePointer(pointer::Hourglass);
  const int zoom = static_cast<int>(std::lround(std::min(Zoom(), 1e4)));
  m_block.SetZoom(zoom);
  clsQtPictures pictures(m_printer.Measure(), m_printer.Sheet(), devicePixelRatioF());
  // The scale goes into the size of the picture alone: its sheet is laid out in full size.
  grid.ScalePicPreviewToPrinterInches(pictures.Item(0), m_printer, zoom);
  constexpr double FullSize = 1.0;
  do {
    PrintArea area = AreaOf(grid, m_printer);
    grid.PrintGrid(area, m_printer, pictures, FullSize, {m_block.FirstPage(), m_block.Size()});
  } while (m_block.SetTotalPages(grid.NumPages()));

  const int drawn = std::min(m_block.Size(), m_block.TotalPages() - m_block.FirstPage() + 1);
  std::vector<QImage> images;
  for (int i = 0; i < std::min(drawn, pictures.Count()); ++i) {
    images.push_back(pictures.Item(i).Image());
  }
  picBack->SetPages(images, pictures.Item(0).ShownSize());
  ShowCurrentPage();
}

void frmPrintPreview::LoadGrid(clsPrintGrid& grid) {
  const printdata::Left left = printdata::LoadGrid(m_data.Fields, m_data.Tag, grid);
  if (!std::exchange(m_told, true)) printdata::TellLeftOfPreview(m_shell, left);
}

void frmPrintPreview::Move(bool (clsPreviewBlock::*to)()) {
  if (m_filling) return;
  const int before = m_block.CurrentPage();
  if ((m_block.*to)()) {
    FillPages();
  } else if (m_block.CurrentPage() != before) {
    ShowCurrentPage();
  }
}

void frmPrintPreview::ShowCurrentPage() {
  LayOutPanes();
  picBack->ShowPage(m_block.CurrentPage() - m_block.FirstPage());
  lblPage->setText(QString("Page %1 of %2").arg(m_block.CurrentPage()).arg(m_block.TotalPages()));
}

// A bar shows where the page is larger than the pane, and takes room from the pane itself.
void frmPrintPreview::LayOutPanes() {
  const int top = tlbToolbar->sizeHint().height();
  tlbToolbar->setGeometry(0, 0, width(), top);
  const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
  const QSize page = picBack->PageSize();
  QSize pane(width(), std::max(0, height() - top));
  const bool vertical = page.height() > pane.height() ||
                        (page.width() > pane.width() && page.height() > pane.height() - bar);
  const bool horizontal = page.width() > pane.width() - (vertical ? bar : 0);
  if (vertical) pane.rwidth() -= bar;
  if (horizontal) pane.rheight() -= bar;

  const auto set = [](QScrollBar& scroll, bool on, int size, int room) {
    const double at = scroll.maximum() > 0 ? 1.0 * scroll.value() / scroll.maximum() : 0;
    scroll.setVisible(on);
    scroll.setRange(0, on ? size + 2 * clsPreviewPane::Margin - room : 0);
    scroll.setPageStep(std::max(1, room - ScrollStep));
    scroll.setValue(static_cast<int>(std::lround(at * scroll.maximum())));
  };
  picBack->setGeometry(0, top, pane.width(), pane.height());
  HScroll->setGeometry(0, top + pane.height(), pane.width(), bar);
  VScroll->setGeometry(pane.width(), top, bar, pane.height());
  set(*HScroll, horizontal, page.width(), pane.width());
  set(*VScroll, vertical, page.height(), pane.height());
  MovePages();
}

void frmPrintPreview::MovePages() {
  const auto place = [](const QScrollBar& bar, int size, int room) {
    return bar.maximum() > 0 ? clsPreviewPane::Margin - bar.value() : (room - size) / 2;
  };
  const QSize page = picBack->PageSize();
  picBack->MovePages({place(*HScroll, page.width(), picBack->width()),
                      place(*VScroll, page.height(), picBack->height())});
}

// At a page's end the wheel turns the page.
void frmPrintPreview::Wheel(QWheelEvent& event) {
  const QPoint delta = event.angleDelta();
  if ((event.modifiers() & Qt::ControlModifier) != 0) {
    if (delta.y() != 0) StepZoom(delta.y() > 0 ? 1 : -1);
    return;
  }
  const bool sideways = (event.modifiers() & Qt::ShiftModifier) != 0 || delta.y() == 0;
  if (sideways) {
    const int by = delta.x() != 0 ? delta.x() : delta.y();
    HScroll->setValue(HScroll->value() - by);
    return;
  }
  const int page = m_block.CurrentPage();
  if (delta.y() < 0 && VScroll->value() == VScroll->maximum()) {
    Move(&clsPreviewBlock::MoveNext);
    if (m_block.CurrentPage() != page) VScroll->setValue(0);
  } else if (delta.y() > 0 && VScroll->value() == 0) {
    Move(&clsPreviewBlock::MovePrevious);
    if (m_block.CurrentPage() != page) VScroll->setValue(VScroll->maximum());
  } else {
    VScroll->setValue(VScroll->value() - delta.y());
  }
}

void frmPrintPreview::keyPressEvent(QKeyEvent* event) {
  qt::Guard(this, [&] {
    const bool control = (event->modifiers() & Qt::ControlModifier) != 0;
    switch (event->key()) {
      case Qt::Key_PageDown:
        return Move(&clsPreviewBlock::MoveNext);
      case Qt::Key_PageUp:
        return Move(&clsPreviewBlock::MovePrevious);
      case Qt::Key_Home:
        return Move(&clsPreviewBlock::MoveFirst);
      case Qt::Key_End:
        return Move(&clsPreviewBlock::MoveLast);
      case Qt::Key_Down:
        return VScroll->setValue(VScroll->value() + ScrollStep);
      case Qt::Key_Up:
        return VScroll->setValue(VScroll->value() - ScrollStep);
      case Qt::Key_Right:
        return HScroll->setValue(HScroll->value() + ScrollStep);
      case Qt::Key_Left:
        return HScroll->setValue(HScroll->value() - ScrollStep);
      case Qt::Key_Plus:
      case Qt::Key_Equal:
        if (control) return StepZoom(1);
        break;
      case Qt::Key_Minus:
        if (control) return StepZoom(-1);
        break;
      case Qt::Key_Return:
      case Qt::Key_Enter:
        return picBack->setFocus();  // the zoom box is done
      default:
        break;
    }
    QDialog::keyPressEvent(event);
  });
}

void frmPrintPreview::showEvent(QShowEvent* event) {
  qt::Guard(this, [&] {
    QDialog::showEvent(event);
    LayOutPanes();
    if (std::exchange(m_shown, true)) return;
    qt::Later(this, [this] { FillPages(); });
  });
}

void frmPrintPreview::resizeEvent(QResizeEvent* event) {
  qt::Guard(this, [&] {
    QDialog::resizeEvent(event);
    LayOutPanes();
  });
}

void frmPrintPreview::changeEvent(QEvent* event) {
  qt::Guard(this, [&] {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::StyleChange && m_shown) LayOutPanes();
  });
}

void frmPrintPreview::done(int result) {
  Timer->stop();
  if (!isMinimized()) {
    Keep(m_shell, m_settings, "The preview's place",
         [this] { placement::Save(*this, m_settings, FormSection); });
  }
  QDialog::done(result);
}

}  // namespace sandrel
