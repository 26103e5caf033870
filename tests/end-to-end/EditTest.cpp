#include <algorithm>
#include <string>
#include <utility>

#include "ProfileBench.h"

namespace endtoend {
namespace {

using std::string_literals::operator""s;

/// One of the four labels, a value to type and what comes of it.
struct Edit {
  const char* label;
  const char* title;
  const char* prompt;
  const char* captionBefore;
  const char* offered;
  const char* typed;
  const char* setting;
  const char* questionAtOnce;
  const char* questionInLoop;
  const char* captionAfter;
  /// The right edge's time, which follows from two of them.
  const char* stopAfter;
};
constexpr Edit edits[] = {
    {"lblCapture", "Time", "Enter new Capture Period", "2ms", "2ms", "4ms", "TRCAPT 1,PMOD,0.004",
     "TRCAPT? 1,PMOD", "TRCAPT? 1,PMOD", "4ms", "3.8ms"},
    {"lblRef", "Reference", "Enter new reference level (dBm)", "Ref: 10.00 dBm", "10", "20",
     "PMPREF 1,DB,20", "PMPREF? 1,DB", "PMPREF? 1,DB", "Ref: 20.00 dBm", "3.8ms"},
    {"lblscale", "Reference", "Enter new graph scale (dB)", "Scale: 10.00 dB", "10", "12.5",
     "PMPSCAL 1,DB,12.5", "PMPSCAL? 1,DB", "PMPSCAL? 1,DB", "Scale: 12.50 dB", "3.8ms"},
    {"lblStart", "Time", "Enter new trigger delay", "-200us", "-200us", "-50us",
     "TRDLYT 1,PMOD,-5E-05", "TRDLYT? 1PMOD", "TRDLYT? 1,PMOD", "-50us", "3.95ms"},
};

class LabelEdit : public ProfileBench {
 protected:
  std::string caption(const std::string& label) { return hands().get("frmMain/" + label, "text"); }
  void awaitCaption(const std::string& label, const std::string& text) {
    hands().waitUntil("frmMain/" + label, "text", text);
  }

  void openBox(const std::string& label) {
    hands().click("frmMain/" + label);
    hands().waitVisible("inputBox");
  }
  void answer(const std::string& text) {
    hands().type("inputBox/QLineEdit", text);
    hands().key("inputBox", "Return");
  }
  void enter(const std::string& label, const std::string& text) {
    openBox(label);
    answer(text);
    hands().waitGone("inputBox");
  }

  std::size_t count(const std::string& message) const {
    return countMessages(transcript(), message);
  }
  /// The messages that set the reference level.
  Texts referencesSet() const {
    Texts texts = told();
    std::erase_if(texts, [](const std::string& text) { return !text.starts_with("PMPREF 1"); });
    return texts;
  }

  /// Two values for the reference level. True when the second box came up before the read-back of
  /// the first value had been stored.
  bool editDuringItsExchange(const std::string& first, const std::string& second,
                             const std::string& awaited);

  const std::string profileQuestion_ = GetParam() == Link::gpib ? "PMPBO 1" : "PMPO 1";
};
ON_BOTH_LINKS(LabelEdit);

TEST_P(LabelEdit, TheBoxShowsWhatIsEditedAndAnEmptyAnswerChangesNothing) {
  startLoaded(GetParam());
  const std::size_t before = told().size();
  for (const Edit& edit : edits) {
    SCOPED_TRACE(edit.label);
    openBox(edit.label);
    EXPECT_EQ(hands().get("inputBox", "windowTitle"), edit.title);
    EXPECT_EQ(hands().get("inputBox/QLabel", "text"), edit.prompt);
    EXPECT_EQ(hands().get("inputBox/QLineEdit", "text"), edit.offered);
    answer("");
    hands().waitGone("inputBox");
    openBox(edit.label);
    hands().type("inputBox/QLineEdit", edit.typed);
    hands().key("inputBox", "Escape");
    hands().waitGone("inputBox");
    EXPECT_EQ(caption(edit.label), edit.captionBefore);
  }
  EXPECT_EQ(toldUntilMark(before), Texts{});
  EXPECT_EQ(caption("lblStop"), "1.8ms");
}

TEST_P(LabelEdit, WhileStoppedTheValueIsSentAndReadBackAtOnce) {
  startLoaded(GetParam());
  for (const Edit& edit : edits) {
    SCOPED_TRACE(edit.label);
    EXPECT_EQ(caption(edit.label), edit.captionBefore);
    const std::size_t before = told().size();
    enter(edit.label, edit.typed);
    EXPECT_EQ(toldUntilMark(before), (Texts{edit.setting, edit.questionAtOnce}));
    EXPECT_EQ(caption(edit.label), edit.captionAfter);
    EXPECT_EQ(caption("lblStop"), edit.stopAfter);
  }
}

TEST_P(LabelEdit, WhileRunningTheValueIsSentOnceBetweenProfileAndMarkers) {
  startLoaded(GetParam());
  runProfiles(1);
  for (const Edit& edit : edits) {
    SCOPED_TRACE(edit.label);
    EXPECT_EQ(caption(edit.label), edit.captionBefore);
    const std::size_t before = told().size();
    enter(edit.label, edit.typed);
    awaitCaption(edit.label, edit.captionAfter);
    EXPECT_EQ(caption("lblStop"), edit.stopAfter);
    awaitMoreProfiles(2);
    const Texts texts = told();
    EXPECT_EQ(std::count(texts.begin(), texts.end(), edit.setting), 1);
    const auto edited = part(texts, before);
    EXPECT_EQ(std::count(edited.begin(), edited.end(), edit.questionInLoop), 1);
    const auto at = static_cast<std::size_t>(std::find(texts.begin(), texts.end(), edit.setting) -
                                             texts.begin());
    ASSERT_GE(at, 1U);
    EXPECT_EQ(part(texts, at - 1, 4),
              (Texts{profileQuestion_, edit.setting, edit.questionInLoop, "MKNO 1,1"}));
  }
}

TEST_P(LabelEdit, WhatTheMeterReadsBackIsShown) {
  // The first question is that of the start-up, the third that of the acquisition's start.
  startLoaded(GetParam(),
              "fault = PMPREF?, 2, replace PMPREF 1,DB,15\n"
              "fault = PMPREF?, 4, replace PMPREF 1,DB,12.5\n");
  enter("lblRef", "20");
  awaitCaption("lblRef", "Ref: 15.00 dBm");
  runProfiles(1);
  awaitCaption("lblRef", "Ref: 20.00 dBm");
  enter("lblRef", "5");
  awaitCaption("lblRef", "Ref: 12.50 dBm");
  openBox("lblRef");
  EXPECT_EQ(hands().get("inputBox/QLineEdit", "text"), "12.5");
  hands().key("inputBox", "Escape");
}

TEST_P(LabelEdit, AnAnswerThatIsNoNumberIsZero) {
  startLoaded(GetParam());
  const std::size_t before = told().size();
  enter("lblRef", "abc");
  EXPECT_EQ(toldUntilMark(before), (Texts{"PMPREF 1,DB,0", "PMPREF? 1,DB"}));
  EXPECT_EQ(caption("lblRef"), "Ref: 0.00 dBm");
}

TEST_P(LabelEdit, AnOpenBoxHoldsTheAcquisitionUp) {
  startLoaded(GetParam());
  runProfiles(1);
  for (const Edit& edit : edits) {
    SCOPED_TRACE(edit.label);
    openBox(edit.label);
    // What the meter is told in a pass that the box came into: on a busy machine it writes that
    // down later.
    giveItTime();
    const Texts before = told();
    giveItTime();
    EXPECT_EQ(told(), before);
    hands().key("inputBox", "Escape");
    hands().waitGone("inputBox");
    awaitMoreProfiles(2);
  }
}

/// Whether both come before the next profile is up to the machine: it is tried until they do.
TEST_P(LabelEdit, OfTwoValuesBeforeTheNextProfileOnlyTheLastIsSent) {
  startLoaded(GetParam(),
              "fault = TR1, every, late 80\n"
              "fault = PMPBO, every, late 80\n"
              "fault = PMPO 1, every, late 80\n"
              "fault = MKNO, every, late 80\n");
  runProfiles(1);
  bool inTime = false;
  for (int attempt = 0; attempt < 20 && !inTime; ++attempt) {
    const std::string number = std::to_string(attempt + 11);
    const Texts before = referencesSet();
    awaitMessages("MKNO 1,1", count("MKNO 1,1") + 1);
    enter("lblRef", "5");
    openBox("lblRef");
    answer(number);
    hands().waitGone("inputBox");
    inTime = referencesSet() == before;
    awaitCaption("lblRef", "Ref: " + number + ".00 dBm");
    awaitMoreProfiles(2);
    if (!inTime) continue;
    EXPECT_EQ(part(referencesSet(), before.size()), Texts{"PMPREF 1,DB," + number});
  }
  EXPECT_TRUE(inTime);
}

bool LabelEdit::editDuringItsExchange(const std::string& first, const std::string& second,
                                      const std::string& awaited) {
  const std::string old = caption("lblRef");
  std::size_t before = count(awaited);
  openBox("lblRef");
  answer(first);
  // Unlike the read-back, the profile is asked for while the box comes up, too.
  if (awaited == profileQuestion_) before = count(awaited);
  // While the program waits for a reply, the click is taken in that wait or in the next one.
  awaitMessages(awaited, before + 1);
  openBox("lblRef");
  const bool inTime = caption("lblRef") == old && count("PMPREF 1,DB," + first) > 0;
  answer(second);
  hands().waitGone("inputBox");
  awaitCaption("lblRef", "Ref: " + second + ".00 dBm");
  return inTime;
}

TEST_P(LabelEdit, AValueTypedDuringItsOwnExchangeIsNotLost) {
  startLoaded(GetParam(),
              "fault = TR1, every, late 80\n"
              "fault = PMPBO, every, late 80\n"
              "fault = MKNO, every, late 40\n"
              "fault = PMPREF?, from 2, late 200\n");
  const bool overGpib = GetParam() == Link::gpib;
  // Stopped, over GPIB, there is no moment at which the user could do it.
  for (const bool running : overGpib ? std::vector{true} : std::vector{false, true}) {
    SCOPED_TRACE(running);
    if (running) runProfiles(1);
    bool inTime = false;
    for (int attempt = 0; attempt < 20 && !inTime; ++attempt) {
      const std::string first = std::to_string(attempt + (running ? 31 : 1));
      const std::string second = std::to_string(attempt + (running ? 71 : 51));
      if (running) awaitMessages("MKNO 1,1", count("MKNO 1,1") + 1);
      inTime = editDuringItsExchange(first, second, overGpib ? profileQuestion_ : "PMPREF? 1,DB");
      awaitMark();
      const Texts set = referencesSet();
      if (!inTime) continue;
      EXPECT_EQ(part(set, set.size() - 2),
                (Texts{"PMPREF 1,DB," + first, "PMPREF 1,DB," + second}));
      EXPECT_EQ(lastReplyTo("PMPREF? 1,DB"), "PMPREF 1,DB," + second);
      EXPECT_EQ(caption("lblRef"), "Ref: " + second + ".00 dBm");
    }
    EXPECT_TRUE(inTime);
  }
}

/// The meter reads a capture time of nothing back.
TEST_P(LabelEdit, WithoutACaptureTimeTheOldPictureStaysAndOneBoxSaysSo) {
  // The questions before: one at the start-up, two at the acquisition's start, two edits.
  startLoaded(GetParam(), "fault = TRCAPT?, 6, replace TRCAPT 1,PMOD,0\n");
  runProfiles(1);
  stopProfiles();
  enter("lblCapture", "4ms");
  awaitCaption("lblCapture", "4ms");
  const Pixels fourMilliseconds = grabGraph();
  enter("lblCapture", "3ms");
  awaitCaption("lblCapture", "3ms");
  const Pixels threeMilliseconds = grabGraph();
  ASSERT_FALSE(threeMilliseconds.bytes == fourMilliseconds.bytes);

  enter("lblCapture", "1ms");
  const Box box = shownBox(hands());
  EXPECT_EQ(box.title, "Pelmora");
  EXPECT_EQ(box.text, "Division by zero: the capture time is 0");
  EXPECT_EQ(box.icon, "Warning");
  hands().key("messageBox", "Return");
  hands().waitGone("messageBox");
  EXPECT_TRUE(grabGraph().bytes == threeMilliseconds.bytes);
  // Neither the pointer over an edge nor a new size brings it up again.
  for (int x = 0; x < 400; x += 4) hands().mouse("move", robot::profileGraph, x, 40);
  const std::string width = hands().get("frmMain", "width");
  const std::string height = hands().get("frmMain", "height");
  for (const auto& [newWidth, newHeight] : {std::pair{"700"s, "500"s}, std::pair{width, height}}) {
    hands().resize("frmMain", std::stoi(newWidth), std::stoi(newHeight));
    hands().waitUntil("frmMain", "width", newWidth);
    hands().waitUntil("frmMain", "height", newHeight);
    awaitMark();
  }
  EXPECT_EQ(windows(), "frmMain|Pelmora v" PULSEMOD_VERSION);
  EXPECT_TRUE(grabGraph().bytes == threeMilliseconds.bytes);

  enter("lblCapture", "4ms");
  awaitCaption("lblCapture", "4ms");
  EXPECT_TRUE(grabGraph().bytes == fourMilliseconds.bytes);
  EXPECT_EQ(windows(), "frmMain|Pelmora v" PULSEMOD_VERSION);
}

TEST_P(LabelEdit, WhileRunningWithoutACaptureTimeOneBoxComesAndTheAcquisitionStops) {
  startLoaded(GetParam(), "fault = TRCAPT?, 4, replace TRCAPT 1,PMOD,0\n");
  runProfiles(1);
  enter("lblCapture", "1ms");
  EXPECT_EQ(shownBox(hands()).text, "Division by zero: the capture time is 0");
  hands().key("messageBox", "Return");
  hands().waitGone("messageBox");
  hands().waitUntil("frmMain/menuStart", "enabled", "true");
  const Texts silent = awaitMark();
  giveItTime();
  EXPECT_EQ(told(), silent);
  EXPECT_EQ(windows(), "frmMain|Pelmora v" PULSEMOD_VERSION);
  // The start reads a capture time again.
  runProfiles(1);
  awaitCaption("lblCapture", "1ms");
}

TEST_P(LabelEdit, TheStopTimeIsNotEditedAndSaysWhy) {
  startLoaded(GetParam());
  const std::size_t before = told().size();
  hands().click("frmMain/lblStop");
  const Box box = shownBox(hands());
  EXPECT_EQ(box.title, "");
  EXPECT_EQ(box.text, "Please edit the Capture Time");
  EXPECT_EQ(box.icon, "Information");
  EXPECT_EQ(box.details, "");
  hands().key("messageBox", "Return");
  hands().waitGone("messageBox");
  EXPECT_EQ(toldUntilMark(before), Texts{});
  EXPECT_EQ(caption("lblStop"), "1.8ms");
}

TEST_P(LabelEdit, AnUnknownUnitIsTakenForSeconds) {
  startLoaded(GetParam());
  const std::size_t before = told().size();
  openBox("lblCapture");
  answer("2<b>");
  const Box box = shownBox(hands());
  EXPECT_EQ(box.title, "s, ms, us format");
  EXPECT_EQ(box.text, "Do not understand format '<b>' - reverting to Seconds");
  EXPECT_EQ(box.icon, "Information");
  EXPECT_EQ(told().size(), before);
  hands().key("messageBox", "Return");
  hands().waitGone("messageBox");
  EXPECT_EQ(toldUntilMark(before), (Texts{"TRCAPT 1,PMOD,2", "TRCAPT? 1,PMOD"}));
}

}  // namespace
}  // namespace endtoend
