// sandrel, the desktop application.
#include <fmt/format.h>

#include <QApplication>
#include <clocale>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/clsFileWorks.h"
#include "common/text.h"
#include "config/clsHome.h"
#include "config/clsSettings.h"
#include "platform/process/clsInstanceLock.h"
#include "platform/process/clsTopWindows.h"
#include "platform/process/modDisplay.h"
#include "platform/qt/clsInstanceChannel.h"
#include "platform/qt/clsTermination.h"
#include "shell/frmSandrel.h"

#ifndef SANDREL_VERSION
#define SANDREL_VERSION "0.0.0"
#endif

namespace {

constexpr int Failed = 2;

constexpr const char* Purpose =
    "sandrel - finds out what a software installation does to a Windows machine\n\n";
constexpr const char* Usage = "Usage: sandrel [--machine DIR] [--home DIR] [FILE]\n";
constexpr const char* Words =
    "\n  FILE           The analysis to open (else the last one)\n"
    "  --machine DIR  Folder of the machine to look at (else $SANDREL_MACHINE, $WINEPREFIX, the\n"
    "                 choice in the Settings menu, ~/.wine)\n"
    "  --home DIR     Folder of the snapshots (else $SANDREL_HOME)\n"
    "  --help         Shows this text\n"
    "  --version      Shows the version\n\n"
    "The same work without a window: sandrel-cli\n";

struct Arguments {
  sandrel::StartOptions Start;
  std::string Home;
  std::string Complaint;  // about an option; empty for none
  bool Help = false, Version = false;
};

// A single word that is no option is an analysis; several are the program's command.
Arguments Parse(const std::vector<std::string>& words) {
  Arguments arguments;
  std::vector<std::string> rest;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string_view word = words[i];
    const auto value = [&](std::string_view option, std::string& target) {
      if (word == option) {
        if (i + 1 < words.size()) {
          target = words[++i];
        } else {
          arguments.Complaint = words[i] + " needs a folder.";
        }
        return true;
      }
      if (!word.starts_with(std::string(option) + "=")) return false;
      target = word.substr(option.size() + 1);
      return true;
    };
    if (value("--machine", arguments.Start.Machine) || value("--home", arguments.Home)) continue;
    if (word == "--help" || word == "-h") {
      arguments.Help = true;
    } else if (word == "--version") {
      arguments.Version = true;
    } else if (word.starts_with('-')) {
      arguments.Complaint = words[i] + " is no option.";
    } else {
      rest.emplace_back(word);
    }
  }
  std::string command(sandrel::text::Trim(fmt::to_string(fmt::join(rest, " "))));
  if (rest.size() == 1 && !command.empty() && command != sandrel::WizardCommand) {
    arguments.Start.File = sandrel::clsFileWorks::Absolute(rest.front());
  } else {
    arguments.Start.Command = std::move(command);
  }
  return arguments;
}

int Run(int argc, char** argv) {
  Arguments arguments = Parse({argv + 1, argv + argc});
  if (arguments.Help || arguments.Version) {
    if (arguments.Version) {
      fmt::print("sandrel " SANDREL_VERSION "\n");
    } else {
      fmt::print("{}{}{}", Purpose, Usage, Words);
    }
    return 0;
  }
  if (const std::string problem = sandrel::DisplayProblem(); !problem.empty()) {
    fmt::print(stderr, "{}\n", problem);
    return Failed;
  }
  QApplication application(argc, argv);
  arguments = Parse({argv + 1, argv + argc});  // without the words that the application took
  if (!arguments.Complaint.empty()) {
    fmt::print(stderr, "sandrel: {}\n{}", arguments.Complaint, Usage);
    return Failed;
  }
  // Dates follow the user's format; numbers stay as files hold them.
  std::setlocale(LC_NUMERIC, "C");
  QApplication::setApplicationName("sandrel");
  QApplication::setDesktopFileName("sandrel");
  // A window that is hidden in the tray doesn't end the program.
  QApplication::setQuitOnLastWindowClosed(false);
  sandrel::clsSettings settings(sandrel::clsSettings::DefaultPath());
  const sandrel::clsHome home = sandrel::clsHome::Find(arguments.Home);
  const sandrel::clsInstanceLock instance(home.Path());
  arguments.Start.PrevInstance = instance.PrevInstance();
  bool called = false;
  arguments.Start.CallPrevious = [&](const std::string& file) {
    return called = sandrel::clsInstanceChannel::Call(instance.Name(), file);
  };
  sandrel::clsInstanceChannel channel;
  sandrel::clsTopWindows windows;
  sandrel::frmSandrel form(settings, home, windows, arguments.Start);
  const sandrel::clsTermination termination([&form] { form.Unload(); }, [&form] { form.Save(); });
  if (!instance.PrevInstance()) {
    channel.Called = [&form](const std::string& file) { form.ComeForward(file); };
    channel.Listen(instance.Name());
  }
  form.Form_Load();
  if (instance.PrevInstance() && !called && !arguments.Start.File.empty()) {
    fmt::print(stderr, "sandrel: Sandrel is running already; {} was not opened.\n",
               sandrel::text::Escaped(arguments.Start.File));
    return Failed;
  }
  return form.IsUnloaded() ? 0 : QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& error) {
    fmt::print(stderr, "sandrel: {}\n", sandrel::text::Escaped(error.what()));
    return Failed;
  }
}
