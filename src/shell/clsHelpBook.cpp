#include "shell/clsHelpBook.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "common/text.h"

namespace sandrel {
namespace {

constexpr std::string_view IndexMark = "<!-- index:";
constexpr std::string_view CommentEnd = "-->";

bool IsWordByte(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0x80 || (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') ||
         (byte >= 'A' && byte <= 'Z') || byte == '_';
}

// Moves behind the link that begins at `position`, and gives its words; where none begins, nothing.
std::optional<std::string_view> TakeLink(std::string_view text, std::size_t& position) {
  if (position >= text.size() || text[position] != '[') return {};
  const std::size_t close = text.find("](", position);
  const std::size_t end = close == std::string_view::npos ? close : text.find(')', close);
  if (end == std::string_view::npos) return {};
  const std::string_view words = text.substr(position + 1, close - position - 1);
  position = end + 1;
  return words;
}

// A paragraph without its marks: of a link its words, of a picture nothing.
std::string Plain(std::string_view text) {
  std::string plain;
  bool isCode = false;
  for (std::size_t i = 0; i < text.size();) {
    const char c = text[i];
    const char next = i + 1 < text.size() ? text[i + 1] : '\0';
    std::size_t linkEnd = i + (c == '!' ? 1 : 0);
    const auto link = isCode ? std::nullopt : TakeLink(text, linkEnd);
    if (c == '`') {
      isCode = !isCode;
      ++i;
    } else if (link) {
      if (c == '[') plain += Plain(*link);
      i = linkEnd;
    } else if (!isCode && c == '*' && next == '*') {
      i += 2;
    } else if (!isCode && c == '\\' && next != '\0' && !IsWordByte(next)) {
      plain += next;
      i += 2;
    } else {
      plain += !isCode && c == '|' ? ' ' : c;
      ++i;
    }
  }
  return plain;
}

bool IsTableRule(std::string_view line) {
  return line.starts_with('|') && line.find_first_not_of("|-: ") == std::string_view::npos;
}

// The level of a heading; 0 for another line. `title` becomes what follows the marks.
int HeadingLevel(std::string_view line, std::string_view& title) {
  const std::size_t level = std::min(line.find_first_not_of('#'), line.size());
  if (level == 0 || level > 6 || level >= line.size() || line[level] != ' ') return 0;
  title = text::TrimWhite(line.substr(level));
  return static_cast<int>(level);
}

// As code hosts make it: lower case, blanks as hyphens, no other signs.
std::string AnchorOf(std::string_view title) {
  std::string anchor;
  for (const char c : text::Lower(title)) {
    if (c == ' ') {
      anchor += '-';
    } else if (IsWordByte(c) || c == '-') {
      anchor += c;
    }
  }
  return anchor;
}

void AppendWords(std::string& text, std::string_view more) {
  for (const char c : more) {
    const bool isBlank = c == ' ' || c == '\t';
    if (isBlank && (text.empty() || text.back() == ' ')) continue;
    text += isBlank ? ' ' : c;
  }
  if (!text.empty() && text.back() != ' ') text += ' ';
}

// About a line of the text round a place, cut at words.
std::string ExcerptAt(std::string_view text, std::size_t place) {
  constexpr std::size_t Before = 12, Length = 160;
  std::size_t start = place > Before ? text.rfind(' ', place - Before) : std::string_view::npos;
  start = start == std::string_view::npos ? 0 : start + 1;
  std::size_t end = std::min(text.size(), start + Length);
  if (end < text.size()) end = std::max(start, text.rfind(' ', end));
  std::string excerpt(text::Trim(text.substr(start, end - start)));
  if (start > 0) excerpt.insert(0, "… ");
  if (end < text.size()) excerpt += " …";
  return excerpt;
}

}  // namespace

const std::string& HelpChapter::Title() const {
  return Sections.empty() ? Name : Sections.front().Title;
}

void clsHelpBook::Add(std::string name, std::string_view markdown) {
  HelpChapter chapter;
  chapter.Name = std::move(name);
  std::map<std::string, int> anchors;  // how often each was used
  std::string paragraph;
  const auto endParagraph = [&] {
    if (!chapter.Sections.empty()) AppendWords(chapter.Sections.back().Text, Plain(paragraph));
    paragraph.clear();
  };
  bool isCode = false;
  while (!markdown.empty()) {
    const std::size_t end = std::min(markdown.find('\n'), markdown.size() - 1);
    const std::string_view whole = markdown.substr(0, end + 1);
    const std::string_view line = whole.substr(0, whole.find_last_not_of("\r\n") + 1);
    markdown.remove_prefix(end + 1);
    const bool isFence = line.starts_with("```");
    isCode = isCode != isFence;
    if (!isCode && line.starts_with(IndexMark)) {
      const std::size_t close = std::min(line.find(CommentEnd), line.size());
      if (!chapter.Sections.empty()) {
        AddTerms(line.substr(IndexMark.size(), close - IndexMark.size()),
                 {m_chapters.size(), chapter.Sections.size() - 1});
      }
      continue;
    }
    chapter.Markdown += whole;
    std::string_view title;
    const int level = isCode || isFence ? 0 : HeadingLevel(line, title);
    if (level > 0 || isFence || line.empty()) endParagraph();
    if (level > 0) {
      const std::string plain = Plain(title);
      std::string anchor = AnchorOf(plain);
      if (const int used = anchors[anchor]++; used > 0) anchor += "-" + std::to_string(used);
      chapter.Sections.push_back({level, plain, anchor, {}});
    } else if (isCode && !isFence && !chapter.Sections.empty()) {
      AppendWords(chapter.Sections.back().Text, line);
    } else if (!isFence && !IsTableRule(line)) {
      paragraph.append(line).append(" ");
    }
  }
  endParagraph();
  m_chapters.push_back(std::move(chapter));
}

void clsHelpBook::AddTerms(std::string_view list, const HelpPlace& place) {
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(';'), list.size());
    const std::string term(text::TrimWhite(list.substr(0, end)));
    list.remove_prefix(std::min(end + 1, list.size()));
    if (term.empty()) continue;
    const std::string folded = text::Fold(term);
    const auto at = std::lower_bound(m_terms.begin(), m_terms.end(), folded,
                                     [](const HelpTerm& known, const std::string& wanted) {
                                       return text::Fold(known.Text) < wanted;
                                     });
    if (at != m_terms.end() && text::Fold(at->Text) == folded) {
      if (at->Places.back() != place) at->Places.push_back(place);
    } else {
      m_terms.insert(at, {term, {place}});
    }
  }
}

std::string clsHelpBook::LinkTo(const HelpPlace& place) const {
  const HelpChapter& chapter = m_chapters[place.Chapter];
  if (place.Section == 0) return chapter.Name;
  return chapter.Name + "#" + Section(place).Anchor;
}

std::vector<std::string> clsHelpBook::Words(std::string_view text) {
  std::vector<std::string> words;
  std::string word;
  for (const char c : text::Fold(text) + " ") {
    if (c != ' ' && c != '\t') {
      word += c;
    } else if (!word.empty()) {
      words.push_back(std::exchange(word, {}));
    }
  }
  return words;
}

std::vector<HelpHit> clsHelpBook::Search(std::string_view words) const {
  const std::vector<std::string> wanted = Words(words);
  std::vector<HelpHit> inTitles, inTexts;
  if (wanted.empty()) return {};
  const auto hold = [&](const std::string& title, const std::string& body) {
    return std::all_of(wanted.begin(), wanted.end(), [&](const std::string& word) {
      return title.find(word) != std::string::npos || body.find(word) != std::string::npos;
    });
  };
  for (std::size_t chapter = 0; chapter < m_chapters.size(); ++chapter) {
    const std::vector<HelpSection>& sections = m_chapters[chapter].Sections;
    for (std::size_t i = 0; i < sections.size(); ++i) {
      const std::string title = text::Fold(sections[i].Title), body = text::Fold(sections[i].Text);
      if (!hold(title, body)) continue;
      // Folding may change a text's length: the place is then not exact, but near.
      const std::size_t place = body.find(wanted.front());
      HelpHit hit{{chapter, i},
                  ExcerptAt(sections[i].Text, place == std::string::npos ? 0 : place)};
      (hold(title, {}) ? inTitles : inTexts).push_back(std::move(hit));
    }
  }
  inTitles.insert(inTitles.end(), std::make_move_iterator(inTexts.begin()),
                  std::make_move_iterator(inTexts.end()));
  return inTitles;
}

}  // namespace sandrel
