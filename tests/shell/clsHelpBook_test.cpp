#include "shell/clsHelpBook.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <set>

#include "Places.h"
#include "common/clsFileWorks.h"

namespace sandrel {
namespace {

std::string Titles(const clsHelpBook& book, std::string_view words) {
  std::string titles;
  for (const HelpHit& hit : book.Search(words)) {
    titles += book.Section(hit.Place).Title + ": " + hit.Excerpt + "\n";
  }
  return titles;
}

TEST(clsHelpBook, ReadsChaptersIndexAndText) {
  clsHelpBook book;
  book.Add("01-a.md",
           "# The `first` & only\r\n<!-- index: Zebra; exclusions -->\r\n\r\nSee [the\r\n"
           "other](02-b.md#x), **not** `a_*b` ![picture](../p.png)here \\*.\r\n\r\n## Notes\n\n"
           "```\n# no heading\n<!-- index: nothing -->\n```\n### Notes\n| A | B |\n|---|---|\n| c "
           "| d |\n");
  book.Add("02-b.md", "# Second\n<!-- index: EXCLUSIONS; ;apple -->\n[open bracket\n");
  const std::vector<HelpSection>& sections = book.Chapters()[0].Sections;
  std::string told;
  for (const HelpSection& section : sections) {
    told += std::to_string(section.Level) + " " + section.Title + " #" + section.Anchor + ": " +
            section.Text + "\n";
  }
  EXPECT_EQ(told,
            "1 The first & only #the-first--only: See the other, not a_*b here *. \n"
            "2 Notes #notes: # no heading <!-- index: nothing --> \n"
            "3 Notes #notes-1: A B c d \n");
  EXPECT_EQ(book.Chapters()[0].Markdown.find("Zebra"), std::string::npos);
  std::string index;
  for (const HelpTerm& term : book.Terms()) {
    index += term.Text + ":";
    for (const HelpPlace& place : term.Places) index += " " + book.LinkTo(place);
    index += "\n";
  }
  EXPECT_EQ(index, "apple: 02-b.md\nexclusions: 01-a.md 02-b.md\nZebra: 01-a.md\n");
  EXPECT_EQ(book.LinkTo({0, 2}), "01-a.md#notes-1");
}

TEST(clsHelpBook, FindsAllWordsAndTitlesFirst) {
  clsHelpBook book;
  book.Add("01.md", "# One\nThe Snapshot of a REGISTRY.\n## Empty\n");
  book.Add("02.md",
           "# Registry snapshot\n" + std::string(40, 'x') + " words before Ärger follow\n");
  EXPECT_EQ(Titles(book, " snapshot  registry "),
            "Registry snapshot: " + std::string(40, 'x') +
                " words before Ärger follow\nOne: The Snapshot of a REGISTRY.\n");
  EXPECT_EQ(Titles(book, "ärger"), "Registry snapshot: … words before Ärger follow\n");
  EXPECT_EQ(Titles(book, "snapshot missing"), "");
  EXPECT_EQ(Titles(book, "  "), "");
}

// A chapter that was renamed, a heading that was reworded, a picture that is missing.
TEST(clsHelpBook, TheManualsLinksLeadSomewhere) {
  const std::filesystem::path folder = SANDREL_MANUAL;
  clsHelpBook book;
  std::set<std::string> targets;
  for (const auto& file : std::filesystem::directory_iterator(folder)) {
    if (file.path().extension() != ".md") continue;
    const std::string name = file.path().filename();
    book.Add(name, clsFileWorks::ReadWhole(file.path()));
    targets.insert(name);
    for (const HelpSection& section : book.Chapters().back().Sections) {
      targets.insert(name + "#" + section.Anchor);
    }
  }
  static const std::regex Link(R"(\]\(([^)\s]+)\))");
  for (const HelpChapter& chapter : book.Chapters()) {
    const std::string& text = chapter.Markdown;
    for (std::sregex_iterator it(text.begin(), text.end(), Link), end; it != end; ++it) {
      std::string target = (*it)[1];
      if (target.find("://") != std::string::npos) continue;
      if (target.starts_with('#')) target.insert(0, chapter.Name);
      const bool leads = targets.contains(target) || std::filesystem::exists(folder / target);
      EXPECT_TRUE(leads) << chapter.Name << ": " << target;
    }
  }
  EXPECT_GT(book.Terms().size(), 50u);
}

}  // namespace
}  // namespace sandrel
