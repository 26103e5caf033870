#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "Workflows.h"

/// Every reply of every workflow cut at every byte, shortened to every length, with every bit of
/// its head flipped, and in pieces: the program ends up as the oracle says.

namespace pulsemod::test {
namespace {

/// Where long replies are cut: their head, their tail and every 16th byte in between.
constexpr std::size_t wholeEnds = 40;
constexpr std::size_t middleStride = 16;
/// A reply of the same kind as an earlier one of its workflow (gate 2 after gate 1) is spoilt in
/// every so-many-th way, each in others; so is one of the dialog that the start reads as well.
constexpr std::size_t wayStride = 29;
constexpr std::size_t wayStrideOfTheDialog = 97;

/// Mnemonic, blank, channel, comma and element, or the head of a block, behind what the link
/// puts before it.
constexpr std::size_t headLength = 12;

std::vector<std::size_t> places(std::size_t length) {
  std::vector<std::size_t> chosen;
  for (std::size_t place = 0; place < length; ++place) {
    const bool atEnd = place < wholeEnds || place + wholeEnds >= length;
    if (atEnd || place % middleStride == 0) chosen.push_back(place);
  }
  return chosen;
}

std::string block(const std::string& head, std::size_t bytes, const std::string& value) {
  std::string text = head;
  while (text.size() < head.size() + bytes) text += value;
  return text;
}

std::string list(const std::string& head, int values) {
  std::string text = head;
  for (int value = 0; value < values; ++value) text += ",-1.5";
  return text;
}

/// Well-framed replies that are wrong, or right for another query.
std::vector<std::string> otherReplies() {
  const std::string level = {'\x20', '\xc1', '\0', '\0'};
  const std::string infinity = {'\x80', '\x7f', '\0', '\0'};
  return {"",
          ",",
          ",,,,,,,,,",
          "X",
          "X 1",
          "X 1,0,0,0,0,0,0,0",
          "X\t1,2,3,4,5,6,7,8",
          "X 1,9E30,9E30,9E30,9E30",
          "X 1,9E39,9E39,9E39,9E39",
          "X 1,1E-46,1E-46,1E-46",
          "X 1,40000,40000,40000",
          "X 1,2.5x,2.5x,2.5x,2.5x",
          "X 1,+.5E+1,+.5E+1,+.5E+1",
          "X 1,ON,ON,ON",
          "X 1,on,on,on",
          "X 1,OFF,OFF,OFF",
          "X 1,1,OFFSET,1",
          "X 1,4,1,1,2,,3,4,5,6",
          "X 1,,5,,5",
          "2",
          "3",
          "9",
          "QX7104",
          "GATE",
          "X 1,MARKER",
          "PMPO",
          "PMPO 1,",
          "PMPO 1,0,1,2",
          "PMPO 1,-3,1,2",
          "PMPO 1,401,1,2",
          "PMPO 1,32768,1,2",
          "PMPO 1&2,3,1,2,3",
          "XPMPO 1,2,3,4",
          "PMPO 1,2,1E39,1",
          list("PMPO 1,400", 400),
          list("PMPO 1,400", 401),
          "TTFRO",
          "TTFRO 1,",
          "TTFRO 1,,",
          "TTFRO 1,0,1,2",
          "TTFRO 1,-3,1,2",
          "TTFRO 1,401,1,2",
          "TTFRO 1,32768,1,2",
          "XTTFRO 1,2,3,4",
          "TTFRO 1,2,1E39,1",
          list("TTFRO 1,400", 400),
          list("TTFRO 1,400", 401),
          block("#240", 40, level),
          block("#3100", 100, level),
          block("xx#3100", 100, level),
          block("#3100", 100, level) + "\r",
          block("#3100", 104, level),
          block("#3104", 100, level),
          block("#3104", 104, infinity),
          block("#0", 120, level),
          block("#3000", 120, level),
          block("#3102", 102, level),
          block("#41604", 1604, level),
          block("#41600", 1600, level),
          block("#210", 120, level),
          block("#3+99", 100, level),
          block("#9000000100", 100, level)};
}

class SpoiltReplies : public testing::TestWithParam<OnLink> {
 protected:
  /// The text of a reply without what frames it.
  static std::size_t textLength(const std::string& wire, bool serial) {
    return wire.size() - (wire.ends_with("\r\n") ? 2 : 1) - (serial ? 1 : 0);
  }

  void expectAsTheOracleSays(const Spoil& spoil, const std::string& wire) {
    const auto& [workflow, serial] = GetParam();
    const Faults faults{.spoil = spoil, .gpib = {}, .loss = {}};
    Rig rig(serial, workflow->setup, faults);
    const Outcome actual = rig.follow(workflow->run);
    const std::string difference = differences(expected(*workflow, serial, faults), actual);
    EXPECT_EQ(difference, "") << "reply " << spoil.reply << " \"" << printable(wire) << "\", "
                              << kindText(spoil.kind) << " at " << spoil.place << " bit "
                              << spoil.bit << " \"" << printable(spoil.text) << "\"";
    if (actual.end == Outcome::End::waited) {
      ++waits_;
      EXPECT_EQ(rig.eventsWhileWaiting, 3);
      EXPECT_EQ(rig.world.programEnd.ends, 1);
    }
    ++runs_;
  }

  static std::string printable(const std::string& text) {
    std::string shown = text.substr(0, 60);
    for (char& character : shown) {
      if (character < ' ' || character > '~') character = '?';
    }
    return shown;
  }

  static const char* kindText(Spoil::Kind kind) {
    constexpr const char* texts[] = {"whole",   "cut",       "shortened",
                                     "flipped", "in pieces", "replaced"};
    return texts[static_cast<int>(kind)];
  }

  static std::string kindOf(const std::string& wire) {
    return wire.substr(0, wire.find_first_of(" \r,"));
  }

  /// But for the two that can end the reading with a fault, which the dialog treats otherwise.
  static std::set<std::string> kindsOfTheLoad(bool serial) {
    const Workflow& load = workflows().front();
    Rig rig(serial, load.setup, {});
    rig.follow(load.run);
    std::set<std::string> kinds;
    for (const std::string& wire : rig.replies) kinds.insert(kindOf(wire));
    for (const std::string kind : {"PMPO", "CHACTIV"}) kinds.erase((serial ? "R" : "") + kind);
    return kinds;
  }

  /// Calls `waysOf` with each reply of the clean run for the ways to spoil it, and spoils it so.
  template <typename WaysOf>
  void spoilEachReply(const WaysOf& waysOf) {
    const auto& [workflow, serial] = GetParam();
    Rig clean(serial, workflow->setup, {});
    clean.follow(workflow->run);
    const bool isDialog = std::string(workflow->name) == "Properties";
    std::set<std::string> seen;
    if (isDialog) seen = kindsOfTheLoad(serial);
    const std::size_t stride = isDialog ? wayStrideOfTheDialog : wayStride;
    for (std::size_t reply = 0; reply < clean.replies.size(); ++reply) {
      const std::string& wire = clean.replies[reply];
      const std::string before = reply == 0 ? "" : kindOf(clean.replies[reply - 1]);
      // After a trigger the readout is the profile, else its points alone count.
      const bool isProfile = before.ends_with("TR1");
      const bool first = seen.insert((isProfile ? "profile " : "") + kindOf(wire)).second;
      std::vector<Spoil> ways = waysOf(wire);
      for (std::size_t way = first ? 0 : reply % stride; way < ways.size();
           way += first ? 1 : stride) {
        ways[way].reply = static_cast<int>(reply);
        expectAsTheOracleSays(ways[way], wire);
      }
    }
    EXPECT_GT(runs_, 0);
  }

  int runs_ = 0;
  int waits_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Workflows, SpoiltReplies, testing::ValuesIn(everyWorkflow(true, true)),
                         [](const auto& tested) { return nameOf(tested.param); });

TEST_P(SpoiltReplies, WithoutAFaultProgramAndOracleAgree) {
  const auto& [workflow, serial] = GetParam();
  Rig rig(serial, workflow->setup, {});
  const Outcome actual = rig.follow(workflow->run);
  EXPECT_EQ(differences(expected(*workflow, serial, {}), actual), "");
  EXPECT_EQ(actual.end, Outcome::End::returned);
  EXPECT_EQ(rig.world.gpib.interruptedQueries + rig.world.serial.interruptedQueries, 0);
  EXPECT_GE(rig.replies.size(), 4U);
}

TEST_P(SpoiltReplies, CutAtEachByte) {
  spoilEachReply([](const std::string& wire) {
    std::vector<Spoil> ways;
    for (const std::size_t place : places(wire.size())) {
      ways.push_back({.kind = Spoil::Kind::cut, .place = place});
    }
    return ways;
  });
  if (GetParam().serial) EXPECT_EQ(waits_, runs_) << "a reply without its line feed was taken";
}

TEST_P(SpoiltReplies, ShortenedToEachLength) {
  spoilEachReply([](const std::string& wire) {
    std::vector<Spoil> ways;
    for (const std::size_t place : places(textLength(wire, GetParam().serial))) {
      ways.push_back({.kind = Spoil::Kind::shortened, .place = place});
    }
    return ways;
  });
}

TEST_P(SpoiltReplies, WithEachBitOfTheHeadFlipped) {
  spoilEachReply([](const std::string& wire) {
    std::vector<Spoil> ways;
    const std::size_t bits = 8 * std::min(headLength + (GetParam().serial ? 1 : 0), wire.size());
    for (std::size_t bit = 0; bit < bits; ++bit) {
      ways.push_back(
          {.kind = Spoil::Kind::flipped, .place = bit / 8, .bit = static_cast<unsigned>(bit % 8)});
    }
    return ways;
  });
}

TEST_P(SpoiltReplies, ReplacedByOthers) {
  spoilEachReply([](const std::string&) {
    std::vector<Spoil> ways;
    for (const std::string& text : otherReplies()) {
      ways.push_back({.kind = Spoil::Kind::replaced, .text = text});
    }
    return ways;
  });
}

TEST_P(SpoiltReplies, InPieces) {
  spoilEachReply([](const std::string&) {
    std::vector<Spoil> ways;
    for (const std::size_t size : {1U, 2U, 3U, 7U}) {
      ways.push_back({.kind = Spoil::Kind::pieces, .place = size});
    }
    return ways;
  });
}

}  // namespace
}  // namespace pulsemod::test
