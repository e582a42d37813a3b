#include "store/modTarget.h"

#include <fmt/format.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "common/clsError.h"

namespace sandrel {

bool IsDatabase(const std::string& path) {
  constexpr std::string_view Format("SQLite format 3\0", 16);
  constexpr std::string_view Application = "SNDR";
  constexpr std::size_t ApplicationAt = 68;
  std::array<char, 100> head{};
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) return false;
  std::ifstream(path, std::ios::binary).read(head.data(), head.size());
  const std::string_view bytes(head.data(), head.size());
  return bytes.starts_with(Format) && bytes.substr(ApplicationAt).starts_with(Application);
}

void NeedTarget(const std::string& path) {
  const auto refuse = [&](const char* why) {
    throw clsError(errnum::PathFileAccess,
                   fmt::format("Can't write {}: {}. Choose another file.", path, why));
  };
  std::error_code ignored;
  const auto status = std::filesystem::status(path, ignored);
  if (!std::filesystem::exists(status)) return;
  if (!std::filesystem::is_regular_file(status)) refuse("it is no regular file");
  if (IsDatabase(path)) refuse("that file holds an analysis or snapshots");
}

}  // namespace sandrel
