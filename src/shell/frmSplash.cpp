#include "shell/frmSplash.h"

#include <QApplication>
#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLinearGradient>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <utility>

#include "platform/qt/Icons.h"
#include "platform/qt/modGuard.h"

namespace sandrel {

namespace {
constexpr int BandWidth = 112;
constexpr int Tick = 5000;  // milliseconds
}  // namespace

frmSplash::frmSplash(const std::string& version)
    : QWidget(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      lblVersion(AddLabel("lblVersion", "Version " + QString::fromStdString(version), 1.0)),
      Label1(AddLabel("Label1", "Sandrel", 2.6)),
      Label2(AddLabel("Label2", "Finds out what an installation does to a Windows machine.", 1.1)),
      Label3(AddLabel("Label3", "Hold Shift to start without the last analysis.", 1.0)),
      Picture1(AddPicture("Picture1", 64)),
      pic1(AddPicture("pic1", 16)),
      Timer1(new QTimer(this)) {
  setObjectName("frmSplash");
  setWindowTitle("Sandrel");
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_QuitOnClose, false);
  Timer1->setObjectName("Timer1");
  Timer1->setInterval(Tick);
  Timer1->setSingleShot(true);
  qt::Connect(Timer1, &QTimer::timeout, this, [this] { Unload(); });
  Arrange();
}

QLabel* frmSplash::AddLabel(const char* name, const QString& text, double scale) {
  auto* const label = new QLabel(text, this);
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  QFont shown = label->font();
  shown.setPointSizeF(shown.pointSizeF() * scale);
  label->setFont(shown);
  return label;
}

QLabel* frmSplash::AddPicture(const char* name, int size) {
  auto* const label = new QLabel(this);
  label->setObjectName(name);
  label->setPixmap(icons::Window().pixmap(QSize(size, size), devicePixelRatioF()));
  label->setAccessibleName("Sandrel");
  return label;
}

void frmSplash::Arrange() {
  QFont bold = Label1->font();
  bold.setBold(true);
  Label1->setFont(bold);
  Picture1->setFixedWidth(BandWidth);
  Picture1->setAlignment(Qt::AlignCenter);
  Label2->setWordWrap(true);
  for (QLabel* const quiet : {Label3, lblVersion}) {
    QPalette colours = quiet->palette();
    QColor text = colours.color(QPalette::WindowText);
    text.setAlphaF(0.7F);
    colours.setColor(QPalette::WindowText, text);
    quiet->setPalette(colours);
  }

  auto* const bottom = new QHBoxLayout;
  bottom->setSpacing(6);
  bottom->addWidget(pic1);
  bottom->addWidget(lblVersion);
  bottom->addStretch();

  auto* const texts = new QVBoxLayout;
  texts->setContentsMargins(24, 22, 24, 18);
  texts->setSpacing(6);
  texts->addWidget(Label1);
  texts->addWidget(Label2);
  texts->addStretch();
  texts->addWidget(Label3);
  texts->addLayout(bottom);

  auto* const card = new QHBoxLayout(this);
  card->setContentsMargins(1, 1, 1, 1);
  card->setSpacing(0);
  card->addWidget(Picture1);
  card->addLayout(texts, 1);

  setFixedSize(sizeHint().expandedTo(QSize(520, 190)));
  if (const QScreen* const where = screen()) {
    move(where->availableGeometry().center() - rect().center());
  }
}

bool frmSplash::ShiftIsDown() const {
  return m_shift || QGuiApplication::queryKeyboardModifiers().testFlag(Qt::ShiftModifier);
}

void frmSplash::Unload() {
  if (m_unloaded) return;
  m_unloaded = true;
  Timer1->stop();
  hide();
  close();
  // The owner may let go of this card there.
  if (const auto told = std::move(OnUnload)) told();
}

// The card takes the keys, for Shift, unless a box waits for an answer.
void frmSplash::showEvent(QShowEvent* event) {
  qt::Guard(this, [&] {
    QWidget::showEvent(event);
    Timer1->start();
    const bool boxIsUp = QApplication::activeModalWidget() != nullptr;
    setAttribute(Qt::WA_ShowWithoutActivating, boxIsUp);
    if (!boxIsUp) activateWindow();
  });
}

void frmSplash::keyPressEvent(QKeyEvent* event) {
  qt::Guard(this, [&] {
    if (event->key() != Qt::Key_Shift) return Unload();
    m_shift = true;
    if (OnShift) OnShift();
  });
}

void frmSplash::mousePressEvent(QMouseEvent*) {
  qt::Guard(this, [&] { Unload(); });
}

void frmSplash::closeEvent(QCloseEvent* event) {
  qt::Guard(this, [&] {
    QWidget::closeEvent(event);
    Unload();
  });
}

void frmSplash::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QColor base = palette().color(QPalette::Base);
  const QColor accent = palette().color(QPalette::Active, QPalette::Highlight);
  painter.fillRect(rect(), base);
  QLinearGradient band(0, 0, 0, height());
  QColor tint = accent;
  tint.setAlphaF(0.35F);
  band.setColorAt(0, tint);
  tint.setAlphaF(0.12F);
  band.setColorAt(1, tint);
  painter.fillRect(QRect(0, 0, BandWidth, height()), band);
  QColor line = palette().color(QPalette::WindowText);
  line.setAlphaF(0.35F);
  painter.setPen(QPen(line, 1));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

}  // namespace sandrel
