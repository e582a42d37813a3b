// Environment variables for one test; the old ones come back when it ends.
#pragma once

#include <cstdlib>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sandrel::test {

class Variables {
 public:
  using Variable = std::pair<const char*, std::optional<std::string>>;

  /// Sets each name to its text; no text unsets it.
  Variables(std::initializer_list<Variable> variables) {
    for (const auto& [name, text] : variables) {
      const char* const old = std::getenv(name);
      m_old.emplace_back(name, old != nullptr ? std::optional<std::string>(old) : std::nullopt);
      Set(name, text);
    }
  }
  ~Variables() {
    for (const auto& [name, text] : m_old) Set(name, text);
  }

 private:
  static void Set(const char* name, const std::optional<std::string>& text) {
    text ? setenv(name, text->c_str(), 1) : unsetenv(name);
  }
  std::vector<Variable> m_old;
};

}  // namespace sandrel::test
