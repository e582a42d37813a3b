// The toolbar of the window.
#pragma once

#include <QAction>
#include <QRect>
#include <QToolBar>
#include <vector>

#include "platform/controls/Bars.h"

namespace sandrel {

/// Shows a Toolbar and follows it; takes its Changed. A button is a QToolButton "tlbarMain." + key.
/// The button with the key PlaceHolderKey takes the room left at the end, for a text to lie over.
class clsToolbarWidget : public QToolBar {
 public:
  static constexpr const char* PlaceHolderKey = "lastssplaceholder";
  static constexpr int Height = 360;  ///< twips

  /// `model` has its buttons already and outlives the clicks of the user.
  clsToolbarWidget(Toolbar& model, QWidget* parent);

  /// The room of the place-holder, in this widget's coordinates; empty where there is none.
  QRect PlaceHolder() const;

 private:
  QAction* AddButton(const ToolbarButton& button);
  void Follow();

  Toolbar& m_model;
  std::vector<QAction*> m_actions;  // one a button
  QWidget* m_placeHolder = nullptr;
};

}  // namespace sandrel
