#include "export/frmAnimate.h"

#include <QBoxLayout>
#include <QCloseEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QStringList>
#include <QTimer>
#include <QWindow>
#include <algorithm>

#include "platform/qt/Icons.h"
#include "platform/qt/modCellText.h"
#include "platform/qt/modGuard.h"

namespace sandrel {

// Sheets of paper that fly from one folder to another. Each tick is a step, so the flight waits
// where it is while no messages pass.
class clsFileFlight final : public QWidget {
 public:
  explicit clsFileFlight(QWidget* parent) : QWidget(parent) {
    setFixedHeight(Height);
    m_timer.setInterval(1000 / 25);
    qt::Connect(&m_timer, &QTimer::timeout, this, [this] {
      m_step = (m_step + 1) % Steps;
      update();
    });
  }

  void Play() { m_timer.start(); }
  void Stop() { m_timer.stop(); }

 protected:
  void paintEvent(QPaintEvent*) override;

 private:
  static constexpr int Height = 64;
  static constexpr int FolderSize = 48;
  static constexpr int SheetSize = 32;
  static constexpr int Steps = 40;  // of one flight and the rest after it
  static constexpr int FlightSteps = 32;

  QTimer m_timer;
  int m_step = FlightSteps / 2;
};

void clsFileFlight::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  const QIcon folder = icons::Image("closedfolder");
  const int away = std::min(width() / 2, 150);  // of a folder's middle from the box's
  const int floor = Height - FolderSize;
  for (const int middle :
       {width() / 2 - away + FolderSize / 2, width() / 2 + away - FolderSize / 2}) {
    folder.paint(&painter, middle - FolderSize / 2, floor, FolderSize, FolderSize);
  }
  if (m_step >= FlightSteps) return;

  const double way = static_cast<double>(m_step) / FlightSteps;
  const double half = away - FolderSize / 2.0;
  const double height = 4 * way * (1 - way);  // of 1
  painter.translate(
      width() / 2.0 + (2 * way - 1) * half,
      Height - FolderSize / 2.0 - height * (Height - FolderSize / 2.0 - SheetSize / 2.0));
  painter.rotate((2 * way - 1) * 20);
  painter.setOpacity(std::min(1.0, 6 * std::min(way, 1 - way)));
  icons::Image("file").paint(&painter, -SheetSize / 2, -SheetSize / 2, SheetSize, SheetSize);
}

namespace {

constexpr int Characters = 62;  // of a long path that are shown

// Shows lines of text in a label, each shortened in its middle to the label's width; the tip shows
// them whole when one had to be.
void ShowLines(QLabel& label, const QStringList& lines) {
  const int width = label.contentsRect().width();
  QStringList shown;
  for (const QString& line : lines) {
    shown += label.fontMetrics().elidedText(line, Qt::ElideMiddle, width);
  }
  label.setText(shown.join('\n'));
  const QString whole = lines.join('\n').toHtmlEscaped();
  label.setToolTip(shown == lines ? QString()
                                  : "<p style='white-space:pre-wrap'>" + whole + "</p>");
}

// Two folders that don't fit one line take one each.
QStringList FolderLines(const QLabel& label, const QString& text) {
  const QString between = "' to '";
  const qsizetype at = text.indexOf(between);
  if (at < 0 || label.fontMetrics().horizontalAdvance(text) <= label.contentsRect().width()) {
    return {text};
  }
  return {text.left(at + 1), text.mid(at + 2)};
}

}  // namespace

frmAnimate::frmAnimate(QWidget* owner)
    : QDialog(owner, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                         Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint),
      m_owner(owner),
      Animation1(new clsFileFlight(this)),
      lblFrom(AddLabel("lblFrom", "From:")),
      lblFolder(AddLabel("lblFolder")),
      lblCurrent(AddLabel("lblCurrent", "Current:")),
      lblFile(AddLabel("lblFile")),
      prgProgress(new QProgressBar(this)),
      lblMessage(AddLabel("lblMessage")),
      cmdCancel(new QPushButton("&Cancel", this)) {
  setObjectName("frmAnimate");
  setWindowTitle("Copying...");
  Animation1->setObjectName("Animation1");
  prgProgress->setObjectName("prgProgress");
  cmdCancel->setObjectName("cmdCancel");
  Arrange();
  qt::Connect(cmdCancel, &QPushButton::clicked, this, &frmAnimate::Cancel);
}

frmAnimate::~frmAnimate() {
  Close();
}

QLabel* frmAnimate::AddLabel(const char* name, const QString& text) {
  auto* const label = new QLabel(text, this);
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  return label;
}

// Every place has its size from the start, so that nothing moves while texts change.
void frmAnimate::Arrange() {
  const QFontMetrics metrics = fontMetrics();
  for (QLabel* const text : {lblFolder, lblFile}) {
    text->setFixedWidth(metrics.averageCharWidth() * Characters);
  }
  lblFolder->setFixedHeight(2 * metrics.lineSpacing());
  lblFolder->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  lblFrom->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  prgProgress->setRange(0, 100);
  prgProgress->setValue(0);

  auto* const texts = new QGridLayout;
  texts->setHorizontalSpacing(12);
  texts->addWidget(lblFrom, 0, 0);
  texts->addWidget(lblFolder, 0, 1);
  texts->addWidget(lblCurrent, 1, 0);
  texts->addWidget(lblFile, 1, 1);

  auto* const bottom = new QHBoxLayout;
  bottom->addWidget(lblMessage, 1);
  bottom->addWidget(cmdCancel);

  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(16, 14, 16, 14);
  column->setSpacing(10);
  column->addWidget(Animation1);
  column->addLayout(texts);
  column->addWidget(prgProgress);
  column->addLayout(bottom);
  column->setSizeConstraint(QLayout::SetFixedSize);
}

void frmAnimate::Show() {
  m_shown = true;
  m_cancelAnimate = false;
  cmdCancel->setEnabled(true);
  if (m_owner) m_owner->setEnabled(false);
  setEnabled(true);  // its own windows are disabled with the owner
  Animation1->Play();
  show();
  activateWindow();
}

void frmAnimate::SetFile(std::string_view name) {
  ShowLines(*lblFile, {qt::ShownText(name)});
}

void frmAnimate::SetFolder(std::string_view text) {
  ShowLines(*lblFolder, FolderLines(*lblFolder, qt::ShownText(text)));
}

void frmAnimate::SetMessage(std::string_view text) {
  lblMessage->setText(qt::ShownText(text));
}

void frmAnimate::SetProgress(int percent) {
  prgProgress->setValue(std::clamp(percent, 0, 100));
}

void frmAnimate::Close() {
  if (!m_shown) return;
  m_shown = false;
  m_cancelAnimate = false;
  Animation1->Stop();
  if (m_owner) m_owner->setEnabled(true);
  hide();
}

// The copy sees it before its next file; the button tells that it was heard.
void frmAnimate::Cancel() {
  m_cancelAnimate = true;
  cmdCancel->setEnabled(false);
}

void frmAnimate::reject() {
  qt::Guard(this, [&] { Cancel(); });
}

void frmAnimate::closeEvent(QCloseEvent* event) {
  qt::Guard(this, [&] {
    if (!m_shown) return QDialog::closeEvent(event);
    Cancel();
    event->ignore();
  });
}

// A box that asks something during the copy must not lie below this one.
bool frmAnimate::event(QEvent* event) {
  return qt::Guard(this, [&] {
    const bool blocked = event->type() == QEvent::WindowBlocked;
    if (blocked || event->type() == QEvent::WindowUnblocked) {
      windowHandle()->setFlag(Qt::WindowStaysOnTopHint, !blocked);
    }
    return QDialog::event(event);
  });
}

}  // namespace sandrel
