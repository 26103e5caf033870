#include <algorithm>
#include <cmath>
#include <sstream>

#include "CCDFBench.h"

namespace endtoend {
namespace {

constexpr auto hasChanged = "The measurement source is changed";
constexpr auto limited = "Can not change measurement source, Put current mode limit ";

std::ptrdiff_t countOf(const Texts& texts, const std::string& text) {
  return std::count(texts.begin(), texts.end(), text);
}

/// The messages before the pass that follows the first `text`.
Texts passWith(const Texts& texts, const std::string& text) {
  const auto at = std::find(texts.begin(), texts.end(), text);
  if (at == texts.end()) return {};
  const auto isHead = [](const std::string& message) { return message == "PPACQRT 1"; };
  const auto head = std::find_if(std::make_reverse_iterator(at), texts.rend(), isHead);
  if (head == texts.rend()) return {};
  return {head.base() - 1, std::find_if(at, texts.end(), isHead)};
}

class CCDFRun : public CCDFBench {
 protected:
  /// What was said since the window appeared.
  Texts saidSinceStart() const { return part(told(), ccdfTranscript(true).size()); }
  std::string rate() { return caption("lblgraphspeed1"); }

  void findGraph() {
    std::istringstream place(hands().get(robot::ccdfGraph, "place"));
    int skipped = 0;
    place >> skipped >> skipped >> width_;
    ASSERT_GT(width_, 0);
  }
  /// The axis goes from -30 to 20 dBm.
  int pixelOf(double power) const {
    return static_cast<int>(std::lround((power + 30) / 50 * width_));
  }
  double powerAt(int pixel) const { return -30 + 50.0 * pixel / width_; }
  void step(const std::string& kind, int x) { hands().mouse(kind, robot::ccdfGraph, x, 20); }

  /// "-3.25dBm" as the number; the label must have three decimals at the most.
  double cursorPower() { return std::stod(caption("lblCursorPower")); }
  /// The powers that the cursor was sent to.
  Texts positionsSent() const {
    Texts texts = told();
    std::erase_if(texts, [](const std::string& text) { return !text.starts_with("TTMKPOS 1,"); });
    return texts;
  }

  int width_ = 0;
};
ON_BOTH_LINKS(CCDFRun);

TEST_P(CCDFRun, StartClearsTheMeterAndThenRepeatsOnePass) {
  startCCDF(GetParam());
  const std::size_t before = happenings(transcript()).size();
  constexpr std::size_t passes = 5;
  runCurves(passes);
  Texts expected = GetParam() == Link::gpib ? Texts{"CLEAR"} : Texts{};
  for (std::size_t i = 0; i < passes; ++i) expected = expected + ccdfPass(true);
  EXPECT_EQ(part(happenings(transcript()), before, expected.size()), expected);
}

TEST_P(CCDFRun, WithoutACursorThePassIsShorter) {
  startCCDF(GetParam(), "setup = TTMKS 1,OFF\n");
  constexpr std::size_t passes = 5;
  runCurves(passes);
  Texts expected = ccdfTranscript(false);
  for (std::size_t i = 0; i < passes; ++i) expected = expected + ccdfPass(false);
  EXPECT_EQ(part(told(), 0, expected.size()), expected);
}

TEST_P(CCDFRun, TheGraphTheRateAndTheShareAreAlive) {
  startCCDF(GetParam());
  EXPECT_EQ(rate(), "Profile/Second: 0.00");
  const Pixels empty = grabGraph();
  runCurves(2);
  Pixels first = grabGraph();
  EXPECT_NE(first.bytes, empty.bytes);
  for (int i = 0; i < 3; ++i) {
    awaitMoreCurves(2);
    const Pixels next = grabGraph();
    EXPECT_NE(next.bytes, first.bytes) << "the counts of the statistics do not move";
    first = next;
  }
  const std::string head = "Profile/Second: ";
  ASSERT_EQ(rate().substr(0, head.size()), head);
  EXPECT_GT(std::stod(rate().substr(head.size())), 0) << rate();
  EXPECT_EQ(hands().get("frmCCDF/lblgraphspeed1", "toolTip"),
            "Update speed of the GPIB, not the update speed of this display");
  const std::string share = caption("lblCursorPercentage");
  EXPECT_EQ(share.back(), '%');
  EXPECT_NEAR(std::stod(share), 17.2, 0.5);
}

TEST_P(CCDFRun, StopFinishesThePassAndLeavesTheStatisticsOn) {
  startCCDF(GetParam());
  runCurves(3);
  EXPECT_FALSE(isEnabled("menuStart"));
  EXPECT_TRUE(isEnabled("menuStop"));
  stopCurves();
  EXPECT_TRUE(isEnabled("menuStart"));
  EXPECT_FALSE(isEnabled("menuStop"));
  const Texts said = saidSinceStart();
  const Texts pass = ccdfPass(true);
  const std::size_t passes = (said.size() - ccdfMark().size()) / pass.size();
  Texts expected;
  for (std::size_t i = 0; i < passes; ++i) expected = expected + pass;
  EXPECT_EQ(said, expected + ccdfMark());
  const Pixels last = grabGraph();
  giveItTime();
  EXPECT_EQ(saidSinceStart(), said);
  EXPECT_EQ(grabGraph().bytes, last.bytes);
  runCurves(2);
  EXPECT_EQ(part(saidSinceStart(), said.size(), pass.size()), pass);
}

TEST_P(CCDFRun, ARestartIsSentWhileStoppedAndNotWhileRunning) {
  startCCDF(GetParam());
  choose("MenuRestart");
  awaitMessages("PPACQRT 1", 1);
  EXPECT_EQ(saidSinceStart(), Texts{"PPACQRT 1"});
  runCurves(1);
  for (int i = 0; i < 3; ++i) choose("MenuRestart");
  awaitMoreCurves(2);
  const Texts said = part(stopCurves(), ccdfTranscript(true).size() + 1);
  const Texts pass = ccdfPass(true);
  ASSERT_EQ(said.size() % pass.size(), 0U);
  for (std::size_t i = 0; i < said.size(); i += pass.size()) {
    EXPECT_EQ(part(said, i, pass.size()), pass);
  }
}

TEST_P(CCDFRun, TheCursorIsSwitchedAtOnceWhileStopped) {
  startCCDF(GetParam());
  const std::size_t before = told().size();
  choose("menuOFF");
  EXPECT_EQ(toldUntilMark(before), Texts{"TTMKS 1,OFF"});
  EXPECT_FALSE(hands().is("frmCCDF/FrameCursor", "visible"));
  EXPECT_FALSE(isEnabled("menuSetCursorPosition"));
  const std::size_t again = told().size();
  choose("menuOn");
  EXPECT_EQ(toldUntilMark(again), (Texts{"TTMKS 1,ON", "TTMKRO 1"}));
  EXPECT_TRUE(hands().is("frmCCDF/FrameCursor", "visible"));
  EXPECT_TRUE(isEnabled("menuSetCursorPosition"));
  EXPECT_EQ(caption("lblCursorPower"), "5dBm");
}

TEST_P(CCDFRun, TheCursorIsSwitchedBetweenTwoCurvesWhileRunning) {
  startCCDF(GetParam());
  runCurves(1);
  choose("menuOFF");
  EXPECT_FALSE(hands().is("frmCCDF/FrameCursor", "visible"));
  awaitMessages("TTMKS 1,OFF", 1);
  awaitMoreCurves(2);
  choose("menuOn");
  EXPECT_TRUE(hands().is("frmCCDF/FrameCursor", "visible"));
  awaitMessages("TTMKS 1,ON", 1);
  awaitMoreCurves(3);
  const Texts texts = told();
  EXPECT_EQ(passWith(texts, "TTMKS 1,OFF"), (Texts{"PPACQRT 1", "TTFRO 1", "TTMKS 1,OFF"}));
  EXPECT_EQ(passWith(texts, "TTMKS 1,ON"),
            (Texts{"PPACQRT 1", "TTFRO 1", "TTMKS 1,ON", "TTMKRO 1", "TTMKRO 1"}));
  EXPECT_EQ(countOf(texts, "TTMKS 1,OFF"), 1);
  EXPECT_EQ(countOf(texts, "TTMKS 1,ON"), 1);
}

TEST_P(CCDFRun, ThePositionIsTypedWhileStopped) {
  startCCDF(GetParam());
  const std::size_t before = told().size();
  choose("menuSetCursorPosition");
  hands().waitVisible("inputBox");
  EXPECT_EQ(hands().get("inputBox", "windowTitle"), "Setting the cursor Position ");
  EXPECT_EQ(hands().get("inputBox/QLabel", "text"), "Enter the required Posistion of the Cursor");
  EXPECT_EQ(hands().get("inputBox/QLineEdit", "text"), "5");
  answer("");
  EXPECT_EQ(toldUntilMark(before), Texts{});
  const std::size_t again = told().size();
  choose("menuSetCursorPosition");
  hands().waitVisible("inputBox");
  answer("-2.125 dBm");
  EXPECT_EQ(toldUntilMark(again), (Texts{"TTMKPOS 1,-2.125", "TTMKRO 1"}));
  EXPECT_EQ(caption("lblCursorPower"), "-2.125dBm");
}

TEST_P(CCDFRun, ThePositionIsTypedWhileRunning) {
  startCCDF(GetParam());
  runCurves(1);
  choose("menuSetCursorPosition");
  hands().waitVisible("inputBox");
  answer("7.5");
  awaitMessages("TTMKPOS? 1", 1);
  awaitMoreCurves(2);
  EXPECT_EQ(passWith(told(), "TTMKPOS 1,7.5"),
            (Texts{"PPACQRT 1", "TTFRO 1", "TTMKPOS 1,7.5", "TTMKPOS? 1", "TTMKRO 1"}));
  EXPECT_EQ(positionsSent(), Texts{"TTMKPOS 1,7.5"});
  EXPECT_EQ(caption("lblCursorPower"), "7.5dBm");
}

TEST_P(CCDFRun, ADragOfTheCursorIsSentOnceAtItsEnd) {
  startCCDF(GetParam());
  findGraph();
  for (const bool running : {false, true}) {
    SCOPED_TRACE(running);
    if (running) runCurves(1);
    const std::size_t sentBefore = positionsSent().size();
    const int line = pixelOf(cursorPower());
    step("move", line);
    step("press", line);
    // Held down, nothing is read.
    awaitMark();
    const Texts silent = told();
    int pixel = line;
    for (const double power : {2.0, -11.0, -27.5, 12.25}) {
      pixel = pixelOf(power);
      step("move", pixel);
      EXPECT_NEAR(cursorPower(), powerAt(pixel), 0.0006);
    }
    const std::string inside = caption("lblCursorPower");
    // The ends of the axis belong to no drag, nor does anything beyond them.
    for (const int outside : {0, width_, -40, width_ + 40}) {
      step("move", outside);
      EXPECT_EQ(caption("lblCursorPower"), inside) << outside;
    }
    EXPECT_EQ(told(), silent);
    step("release", pixel);
    awaitMessages("TTMKPOS 1," + inside.substr(0, inside.find("dBm")), 1);
    if (running) awaitMoreCurves(3);
    EXPECT_EQ(positionsSent().size(), sentBefore + 1);
    EXPECT_EQ(caption("lblCursorPower"), inside);
    step("move", line);
  }
  const Texts said = stopCurves();
  EXPECT_EQ(said.back(), "TTMKRO 1");
}

TEST_P(CCDFRun, APressBesideTheLineMovesNothingAndTellsTheOldPlace) {
  startCCDF(GetParam());
  findGraph();
  const std::size_t before = told().size();
  step("move", pixelOf(-20));
  step("press", pixelOf(-20));
  step("move", pixelOf(-15));
  EXPECT_EQ(caption("lblCursorPower"), "5dBm");
  step("release", pixelOf(-15));
  EXPECT_EQ(toldUntilMark(before), Texts{"TTMKPOS 1,5"});
  choose("menuOFF");
  const std::size_t off = awaitMark().size() + ccdfMark().size();
  step("press", pixelOf(5));
  step("move", pixelOf(3));
  step("release", pixelOf(3));
  EXPECT_EQ(toldUntilMark(off), Texts{});
}

struct AxisEdit {
  const char* label;
  const char* title;
  const char* prompt;
  const char* offered;
  const char* typed;
  const char* setting;
  const char* question;
  const char* captionAfter;
};
constexpr AxisEdit axisEdits[] = {
    {"lblStartPower", "Starting Power", "Enter new Starting Power in dBm", "-30", "-22.5",
     "TTPST 1,-22.5", "TTPST? 1", "-22.5dBm"},
    {"lblStopPower", "Stoping Power ", "Enter new Stoping Power in dBm", "20", " 17.25x",
     "TTPSP 1,17.25", "TTPSP? 1", "17.25dBm"},
};

TEST_P(CCDFRun, TheEndsOfTheAxisAreTypedWhileStopped) {
  startCCDF(GetParam());
  for (const AxisEdit& edit : axisEdits) {
    SCOPED_TRACE(edit.label);
    const std::size_t before = told().size();
    openBoxOf(edit.label);
    EXPECT_EQ(hands().get("inputBox", "windowTitle"), edit.title);
    EXPECT_EQ(hands().get("inputBox/QLabel", "text"), edit.prompt);
    EXPECT_EQ(hands().get("inputBox/QLineEdit", "text"), edit.offered);
    answer("");
    EXPECT_EQ(toldUntilMark(before), Texts{});
    const std::size_t again = told().size();
    openBoxOf(edit.label);
    answer(edit.typed);
    EXPECT_EQ(toldUntilMark(again), (Texts{edit.setting, edit.question}));
    EXPECT_EQ(caption(edit.label), edit.captionAfter);
  }
}

TEST_P(CCDFRun, TheEndsOfTheAxisAreTypedWhileRunning) {
  startCCDF(GetParam());
  runCurves(1);
  for (const AxisEdit& edit : axisEdits) {
    SCOPED_TRACE(edit.label);
    openBoxOf(edit.label);
    answer(edit.typed);
    awaitCaption(edit.label, edit.captionAfter);
    awaitMoreCurves(2);
    const Texts texts = told();
    EXPECT_EQ(countOf(texts, edit.setting), 1);
    EXPECT_EQ(passWith(texts, edit.setting),
              (Texts{"PPACQRT 1", "TTFRO 1", edit.setting, edit.question, "TTMKRO 1"}));
  }
}

TEST_P(CCDFRun, WhatTheMeterReadsBackIsTheAxis) {
  startCCDF(GetParam(), "fault = TTPST?, 2, replace TTPST 1,-12.5\n");
  openBoxOf("lblStartPower");
  answer("-40");
  awaitCaption("lblStartPower", "-12.5dBm");
}

/// One choice of a source, and what comes of it.
struct SourceChoice {
  enum class End { alreadySet, changed, silent, other };
  const char* item;
  const char* word;
  End end;
  const char* message;
};
using End = SourceChoice::End;

class CCDFSource : public CCDFRun {
 protected:
  /// Each while stopped, and then each while running.
  void chooseEach(const std::vector<SourceChoice>& choices);
  void chooseOne(const SourceChoice& choice, bool running);
};
ON_BOTH_LINKS(CCDFSource);

void CCDFSource::chooseEach(const std::vector<SourceChoice>& choices) {
  for (const bool running : {false, true}) {
    if (running) runCurves(1);
    for (const SourceChoice& choice : choices) chooseOne(choice, running);
  }
}

void CCDFSource::chooseOne(const SourceChoice& choice, bool running) {
  SCOPED_TRACE(std::string(choice.item) + (running ? ", running" : ", stopped"));
  const bool isSilent = GetParam() == Link::gpib && choice.end == End::silent;
  const std::string shown = caption("lblMeasSource");
  const std::size_t before = told().size();
  choose(choice.item);
  // The meter's complaint is in its status, which RS232 does not have.
  const bool complaintIsUnseen = choice.end == End::silent && !isSilent;
  EXPECT_EQ(readMessage("Changing Measurement Source"),
            complaintIsUnseen ? limited : choice.message);
  hands().waitGone("messageBox");
  EXPECT_EQ(caption("lblMeasSource"),
            choice.end == End::changed ? "SOURCE:" + std::string(choice.word) : shown);

  Texts exchange = {"TTSRC? 1"};
  if (choice.end != End::alreadySet) {
    exchange = exchange + Texts{std::string("TTSRC 1,") + choice.word, "TTSRC? 1"};
  }
  if (isSilent) exchange.emplace_back("*CLS; *OPC?");
  if (!running) {
    EXPECT_EQ(toldUntilMark(before), exchange);
    return;
  }
  awaitMoreCurves(2);
  // The pass may have begun before the choice.
  constexpr std::size_t passHead = 2;
  EXPECT_EQ(passWith(part(told(), before - passHead), "TTSRC? 1"),
            (Texts{"PPACQRT 1", "TTFRO 1"}) + exchange + Texts{"TTMKRO 1"});
}

constexpr auto gateIsSet = "No need to change, the measurement Source is Gate ";
constexpr auto channelIsSet = "No need to change, the measurement Source is Channel ";

TEST_P(CCDFSource, EachChangeIsTold) {
  startCCDF(GetParam());
  // That of the marker names the gate.
  chooseEach({{"menuMeasSourceChannel", "CHANNEL", End::alreadySet, channelIsSet},
              {"menuMeasSourceGate", "GATE", End::changed, hasChanged},
              {"menuMeasSourceGate", "GATE", End::alreadySet, gateIsSet},
              {"menuMeasSourceActiveMarker", "MARKER", End::changed, hasChanged},
              {"menuMeasSourceActiveMarker", "MARKER", End::alreadySet, gateIsSet},
              {"menuMeasSourceChannel", "CHANNEL", End::changed, hasChanged}});
}

TEST_P(CCDFSource, WhatIsNotActiveIsNotTaken) {
  allowOffences();
  startCCDF(GetParam(), "setup = GPGATS 1,1,OFF\nsetup = MKSTATE 1,1,OFF\n");
  chooseEach({{"menuMeasSourceGate", "GATE", End::silent,
               "Can not change measurement source, GATE is not active"},
              {"menuMeasSourceActiveMarker", "MARKER", End::silent,
               "Can not change measurement source, MARKER is not active"}});
}

TEST_P(CCDFSource, TheChannelCanBeRefusedToo) {
  allowOffences();
  startCCDF(GetParam(), "setup = TTSRC 1,GATE\nfault = TTSRC 1, every, refuse\n");
  ASSERT_EQ(caption("lblMeasSource"), "SOURCE:GATE");
  chooseEach({{"menuMeasSourceChannel", "CHANNEL", End::silent, "Can not change to Channel"}});
}

TEST_P(CCDFSource, AMeterThatKeepsItsSourceIsToldOf) {
  startCCDF(GetParam(), "fault = TTSRC?, every, replace TTSRC 1,CHANNEL\n");
  chooseEach({{"menuMeasSourceGate", "GATE", End::other, limited},
              {"menuMeasSourceActiveMarker", "MARKER", End::other, limited}});
}

/// In the long pause inside a curve the user asks for everything. Over GPIB the library holds the
/// program during a curve, and the user with it.
class CCDFRequests : public CCDFRun {
 protected:
  void startWithAPause() {
    startCCDF(Link::serial, "fault = TTFRO, 3, stall 1000 8000\n");
    choose("menuStart");
    awaitMessages("TTFRO 1", 3);
  }
  void typeInto(const std::string& label, const std::string& text) {
    openBoxOf(label);
    answer(text);
  }
  void askForAllBut() {
    choose("menuMeasSourceChannel");
    choose("menuSetCursorPosition");
    hands().waitVisible("inputBox");
    answer("7.5");
    choose("menuMeasSourceGate");
    typeInto("lblStopPower", "15");
    choose("MenuRestart");
    typeInto("lblStartPower", "-25");
    choose("menuMeasSourceActiveMarker");
  }
  const Texts ends_ = {"PPACQRT 1",  "TTFRO 1",         "TTPST 1,-25",  "TTPST? 1",
                       "TTPSP 1,15", "TTPSP? 1",        "TTSRC? 1",     "TTSRC 1,MARKER",
                       "TTSRC? 1",   "TTSRC? 1",        "TTSRC 1,GATE", "TTSRC? 1",
                       "TTSRC? 1",   "TTSRC 1,CHANNEL", "TTSRC? 1"};
  void readThreeMessages() {
    for (const char* word : {"MARKER", "GATE", "CHANNEL"}) {
      hands().waitUntil("frmCCDF/lblMeasSource", "text", std::string("SOURCE:") + word);
      EXPECT_EQ(readMessage("Changing Measurement Source"), hasChanged);
    }
  }
};
INSTANTIATE_TEST_SUITE_P(Links, CCDFRequests, ::testing::Values(Link::serial), linkName);

TEST_P(CCDFRequests, AllAtOnceAreCarriedOutInTheirOrderInOnePass) {
  startWithAPause();
  askForAllBut();
  choose("menuOFF");
  choose("menuOn");
  const std::size_t asked = told().size();
  readThreeMessages();
  awaitMoreCurves(3);
  const Texts pass =
      ends_ + Texts{"TTMKS 1,ON", "TTMKRO 1", "TTMKPOS 1,7.5", "TTMKPOS? 1", "TTMKRO 1"};
  EXPECT_EQ(part(told(), asked - 2, pass.size() + 6), pass + ccdfPass(true) + ccdfPass(true));
  EXPECT_EQ(caption("lblStartPower"), "-25dBm");
  EXPECT_EQ(caption("lblStopPower"), "15dBm");
  EXPECT_EQ(caption("lblCursorPower"), "7.5dBm");
}

TEST_P(CCDFRequests, ACursorThatIsOffInTheEndIsSwitchedOffLast) {
  startWithAPause();
  askForAllBut();
  choose("menuOFF");
  choose("menuOn");
  choose("menuOFF");
  const std::size_t asked = told().size();
  readThreeMessages();
  awaitMoreCurves(3);
  const Texts pass = ends_ + Texts{"TTMKS 1,ON", "TTMKS 1,OFF", "TTMKPOS 1,7.5", "TTMKPOS? 1"};
  EXPECT_EQ(part(told(), asked - 2, pass.size() + 4), pass + ccdfPass(false) + ccdfPass(false));
  EXPECT_FALSE(hands().is("frmCCDF/FrameCursor", "visible"));
}

TEST_P(CCDFRequests, AStopDuringTheCurveLosesNone) {
  startWithAPause();
  askForAllBut();
  choose("menuStop");
  const std::size_t asked = told().size();
  readThreeMessages();
  EXPECT_EQ(toldUntilMark(asked - 2), ends_ + (Texts{"TTMKPOS 1,7.5", "TTMKPOS? 1", "TTMKRO 1"}));
}

class CCDFFault : public CCDFRun {};
ON_BOTH_LINKS(CCDFFault);

TEST_P(CCDFFault, AFailedCurveEndsTheProgramWithoutAMessage) {
  const bool overGpib = GetParam() == Link::gpib;
  allowOffences();
  startCCDF(GetParam(), overGpib ? "board-timeout = 60\nfault = TTFRO, 4, missing\n"
                                 : "fault = TTFRO, 4, hang-up\n");
  hands().giveUpAt("messageBox");
  choose("menuStart");
  expectProgramEnd();
  EXPECT_EQ(curvesSoFar(), 4U);
  EXPECT_EQ(told().back(), "TTFRO 1");
  if (overGpib) {
    EXPECT_EQ(countKind(transcript(), "OFFLINE"), 1U);
  }
}

TEST_P(CCDFFault, AReplyThatIsNoCurveIsSkippedAndTheOldOneStays) {
  startCCDF(GetParam(), "fault = TTFRO, from 3, replace OK\n");
  choose("menuStart");
  awaitMessages("TTFRO 1", 4);
  const Pixels old = grabGraph();
  EXPECT_NE(old.yellowSpan(0.3).first, -1) << "no curve";
  awaitMoreCurves(3);
  EXPECT_EQ(windows(), "frmCCDF|Pelmora v" PULSEMOD_VERSION);
  EXPECT_TRUE(isEnabled("menuStop"));
  EXPECT_EQ(grabGraph().bytes, old.bytes);
  stopCurves();
}

TEST_P(CCDFFault, ACurveWithTooManyValuesStopsTheAcquisitionWithOneBox) {
  std::string values;
  for (int i = 0; i < 401; ++i) values += ",1";
  startCCDF(GetParam(), "fault = TTFRO, 4, replace TTFRO 1,400" + values + "\n");
  choose("menuStart");
  const Box box = shownBox(hands());
  EXPECT_EQ(box.title, "Pelmora");
  EXPECT_EQ(box.text, "Subscript out of range: the meter's curve has more than 400 values");
  EXPECT_EQ(box.icon, "Warning");
  EXPECT_EQ(box.details, "");
  const Pixels old = grabGraph();
  EXPECT_NE(old.yellowSpan(0.3).first, -1) << "no curve";
  hands().key("messageBox", "Return");
  hands().waitGone("messageBox");
  hands().waitUntil("frmCCDF/menuStart", "enabled", "true");
  awaitMark();
  EXPECT_EQ(curvesSoFar(), 4U);
  EXPECT_EQ(windows(), "frmCCDF|Pelmora v" PULSEMOD_VERSION);
  EXPECT_EQ(grabGraph().bytes, old.bytes);
  runCurves(2);
  EXPECT_NE(grabGraph().bytes, old.bytes);
  EXPECT_EQ(windows(), "frmCCDF|Pelmora v" PULSEMOD_VERSION);
}

/// A command that no query of its own follows.
TEST_P(CCDFFault, ARefusedCursorCommandEndsTheProgramOverGpibAlone) {
  allowOffences();
  startCCDF(GetParam(), "fault = TTMKS 1, every, refuse\n");
  runCurves(1);
  hands().giveUpAt("messageBox");
  choose("menuOFF");
  if (GetParam() == Link::gpib) {
    expectProgramEnd();
    EXPECT_EQ(part(told(), told().size() - 4),
              (Texts{"TTMKS 1,OFF", "PPACQRT 1", "TTFRO 1", "*CLS; *OPC?"}));
  } else {
    awaitMessages("TTMKS 1,OFF", 1);
    awaitMoreCurves(3);
  }
}

TEST_P(CCDFFault, ARefusedPowerIsReadBackAndHarmsNothing) {
  allowOffences();
  startCCDF(GetParam());
  runCurves(1);
  openBoxOf("lblStopPower");
  answer("500");
  awaitMessages("TTPSP? 1", 2);
  awaitMoreCurves(3);
  // Over GPIB the read-back fails with the meter's complaint.
  EXPECT_EQ(caption("lblStopPower"), GetParam() == Link::gpib ? "500dBm" : "20dBm");
  EXPECT_EQ(windows(), "frmCCDF|Pelmora v" PULSEMOD_VERSION);
}

}  // namespace
}  // namespace endtoend
