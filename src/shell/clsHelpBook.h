// The manual as the help viewer has it: chapters of Markdown with their sections, the terms of the
// index, and the search through all of it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace sandrel {

/// A heading and the text up to the next one.
struct HelpSection {
  int Level = 1;       ///< 1 for the chapter's title, 2 and 3 for those below
  std::string Title;   ///< plain text
  std::string Anchor;  ///< what links name it by, without "#"
  std::string Text;    ///< plain, on one line
};

struct HelpChapter {
  std::string Name;      ///< of its file, "05-configuration.md"
  std::string Markdown;  ///< without the index terms
  /// Every heading of the file, in order.
  std::vector<HelpSection> Sections;
  const std::string& Title() const;
};

/// A section of a book.
struct HelpPlace {
  std::size_t Chapter = 0;
  std::size_t Section = 0;
  bool operator==(const HelpPlace&) const = default;
};

struct HelpTerm {
  std::string Text;
  std::vector<HelpPlace> Places;  ///< in the order of the book
};

struct HelpHit {
  HelpPlace Place;
  std::string Excerpt;  ///< of the text round the first word
};

class clsHelpBook {
 public:
  /// Adds a chapter behind those that are there. The terms of the index stand in lines of the form
  /// "<!-- index: term; other term -->" and belong to the heading above.
  void Add(std::string name, std::string_view markdown);

  const std::vector<HelpChapter>& Chapters() const { return m_chapters; }
  const HelpSection& Section(const HelpPlace& place) const {
    return m_chapters[place.Chapter].Sections[place.Section];
  }
  /// "01-start.md#anchor", as a link within the manual names it.
  std::string LinkTo(const HelpPlace& place) const;

  /// The index in alphabetical order, each term once.
  const std::vector<HelpTerm>& Terms() const { return m_terms; }

  /// The sections that hold all of these words, without regard to case: those that have them in
  /// their titles first. None for no word.
  std::vector<HelpHit> Search(std::string_view words) const;

  /// The words of a search, folded.
  static std::vector<std::string> Words(std::string_view text);

 private:
  void AddTerms(std::string_view list, const HelpPlace& place);

  std::vector<HelpChapter> m_chapters;
  std::vector<HelpTerm> m_terms;
};

}  // namespace sandrel
