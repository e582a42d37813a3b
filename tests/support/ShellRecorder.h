// A shell for tests: writes down what it is told and gives the answers that the test scripted.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "common/clsShell.h"

namespace sandrel::test {

class ShellRecorder final : public clsShell {
 public:
  /// Every status text, question, error and note, in order: "status: ...", "ask: ...", "error 52:
  /// ...", "tell: ...", "unload", "open: ...".
  std::vector<std::string> Log;
  /// Answers to the next questions and errors; when used up, questions are answered with Yes and
  /// errors with Abort.
  std::vector<Answer> Questions, Errors;
  std::string File;                ///< what the file dialog gives
  std::function<void()> OnError;   ///< runs before an error is answered
  std::function<void()> OnEvents;  ///< runs inside DoEvents
  std::vector<int> Progress;       ///< every percentage told
  std::string BeforeTime;

  bool Has(const std::string& part) const {
    for (const std::string& line : Log) {
      if (line.find(part) != std::string::npos) return true;
    }
    return false;
  }
  std::string Last() const { return Log.empty() ? "" : Log.back(); }

  void SetStatusText(std::string_view text) override {
    Log.push_back("status: " + std::string(text));
  }
  void SetProgress(int percent) override { Progress.push_back(percent); }
  void Tell(std::string_view text) override { Log.push_back("tell: " + std::string(text)); }
  Answer Ask(const MessageBox& box) override {
    Log.push_back("ask: " + box.Text);
    return Take(Questions, Answer::Yes);
  }
  Answer ReportError(std::int32_t number, std::string_view description, std::string_view source,
                     std::string_view method) override {
    Log.push_back("error " + std::to_string(number) + ": " + std::string(description) + " [" +
                  std::string(source) + "] [" + std::string(method) + "]");
    if (OnError) OnError();
    return Take(Errors, Answer::Abort);
  }
  std::string ChooseFile(const FileDialog& dialog) override {
    Log.push_back("choose: " + dialog.Title + " " + dialog.FileName);
    return File;
  }
  void SetMousePointer(int) override {}
  void DoEvents(bool) override {
    if (OnEvents) OnEvents();
  }
  void SetClipboard(std::string_view text) override { Log.push_back("clip: " + std::string(text)); }
  void UpdateCommandState() override {}
  void RefreshMenus() override {}
  void ShowBeforeTime(std::string_view text) override { BeforeTime = text; }
  void BeforeSnapshotEnded() override { Log.emplace_back("wizard"); }
  void CommitPendingDeletes() override { Log.emplace_back("commit deletes"); }
  void CloseAnalysis() override {
    Log.emplace_back("close analysis");
    State.AnalysisPath.clear();
  }
  void OpenAnalysis(const std::string& path) override { Log.push_back("open: " + path); }
  void Unload() override { Log.emplace_back("unload"); }

 private:
  static Answer Take(std::vector<Answer>& answers, Answer fallback) {
    if (answers.empty()) return fallback;
    const Answer answer = answers.front();
    answers.erase(answers.begin());
    return answer;
  }
};

}  // namespace sandrel::test
