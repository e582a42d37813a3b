// What a statement raises.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "common/clsError.h"

namespace sandrel::test {

/// The number of the error that a statement raises; 0 when it raises none.
template <class Body>
std::int32_t NumberOf(Body&& body) {
  try {
    body();
  } catch (const clsError& error) {
    return error.Number();
  }
  return 0;
}

/// True when a statement raises that error and `part` stands in its "source: description".
template <class Body>
testing::AssertionResult Raises(std::int32_t number, const std::string& part, Body&& body) {
  try {
    body();
  } catch (const clsError& error) {
    const std::string text = error.Source() + ": " + error.Description();
    if (error.Number() == number && text.find(part) != std::string::npos)
      return testing::AssertionSuccess();
    return testing::AssertionFailure() << error.Number() << " " << text;
  }
  return testing::AssertionFailure() << "no error, for " << part;
}

}  // namespace sandrel::test
