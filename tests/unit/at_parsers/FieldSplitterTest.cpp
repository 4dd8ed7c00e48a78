#include "at/FieldSplitter.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

namespace stelvane {
namespace {

using Fields = std::vector<std::string_view>;

Fields Split(std::string_view text, char separator = ',') {
  FieldSplitter splitter(text, separator);
  Fields fields;
  while (const auto field = splitter.Next()) fields.push_back(*field);
  return fields;
}

TEST(FieldSplitter, YieldsNothingFromAnEmptyText) {
  EXPECT_EQ(Split(""), Fields());
}

TEST(FieldSplitter, YieldsTheWholeTextWithoutSeparator) {
  EXPECT_EQ(Split("abc"), Fields{"abc"});
}

TEST(FieldSplitter, YieldsEmptyFieldsBetweenAdjacentSeparators) {
  EXPECT_EQ(Split("a,,,b"), (Fields{"a", "", "", "b"}));
}

TEST(FieldSplitter, YieldsAnEmptyFieldBeforeALeadingSeparator) {
  EXPECT_EQ(Split(",a"), (Fields{"", "a"}));
}

TEST(FieldSplitter, YieldsNoFieldBehindASeparatorAtTheEnd) {
  EXPECT_EQ(Split("a,"), Fields{"a"});
  EXPECT_EQ(Split("a,,"), (Fields{"a", ""}));
  EXPECT_EQ(Split(","), Fields{""});
}

TEST(FieldSplitter, StaysAtItsEnd) {
  FieldSplitter splitter("a", ',');
  EXPECT_TRUE(splitter.Next());
  EXPECT_FALSE(splitter.Next());
  EXPECT_FALSE(splitter.Next());
}

TEST(FieldSplitter, CutsAtItsOwnSeparatorOnly) {
  EXPECT_EQ(Split("a,b\"c\"", '"'), (Fields{"a,b", "c"}));
}

TEST(FieldSplitter, CountsTheCharactersLeft) {
  FieldSplitter splitter("ab,c,", ',');
  EXPECT_EQ(splitter.Remaining(), 5u);
  splitter.Next();
  EXPECT_EQ(splitter.Remaining(), 2u);
  splitter.Next();
  EXPECT_EQ(splitter.Remaining(), 0u);
}

}  // namespace
}  // namespace stelvane
