#include "wizard/modActivateApp.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace sandrel {
namespace {

using modActivateApp::ActivateApp;
using modActivateApp::FindAppWindow;
using modActivateApp::MatchBy;

// Windows 1, 2, 3... with these titles, all hidden, the second one minimized.
class FakeWindows : public clsWindowList {
 public:
  void EnumWindows(const std::function<bool(WindowHandle)>& callback) const override {
    for (Last = 1; Last < Titles.size() && callback(Last);) ++Last;
  }
  std::string GetWindowText(WindowHandle window) const override { return Titles.at(window); }
  bool IsWindowVisible(WindowHandle) const override { return false; }
  bool IsIconic(WindowHandle window) const override { return window == 2; }
  void ShowWindow(WindowHandle window, int command) override {
    Done += "show " + std::to_string(window) + " " + std::to_string(command) + ";";
  }
  void OpenIcon(WindowHandle) override { Done += "open;"; }
  void SetForegroundWindow(WindowHandle window) override {
    Done += "front " + std::to_string(window) + ";";
  }

  const std::vector<std::string> Titles = {"null",          "",    "App",   "My App",
                                           "My App - Page", "App", "ÄRGER", "an App"};
  mutable WindowHandle Last = 0;
  std::string Done;
};

TEST(modActivateApp, FindsTheFirstWindowWhoseTitleAgrees) {
  const FakeWindows windows;
  const struct {
    const char* Sought;
    MatchBy By;
    bool CaseSensitive;
    WindowHandle Found;
  } cases[] = {
      {"My", MatchBy::Begins, true, 3},      {"my", MatchBy::Begins, true, 0},
      {"my", MatchBy::Begins, false, 3},     {"Page", MatchBy::Begins, true, 0},
      {"p - p", MatchBy::Holds, false, 4},   {"p - p", MatchBy::Holds, true, 0},
      {"MY APP", MatchBy::Equals, false, 3}, {"ärger", MatchBy::Equals, false, 6},
      {"My", MatchBy::Equals, true, 0},      {"n aPP", MatchBy::Ends, false, 7},
      {"Your App", MatchBy::Ends, true, 0},  {"", MatchBy::Begins, true, 2},
  };
  for (const auto& one : cases) {
    // Hidden windows are found although only visible ones are asked for.
    EXPECT_EQ(FindAppWindow(windows, one.Sought, one.By, one.CaseSensitive, true), one.Found)
        << one.Sought << ", " << static_cast<int>(one.By) << ", " << one.CaseSensitive;
    EXPECT_EQ(windows.Last, one.Found != 0 ? one.Found : 8) << "stops at the first";
  }
}

TEST(modActivateApp, RestoresAMinimizedWindowAloneAndBringsItForward) {
  FakeWindows windows;
  EXPECT_EQ(ActivateApp(windows, "null", MatchBy::Begins, true, false), 0u);
  EXPECT_EQ(ActivateApp(windows, "My", MatchBy::Begins, true, false), 3u);
  EXPECT_EQ(ActivateApp(windows, "App", MatchBy::Begins, true, false), 2u);
  EXPECT_EQ(windows.Done, "front 3;show 2 9;front 2;");
}

}  // namespace
}  // namespace sandrel
