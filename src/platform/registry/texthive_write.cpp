#include <fmt/format.h>

#include <iterator>
#include <utility>
#include <vector>

#include "common/text.h"
#include "platform/registry/clsRegistry.h"
#include "platform/registry/texthive.h"

namespace sandrel {
namespace {

constexpr std::int64_t TicksPerSecond = 10000000;
constexpr std::int64_t TicksTo1970 = 11644473600 * TicksPerSecond;
constexpr std::size_t HexLineWidth = 76;  // Wine breaks a line of bytes behind this column

char16_t UnitAt(std::string_view bytes, std::size_t at) {
  return static_cast<char16_t>(static_cast<unsigned char>(bytes[at]) |
                               static_cast<unsigned char>(bytes[at + 1]) << 8);
}

bool IsHexDigit(char16_t c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// UTF-16 text in escapes; `quotes` are the characters that end it.
void AppendEscaped(std::string& out, std::string_view utf16, std::string_view quotes) {
  static constexpr std::string_view Escapes = ".......abtnvfr.............e....";
  for (std::size_t i = 0; i + 1 < utf16.size(); i += 2) {
    const char16_t c = UnitAt(utf16, i);
    const bool last = i + 3 >= utf16.size();
    const char16_t next = last ? u'\0' : UnitAt(utf16, i + 2);
    if (c > 0x7F) {
      // All digits, so that the next character is not taken for one.
      if (!last && IsHexDigit(next)) {
        fmt::format_to(std::back_inserter(out), "\\x{:04x}", static_cast<unsigned>(c));
      } else {
        fmt::format_to(std::back_inserter(out), "\\x{:x}", static_cast<unsigned>(c));
      }
    } else if (c >= 0x20) {
      const char character = static_cast<char>(c);
      if (character == '\\' || quotes.find(character) != std::string_view::npos) out += '\\';
      out += character;
    } else if (Escapes[c] != '.') {
      out += '\\';
      out += Escapes[c];
    } else if (!last && next >= '0' && next <= '7') {
      fmt::format_to(std::back_inserter(out), "\\{:03o}", static_cast<unsigned>(c));
    } else {
      fmt::format_to(std::back_inserter(out), "\\{:o}", static_cast<unsigned>(c));
    }
  }
}

bool IsTerminated(std::string_view utf16) {
  return utf16.size() >= 2 && utf16.size() % 2 == 0 && UnitAt(utf16, utf16.size() - 2) == 0;
}

void AppendHex(std::string& out, const clsKeyTree::Value& value, std::size_t lineStart) {
  static constexpr std::string_view Digits = "0123456789abcdef";
  if (value.type == regtype::Binary) {
    out += "hex:";
  } else {
    fmt::format_to(std::back_inserter(out), "hex({:x}):", value.type);
  }
  std::size_t column = out.size() - lineStart;
  for (std::size_t i = 0; i < value.data.size(); ++i) {
    const auto byte = static_cast<unsigned char>(value.data[i]);
    out += Digits[byte >> 4];
    out += Digits[byte & 15u];
    column += 2;
    if (i + 1 == value.data.size()) break;
    out += ',';
    if (++column > HexLineWidth) {
      out += "\\\n  ";
      column = 2;
    }
  }
}

void AppendValue(std::string& out, const clsKeyTree::Value& value) {
  const std::size_t lineStart = out.size();
  if (value.name.empty()) {
    out += "@=";
  } else {
    out += '"';
    AppendEscaped(out, text::ToUtf16Le(value.name), "\"");
    out += "\"=";
  }
  const bool isText = value.type == regtype::Sz || value.type == regtype::ExpandSz ||
                      value.type == regtype::MultiSz;
  if (isText && IsTerminated(value.data)) {
    if (value.type != regtype::Sz)
      fmt::format_to(std::back_inserter(out), "str({:x}):", value.type);
    out += '"';
    AppendEscaped(out, std::string_view(value.data).substr(0, value.data.size() - 2), "\"");
    out += '"';
  } else if (value.type == regtype::Dword && value.data.size() == 4) {
    fmt::format_to(std::back_inserter(out), "dword:{:04x}{:04x}",
                   static_cast<unsigned>(UnitAt(value.data, 2)),
                   static_cast<unsigned>(UnitAt(value.data, 0)));
  } else {
    AppendHex(out, value, lineStart);
  }
  out += '\n';
}

void AppendKey(std::string& out, const clsKeyTree::Key& key, std::string_view escapedPath) {
  fmt::format_to(std::back_inserter(out), "\n[{}] {}\n#time={:x}\n", escapedPath,
                 static_cast<std::uint32_t>((key.modified - TicksTo1970) / TicksPerSecond),
                 static_cast<std::uint64_t>(key.modified));
  if (key.className != nullptr) {
    out += "#class=\"";
    AppendEscaped(out, *key.className, "\"");
    out += "\"\n";
  }
  if (key.link) out += "#link\n";
  for (const clsKeyTree::Value& value : key.values) AppendValue(out, value);
}

}  // namespace

std::string WriteTextHive(const TextHive& hive) {
  struct Level {
    const clsKeyTree::Key* key;
    std::size_t nextSubkey;
    std::size_t pathSize;  // of the path to the key
  };
  std::string out = hive.head;
  std::string path;
  std::vector<Level> way;  // a stack of its own, as keys can lie deep
  const auto enter = [&](const clsKeyTree::Key& key) {
    if (!key.values.empty() || key.subkeys.empty() || key.className != nullptr || key.link) {
      AppendKey(out, key, path);
    }
    way.push_back({&key, 0, path.size()});
  };
  enter(*hive.tree->Root());
  while (!way.empty()) {
    Level& level = way.back();
    path.resize(level.pathSize);
    if (level.nextSubkey == level.key->subkeys.size()) {
      way.pop_back();
      continue;
    }
    const clsKeyTree::Key& subkey = *level.key->subkeys[level.nextSubkey++];
    if (!path.empty()) path += "\\\\";
    AppendEscaped(path, text::ToUtf16Le(subkey.name), "[]");
    enter(subkey);
  }
  return out;
}

}  // namespace sandrel
