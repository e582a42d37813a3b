#include "platform/machine/modHostNames.h"

#include <array>
#include <cstddef>

#include "common/text.h"

namespace sandrel::hostnames {
namespace {

constexpr char32_t StrayByte = 0x110000;   // as text::Next gives it
constexpr char32_t FirstStandIn = 0xF700;  // of byte 0; bytes below 80 are never stray
constexpr char32_t FirstLetter = 0xF780;
constexpr char32_t LastLetter = 0xF7FF;

bool IsStandIn(char32_t c) {
  return c >= FirstLetter && c <= LastLetter;
}

constexpr std::array<bool, 256> MakeImpossible() {
  std::array<bool, 256> table{};
  for (std::size_t i = 0; i < 32; ++i) table[i] = true;
  for (const char c : {'\\', '/', ':', '*', '?', '"', '<', '>', '|'}) {
    table[static_cast<unsigned char>(c)] = true;
  }
  return table;
}
constexpr std::array<bool, 256> Impossible = MakeImpossible();

void AppendStandIns(std::string& name, std::string_view bytes) {
  for (const char byte : bytes) {
    text::Append(name, FirstStandIn + static_cast<unsigned char>(byte));
  }
}

}  // namespace

Form AppendWindowsName(std::string& windowsName, std::string_view hostName) {
  bool ascii = true;
  for (const char c : hostName) {
    const auto byte = static_cast<unsigned char>(c);
    if (Impossible[byte]) return Form::Impossible;
    ascii = ascii && byte < 0x80;
  }
  if (ascii) {
    windowsName += hostName;
    return Form::Same;
  }
  Form form = Form::Same;
  for (std::size_t i = 0; i < hostName.size();) {
    const std::size_t start = i;
    const char32_t c = text::Next(hostName, i);
    const std::string_view bytes = hostName.substr(start, i - start);
    if (c >= StrayByte || IsStandIn(c)) {
      AppendStandIns(windowsName, bytes);
      form = Form::Mapped;
    } else {
      windowsName += bytes;
    }
  }
  return form;
}

bool AppendHostName(std::string& hostName, std::string_view windowsName) {
  bool ascii = true;
  for (const char c : windowsName) {
    const auto byte = static_cast<unsigned char>(c);
    if (Impossible[byte]) return false;
    ascii = ascii && byte < 0x80;
  }
  if (ascii) {
    hostName += windowsName;
    return true;
  }
  const std::size_t start = hostName.size();
  bool mapped = false;
  for (std::size_t i = 0; i < windowsName.size();) {
    const std::size_t from = i;
    const char32_t c = text::Next(windowsName, i);
    mapped = mapped || c >= StrayByte || IsStandIn(c);
    if (IsStandIn(c)) {
      hostName += static_cast<char>(c - FirstStandIn);
    } else {
      hostName += windowsName.substr(from, i - from);
    }
  }
  if (!mapped) return true;
  // Stand-ins whose bytes make up a character after all are the name of no file: the file's own
  // Windows name has that character.
  std::string again;
  AppendWindowsName(again, std::string_view(hostName).substr(start));
  if (again == windowsName) return true;
  hostName.resize(start);
  return false;
}

}  // namespace sandrel::hostnames
