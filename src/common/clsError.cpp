#include "common/clsError.h"

#include <fmt/format.h>

#include <cerrno>
#include <system_error>

namespace sandrel {

clsError ErrnoError(int code, std::string_view what) {
  std::int32_t number = errnum::DeviceIo;
  switch (code) {
    case ENOENT:
      number = errnum::FileNotFound;
      break;
    case ENOTDIR:
      number = errnum::PathNotFound;
      break;
    case EACCES:
    case EPERM:
    case EROFS:
      number = errnum::PermissionDenied;
      break;
    case EISDIR:
      number = errnum::PathFileAccess;
      break;
    case ENOSPC:
    case EDQUOT:
      number = errnum::DiskFull;
      break;
    case ENOMEM:
      number = errnum::OutOfMemory;
      break;
    default:
      break;
  }
  return {number, fmt::format("{}: {}", what, std::generic_category().message(code))};
}

}  // namespace sandrel
