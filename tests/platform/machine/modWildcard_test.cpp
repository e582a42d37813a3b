#include "platform/machine/modWildcard.h"

#include <gtest/gtest.h>

namespace sandrel {
namespace {

TEST(MatchesWildcard, AsThePlatformDoes) {
  for (const auto& [name, pattern] : {std::pair("readme.txt", "*.TXT"),
                                      {"readme.txt", "r*.t?t"},
                                      {"aXbXc", "a*x*c"},
                                      {"aab", "*ab"},
                                      {"\u00C4.txt", "\u00E4.???"},
                                      {"\u00C4.txt", "?.txt"},
                                      {"noextension", "*.*"},
                                      {"a", "a**"}}) {
    EXPECT_TRUE(MatchesWildcard(name, pattern)) << name << " " << pattern;
  }
  for (const auto& [name, pattern] : {std::pair("readme.txt", "*.tx"),
                                      {"bt.txt", "b?t.txt"},
                                      {"readme.txt", "eadme*"},
                                      {"ab", "abc"},
                                      {"abc", ""},
                                      {"aab", "a*c"}}) {
    EXPECT_FALSE(MatchesWildcard(name, pattern)) << name << " " << pattern;
  }
}

}  // namespace
}  // namespace sandrel
