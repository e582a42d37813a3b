#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <utility>
#include <vector>

#include "common/clsError.h"
#include "common/text.h"
#include "platform/registry/clsRegistry.h"
#include "platform/registry/keypath.h"
#include "platform/registry/texthive.h"

namespace sandrel {
namespace {

constexpr std::string_view Signature = "WINE REGISTRY Version 2";
constexpr std::int64_t TicksPerSecond = 10000000;
constexpr std::int64_t SecondsTo1970 = 11644473600;

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}
bool IsOctal(char c) {
  return c >= '0' && c <= '7';
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

void SkipBlanks(std::string_view& text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
}

bool CutStart(std::string_view& text, std::string_view start) {
  if (text.substr(0, start.size()) != start) return false;
  text.remove_prefix(start.size());
  return true;
}

// Collects UTF-16 units as UTF-8; a pair of surrogates becomes one character.
class clsUtf8Collector {
 public:
  explicit clsUtf8Collector(std::string& target) : m_target(target) {}
  ~clsUtf8Collector() { EndPair(0); }
  clsUtf8Collector(const clsUtf8Collector&) = delete;
  clsUtf8Collector& operator=(const clsUtf8Collector&) = delete;

  void Ascii(std::string_view run) {
    if (run.empty()) return;
    EndPair(0);
    m_target += run;
  }
  void Unit(char16_t unit) {
    if (EndPair(unit)) return;
    if (unit >= 0xD800 && unit < 0xDC00) {
      m_high = unit;
    } else {
      text::Append(m_target, unit);
    }
  }

 private:
  // True when `unit` was the second half of a pair.
  bool EndPair(char16_t unit) {
    if (m_high == 0) return false;
    const char32_t high = std::exchange(m_high, u'\0');
    if (unit >= 0xDC00 && unit < 0xE000) {
      text::Append(m_target, 0x10000 + ((high - 0xD800) << 10) + (unit - 0xDC00u));
      return true;
    }
    text::Append(m_target, high);
    return false;
  }

  std::string& m_target;
  char16_t m_high = 0;
};

// Collects UTF-16 units as bytes, little endian.
class clsUtf16Collector {
 public:
  explicit clsUtf16Collector(std::string& target) : m_target(target) {}
  void Ascii(std::string_view run) {
    for (const char c : run) {
      m_target.push_back(c);
      m_target.push_back('\0');
    }
  }
  void Unit(char16_t unit) {
    m_target.push_back(static_cast<char>(unit & 0xFF));
    m_target.push_back(static_cast<char>(unit >> 8));
  }

 private:
  std::string& m_target;
};

// The unit that an escape stands for; `text` begins behind the backslash and loses the escape.
char16_t CutEscape(std::string_view& text) {
  const char c = text.front();
  text.remove_prefix(1);
  switch (c) {
    case 'a':
      return u'\a';
    case 'b':
      return u'\b';
    case 'e':
      return 0x1B;
    case 'f':
      return u'\f';
    case 'n':
      return u'\n';
    case 'r':
      return u'\r';
    case 't':
      return u'\t';
    case 'v':
      return u'\v';
    case 'x': {
      unsigned unit = 0;
      int digits = 0;
      while (digits < 4 && !text.empty() && HexDigit(text.front()) >= 0) {
        unit = unit * 16 + static_cast<unsigned>(HexDigit(text.front()));
        text.remove_prefix(1);
        ++digits;
      }
      return digits == 0 ? u'x' : static_cast<char16_t>(unit);
    }
    default:
      break;
  }
  if (!IsOctal(c)) return static_cast<unsigned char>(c);
  unsigned unit = static_cast<unsigned>(c - '0');
  for (int digits = 1; digits < 3 && !text.empty() && IsOctal(text.front()); ++digits) {
    unit = unit * 8 + static_cast<unsigned>(text.front() - '0');
    text.remove_prefix(1);
  }
  return static_cast<char16_t>(unit);
}

// Decodes up to the `end` character, which `text` loses as well; false when it never comes.
template <class Collector>
bool CutQuoted(std::string_view& text, char end, Collector&& collector) {
  for (;;) {
    std::size_t plain = 0;
    while (plain < text.size() && text[plain] != end && text[plain] != '\\' &&
           static_cast<unsigned char>(text[plain]) < 0x80) {
      ++plain;
    }
    collector.Ascii(text.substr(0, plain));
    text.remove_prefix(plain);
    if (text.empty()) return false;
    const char c = text.front();
    text.remove_prefix(1);
    if (c == end) return true;
    if (c != '\\') {
      collector.Unit(static_cast<unsigned char>(c));  // bytes beyond ASCII are Latin-1 to Wine
    } else if (text.empty()) {
      return false;
    } else {
      collector.Unit(CutEscape(text));
    }
  }
}

class clsTextHiveReader {
 public:
  clsTextHiveReader(std::string_view content, const std::string& path)
      : m_path(path), m_rest(content), m_content(content) {
    m_hive.tree = std::make_shared<clsKeyTree>();
  }

  TextHive Read() {
    std::string_view line;
    if (!NextLine(line) || line != Signature) {
      Fail(m_content.empty() ? "the file is empty"
                             : fmt::format("the file doesn't begin with \"{}\"", Signature));
    }
    for (;;) {
      const std::size_t lineStart = m_content.size() - m_rest.size();
      if (!NextLine(line)) break;
      SkipBlanks(line);
      if (line.empty() || line.front() == ';') continue;
      switch (line.front()) {
        case '[':
          if (m_key == nullptr) TakeHead(lineStart);
          ReadKey(line.substr(1));
          break;
        case '#':
          if (m_key != nullptr) ReadOption(line);
          break;
        case '@':
        case '"':
          ReadValue(line);
          break;
        default:
          Fail("the line is neither a key nor a value");
      }
    }
    if (m_key == nullptr) Fail("the file ends before the first key");
    return std::move(m_hive);
  }

 private:
  [[noreturn]] void Fail(std::string_view what) const {
    throw clsError(errnum::Hive,
                   fmt::format("Can't read the registry hive {}: {}{}. The file is damaged or "
                               "cut off: put a good copy in its place, or let Wine make it anew.",
                               m_path, m_line > 0 ? fmt::format("line {}: ", m_line) : "", what));
  }

  bool NextLine(std::string_view& line) {
    if (m_rest.empty()) return false;
    ++m_line;
    const std::size_t end = m_rest.find('\n');
    if (end == std::string_view::npos) Fail("the file ends in the middle of a line");
    line = m_rest.substr(0, end);
    m_rest.remove_prefix(end + 1);
    if (line.find('\0') != std::string_view::npos) Fail("the line holds zero bytes");
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return true;
  }

  void TakeHead(std::size_t end) {
    m_hive.head = m_content.substr(0, end);
    if (m_hive.head.size() > 1 && m_hive.head.compare(m_hive.head.size() - 2, 2, "\n\n") == 0) {
      m_hive.head.pop_back();
    }
  }

  void ReadKey(std::string_view line) {
    std::string path;
    if (!CutQuoted(line, ']', clsUtf8Collector(path))) Fail("the key's name has no end");
    SkipBlanks(line);
    std::int64_t seconds = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), seconds);
    if (!line.empty()) {
      if (error != std::errc() || seconds < 0 || seconds > 0xFFFFFFFF)
        Fail("the key's time is no number");
      line.remove_prefix(static_cast<std::size_t>(end - line.data()));
      SkipBlanks(line);
      if (!line.empty()) Fail("something stands behind the key's time");
    } else {
      seconds = std::chrono::duration_cast<std::chrono::seconds>(
                    std::chrono::system_clock::now().time_since_epoch())
                    .count();
    }
    m_key = FindOrAddKey(std::move(path));
    m_key->modified = (seconds + SecondsTo1970) * TicksPerSecond;
  }

  // Keys stand in depth-first order, so the way from the key before is short.
  clsKeyTree::Key* FindOrAddKey(std::string path) {
    const auto differs =
        std::mismatch(path.begin(), path.end(), m_lastPath.begin(), m_lastPath.end());
    const auto common = static_cast<std::size_t>(differs.first - path.begin());
    const auto endsPart = [](std::string_view text, std::size_t at) {
      return at == text.size() || text[at] == '\\';
    };
    while (!m_way.empty() && (m_way.back().first > common || !endsPart(path, m_way.back().first))) {
      m_way.pop_back();
    }
    clsKeyTree::Key* key = m_way.empty() ? m_hive.tree->Root() : m_way.back().second;
    std::size_t start = m_way.empty() ? 0 : m_way.back().first + 1;
    while (start < path.size()) {
      const std::size_t end = std::min(path.find('\\', start), path.size());
      const std::string_view part = std::string_view(path).substr(start, end - start);
      start = end + 1;
      if (part.empty()) continue;
      clsKeyTree::Key* below = clsKeyTree::FindSubkey(*key, part);
      key = below != nullptr ? below : m_hive.tree->AddSubkey(*key, part);
      m_way.emplace_back(end, key);
    }
    m_lastPath = std::move(path);
    return key;
  }

  void ReadOption(std::string_view line) {
    if (CutStart(line, "#time=")) {
      std::uint64_t ticks = 0;
      const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), ticks, 16);
      if (error != std::errc() || end != line.data() + line.size())
        Fail("the key's time is no number");
      m_key->modified = static_cast<std::int64_t>(ticks);
    } else if (CutStart(line, "#class=\"")) {
      auto name = std::make_unique<std::string>();
      if (!CutQuoted(line, '"', clsUtf16Collector(*name))) Fail("the key's class has no end");
      m_key->className = std::move(name);
    } else if (CutStart(line, "#link")) {
      m_key->link = true;
    }
  }

  void ReadValue(std::string_view line) {
    if (m_key == nullptr) Fail("a value stands before the first key");
    std::string name;
    if (!CutStart(line, "@")) {
      line.remove_prefix(1);
      if (!CutQuoted(line, '"', clsUtf8Collector(name))) Fail("the value's name has no end");
    }
    SkipBlanks(line);
    if (!CutStart(line, "=")) Fail("\"=\" is missing behind the value's name");
    SkipBlanks(line);
    clsKeyTree::Value* value = clsKeyTree::FindValue(*m_key, name);
    if (value == nullptr) value = &clsKeyTree::AddValue(*m_key, std::move(name));
    value->data.clear();
    ReadData(line, *value);
  }

  void ReadData(std::string_view line, clsKeyTree::Value& value) {
    if (CutStart(line, "dword:")) {
      value.type = regtype::Dword;
      std::uint32_t number = 0;
      const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number, 16);
      if (error != std::errc()) Fail("the value's number is no number");
      line.remove_prefix(static_cast<std::size_t>(end - line.data()));
      for (int shift = 0; shift < 32; shift += 8)
        value.data.push_back(static_cast<char>(number >> shift));
    } else if (CutStart(line, "hex:")) {
      value.type = regtype::Binary;
      ReadHex(line, value.data);
    } else if (CutStart(line, "hex(")) {
      value.type = CutType(line);
      ReadHex(line, value.data);
    } else {
      value.type = regtype::Sz;
      if (CutStart(line, "str(")) {
        value.type = CutType(line);
      } else {
        CutStart(line, "str:");
      }
      if (!CutStart(line, "\"")) Fail("the value's form is unknown");
      clsUtf16Collector collector(value.data);
      if (!CutQuoted(line, '"', collector)) Fail("the value's text has no end");
      collector.Unit(u'\0');
    }
    SkipBlanks(line);
    if (!line.empty()) Fail("something stands behind the value's data");
  }

  std::uint32_t CutType(std::string_view& line) const {
    std::uint32_t type = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), type, 16);
    line.remove_prefix(static_cast<std::size_t>(end - line.data()));
    if (error != std::errc() || !CutStart(line, "):")) Fail("the value's type is no number");
    return type;
  }

  // Pairs of digits with commas between them; a backslash at a line's end goes on in the next one.
  void ReadHex(std::string_view& line, std::string& data) {
    SkipBlanks(line);
    while (!line.empty()) {
      if (line.front() == '\\') {
        line.remove_prefix(1);
        SkipBlanks(line);
        if (!line.empty()) Fail("the value's data are no hexadecimal bytes");
        if (!NextLine(line)) Fail("the file ends in the middle of a value");
        SkipBlanks(line);
        if (line.empty()) Fail("the value's data end in a comma");
        continue;
      }
      int byte = HexDigit(line.front());
      if (byte < 0) Fail("the value's data are no hexadecimal bytes");
      line.remove_prefix(1);
      if (!line.empty() && HexDigit(line.front()) >= 0) {
        byte = byte * 16 + HexDigit(line.front());
        line.remove_prefix(1);
      }
      data.push_back(static_cast<char>(byte));
      SkipBlanks(line);
      if (line.empty()) return;
      if (!CutStart(line, ",")) Fail("the value's data are no hexadecimal bytes");
      SkipBlanks(line);
      if (line.empty()) Fail("the value's data end in a comma");
    }
  }

  const std::string& m_path;
  std::string_view m_rest;
  std::string_view m_content;
  std::size_t m_line = 0;
  TextHive m_hive;
  clsKeyTree::Key* m_key = nullptr;  // the key whose values are being read; none in the head
  std::string m_lastPath;
  std::vector<std::pair<std::size_t, clsKeyTree::Key*>> m_way;  // ends of its parts and their keys
};

}  // namespace

TextHive ReadTextHive(std::string_view content, const std::string& path) {
  return clsTextHiveReader(content, path).Read();
}

}  // namespace sandrel
