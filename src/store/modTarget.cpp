#include "store/modTarget.h"

#include <fmt/format.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "config/clsSettings.h"

namespace sandrel {
namespace {

enum class Content : std::uint8_t { Any, OwnDatabase, Database, Hive, Settings };

// By its first bytes, so that those of other homes and machines are known too.
Content ContentOf(const std::string& path) {
  constexpr std::string_view Format("SQLite format 3\0", 16);
  constexpr std::string_view Application = "SNDR";
  constexpr std::size_t ApplicationAt = 68;
  std::array<char, 100> head{};
  std::ifstream(path, std::ios::binary).read(head.data(), head.size());
  const std::string_view bytes(head.data(), head.size());
  if (bytes.starts_with(Format)) {
    return bytes.substr(ApplicationAt).starts_with(Application) ? Content::OwnDatabase
                                                                : Content::Database;
  }
  if (bytes.starts_with("WINE REGISTRY Version") || bytes.starts_with("regf")) return Content::Hive;
  return clsFileWorks::IsSameFile(path, clsSettings::DefaultPath()) ? Content::Settings
                                                                    : Content::Any;
}

void Refuse(const std::string& path, const char* why) {
  throw clsError(errnum::PathFileAccess,
                 fmt::format("Can't write {}: {}. Choose another file.", path, why));
}

// What stands at the path; refuses what is no regular file.
Content Present(const std::string& path) {
  std::error_code ignored;
  const auto status = std::filesystem::status(path, ignored);
  if (!std::filesystem::exists(status)) return Content::Any;
  if (!std::filesystem::is_regular_file(status)) Refuse(path, "it is no regular file");
  return ContentOf(path);
}

void RefuseForeign(const std::string& path, Content content) {
  if (content == Content::Database) Refuse(path, "that file holds a database");
  if (content == Content::Hive) Refuse(path, "that file holds the registry of a machine");
  if (content == Content::Settings) Refuse(path, "that file holds the settings");
}

constexpr const char* HoldsOwn = "that file holds an analysis or snapshots";

}  // namespace

void NeedTarget(const std::string& path) {
  const Content content = Present(path);
  if (content == Content::OwnDatabase) Refuse(path, HoldsOwn);
  RefuseForeign(path, content);
}

void NeedAnalysisTarget(const std::string& path) {
  RefuseForeign(path, Present(path));
}

void NeedCopyTarget(const std::string& path) {
  if (Present(path) == Content::OwnDatabase) Refuse(path, HoldsOwn);
}

}  // namespace sandrel
