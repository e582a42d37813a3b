#include "common/modDateText.h"

#include <array>
#include <clocale>
#include <cstring>

namespace sandrel {

std::string LocalDateText(std::time_t utcSeconds) {
  std::tm local{};
  if (localtime_r(&utcSeconds, &local) == nullptr) return {};
  const char* locale = std::setlocale(LC_TIME, nullptr);
  const bool plain = locale == nullptr || std::strcmp(locale, "C") == 0 ||
                     std::strncmp(locale, "C.", 2) == 0 || std::strcmp(locale, "POSIX") == 0;
  std::array<char, 200> buffer{};
  const std::size_t length =
      std::strftime(buffer.data(), buffer.size(), plain ? "%Y-%m-%d %H:%M:%S" : "%x %X", &local);
  return {buffer.data(), length};
}

std::string LocalDateText(std::string_view stored) {
  std::tm parts{};
  std::string text(stored);
  const char* end = strptime(text.c_str(), "%Y-%m-%d %H:%M:%S", &parts);
  if (end == nullptr || *end != '\0') return text;
  return LocalDateText(timegm(&parts));
}

}  // namespace sandrel
