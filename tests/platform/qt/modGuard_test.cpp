#include "platform/qt/modGuard.h"

#include <gtest/gtest.h>

#include <QPushButton>
#include <stdexcept>

namespace sandrel::test {
namespace {

// No exception may leave a slot: the toolkit's code can't pass it on, and the program would end.
TEST(modGuard, ReportsWhatASlotRaisesAndRunsItAgain) {
  std::string told;
  int answers = 0;
  const qt::clsErrorReport report([&](const clsError& error, const std::string& where) {
    told += where + " " + std::to_string(error.Number()) + ";";
    return ++answers == 1;  // once again
  });
  QPushButton button;
  button.setObjectName("cmd");
  int runs = 0;
  const auto connection = qt::Connect(&button, &QPushButton::clicked, &button, [&] {
    if (++runs == 2) throw std::runtime_error("odd");
    throw clsError(errnum::DiskFull, "full");
  });
  button.click();
  EXPECT_EQ(told, "cmd 61;cmd 51;");
  QObject::disconnect(connection);
  auto* const gone = new QPushButton;
  qt::Connect(gone, &QPushButton::clicked, gone, [&] {
    delete gone;
    throw std::bad_alloc();
  });
  answers = 0;
  gone->click();
  EXPECT_EQ(told, "cmd 61;cmd 51; 7;") << "an object that has gone isn't run again";
}

}  // namespace
}  // namespace sandrel::test
