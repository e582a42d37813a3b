// Acts on the real window at random, as an impatient user would, and checks that the program and
// its files survive: randomwalk [--actions N] [--seed N] [--log FILE]
//
// Actions come from a timer, so they go on inside modal boxes, menus and scans, and within what
// messages the program lets through. The log tells what led to a crash; a seed gives the same
// choices, but scans end at other moments in another run.
#include <unistd.h>

#include <QAction>
#include <QApplication>
#include <QCommandLineParser>
#include <QFileDialog>
#include <QFont>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QStyleFactory>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <QWheelEvent>
#include <QWindow>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "config/frmConfig.h"
#include "support/Rows.h"
#include "window/support/SampleDesk.h"

namespace sandrel::test {
namespace {

constexpr unsigned LongestAction = 60;  // seconds: what takes longer hangs

class Walk {
 public:
  Walk(unsigned seed, int actions, const QString& log) : m_random(seed), m_left(actions) {
    if (!log.isEmpty()) m_log = std::fopen(qPrintable(log), "w");
    m_desk.Settings.SaveSetting("Recent Files", "RecentFile1", m_desk.MakeAnalysis("first.mdb"));
    std::filesystem::copy_file(m_desk.Temp.Of("first.mdb"), m_desk.Temp.Of("second.mdb"));
    std::filesystem::create_directory(m_desk.Temp.Of("folder.mdb"));
    std::filesystem::create_directory(m_desk.Temp.Of("nomachine"));
    BreakFile();
  }
  ~Walk() {
    if (m_log != nullptr) std::fclose(m_log);
  }
  Walk(const Walk&) = delete;
  Walk& operator=(const Walk&) = delete;

  /// The number of faults.
  int Run() {
    Later();
    do {
      m_form = m_desk.MakeWindow();
      m_form->Form_Load();
      if (!m_form->IsUnloaded()) QApplication::exec();
      m_form.reset();
      Note("the window ended");
    } while (m_left > 0);
    alarm(0);
    for (const auto& file : std::filesystem::recursive_directory_iterator(m_desk.Temp.Path())) {
      const std::string path = file.path().string();
      if (file.is_regular_file() && !path.starts_with(m_desk.MachineFolder())) CheckFile(path);
    }
    return m_faults;
  }

  void Fault(const std::string& what) {
    ++m_faults;
    std::fprintf(stderr, "fault: %s\n", what.c_str());
    Note("fault: " + what);
  }

 private:
  // What an action was begun under. Another one may begin inside it when this has changed.
  struct Context {
    QWidget* Popup = nullptr;
    QWidget* Box = nullptr;
    bool Scanning = false;
    bool operator==(const Context&) const = default;
  };

  void Later() {
    QTimer::singleShot(1, qApp, [this] { Step(); });
  }

  void Step() {
    Later();
    if (m_form->IsUnloaded()) return QCoreApplication::exit(0);
    constexpr std::size_t MostNested = 12, MostInOneContext = 3;
    const Context now{QApplication::activePopupWidget(), QApplication::activeModalWidget(),
                      m_form->State.Scanning};
    if (m_running.size() >= MostNested) return;
    if (m_running.size() >= MostInOneContext && m_running.back() == now) return;
    if (m_running.empty() && now == Context{}) CheckWindow();
    alarm(LongestAction);
    m_running.push_back(now);
    if (m_left > 0) {
      --m_left;
      Act();
    } else {
      Finish();
    }
    m_running.pop_back();
  }

  void Act() {
    QWidget* const popup = QApplication::activePopupWidget();
    QWidget* const box = QApplication::activeModalWidget();
    if (popup != nullptr) {
      ActOnPopup(*popup);
    } else if (auto* const message = qobject_cast<QMessageBox*>(box)) {
      ActOnBox(*message);
    } else if (auto* const dialog = qobject_cast<QFileDialog*>(box)) {
      ActOnDialog(*dialog);
    } else if (auto* const configuration = dynamic_cast<frmConfig*>(box)) {
      ActOnConfiguration(*configuration);
    } else if (auto* const other = qobject_cast<QDialog*>(box)) {
      Note("reject " + other->windowTitle().toStdString());
      other->reject();
    } else if (box == nullptr && m_form->isVisible()) {
      ActOnWindow();
    }
  }

  // Brings the window down when there is nothing left to do.
  void Finish() {
    QWidget* const box = QApplication::activeModalWidget();
    if (QWidget* const popup = QApplication::activePopupWidget()) {
      popup->close();
    } else if (auto* const message = qobject_cast<QMessageBox*>(box)) {
      const QString wanted = m_form->State.Scanning ? "Yes" : "No";
      for (QAbstractButton* const button : message->buttons()) {
        const QString text = button->text().remove('&');
        if (text == wanted || text == "Abort" || text == "OK") return button->click();
      }
    } else if (auto* const dialog = qobject_cast<QDialog*>(box)) {
      dialog->reject();
    } else if (m_form->State.Scanning) {
      m_form->Controls().Menus.Run("mnuSnapShotCancelOperation");
    } else {
      m_form->close();
    }
  }

  // Chance.

  int Below(int end) { return end <= 1 ? 0 : std::uniform_int_distribution(0, end - 1)(m_random); }
  bool Chance(int percent) { return Below(100) < percent; }
  QPoint PlaceIn(const QWidget& widget) { return {Below(widget.width()), Below(widget.height())}; }
  template <class List>
  auto& OneOf(List& list) {
    return list[static_cast<decltype(list.size())>(Below(static_cast<int>(list.size())))];
  }
  Qt::KeyboardModifiers Modifiers() {
    Qt::KeyboardModifiers keys;
    if (Chance(20)) keys |= Qt::ShiftModifier;
    if (Chance(20)) keys |= Qt::ControlModifier;
    return keys;
  }

  // Actions.

  void Note(const std::string& what) {
    if (m_log == nullptr) return;
    std::fprintf(m_log, "%6d %zu%s %s\n", m_left, m_running.size(),
                 m_form != nullptr && m_form->State.Scanning ? " scan" : "", what.c_str());
    std::fflush(m_log);
  }
  void Note(const char* what, const QWidget& widget, QPoint at) {
    Note(std::string(what) + " " + widget.metaObject()->className() + " " +
         widget.objectName().toStdString() + " " + std::to_string(at.x()) + "," +
         std::to_string(at.y()));
  }

  // Through the window system's queue, which knows of popups, boxes and grabs.
  enum class Mouse { Press, Move, Release, DoubleClick };
  static void Send(const QPointer<QWidget>& widget, QPoint at, Mouse what,
                   Qt::MouseButton button = Qt::LeftButton, Qt::KeyboardModifiers keys = {}) {
    QWindow* const window = widget == nullptr ? nullptr : widget->window()->windowHandle();
    if (window == nullptr || !window->isVisible()) return;
    const QPoint place = widget->mapTo(widget->window(), at);
    if (!QRect(QPoint(), window->size()).contains(place)) return;
    if (what == Mouse::Press) QTest::mousePress(window, button, keys, place);
    if (what == Mouse::Move) QTest::mouseMove(window, place);
    if (what == Mouse::Release) QTest::mouseRelease(window, button, keys, place);
    if (what == Mouse::DoubleClick) QTest::mouseDClick(window, button, keys, place);
  }
  void Click(QWidget& widget, QPoint at, Qt::MouseButton button = Qt::LeftButton,
             Qt::KeyboardModifiers keys = {}) {
    Note(button == Qt::LeftButton ? "click" : "right click", widget, at);
    const QPointer<QWidget> held(&widget);
    Send(held, at, Mouse::Press, button, keys);
    Send(held, at, Mouse::Release, button, keys);
  }
  void Drag(QWidget& widget, QPoint from, QPoint to) {
    Note("drag", widget, from);
    const QPointer<QWidget> held(&widget);
    Send(held, from, Mouse::Press);
    Send(held, (from + to) / 2, Mouse::Move);
    Send(held, to, Mouse::Move);
    Send(held, to, Mouse::Release);
  }
  void Key(QWidget& widget, int key, Qt::KeyboardModifiers keys = {}) {
    QWindow* const window = widget.window()->windowHandle();
    if (window == nullptr || !window->isVisible()) return;
    Note("key " + QKeySequence(key | keys.toInt()).toString().toStdString());
    QTest::keyClick(window, static_cast<Qt::Key>(key), keys);
  }

  void ActOnPopup(QWidget& popup) {
    static const std::vector<int> Keys = {Qt::Key_Down, Qt::Key_Up,     Qt::Key_Right,
                                          Qt::Key_Left, Qt::Key_Return, Qt::Key_Escape};
    if (Chance(50)) {
      Click(popup, PlaceIn(popup));
    } else {
      Key(popup, OneOf(Keys));
    }
  }

  void ActOnBox(QMessageBox& box) {
    const QList<QAbstractButton*> buttons = box.buttons();
    QAbstractButton* const button = OneOf(buttons);
    if (Chance(10)) return Key(box, Chance(50) ? Qt::Key_Escape : Qt::Key_Return);
    if (Chance(10)) return Click(box, PlaceIn(box));
    if (button->text() == "&Abort" && Chance(70)) return;
    Note("box \"" + box.text().left(60).simplified().toStdString() +
         "\": " + button->text().toStdString());
    button->click();
  }

  // Only names are typed: the dialog's own lists could rename and delete.
  void ActOnDialog(QFileDialog& dialog) {
    auto* const name = dialog.findChild<QLineEdit*>("fileNameEdit");
    if (Chance(25) || name == nullptr) {
      Note("dialog: reject");
      return dialog.reject();
    }
    static const std::vector<std::string> Files = {"first.mdb",  "second.mdb", "third",
                                                   "broken.mdb", "folder.mdb", "missing/x.mdb"};
    static const std::vector<std::string> Folders = {"machine", "nomachine", "missing"};
    // What is saved is no analysis, so its names are others: an analysis would rightly be replaced.
    static const std::vector<std::string> Saved = {"out", "out.reg", "folder.mdb", "missing/x"};
    const bool folder = dialog.fileMode() == QFileDialog::Directory;
    const bool save = dialog.acceptMode() == QFileDialog::AcceptSave;
    const std::string chosen = m_desk.Temp.Of(OneOf(folder ? Folders : save ? Saved : Files));
    if (Chance(10)) BreakFile();
    Note("dialog: " + chosen);
    name->setText(QString::fromStdString(chosen));
    QMetaObject::invokeMethod(&dialog, "accept");
  }

  void ActOnConfiguration(frmConfig& configuration) {
    if (Chance(5)) return Key(configuration, Qt::Key_Escape);
    std::vector<QWidget*> controls;
    for (QWidget* const control : configuration.findChildren<QWidget*>()) {
      if (control->isVisible() && control->isEnabled()) controls.push_back(control);
    }
    QWidget* const control = OneOf(controls);
    Click(*control, PlaceIn(*control));
  }

  void ActOnWindow() {
    struct Kind {
      int Weight;
      void (Walk::*Do)();
    };
    static constexpr Kind Kinds[] = {
        {30, &Walk::ClickSomewhere}, {25, &Walk::PressKey},     {15, &Walk::RunCommand},
        {8, &Walk::TurnWheel},       {6, &Walk::ChangeColumns}, {8, &Walk::DragSomewhere},
        {5, &Walk::ChangeWindow},    {2, &Walk::OpenMenu},      {2, &Walk::ChangeMachine},
        {1, &Walk::CloseWindow},
    };
    int sum = 0;
    for (const Kind& kind : Kinds) sum += kind.Weight;
    int chosen = Below(sum);
    for (const Kind& kind : Kinds) {
      if ((chosen -= kind.Weight) < 0) return (this->*kind.Do)();
    }
  }

  template <class View>
  View* SomeVisible() {
    std::vector<View*> views;
    for (View* const view : m_form->findChildren<View*>()) {
      if (view->isVisible() && view->model()->columnCount() > 0) views.push_back(view);
    }
    return views.empty() ? nullptr : OneOf(views);
  }
  QWidget* SomeView() {
    auto* const view = SomeVisible<QTreeView>();
    return view == nullptr ? nullptr : view->viewport();
  }

  void ClickSomewhere() {
    QPointer<QWidget> widget = Chance(60) ? SomeView() : nullptr;
    if (widget == nullptr) widget = m_form.get();
    const QPoint place = PlaceIn(*widget);
    const auto button = Chance(90) ? Qt::LeftButton : Qt::RightButton;
    Click(*widget, place, button, Modifiers());
    if (!Chance(25)) return;
    Note("double click");
    Send(widget, place, Mouse::DoubleClick);
  }

  void PressKey() {
    static const std::vector<int> Moves = {
        Qt::Key_Up,      Qt::Key_Down,   Qt::Key_Left,  Qt::Key_Right,     Qt::Key_Home,
        Qt::Key_End,     Qt::Key_PageUp, Qt::Key_Space, Qt::Key_Return,    Qt::Key_PageDown,
        Qt::Key_Tab,     Qt::Key_Plus,   Qt::Key_Minus, Qt::Key_Backspace, Qt::Key_Asterisk,
        Qt::Key_Backtab, Qt::Key_Delete, Qt::Key_C,     Qt::Key_Escape,    Qt::Key_F1};
    static const std::vector<int> Shortcuts = {Qt::Key_A, Qt::Key_C, Qt::Key_O,
                                               Qt::Key_P, Qt::Key_W, Qt::Key_Z};
    if (Chance(5)) {
      Key(*m_form, OneOf(Shortcuts), Qt::ControlModifier);
    } else {
      Key(*m_form, OneOf(Moves), Modifiers());
    }
  }

  void RunCommand() {
    std::vector<QPointer<QAction>> commands;
    for (QAction* const action : m_form->findChildren<QAction*>()) {
      if (action->isEnabled() && action->isVisible() && action->menu() == nullptr &&
          !action->isSeparator() && action->objectName().startsWith("mnu")) {
        commands.emplace_back(action);
      }
    }
    const QPointer<QAction>& action = OneOf(commands);
    if (action->objectName().contains("Exit") && !Chance(10)) return;
    Note("command " + action->objectName().toStdString());
    action->trigger();
  }

  void TurnWheel() {
    QWidget* const view = SomeView();
    if (view == nullptr) return;
    const QPoint place = PlaceIn(*view);
    QWheelEvent turn(place, view->mapToGlobal(place), {}, QPoint(0, (Below(9) - 4) * 120),
                     Qt::NoButton, Modifiers(), Qt::NoScrollPhase, false);
    Note("wheel", *view, place);
    QApplication::sendEvent(view, &turn);
  }

  void ChangeColumns() {
    auto* const header = SomeVisible<QHeaderView>();
    if (header == nullptr) return;
    const int place = Below(header->count());
    const int left = header->sectionViewportPosition(header->logicalIndex(place));
    const int y = header->height() / 2;
    const int x = Chance(60) ? left - 1 : left + 12;  // its edge, or itself
    Drag(*header->viewport(), {std::max(0, x), y}, {Below(header->width()), y});
  }

  void DragSomewhere() {
    QWidget* const bar = m_form->findChild<QWidget*>("picSplit");
    QWidget* const widget = Chance(50) ? bar : SomeView();
    if (widget != nullptr) Drag(*widget, PlaceIn(*widget), PlaceIn(*m_form) - widget->pos());
  }

  void ChangeWindow() {
    const int change = Below(4);
    Note("change of the window " + std::to_string(change));
    if (change == 0) m_form->resize(Below(1200) + 100, Below(800) + 50);
    if (change == 1) m_form->showMinimized();
    if (change == 2) m_form->showMaximized();
    if (change == 3) m_form->showNormal();
  }

  void OpenMenu() {
    QMenuBar& bar = *m_form->menuBar();
    const QList<QAction*> menus = bar.actions();
    const QRect place = bar.actionGeometry(OneOf(menus));
    if (place.isValid()) Click(bar, place.center());
  }

  // What the next snapshot finds.
  void ChangeMachine() {
    const std::string folder = m_desk.MachineFolder() + "/drive_c/Program Files/Walk";
    const std::string path = folder + "/file" + std::to_string(Below(20)) + ".txt";
    Note("change " + path);
    std::filesystem::create_directories(folder);
    if (!std::filesystem::remove(path)) std::ofstream(path) << std::string(Below(50), 'x');
  }

  void CloseWindow() {
    Note("close");
    m_form->close();
  }

  // Checks.

  void BreakFile() {
    const std::string path = m_desk.Temp.Of("broken.mdb");
    if (m_form != nullptr && m_form->State.AnalysisPath == path) return;
    std::ofstream(path, std::ios::trunc) << "This is no analysis. " << std::string(5000, '?');
  }

  // With nothing under way, what is shown is what is open.
  void CheckWindow() {
    clsMainControls& controls = m_form->Controls();
    const bool open = !m_form->State.AnalysisPath.empty();
    if (open == controls.treeView.Roots().empty()) {
      Fault(open ? "an analysis is open, and the tree is empty" : "a closed analysis has a tree");
    }
    for (int index = 0; index < page::Count; ++index) {
      const ListView& list = controls.List(index);
      const std::string name = clsMainControls::Element("listView", index);
      auto* const view = m_form->findChild<QTreeView*>(QString::fromStdString(name));
      const int rows = view->model()->rowCount();
      if (static_cast<std::size_t>(rows) != list.RowCount()) {
        Fault(name + " has " + std::to_string(list.RowCount()) + " rows and shows " +
              std::to_string(rows));
      }
    }
  }

  void CheckFile(const std::string& path) {
    const bool database = path.ends_with(".mdb") || path.ends_with(".zqd");
    bool expected = database;
    for (const char* kind : {".ini", ".lock", ".reg", ".pdf"}) {
      expected = expected || path.ends_with(kind);
    }
    if (!expected) Fault("left behind: " + path);
    if (!database || path.ends_with("broken.mdb")) return;
    const std::string found = Cell(path, "PRAGMA integrity_check");
    if (found != "ok") Fault(path + ": " + found);
  }

  SampleDesk m_desk;
  std::mt19937 m_random;
  int m_left;
  int m_faults = 0;
  std::FILE* m_log = nullptr;
  std::vector<Context> m_running;
  std::unique_ptr<frmSandrel> m_form;
};

Walk* theWalk = nullptr;

// What the window system lacks is no fault of the program.
void TakeMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if (type == QtDebugMsg || type == QtInfoMsg) return;
  if (text.startsWith("This plugin does not support")) return;
  if (std::string_view(context.category).starts_with("qt.qpa")) return;
  if (theWalk != nullptr) theWalk->Fault("Qt says: " + text.toStdString());
}

int Run(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  QApplication::setFont(QFont("Liberation Sans", 9));
  QCommandLineParser arguments;
  arguments.addOption({"actions", "", "N", "5000"});
  arguments.addOption({"seed", "", "N", QString::number(std::random_device()())});
  arguments.addOption({"log", "", "FILE"});
  arguments.process(application);
  const unsigned seed = arguments.value("seed").toUInt();
  const int actions = arguments.value("actions").toInt();
  std::printf("random walk: seed %u, %d actions\n", seed, actions);
  std::fflush(stdout);
  Walk walk(seed, actions, arguments.value("log"));
  theWalk = &walk;
  qInstallMessageHandler(TakeMessage);
  std::signal(SIGALRM, [](int) { std::abort(); });
  const int faults = walk.Run();
  qInstallMessageHandler(nullptr);
  std::printf("random walk: %d faults\n", faults);
  return faults == 0 ? 0 : 1;
}

}  // namespace
}  // namespace sandrel::test

// The library keeps what it knows of its buses.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libdbus";
}

int main(int argc, char** argv) {
  try {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("CUPS_SERVER", "/none");  // a walk prints nothing on paper
    return sandrel::test::Run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "randomwalk: %s\n", error.what());
    return 2;
  }
}
