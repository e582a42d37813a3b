// Leads the real program as a user would: a plugin of the window library that the program loads
// where $QT_QPA_GENERIC_PLUGINS names it.
//
// $SANDREL_STEPS has one step a line, done as soon as it can be: the name of a widget or menu item,
// or the words on a button, to be clicked; NAME=TEXT to be typed. A step that can't be done for a
// minute ends the program.
#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QGenericPlugin>
#include <QTest>
#include <QTimer>
#include <cstdlib>
#include <functional>

namespace {

class clsDriver final : public QObject {
 public:
  clsDriver() : m_steps(qEnvironmentVariable("SANDREL_STEPS").split('\n', Qt::SkipEmptyParts)) {
    m_waited.start();
    LookSoon();
  }

 private:
  void LookSoon() {
    QTimer::singleShot(20, this, [this] { Look(); });
  }

  void Look() {
    constexpr int Longest = 60000;  // ms
    constexpr int Failed = 99;
    if (m_steps.isEmpty()) return;
    LookSoon();  // also while the step shows a box
    if (const auto act = ActionFor(m_steps.front())) {
      m_steps.removeFirst();
      m_waited.restart();
      act();
    } else if (m_waited.elapsed() > Longest) {
      qCritical("can't be done: %s", qPrintable(m_steps.front()));
      std::_Exit(Failed);
    }
  }

  static std::function<void()> ActionFor(const QString& step) {
    const QString name = step.section('=', 0, 0);
    const QString text = step.section('=', 1);
    const QWidget* const modal = QApplication::activeModalWidget();
    const QWidgetList widgets = QApplication::allWidgets();
    for (QWidget* const widget : widgets) {
      const auto* const button = qobject_cast<QAbstractButton*>(widget);
      const bool isNamed =
          widget->objectName() == name || (button != nullptr && button->text().remove('&') == name);
      const bool isOpen = modal == nullptr || modal->isAncestorOf(widget);
      if (!isNamed || !isOpen || !widget->isVisible() || !widget->isEnabled()) continue;
      if (text.isEmpty()) return [widget] { QTest::mouseClick(widget, Qt::LeftButton); };
      return [widget, text] {
        widget->setFocus();
        QTest::keyClicks(widget, text);
      };
    }
    for (const QWidget* const widget : widgets) {
      auto* const item = widget->findChild<QAction*>(name);
      if (item == nullptr || !item->isEnabled() || modal != nullptr) continue;
      return [item] { item->trigger(); };
    }
    return {};
  }

  QStringList m_steps;
  QElapsedTimer m_waited;
};

}  // namespace

class DriverPlugin final : public QGenericPlugin {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "driver.json")

 public:
  QObject* create(const QString&, const QString&) override { return new clsDriver; }
};

#include "driver.moc"
