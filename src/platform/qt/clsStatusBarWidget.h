// The status bar of the window.
#pragma once

#include <QWidget>

#include "platform/controls/Bars.h"

namespace sandrel {

/// Shows a StatusBar and follows it; takes its Changed. "stbrStatus.Status" cuts a long text in its
/// middle, "stbrStatus.Progress" has a fixed width and draws each character of code 1 as a block.
/// Texts may change as often as a scan likes: they are taken when messages are let through.
class clsStatusBarWidget : public QWidget {
 public:
  /// `model` outlives the messages that come to this widget.
  clsStatusBarWidget(StatusBar& model, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void customEvent(QEvent* event) override;  // the one posted when texts have changed

 private:
  class clsStatusPanel;
  class clsProgressPanel;
  void ModelChanged();
  void TakeTexts();

  StatusBar& m_model;
  clsStatusPanel* m_status;
  clsProgressPanel* m_progress;
  bool m_stale = false;  // texts wait to be taken
};

}  // namespace sandrel
