// The window, as the layers below it see it.
//
// Commands tell their progress and ask their questions here. The main window implements it with
// real boxes, the command line with the terminal, tests with a recorder that scripts the answers.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace sandrel {

/// Answers of message boxes, by the platform's numbers.
enum class Answer : std::uint8_t {
  Ok = 1,
  Cancel = 2,
  Abort = 3,
  Retry = 4,
  Ignore = 5,
  Yes = 6,
  No = 7
};

enum class Buttons : std::uint8_t { Ok, YesNo, AbortRetryIgnore };
enum class BoxIcon : std::uint8_t { None, Critical, Question, Exclamation, Information };

struct MessageBox {
  std::string Text;
  std::string Title = "Sandrel";
  Buttons Choice = Buttons::Ok;
  BoxIcon Icon = BoxIcon::None;
  bool RetryHelps = true;  ///< of an error: the same may go well another time
};

/// Whether what failed with this number may go well when it is tried again.
bool RetryHelps(std::int32_t number);

/// A dialog that asks for a file of Sandrel's own, by its host path.
struct FileDialog {
  std::string Title;
  std::string Extension;  ///< added to a name without one, with its dot
  std::string FileName;   ///< proposed
  std::string Filter;     ///< "words|pattern|words|pattern"
  std::string Folder;     ///< where it starts
  bool Save = false;
};

/// What the whole program knows of the command that runs.
struct AppState {
  bool Scanning = false;                ///< a snapshot or an analysis runs
  bool Busy = false;                    ///< a snapshot command hasn't ended, stopped scans included
  bool WizardWaits = false;             ///< for an installer, and can be called back
  bool CloseDown = false;               ///< the user asked to quit during a scan
  bool BeforeSSCompleteNotify = false;  ///< the wizard waits for a Before snapshot
  std::string AnalysisPath;  ///< host path of the open analysis; empty when there is none
};

/// Shapes of the mouse pointer, by the platform's numbers.
namespace pointer {
inline constexpr int Default = 0;
inline constexpr int Hourglass = 11;
inline constexpr int ArrowHourglass = 13;
}  // namespace pointer

class clsShell {
 public:
  virtual ~clsShell() = default;

  AppState State;

  virtual void SetStatusText(std::string_view text) = 0;
  /// 0 empties the progress panel.
  virtual void SetProgress(int percent) = 0;
  /// A sentence that needs no answer: what a scan left out, why a scan waits.
  virtual void Tell(std::string_view text) = 0;
  virtual Answer Ask(const MessageBox& box) = 0;
  /// The error box; answers Abort, Retry or Ignore. `source` and `method` may be empty.
  virtual Answer ReportError(std::int32_t number, std::string_view description,
                             std::string_view source, std::string_view method) = 0;
  /// The chosen host path, which need not exist; empty when the user cancelled.
  virtual std::string ChooseFile(const FileDialog& dialog) = 0;

  virtual void SetMousePointer(int shape) = 0;
  /// The pointer that stands outside of long work: busy while a scan runs.
  void RestorePointer() {
    SetMousePointer(State.Scanning ? pointer::ArrowHourglass : pointer::Default);
  }
  /// Lets waiting window messages through. `often` is said in tight loops: there it costs next to
  /// nothing, because it looks at the window system at most every 15 ms.
  virtual void DoEvents(bool often = true) = 0;

  /// Puts a text (UTF-8) in the place of what the clipboard held.
  virtual void SetClipboard(std::string_view text) = 0;

  virtual void UpdateCommandState() = 0;
  virtual void RefreshMenus() = 0;
  /// Shows the text that tells the time of the Before snapshot.
  virtual void ShowBeforeTime(std::string_view text) = 0;
  /// The wizard's window comes back after a Before snapshot, or goes when the program ends.
  virtual void BeforeSnapshotEnded() = 0;

  /// What the browser does round the making of an analysis.
  virtual void CommitPendingDeletes() = 0;
  virtual void CloseAnalysis() = 0;
  virtual void OpenAnalysis(const std::string& path) = 0;

  /// Leaves the tray and closes the program's window: the end of an aborted command.
  virtual void Unload() = 0;
};

/// A shape of the pointer for as long as it lives.
class clsPointerGuard {
 public:
  clsPointerGuard(clsShell& shell, int shape) : m_shell(shell) { shell.SetMousePointer(shape); }
  ~clsPointerGuard() { m_shell.RestorePointer(); }
  clsPointerGuard(const clsPointerGuard&) = delete;
  clsPointerGuard& operator=(const clsPointerGuard&) = delete;

 private:
  clsShell& m_shell;
};

/// The text of the panel "Progress": "42% " and a bar of at most 25 characters of code 1; empty for
/// 0.
std::string ProgressText(int percent);

/// The text of the error box.
std::string ErrorBoxText(std::int32_t number, std::string_view description, std::string_view source,
                         std::string_view method);

}  // namespace sandrel
