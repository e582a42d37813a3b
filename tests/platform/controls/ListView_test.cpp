#include "platform/controls/ListView.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "common/text.h"

namespace sandrel {
namespace {

constexpr std::size_t Rows = 3000;

// Texts of few different characters with long beginnings in common, some beyond what is compared in
// pieces, some equal but for case.
std::vector<std::string> MixedTexts() {
  std::mt19937 random(7);
  const auto below = [&](unsigned count) { return random() % count; };
  const std::string deep(600, 'q');
  const std::vector<std::string> beginnings = {"", "HKEY\\Software\\Classes\\", "hkey\\software\\",
                                               deep};
  const std::vector<std::string> characters = {"a", "A", "b", "B", "\\", " ", "É", "é", "Σ", "ς"};
  std::vector<std::string> texts(Rows);
  for (std::string& text : texts) {
    text = beginnings[below(4)];
    for (unsigned i = below(12); i > 0; --i) text += characters[below(10)];
  }
  return texts;
}

TEST(ListView, SortsWithoutRegardToCaseAndKeepsEqualRowsInOrder) {
  const std::vector<std::string> texts = MixedTexts();
  for (const bool descending : {false, true}) {
    TextPool pool;
    ListView list(pool);
    list.BeginUpdate();
    for (std::uint32_t i = 0; i < Rows; ++i) {
      const TextPool::Id cells[] = {pool.Intern("row"), pool.Intern(texts[i])};
      // A row without the cell sorts as one whose cell is empty.
      list.AddRow({i, 1}, std::span(cells).first(i % 100 == 0 ? 1 : 2), 0, 0);
    }
    list.EndUpdate();
    list.SelectOnly(1234);
    list.Sort(1, descending);

    std::vector<std::pair<std::string, std::uint32_t>> expected;
    for (std::uint32_t i = 0; i < Rows; ++i) {
      expected.emplace_back(i % 100 == 0 ? "" : text::Fold(texts[i]), i);
    }
    std::stable_sort(expected.begin(), expected.end(), [&](const auto& a, const auto& b) {
      return descending ? b.first < a.first : a.first < b.first;
    });
    for (std::size_t row = 0; row < Rows; ++row) {
      ASSERT_EQ(list.Key(row).Number, expected[row].second) << row << " " << expected[row].first;
    }
    ASSERT_NE(list.SelectedItem(), ListView::NoRow);
    EXPECT_EQ(list.Key(list.SelectedItem()).Number, 1234u);
    EXPECT_TRUE(list.Selected(list.SelectedItem()));
  }
}

}  // namespace
}  // namespace sandrel
