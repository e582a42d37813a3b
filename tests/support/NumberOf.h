// The number of the error that a statement raises; 0 when it raises none.
#pragma once

#include <cstdint>

#include "common/clsError.h"

namespace sandrel::test {

template <class Body>
std::int32_t NumberOf(Body&& body) {
  try {
    body();
  } catch (const clsError& error) {
    return error.Number();
  }
  return 0;
}

}  // namespace sandrel::test
