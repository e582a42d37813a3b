#include "common/modInstallation.h"

#include <filesystem>

#include "common/clsError.h"

namespace sandrel {
namespace {

constexpr const char* Helpers = "libexec/sandrel";

// The first of `name` beside `program` and in `folder` below the installation; empty when there is
// none.
std::filesystem::path FindFile(const std::string& name, const std::filesystem::path& program,
                               const std::filesystem::path& folder) {
  const auto here = program.parent_path();
  // A helper asks from libexec/sandrel, the others from bin.
  for (const auto& candidate : {here / name, here.parent_path() / folder / name,
                                here.parent_path().parent_path() / folder / name}) {
    std::error_code failure;
    if (std::filesystem::is_regular_file(candidate, failure)) return candidate;
  }
  return {};
}

}  // namespace

std::string ProgramPath() {
  std::error_code failure;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", failure);
  return failure ? std::string() : program.string();
}

std::string ProgramFolder() {
  const auto here = std::filesystem::path(ProgramPath()).parent_path();
  std::error_code failure;
  const bool spread = std::filesystem::is_directory(here.parent_path() / Helpers, failure);
  return spread ? std::string() : here.string();
}

std::string HelperProgram(const std::string& name, const std::string& program) {
  const auto found = FindFile(name, program, Helpers);
  if (found.empty()) {
    throw clsError(errnum::FileNotFound,
                   "The program " + name + ", which belongs to Sandrel, is not installed.",
                   "HelperProgram");
  }
  return found.string();
}

std::string DataFile(const std::string& name) {
  const std::filesystem::path program = ProgramPath();
  const auto found = FindFile(name, program, "share/sandrel");
  return (found.empty() ? program.parent_path() / name : found).string();
}

}  // namespace sandrel
