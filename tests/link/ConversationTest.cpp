#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "link/Conversation.h"
#include "link/Fault.h"
#include "link/MeterLink.h"
#include "support/FakeWorld.h"

namespace pulsemod::test {
namespace {

class Conversations : public testing::Test {
 protected:
  /// An exchange that notes its name, and how deep it runs.
  std::function<void()> noting(const std::string& name) {
    return [this, name] {
      EXPECT_TRUE(Conversation.open);
      EXPECT_EQ(++depth, 1);
      order.push_back(name);
      --depth;
    };
  }

  FakeWorld world;
  std::vector<std::string> order;
  int depth = 0;
};

using Order = std::vector<std::string>;

TEST_F(Conversations, AnExchangeRunsAtOnceWhenTheLinkIsFree) {
  whenLinkIsFree(noting("a"));
  EXPECT_EQ(order, (Order{"a"}));
  EXPECT_FALSE(Conversation.open);
}

TEST_F(Conversations, AConversationWithinAConversationIsPartOfIt) {
  converse([this] {
    order.emplace_back("outer");
    converse([this] { order.emplace_back("inner"); });
    EXPECT_TRUE(Conversation.open);
    order.emplace_back("rest");
  });
  EXPECT_EQ(order, (Order{"outer", "inner", "rest"}));
  EXPECT_FALSE(Conversation.open);
}

TEST_F(Conversations, KeptExchangesRunInTheirOrderWhenTheOutermostHasEnded) {
  converse([this] {
    whenLinkIsFree(noting("first"));
    converse([this] { whenLinkIsFree(noting("second")); });
    whenLinkIsFree(noting("third"));
    order.emplace_back("outer ends");
  });
  EXPECT_EQ(order, (Order{"outer ends", "first", "second", "third"}));
  EXPECT_TRUE(Conversation.kept.empty());
}

TEST_F(Conversations, WhatAKeptExchangeLeavesBehindRunsAfterThoseBeforeIt) {
  converse([this] {
    whenLinkIsFree([this] {
      order.emplace_back("first");
      whenLinkIsFree(noting("of first"));
    });
    whenLinkIsFree(noting("second"));
  });
  EXPECT_EQ(order, (Order{"first", "second", "of first"}));
}

TEST_F(Conversations, AFaultInAKeptExchangeIsReportedAndDropsNoOther) {
  converse([this] {
    whenLinkIsFree([] { throw Fault("first fault"); });
    whenLinkIsFree(noting("second"));
    whenLinkIsFree([] { throw Fault("third fault"); });
    whenLinkIsFree(noting("fourth"));
  });
  EXPECT_EQ(order, (Order{"second", "fourth"}));
  EXPECT_EQ(world.dialogs.messages,
            (std::vector<ShownBox>{{"first fault", "Pelmora", MessageIcon::exclamation, ""},
                                   {"third fault", "Pelmora", MessageIcon::exclamation, ""}}));
  EXPECT_FALSE(Conversation.open);
}

TEST_F(Conversations, AFaultOfTheConversationLeavesAfterTheKeptExchanges) {
  EXPECT_THROW(converse([this] {
                 whenLinkIsFree(noting("kept"));
                 throw Fault("own fault");
               }),
               Fault);
  EXPECT_EQ(order, (Order{"kept"}));
  EXPECT_TRUE(world.dialogs.messages.empty());
  EXPECT_FALSE(Conversation.open);
}

TEST_F(Conversations, AFaultOfAnExchangeThatRunsAtOnceLeavesToItsHandler) {
  EXPECT_THROW(whenLinkIsFree([] { throw Fault("own fault"); }), Fault);
  EXPECT_FALSE(Conversation.open);
}

TEST_F(Conversations, AClickWhileAFaultIsShownWaitsForThoseBeforeIt) {
  world.dialogs.whileOpen = [this] { whenLinkIsFree(noting("clicked")); };
  converse([this] {
    whenLinkIsFree([] { throw Fault("broken"); });
    whenLinkIsFree(noting("waiting"));
  });
  EXPECT_EQ(order, (Order{"waiting", "clicked"}));
}

TEST_F(Conversations, ASerialPortLostInAnExchangeIsToldOnceAndAfterAllThatWaits) {
  world.useSerial();
  world.dialogs.whileOpen = [this] {
    order.emplace_back("box");
    EXPECT_FALSE(Conversation.open);
    whenLinkIsFree(noting("clicked"));
  };
  converse([this] {
    whenLinkIsFree(noting("kept"));
    world.serial.lose();
    SendCommand("TR3");
  });
  EXPECT_EQ(order, (Order{"kept", "box", "clicked"}));
  whenLinkIsFree(noting("later"));
  EXPECT_EQ(world.dialogs.messages, (std::vector<ShownBox>{{"The serial port was lost.", "Pelmora",
                                                            MessageIcon::exclamation, ""}}));
  EXPECT_EQ(world.serial.sent, "");
}

TEST_F(Conversations, ALostPortIsToldBesidesAFaultOfTheExchange) {
  world.useSerial();
  EXPECT_FALSE(reportFaults([this] {
    whenLinkIsFree([this] {
      world.serial.lose();
      throw Fault("own fault");
    });
  }));
  EXPECT_EQ(
      world.dialogs.messages,
      (std::vector<ShownBox>{{"The serial port was lost.", "Pelmora", MessageIcon::exclamation, ""},
                             {"own fault", "Pelmora", MessageIcon::exclamation, ""}}));
}

TEST_F(Conversations, AFailingBoardIsNotTold) {
  world.gpib.failNext["Send"] = 1;
  whenLinkIsFree([] { SendCommand("TR3"); });
  EXPECT_TRUE(world.dialogs.messages.empty());
}

TEST_F(Conversations, TheEndOfTheProgramRunsNothingMore) {
  EXPECT_THROW(converse([this] {
                 whenLinkIsFree(noting("kept"));
                 throw ProgramEnded();
               }),
               ProgramEnded);
  EXPECT_TRUE(order.empty());
}

TEST_F(Conversations, WhatIsForgottenNeverRuns) {
  converse([this] {
    whenLinkIsFree(noting("kept"));
    forgetKeptExchanges();
  });
  EXPECT_TRUE(order.empty());
}

/// A label edit as a handler does it: tells the meter, and asks what it has made of it.
void editReferenceLevel(std::string& answer) {
  whenLinkIsFree([&answer] {
    SendCommand("PMPREF 1,DB,5");
    QueryMeter("PMPREF? 1,DB", answer);
  });
}

TEST_F(Conversations, AClickInTheMiddleOfASerialReplyNeverGetsBetweenQueryAndReply) {
  world.useSerial();
  world.meter.replies = {{"PMPO 1", "PMPO 1,4,-30,-31,-32,-33"}, {"PMPREF? 1,DB", "PMPREF 1,DB,5"}};
  world.serial.pieceSize = 10;
  std::string profile;
  std::string level;
  bool clicked = false;
  world.events.always = [&] {
    if (clicked || profile.empty()) return;
    clicked = true;
    EXPECT_FALSE(world.serial.incoming.empty());
    editReferenceLevel(level);
  };
  converse([&profile] { EXPECT_TRUE(QueryMeter("PMPO 1", profile)); });
  EXPECT_TRUE(clicked);
  EXPECT_EQ(profile, "PMPO 1,4,-30,-31,-32,-33\r");
  EXPECT_EQ(level, "PMPREF 1,DB,5\r");
  EXPECT_EQ(world.serial.sent, "PMPO 1\rPMPREF 1,DB,5\rPMPREF? 1,DB\r");
  EXPECT_EQ(world.serial.interruptedQueries, 0);
}

TEST_F(Conversations, ClicksAtEveryStepOfASerialExchangeNeverInterleave) {
  world.useSerial();
  world.serial.pieceSize = 1;
  world.meter.replies = {{"Q", "Q 1,2,3"}, {"K?", "K 1"}};
  int clicks = 0;
  int running = 0;
  int exchanged = 0;
  world.events.always = [&] {
    if (clicks >= 40) return;
    ++clicks;
    whenLinkIsFree([&] {
      EXPECT_EQ(++running, 1);
      std::string answer;
      EXPECT_TRUE(QueryMeter("K?", answer));
      EXPECT_EQ(answer, "K 1\r");
      ++exchanged;
      --running;
    });
  };
  std::string reply;
  converse([&reply] { EXPECT_TRUE(QueryMeter("Q", reply)); });
  EXPECT_EQ(reply, "Q 1,2,3\r");
  EXPECT_EQ(exchanged, 40);
  EXPECT_EQ(world.serial.interruptedQueries, 0);
  EXPECT_EQ(world.meter.received.front(), "Q");
  EXPECT_EQ(world.meter.received.size(), 41U);
}

TEST_F(Conversations, AClickBetweenTheChunksOfAGpibReplyNeverInterleaves) {
  world.meter.replies = {{"PMPO 1", "PMPO 1,4,-30,-31"}, {"PMPREF? 1,DB", "PMPREF 1,DB,5"}};
  world.gpib.chunkSize = 8;
  std::string level;
  world.events.post([&level] { editReferenceLevel(level); });
  std::string profile;
  converse([this, &profile] {
    EXPECT_TRUE(QueryMeter("PMPO 1", profile));
    world.gpib.chunkSize = 100;
  });
  EXPECT_EQ(profile, "PMPO 1,,-30,-3\r");
  EXPECT_EQ(level, "PMPREF 1,DB,5\r");
  EXPECT_EQ(world.meter.received, (Transcript{"PMPO 1", "PMPREF 1,DB,5", "PMPREF? 1,DB"}));
  EXPECT_EQ(world.gpib.interruptedQueries, 0);
}

}  // namespace
}  // namespace pulsemod::test
