// A folder for one test, gone with everything in it when the test ends.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace sandrel::test {

class TempFolder {
 public:
  TempFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sandrel-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    m_path = std::filesystem::canonical(pattern).string();
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  /// Absolute, without links in it and without a trailing slash.
  const std::string& Path() const { return m_path; }
  /// The path of `name` in this folder; nothing is made.
  std::string Of(const std::string& name) const { return m_path + "/" + name; }

 private:
  std::string m_path;
};

}  // namespace sandrel::test
