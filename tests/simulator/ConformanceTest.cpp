// Every rule of IEEE 488.2 that the meter keeps, and for every rule a meter that breaks it.
//
// The meter as it is built must pass every case. A second build of the same sources, in which any
// one of the rules of broken-rules.txt can be broken, shows that no case passes for nothing: each
// broken rule must make the cases fail that are named with it.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <ostream>
#include <sstream>

#include "Bench.h"
#include "ConformanceRun.h"

namespace simmeter {

void PrintTo(const ConformanceCase& one, std::ostream* out) { *out << one.name; }

namespace {

struct BrokenRule {
  const char* name;
  const char* cases;  // that must fail, separated by blanks
};
constexpr BrokenRule kBrokenRules[] = {
#include "BrokenRules.inc"
};

void PrintTo(const BrokenRule& rule, std::ostream* out) { *out << rule.name; }

constexpr std::array kLinks = {Link::kGpib, Link::kLine};

MeterBuild shippedBuild() { return {SIMMETER_LIBRARY, SIMMETER_PROGRAM, {}}; }
MeterBuild alteredBuild(std::string_view brokenRule) {
  return {SIMMETER_ALTERED_LIBRARY, SIMMETER_ALTERED_PROGRAM, std::string(brokenRule)};
}

std::vector<std::string> casesOf(const BrokenRule& rule) {
  std::istringstream words(rule.cases);
  return {std::istream_iterator<std::string>(words), {}};
}

bool names(const BrokenRule& rule, const ConformanceCase& one) {
  const std::string all = " " + std::string(rule.cases) + " ";
  return all.find(" " + std::string(one.name) + " ") != std::string::npos;
}

const ConformanceCase* findCase(std::string_view name) {
  for (const ConformanceCase& one : conformanceCases()) {
    if (one.name == name) return &one;
  }
  return nullptr;
}

// A step saw what it must not see; a meter that crashes or hangs would show nothing about the rule.
bool isFoundOut(std::string_view finding) { return finding.substr(0, 5) == "step "; }

template <typename Row>
std::string rowName(const testing::TestParamInfo<Row>& info) {
  return info.param.name;
}

class Conformance : public testing::TestWithParam<ConformanceCase> {};

TEST_P(Conformance, IsKeptByTheMeter) {
  for (const Link link : kLinks) {
    if (!usesLink(GetParam(), link)) continue;
    EXPECT_EQ(runCase(GetParam(), link, shippedBuild()), "") << linkName(link);
  }
}

TEST_P(Conformance, IsKeptByTheAlteredBuildWhileNothingIsBroken) {
  for (const Link link : kLinks) {
    if (!usesLink(GetParam(), link)) continue;
    EXPECT_EQ(runCase(GetParam(), link, alteredBuild({})), "") << linkName(link);
  }
}

INSTANTIATE_TEST_SUITE_P(Rule, Conformance, testing::ValuesIn(conformanceCases()),
                         rowName<ConformanceCase>);

class BrokenConformance : public testing::TestWithParam<BrokenRule> {};

TEST_P(BrokenConformance, IsFoundByItsCases) {
  for (const std::string& name : casesOf(GetParam())) {
    const ConformanceCase* one = findCase(name);
    ASSERT_NE(one, nullptr) << name;
    for (const Link link : kLinks) {
      if (!usesLink(*one, link)) continue;
      const std::string finding = runCase(*one, link, alteredBuild(GetParam().name));
      EXPECT_TRUE(isFoundOut(finding)) << name << " on " << linkName(link) << ": " << finding;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Rule, BrokenConformance, testing::ValuesIn(kBrokenRules),
                         rowName<BrokenRule>);

// `PollDropsTheReply` as a text: poll drops the reply.
std::string spelledOut(std::string_view name) {
  std::string text;
  for (const char c : name) {
    const bool isCapital = c >= 'A' && c <= 'Z';
    if (isCapital && !text.empty()) text += ' ';
    text += isCapital ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return text;
}

// A case as a row of the table of docs/reliability.md.
std::string tableRow(const ConformanceCase& one) {
  std::string links;
  for (const Link link : kLinks) {
    if (usesLink(one, link)) links += (links.empty() ? "" : ", ") + std::string(linkName(link));
  }
  std::string broken;
  for (const BrokenRule& rule : kBrokenRules) {
    if (!names(rule, one)) continue;
    broken += (broken.empty() ? "" : "; ") + spelledOut(rule.name);
  }
  return std::string("| ") + one.name + " | " + one.rule + " | " + links + " | " + broken + " |\n";
}

TEST(ConformanceTable, HasABrokenRuleForEveryCase) {
  for (const ConformanceCase& one : conformanceCases()) {
    EXPECT_TRUE(std::any_of(std::begin(kBrokenRules), std::end(kBrokenRules),
                            [&](const BrokenRule& rule) { return names(rule, one); }))
        << one.name;
  }
}

std::string table() {
  std::string rows;
  for (const ConformanceCase& one : conformanceCases()) rows += tableRow(one);
  return rows;
}

TEST(ConformanceTable, StandsInTheDocumentation) {
  const std::string page = readFile(SIMMETER_CONFORMANCE_PAGE);
  EXPECT_TRUE(page.find("|\n" + table() + "\n") != std::string::npos)
      << "docs/reliability.md needs what simulator-conformance --table prints";
}

// The broken rules, all of them or the wished ones, with all cases that find them, be they named
// with them or not; takes minutes. Returns the exit code: 0 when the named cases are all among
// them.
int printFinds(const std::vector<std::string_view>& wished) {
  bool good = true;
  for (const BrokenRule& rule : kBrokenRules) {
    if (!wished.empty() && std::find(wished.begin(), wished.end(), rule.name) == wished.end()) {
      continue;
    }
    std::string own;
    std::string others;
    for (const ConformanceCase& one : conformanceCases()) {
      for (const Link link : kLinks) {
        if (!usesLink(one, link)) continue;
        const bool found = isFoundOut(runCase(one, link, alteredBuild(rule.name)));
        if (names(rule, one)) good = good && found;
        if (!found) continue;
        (names(rule, one) ? own : others) += " " + std::string(one.name);
        break;
      }
    }
    std::printf("%s:%s; also%s\n", rule.name, own.c_str(), others.c_str());
    std::fflush(stdout);
  }
  return good ? 0 : 1;
}

}  // namespace
}  // namespace simmeter

int main(int count, char** words) {
  testing::InitGoogleTest(&count, words);
  const std::vector<std::string_view> arguments(words + 1, words + count);
  if (arguments.empty()) return RUN_ALL_TESTS();
  if (arguments[0] == "--table") return std::fputs(simmeter::table().c_str(), stdout) < 0 ? 1 : 0;
  if (arguments[0] == "--finds") {
    return simmeter::printFinds({arguments.begin() + 1, arguments.end()});
  }
  std::fputs("usage: simulator-conformance [--table | --finds [RULE...]]\n", stderr);
  return 2;
}
