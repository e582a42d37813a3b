#include "platform/process/modCommandLine.h"

#include <algorithm>
#include <cstddef>

namespace sandrel {
namespace {

constexpr std::string_view Blanks = " \t";

// Takes the program from the front of `rest`. Backslashes have no meaning of their own in it.
std::string TakeProgram(std::string_view& rest,
                        const std::function<bool(const std::string&)>& isProgram) {
  if (rest.starts_with('"')) {
    const std::size_t end = std::min(rest.find('"', 1), rest.size());
    std::string program(rest.substr(1, end - 1));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return program;
  }
  const std::size_t first = std::min(rest.find_first_of(Blanks), rest.size());
  std::size_t length = first;
  for (std::size_t end = first; isProgram;) {
    if (isProgram(std::string(rest.substr(0, end)))) {
      length = end;
      break;
    }
    if (end == rest.size()) break;
    end = std::min(rest.find_first_of(Blanks, end + 1), rest.size());
  }
  std::string program(rest.substr(0, length));
  rest.remove_prefix(length);
  return program;
}

// Takes one more word. 2n backslashes before a quote are n, one more makes the quote a letter; two
// quotes inside quotes are one.
std::string TakeWord(std::string_view& rest) {
  std::string word;
  bool quoted = false;
  std::size_t at = 0;
  while (at < rest.size()) {
    const char c = rest[at];
    if (!quoted && Blanks.find(c) != std::string_view::npos) break;
    if (c == '\\') {
      const std::size_t end = std::min(rest.find_first_not_of('\\', at), rest.size());
      const std::size_t count = end - at;
      const bool beforeQuote = end < rest.size() && rest[end] == '"';
      word.append(beforeQuote ? count / 2 : count, '\\');
      at = end;
      if (beforeQuote && count % 2 == 1) {
        word += '"';
        ++at;
      }
    } else if (c == '"') {
      ++at;
      if (quoted && at < rest.size() && rest[at] == '"') {
        word += '"';
        ++at;
      } else {
        quoted = !quoted;
      }
    } else {
      word += c;
      ++at;
    }
  }
  rest.remove_prefix(at);
  return word;
}

void SkipBlanks(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of(Blanks), rest.size()));
}

}  // namespace

std::vector<std::string> SplitCommandLine(
    std::string_view text, const std::function<bool(const std::string&)>& isProgram) {
  const std::size_t end = text.find_last_not_of(Blanks);
  std::string_view rest = text.substr(0, end == std::string_view::npos ? 0 : end + 1);
  SkipBlanks(rest);
  std::vector<std::string> words;
  if (rest.empty()) return words;
  words.push_back(TakeProgram(rest, isProgram));
  for (SkipBlanks(rest); !rest.empty(); SkipBlanks(rest)) words.push_back(TakeWord(rest));
  return words;
}

}  // namespace sandrel
