// The bar between two panes, which the user drags to give one more room.
#pragma once

#include <QWidget>
#include <functional>

namespace sandrel {

class clsSplitBar : public QWidget {
 public:
  explicit clsSplitBar(QWidget* parent);

  /// Whether the bar's left edge may stand at this place, in pixels of the parent.
  std::function<bool(int left)> MayStandAt;
  /// The user let go of the bar, which stands where it is to be.
  std::function<void()> Dropped;

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  bool m_dragging = false;
};

}  // namespace sandrel
