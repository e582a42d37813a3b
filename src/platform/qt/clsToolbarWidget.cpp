#include "platform/qt/clsToolbarWidget.h"

#include <QLayout>
#include <QPointer>
#include <QToolButton>
#include <string>

#include "platform/qt/Icons.h"
#include "platform/qt/modGuard.h"
#include "platform/qt/modTwips.h"

namespace sandrel {

clsToolbarWidget::clsToolbarWidget(Toolbar& model, QWidget* parent)
    : QToolBar(parent), m_model(model) {
  setObjectName("tlbarMain");
  setMovable(false);
  setFloatable(false);
  setContextMenuPolicy(Qt::PreventContextMenu);  // a main window's would hide the bar by itself
  setIconSize(QSize(16, 16));
  setToolButtonStyle(Qt::ToolButtonIconOnly);
  layout()->setContentsMargins(0, 0, 0, 0);
  layout()->setSpacing(0);
  setFixedHeight(qt::ToPixels(Height));
  for (const ToolbarButton& button : model.Buttons) m_actions.push_back(AddButton(button));
  Follow();
  model.Changed = [held = QPointer<clsToolbarWidget>(this)] {
    if (held) held->Follow();
  };
}

QRect clsToolbarWidget::PlaceHolder() const {
  if (m_placeHolder == nullptr || m_placeHolder->isHidden()) return {};
  return m_placeHolder->geometry();
}

QAction* clsToolbarWidget::AddButton(const ToolbarButton& button) {
  if (button.Key.empty()) return addSeparator();
  const QString tip = QString::fromStdString(button.Tip);
  const QString name = "tlbarMain." + QString::fromStdString(button.Key);
  if (button.Key == PlaceHolderKey) {
    m_placeHolder = new QWidget(this);
    m_placeHolder->setObjectName(name);
    m_placeHolder->setToolTip(tip);
    m_placeHolder->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    return addWidget(m_placeHolder);
  }
  // The text is that of the menu that takes the buttons which a narrow window has no room for.
  QAction* const action = addAction(icons::Tool(button.Key), tip);
  action->setToolTip(tip);
  qt::Connect(action, &QAction::triggered, this, [this, key = button.Key] {
    if (m_model.ButtonClick) m_model.ButtonClick(key);
  });
  auto* const widget = static_cast<QToolButton*>(widgetForAction(action));
  widget->setObjectName(name);
  widget->setAccessibleName(tip);
  widget->setAutoRaise(true);
  widget->setFixedHeight(height() - 1);
  return action;
}

void clsToolbarWidget::Follow() {
  for (std::size_t i = 0; i < m_actions.size(); ++i) {
    m_actions[i]->setEnabled(m_model.Buttons[i].Enabled);
  }
  setVisible(m_model.Visible());
}

}  // namespace sandrel
