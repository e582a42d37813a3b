#include "platform/qt/clsStatusBarWidget.h"

#include <QCoreApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QStyle>
#include <algorithm>

#include "platform/qt/modGuard.h"
#include "platform/qt/modTwips.h"

namespace sandrel {

/// Its text is whole, its look may be cut.
class clsStatusBarWidget::clsStatusPanel : public QLabel {
 public:
  using QLabel::QLabel;

  void Show(const QString& text) {
    if (text == this->text()) return;
    setText(text);
    TellWhatIsCut();
  }

 protected:
  void resizeEvent(QResizeEvent* event) override {
    qt::Guard(this, [&] {
      QLabel::resizeEvent(event);
      TellWhatIsCut();
    });
  }

  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    style()->drawItemText(&painter, contentsRect(), Qt::AlignLeft | Qt::AlignVCenter, palette(),
                          isEnabled(), Cut(), foregroundRole());
  }

 private:
  QString Cut() const {
    return fontMetrics().elidedText(text(), Qt::ElideMiddle, contentsRect().width());
  }

  // Escaped, because names of keys and files may look like markup.
  void TellWhatIsCut() {
    setToolTip(Cut() == text() ? QString() : "<qt>" + text().toHtmlEscaped() + "</qt>");
  }
};

/// A number and a bar of blocks.
class clsStatusBarWidget::clsProgressPanel : public QLabel {
 public:
  static constexpr int MostBlocks = 25;
  static constexpr int Pitch = 7;  // from block to block, pixels
  static constexpr int Margin = 6;

  using QLabel::QLabel;

  void Show(const QString& text) {
    m_blocks = std::min<int>(static_cast<int>(text.count(QChar(1))), MostBlocks);
    const QString digits = QString(text).remove(QChar(1)).trimmed();
    setText(digits);
    setAccessibleName(digits);
    update();
  }

  QSize sizeHint() const override {
    return {2 * Margin + DigitsWidth() + MostBlocks * Pitch, QLabel::sizeHint().height()};
  }
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    const QRect digits(Margin, 0, fontMetrics().horizontalAdvance("100%"), height());
    style()->drawItemText(&painter, digits, Qt::AlignRight | Qt::AlignVCenter, palette(),
                          isEnabled(), text(), foregroundRole());
    QRect block(Margin + DigitsWidth(), 6, Pitch - 1, height() - 11);
    for (int i = 0; i < m_blocks; ++i, block.translate(Pitch, 0)) {
      painter.fillRect(block, palette().color(QPalette::Active, QPalette::Highlight));
    }
  }

 private:
  int DigitsWidth() const { return fontMetrics().horizontalAdvance("100%") + Margin; }

  int m_blocks = 0;
};

clsStatusBarWidget::clsStatusBarWidget(StatusBar& model, QWidget* parent)
    : QWidget(parent),
      m_model(model),
      m_status(new clsStatusPanel(this)),
      m_progress(new clsProgressPanel(this)) {
  setObjectName("stbrStatus");
  m_status->setObjectName("stbrStatus.Status");
  m_progress->setObjectName("stbrStatus.Progress");
  for (QLabel* const panel : {static_cast<QLabel*>(m_status), static_cast<QLabel*>(m_progress)}) {
    panel->setTextFormat(Qt::PlainText);
  }
  m_status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  m_status->setContentsMargins(clsProgressPanel::Margin, 0, clsProgressPanel::Margin, 0);
  m_progress->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);

  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(0, 1, 0, 0);
  row->setSpacing(1);
  row->addWidget(m_status, 1);
  row->addWidget(m_progress);
  setFixedHeight(qt::ToPixels(StatusBar::Height));

  TakeTexts();
  setVisible(model.Visible());
  model.Changed = [held = QPointer<clsStatusBarWidget>(this)] {
    if (held) held->ModelChanged();
  };
}

// Lines above the panels and between them.
void clsStatusBarWidget::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  QColor line = palette().color(QPalette::WindowText);
  line.setAlphaF(0.2F);
  painter.fillRect(QRect(0, 0, width(), 1), line);
  painter.fillRect(QRect(m_progress->x() - 1, 5, 1, height() - 9), line);
}

void clsStatusBarWidget::ModelChanged() {
  if (isHidden() == m_model.Visible()) setVisible(m_model.Visible());
  if (m_stale) return;
  m_stale = true;
  QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

void clsStatusBarWidget::customEvent(QEvent*) {
  qt::Guard(this, [&] { TakeTexts(); });
}

void clsStatusBarWidget::TakeTexts() {
  m_stale = false;
  m_status->Show(QString::fromStdString(m_model.Status()));
  m_progress->Show(QString::fromStdString(m_model.Progress()));
}

}  // namespace sandrel
