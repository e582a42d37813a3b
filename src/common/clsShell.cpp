#include "common/clsShell.h"

#include <fmt/format.h>

#include "common/clsError.h"

namespace sandrel {

std::string ProgressText(int percent) {
  if (percent == 0) return {};
  return fmt::format("{}% {}", percent, std::string(static_cast<std::size_t>(percent / 4), '\x01'));
}

bool RetryHelps(std::int32_t number) {
  switch (number) {
    case errnum::InvalidArgument:
    case errnum::Overflow:
    case errnum::TypeMismatch:
    case errnum::Internal:
    case errnum::NotSet:
    case errnum::ReadOnly:
    case errnum::CorruptDatabase:
    case errnum::TooFewParameters:
    case errnum::SyntaxError:
    case errnum::NoSuchTable:
    case errnum::FieldTooLong:
    case errnum::InvalidOperation:
    case errnum::NoSuchItem:
    case errnum::DataConversion:
    case errnum::IndexOutOfBounds:
    case errnum::ElementNotFound:
    case errnum::KeyNotUnique:
    case errnum::Machine:
      return false;
    default:
      return true;
  }
}

std::string ErrorBoxText(std::int32_t number, std::string_view description, std::string_view source,
                         std::string_view method) {
  // Numbers of the program's own are shown without their common base.
  const std::int64_t offset = std::int64_t{number} + 0x7FFC0000;
  const std::int64_t shown = offset >= 1 && offset <= 65534 ? offset : number;
  std::string text =
      fmt::format("The following error has occured...\n\nError Message: {}\n\nError Number: {}",
                  description, shown);
  if (!source.empty()) text += fmt::format("\n\nSource: {}", source);
  if (!method.empty()) text += fmt::format("\n\nMethod: {}", method);
  return text;
}

}  // namespace sandrel
