// Runs the tests of the window offscreen, with a font that is the same on every machine.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFont>
#include <QStyleFactory>

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("CUPS_SERVER", "/none");  // no test prints on paper
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  QApplication::setFont(QFont("Liberation Sans", 9));
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
