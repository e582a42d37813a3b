// What the benchmarks of the main window share: how a wait is measured and printed, and the window
// itself, which needs no display.
#pragma once

#include <fmt/format.h>

#include <QApplication>
#include <QStyleFactory>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>

#include "platform/process/clsTopWindows.h"
#include "shell/frmSandrel.h"
#include "support/SampleMachine.h"
#include "support/TempFolder.h"

namespace sandrel::bench {

/// One line a measurement, separated by tabs.
inline void Print(std::string_view name, double number, const char* unit,
                  const std::string& about) {
  fmt::print("{}\t{:.3f}\t{}\t{}\n", name, number, unit, about);
}

inline std::string Counted(std::size_t count, const char* what) {
  return fmt::format("{} {}", count, what);
}

/// Seconds until `step` is done and what it changed is painted.
inline double Seconds(const std::function<void()>& step) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point begun = Clock::now();
  step();
  QApplication::processEvents();  // a view lays out what changed,
  QApplication::processEvents();  // then paints it
  return std::chrono::duration<double>(Clock::now() - begun).count();
}

/// A line of the process' own account of its memory ("VmHWM:", the most so far), in MiB.
inline double Memory(const char* line) {
  std::ifstream status("/proc/self/status");
  for (std::string text; std::getline(status, text);) {
    if (text.starts_with(line))
      return std::strtod(text.c_str() + std::strlen(line), nullptr) / 1024;
  }
  return 0;
}

inline void Click(clsMainControls& controls, Node& node) {
  controls.treeView.SetSelectedItem(&node);
  controls.treeView.NodeClick(node);
  controls.treeView.Click();
}

/// Makes the window, with a home of its own that knows `analysis`, for `run`.
inline void WithWindow(const std::string& analysis, const std::function<void(frmSandrel&)>& run) {
  const test::TempFolder temp;
  const test::SampleMachine sample;
  clsSettings settings(temp.Of("settings.ini"));
  const clsHome home = clsHome::Find(temp.Of("home"));
  settings.SaveSetting("Recent Files", "RecentFile1", analysis);
  clsTopWindows windows;
  StartOptions options;
  options.Machine = sample.Folder();
  frmSandrel form(settings, home, windows, options);
  form.SetNoAutoLoadDatabase(true);
  form.Form_Load();
  run(form);
  form.close();
}

/// The program: one argument, the analysis; 2 when it fails.
inline int Main(int argc, char** argv, const std::function<void(const std::string&)>& run) {
  if (argc != 2) {
    fmt::print(stderr, "{} ANALYSIS\n", argv[0]);
    return 2;
  }
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  try {
    run(argv[1]);
  } catch (const std::exception& error) {
    fmt::print(stderr, "{}: {}\n", argv[0], error.what());
    return 2;
  }
  return 0;
}

}  // namespace sandrel::bench
