#include "common/clsShell.h"

#include <gtest/gtest.h>

namespace sandrel {
namespace {

TEST(ErrorBoxText, ShowsTheProgramsOwnNumbersWithoutTheirBase) {
  const std::string head = "The following error has occured...\n\nError Message: no\n\n";
  EXPECT_EQ(ErrorBoxText(-2147221504 + 75, "no", "a", "b"),
            head + "Error Number: 75\n\nSource: a\n\nMethod: b");
  for (const std::int32_t number : {52, -2147221504, -2147221504 + 65535}) {
    EXPECT_EQ(ErrorBoxText(number, "no", "", ""), head + "Error Number: " + std::to_string(number));
  }
}

}  // namespace
}  // namespace sandrel
