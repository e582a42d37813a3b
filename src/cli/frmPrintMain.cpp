// sandrel-print FILE OUT PAGE: what sandrel-cli prints with, so that it needs no Qt itself.
#include <fmt/format.h>

#include <QGuiApplication>
#include <clocale>
#include <exception>

#include "browser/clsPageReader.h"
#include "cli/clsCliShell.h"
#include "cli/modPagePrinter.h"
#include "common/clsError.h"
#include "common/text.h"
#include "config/clsSettings.h"
#include "platform/qt/clsQtPrinter.h"

namespace {

using namespace sandrel;

int Run(int argc, char** argv) {
  constexpr int Arguments = 4;
  clsCliShell shell(false);
  if (argc != Arguments) {
    shell.Fail("usage: sandrel-print FILE OUT PAGE. It is run by sandrel-cli print.");
    return shell.ExitStatus();
  }
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // Warnings about a desktop that isn't needed are no concern of who prints.
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  const QGuiApplication application(argc, argv);
  std::setlocale(LC_NUMERIC, "C");  // as files hold them
  clsSettings settings(clsSettings::DefaultPath());
  clsQtPrinter printer(true);
  const int pages = PrintPage(argv[1], PageByName(argv[3]), argv[2], printer, shell, settings);
  fmt::print("{} page(s) printed: {}\n", pages, text::Escaped(argv[2]));
  return shell.ExitStatus();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& error) {
    clsCliShell shell(false);
    shell.Fail(error.what());
    return shell.ExitStatus();
  }
}
