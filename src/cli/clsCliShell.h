// The terminal as the program's window.
//
// A question is answered by "--yes" or refuses the command; an error box is answered with Abort, so
// every failure cleans up as a cancel does. Ctrl-C cancels as the Stop command does.
#pragma once

#include <functional>
#include <string>

#include "common/clsShell.h"

namespace sandrel {

/// Exit status of the program.
namespace exitstatus {
inline constexpr int Done = 0;
inline constexpr int Refused = 1;  ///< refused or cancelled
inline constexpr int Failed = 2;
}  // namespace exitstatus

class clsCliShell final : public clsShell {
 public:
  /// `assumeYes` answers every question with Yes.
  explicit clsCliShell(bool assumeYes);
  ~clsCliShell() override;

  /// Called when the user interrupts while a scan runs; it asks for the cancel.
  std::function<void()> OnInterrupt;
  /// From now on SIGINT and SIGTERM interrupt instead of ending the process at once.
  static void CatchInterrupts();

  /// Status of what ran so far, and whether the user interrupted.
  int ExitStatus() const { return m_status; }
  static bool WasInterrupted();
  void Refuse(std::string_view why);
  void Fail(std::string_view why);

  void SetStatusText(std::string_view text) override;
  void SetProgress(int percent) override;
  void Tell(std::string_view text) override;
  Answer Ask(const MessageBox& box) override;
  Answer ReportError(std::int32_t number, std::string_view description, std::string_view source,
                     std::string_view method) override;
  std::string ChooseFile(const FileDialog&) override { return {}; }
  void SetMousePointer(int) override {}
  void DoEvents(bool often) override;
  void SetClipboard(std::string_view) override {}
  void UpdateCommandState() override {}
  void RefreshMenus() override {}
  void ShowBeforeTime(std::string_view) override {}
  void BeforeSnapshotEnded() override {}
  void CommitPendingDeletes() override {}
  void CloseAnalysis() override {}
  void OpenAnalysis(const std::string&) override {}
  void Unload() override {}

 private:
  void ShowLine();
  void ClearLine();
  void Say(std::string_view text);

  bool m_assumeYes;
  bool m_terminal;
  bool m_lineShown = false;
  bool m_interrupting = false;
  int m_status = exitstatus::Done;
  int m_percent = 0;
  std::string m_text;
};

}  // namespace sandrel
