#include <algorithm>

#include "Session.h"

namespace endtoend {
namespace {

/// Commas, spaces and no point between digits; an i without a dot; other digits, from right to
/// left.
constexpr const char* locales[] = {"de_DE.UTF-8", "fr_FR.UTF-8", "tr_TR.UTF-8", "ar_EG.UTF-8"};

class Locales : public ::testing::TestWithParam<Link> {
 protected:
  static Record sessionUnder(const std::string& locale) {
    return Session(GetParam(), locale).run();
  }
};
INSTANTIATE_TEST_SUITE_P(Links, Locales, ::testing::Values(Link::gpib, Link::serial), linkName);

/// Pictures are told by their name alone.
std::string shortened(const std::string& text) {
  constexpr std::size_t longest = 20000;
  return text.size() > longest ? "a picture" : text;
}

void expectSame(const Record& record, const Record& expected) {
  const auto [first, second] = std::mismatch(record.messages.begin(), record.messages.end(),
                                             expected.messages.begin(), expected.messages.end());
  const std::string none = "(the end)";
  EXPECT_EQ(first == record.messages.end() ? none : *first,
            second == expected.messages.end() ? none : *second)
      << "message " << first - record.messages.begin() + 1;
  ASSERT_EQ(record.items.size(), expected.items.size());
  for (std::size_t i = 0; i < expected.items.size(); ++i) {
    const auto& [what, text] = expected.items[i];
    EXPECT_EQ(record.items[i].first, what);
    EXPECT_TRUE(record.items[i].second == text)
        << what << ": " << shortened(record.items[i].second) << "\ninstead of " << shortened(text);
  }
}

/// The script reached what it was to reach.
void expectWholeScript(const Record& record) {
  for (const char* message :
       {"TRCAPT 1,PMOD,0.0045", "PMPREF 1,DB,-12.5", "PMPREF 1,DB,12", "PMPSCAL 1,DB,7.25",
        "TRDLYT 1,PMOD,-5.05E-05", "GPTIMSP 1, 1, 0.00055025", "MKDPOS 1,0.0006005",
        "GP1REPT 1,0.00030025", "TTPST 1,-22.5", "TTPSP 1,17.25", "TTMKPOS 1,-2.125"}) {
    EXPECT_NE(std::count(record.messages.begin(), record.messages.end(), message), 0) << message;
  }
}

TEST_P(Locales, AUsersDayIsTheSameOnTheWireInFilesAndOnTheScreen) {
  const Record expected = sessionUnder("C.UTF-8");
  expectWholeScript(expected);
  for (const char* locale : locales) {
    SCOPED_TRACE(locale);
    expectSame(sessionUnder(locale), expected);
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace endtoend
