#include <algorithm>
#include <chrono>
#include <filesystem>
#include <sstream>

#include "CCDFBench.h"
#include "ProfileBench.h"

namespace endtoend {
namespace {

Texts linesOf(const std::string& text) {
  Texts lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string joined(const Texts& lines, const std::string& end) {
  std::string text;
  for (const std::string& line : lines) text += line + end;
  return text;
}

/// A profile of one level at every point.
std::string profileFile(int points, const std::string& captureTime, const std::string& level) {
  std::string text = "Date\t2026-11-21\nTime\t10:30:00\n\nGraph Points\t" + std::to_string(points) +
                     "\nCapture Period\t" + captureTime + "\n";
  for (int point = 1; point <= points; ++point) {
    text += std::to_string(point) + "E-06\t" + level + "\n";
  }
  return text;
}

/// A curve that falls from 100 % in equal steps.
std::string curveFile(const std::string& startPower, const std::string& stopPower) {
  constexpr int points = 4;
  std::string text = "2\r\nDate\t2026-11-21\r\nTime\t10:30:00\r\n\r\nGraph Points\t4\r\n" +
                     startPower + "\r\n" + stopPower + "\r\n";
  for (int point = 1; point <= points; ++point) {
    text += "0\t" + std::to_string(100 - 20 * point) + "\r\n";
  }
  return text;
}

/// What the settings file holds while nothing was changed.
const Texts defaultSettings = {
    " 1 ",   "False",    " 0.0006 ",   " 3 ",                                          //
    "False", " 0.0001 ", " 0.000577 ", "False",    " 0.000225 ", " 0.000321 ",         //
    "False", " 0.0001 ", " 0.000577 ", "False",    " 0.000225 ", " 0.000321 ",         //
    "False", " 0.0001 ", " 0.000577 ", "False",    " 0.000225 ", " 0.000321 ",         //
    "False", " 0.0001 ", " 0.000577 ", "False",    " 0.000225 ", " 0.000321 ",         //
    "False", "True",     " 0.0001 ",   "False",    "False",      " 0.0002 ",           //
    "False", "False",    " 0.0003 ",   "False",    "False",      " 0.0004 ",   " 1 ",  //
    "False", " 10 ",     " 10 ",       " 0.0046 ", " 0 ",                              //
    " 0 ",   "False",    " 1 ",        " 0 ",      "False",      " 0 ",        "FILE END"};

/// The dialogs for files, and messages, on a bench of either window.
template <typename WindowBench>
class FileBench : public WindowBench {
 protected:
  std::string fileCalled(const std::string& name) { return this->folder() / name; }

  /// Answers the dialog for a file that is up or comes up.
  void chooseFile(const std::string& dialog, const std::string& title, const std::string& file) {
    auto& hands = this->hands();
    hands.waitVisible(dialog);
    EXPECT_EQ(hands.get(dialog, "windowTitle"), title);
    hands.chooseFile(dialog, file);
  }
  void saveByMenu(const std::string& item, const std::string& title, const std::string& file) {
    this->hands().trigger(item);
    chooseFile("saveFileDialog", title, file);
  }
  void openByMenu(const std::string& item, const std::string& title, const std::string& file) {
    this->hands().trigger(item);
    chooseFile("openFileDialog", title, file);
  }

  /// The text of a file that is being saved: it is there whole or not at all.
  std::string savedText(const std::string& file) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!std::filesystem::exists(file) && std::chrono::steady_clock::now() < deadline) {
      this->hands().windows();
    }
    return readFile(file);
  }

  /// Checks the messages that come up one after the other, and closes them.
  void expectMessages(const std::vector<Box>& boxes) {
    for (const Box& expected : boxes) {
      this->hands().waitUntil("messageBox", "text", expected.text);
      const Box shown = shownBox(this->hands());
      EXPECT_EQ(shown.title, expected.title);
      EXPECT_EQ(shown.icon, expected.icon);
      EXPECT_EQ(shown.details, expected.details);
      this->hands().key("messageBox", "Return");
    }
    this->hands().waitGone("messageBox");
  }
  void answerQuestion(const std::string& title, const std::string& text, bool yes) {
    auto& hands = this->hands();
    hands.waitVisible("questionBox");
    EXPECT_EQ(hands.get("questionBox", "windowTitle"), title);
    EXPECT_EQ(hands.get("questionBox", "text"), text);
    EXPECT_EQ(hands.get("questionBox", "icon"), "Question");
    hands.key("questionBox", yes ? "Return" : "Escape");
    hands.waitGone("questionBox");
  }
};

// Settings.

class SettingsFiles : public FileBench<ProfileBench> {
 protected:
  /// The program has its defaults, and so has the meter.
  void startConfigured() {
    startOn(GetParam());
    hands().click("frmConfigureQuestion/cmdConfig");
    hands().waitVisible("frmMain");
    hands().trigger("frmMain/menuProperties");
    hands().waitVisible("frmProperties");
  }
  void save(const std::string& file) {
    hands().click("frmProperties/cmdSaveFile");
    chooseFile("saveFileDialog", "Save Settings", file);
  }
  void load(const std::string& file) {
    hands().click("frmProperties/cmdLoadFile");
    chooseFile("openFileDialog", "Load Settings", file);
  }
  /// The same, and the whole exchange with the meter that follows.
  void loadAndSend(const std::string& file) {
    const std::string last = defaultsTranscript().back();
    const std::size_t before = countMessages(transcript(), last);
    load(file);
    awaitMessages(last, before + 1);
    hands().waitGone("frmPleaseWait");
  }
};
ON_BOTH_LINKS(SettingsFiles);

TEST_P(SettingsFiles, SavingWritesEverySettingAndTellsTheMeterNothing) {
  startConfigured();
  const std::size_t before = told().size();
  save(fileCalled("settings"));
  EXPECT_EQ(toldUntilMark(before), Texts{});
  EXPECT_EQ(savedText(fileCalled("settings.txt")), joined(defaultSettings, "\r\n"));
}

TEST_P(SettingsFiles, LoadingShowsEverySettingAndSendsThemAll) {
  startConfigured();
  Texts lines = defaultSettings;
  lines[5] = " 0.0002 ";  // gate 1 start
  lines[42] = "-20 ";     // reference level
  lines[44] = " 0.005 ";  // capture time
  lines[48] = " 32 ";     // averaging count of channel 1
  lines.insert(lines.end() - 1, "VERSION 2");
  writeFile(fileCalled("settings.txt"), joined(lines, "\r\n"));

  Texts expected = defaultsTranscript();
  std::replace(expected.begin(), expected.end(), std::string("GPTIMST 1, 1, 0.0001"),
               std::string("GPTIMST 1, 1, 0.0002"));
  std::replace(expected.begin(), expected.end(), std::string("PMPREF 1,DB,10"),
               std::string("PMPREF 1,DB,-20"));
  std::replace(expected.begin(), expected.end(), std::string("TRCAPT 1,PMOD,0.0046"),
               std::string("TRCAPT 1,PMOD,0.005"));
  const std::size_t before = told().size();
  loadAndSend(fileCalled("settings.txt"));
  EXPECT_EQ(toldUntilMark(before), expected);
  EXPECT_EQ(hands().get("frmMain/lblRef", "text"), "Ref: -20.00 dBm");
  EXPECT_EQ(hands().get("frmMain/lblCapture", "text"), "5ms");
  EXPECT_EQ(hands().get("frmProperties/chkAverage", "text"), "Average (32)");
  EXPECT_EQ(hands().get("frmProperties/txtGateInfo_0", "text"), "200us");
}

TEST_P(SettingsFiles, WhatWasSavedComesBack) {
  startLoaded(GetParam());
  hands().trigger("frmMain/menuProperties");
  hands().waitVisible("frmProperties");
  save(fileCalled("first.txt"));
  loadAndSend(fileCalled("first.txt"));
  save(fileCalled("second.txt"));
  const std::string first = savedText(fileCalled("first.txt"));
  EXPECT_EQ(linesOf(first).size(), 53U);
  EXPECT_EQ(savedText(fileCalled("second.txt")), first);
}

TEST_P(SettingsFiles, AFileThatEndsTooSoonSaysSoAndTellsTheMeterNothing) {
  startConfigured();
  Texts lines = defaultSettings;
  lines[5] = " 0.0002 ";
  lines.pop_back();
  writeFile(fileCalled("short.txt"), joined(lines, "\r\n"));
  const std::size_t before = told().size();
  load(fileCalled("short.txt"));
  const Box box = shownBox(hands());
  EXPECT_EQ(box.title, "Pelmora");
  EXPECT_EQ(box.icon, "Warning");
  EXPECT_NE(box.text, "");
  hands().key("messageBox", "Return");
  hands().waitGone("messageBox");
  EXPECT_EQ(toldUntilMark(before), Texts{});
  EXPECT_EQ(hands().get("frmProperties/txtGateInfo_0", "text"), "200us");
}

TEST_P(SettingsFiles, CancellingEitherDialogDoesNothing) {
  startConfigured();
  const std::size_t before = told().size();
  for (const auto& [button, fileDialog] :
       {std::pair{"cmdSaveFile", "saveFileDialog"}, std::pair{"cmdLoadFile", "openFileDialog"}}) {
    hands().click(std::string("frmProperties/") + button);
    hands().waitVisible(fileDialog);
    hands().key(fileDialog, "Escape");
    hands().waitGone(fileDialog);
  }
  EXPECT_EQ(toldUntilMark(before), Texts{});
  EXPECT_FALSE(hands().is("messageBox", "visible"));
}

// Profiles.

class ProfileFiles : public FileBench<ProfileBench> {
 protected:
  void save(const std::string& file) { saveByMenu("frmMain/menuSave", "Save Profile", file); }
  void open(const std::string& file) {
    openByMenu("frmMain/menuOpen", "Open Second Profile", file);
  }
  bool secondIsShown() { return hands().is("frmMain/menuSecondProfile", "checked"); }
  std::string writtenProfile(int points, const std::string& captureTime) {
    const std::string file = fileCalled("profile.txt");
    writeFile(file, profileFile(points, captureTime, "-25"));
    return file;
  }
  /// Pixels of the second profile's green.
  std::size_t greenPixels() {
    const Pixels graph = grabGraph();
    std::size_t green = 0;
    for (std::size_t at = 0; at + 2 < graph.bytes.size(); at += 3) {
      const auto level = [&graph, at](std::size_t i) {
        return static_cast<unsigned char>(graph.bytes[at + i]);
      };
      if (level(0) < 60 && level(1) > 180 && level(2) > 60 && level(2) < 140) ++green;
    }
    return green;
  }
  void awaitSecondShown() { hands().waitUntil("frmMain/menuSecondProfile", "checked", "true"); }
  /// While it runs, the passes and nothing else are told.
  void expectOnlyPasses(std::size_t before) {
    awaitMoreProfiles(3);
    Texts texts = part(told(), before);
    const Texts pass = profilePass(GetParam());
    std::erase_if(texts, [&pass](const std::string& text) {
      return std::find(pass.begin(), pass.end(), text) != pass.end();
    });
    EXPECT_EQ(texts, Texts{});
  }
};
ON_BOTH_LINKS(ProfileFiles);

TEST_P(ProfileFiles, AProfileSavedWhileRunningOpensAsTheSecondOne) {
  startLoaded(GetParam());
  runProfiles(2);
  const std::size_t before = told().size();
  save(fileCalled("profile"));
  const Texts lines = linesOf(savedText(fileCalled("profile.txt")));
  ASSERT_EQ(lines.size(), 405U);
  EXPECT_TRUE(lines[0].starts_with("Date\t"));
  EXPECT_TRUE(lines[1].starts_with("Time\t"));
  EXPECT_EQ(lines[2], "");
  EXPECT_EQ(lines[3], "Graph Points\t400");
  EXPECT_EQ(lines[4], "Capture Period\t0.002");
  EXPECT_TRUE(lines[5].starts_with("-0.000195\t")) << lines[5];
  EXPECT_TRUE(lines[404].starts_with("0.0018\t")) << lines[404];
  EXPECT_FALSE(secondIsShown());
  open(fileCalled("profile.txt"));
  awaitSecondShown();
  expectOnlyPasses(before);
}

TEST_P(ProfileFiles, OpenDialogsHoldTheAcquisitionUp) {
  startLoaded(GetParam());
  runProfiles(1);
  for (const char* item : {"frmMain/menuSave", "frmMain/menuOpen"}) {
    hands().trigger(item);
    const std::string shown = hands().waitAny({"saveFileDialog", "openFileDialog"});
    const Texts before = told();
    giveItTime();
    EXPECT_EQ(told(), before);
    hands().key(shown, "Escape");
    hands().waitGone(shown);
    awaitMoreProfiles(1);
  }
}

TEST_P(ProfileFiles, WhileStoppedAFileBringsItsPointsAndItsTimeWithoutAWord) {
  startLoaded(GetParam());
  EXPECT_EQ(greenPixels(), 0U);
  const std::size_t before = told().size();
  open(writtenProfile(200, "0.005"));
  awaitSecondShown();
  EXPECT_EQ(toldUntilMark(before), Texts{});
  EXPECT_EQ(hands().get("frmMain/lblCapture", "text"), "5ms");
  EXPECT_GT(greenPixels(), 100U);
  hands().trigger("frmMain/menuProperties");
  EXPECT_TRUE(hands().is("frmProperties/optDisplayPoints_0", "checked"));
}

TEST_P(ProfileFiles, WhileRunningOtherPointsAreRefusedWithTwoMessages) {
  startLoaded(GetParam());
  runProfiles(1);
  const std::size_t before = told().size();
  open(writtenProfile(200, "0.005"));
  expectMessages(
      {{"display points is Different",
        "The number of display points and capture time of the saved file are not the same "
        "as the current setting\r\n\r\nhence the saved trace will not be displayed",
        "Information", ""},
       {" Display points and Capture period are Different",
        "To display the saved graph you have to do one of the following\r\n 1- Go to "
        "PulseMod menu, select stop and reopen the saved trace\r\n2- Change the capture "
        "period of the current setting to the saved graph capture time\r\n the saved graph "
        "capture period = 0.005s",
        "Information", ""}});
  expectOnlyPasses(before);
  EXPECT_FALSE(secondIsShown());
  EXPECT_EQ(greenPixels(), 0U);
}

TEST_P(ProfileFiles, WhileRunningAnotherTimeIsTakenOverOnlyIfWanted) {
  startLoaded(GetParam());
  runProfiles(1);
  const std::string file = writtenProfile(400, "0.004");
  const std::string question =
      "The Capture period of the saved file is not the same as the current setting\r\nChange to "
      "saved capture period?";
  std::size_t before = told().size();
  open(file);
  answerQuestion("Capture Period Different", question, false);
  awaitSecondShown();
  expectOnlyPasses(before);
  EXPECT_EQ(hands().get("frmMain/lblCapture", "text"), "2ms");
  EXPECT_GT(greenPixels(), 100U);

  before = told().size();
  open(file);
  answerQuestion("Capture Period Different", question, true);
  awaitMessages("TRCAPT 1,PMOD,0.004", 1);
  hands().waitUntil("frmMain/lblCapture", "text", "4ms");
  awaitMoreProfiles(2);
  const Texts texts = part(told(), before);
  EXPECT_EQ(std::count(texts.begin(), texts.end(), "TRCAPT 1,PMOD,0.004"), 1);
  EXPECT_EQ(std::count(texts.begin(), texts.end(), "TRCAPT? 1,PMOD"), 0);
  // Not a word of it comes into the middle of a pass.
  const auto at = std::find(texts.begin(), texts.end(), "TRCAPT 1,PMOD,0.004");
  ASSERT_NE(at + 1, texts.end());
  EXPECT_EQ(*(at + 1), "TR1 1");
}

TEST_P(ProfileFiles, ACurvesFileIsRefused) {
  startLoaded(GetParam());
  writeFile(fileCalled("curve.txt"), curveFile("-30", "20"));
  const auto openAndReadRefusal = [this] {
    open(fileCalled("curve.txt"));
    expectMessages(
        {{"Open Second Profile", "Invalid pmd file. Can't load graph data", "NoIcon", ""}});
    EXPECT_FALSE(secondIsShown());
  };
  std::size_t before = told().size();
  openAndReadRefusal();
  EXPECT_EQ(toldUntilMark(before), Texts{});
  runProfiles(1);
  before = told().size();
  openAndReadRefusal();
  expectOnlyPasses(before);
}

TEST_P(ProfileFiles, AFileThatEndsTooSoonLeavesTheSecondProfile) {
  startLoaded(GetParam());
  Texts lines = linesOf(profileFile(400, "0.002", "-25"));
  lines.resize(100);
  writeFile(fileCalled("short.txt"), joined(lines, "\n"));
  open(fileCalled("short.txt"));
  const Box box = shownBox(hands());
  EXPECT_EQ(box.title, "Open Second Profile");
  EXPECT_EQ(box.icon, "Warning");
  hands().key("messageBox", "Return");
  hands().waitGone("messageBox");
  EXPECT_FALSE(secondIsShown());
  EXPECT_EQ(greenPixels(), 0U);
}

// CCDF curves.

class CurveFiles : public FileBench<CCDFBench> {
 protected:
  void save(const std::string& file) { saveByMenu("frmCCDF/menuSave", "Save Curve", file); }
  void open(const std::string& file) { openByMenu("frmCCDF/OpenMenu", "Open Second Curve", file); }
  void answerPowers(bool yes) {
    answerQuestion("Power is different",
                   "Starting Power and/or Stoping Power of the Current Setting of the Power Meter "
                   "is not the same as the graph required to be opened\r\n\r\nChange to saved "
                   "Power?",
                   yes);
  }
  bool secondIsShown() { return hands().is("frmCCDF/menuSecondProfile", "checked"); }
  void awaitSecondShown() { hands().waitUntil("frmCCDF/menuSecondProfile", "checked", "true"); }
  std::string writtenCurve(const std::string& startPower) {
    const std::string file = fileCalled("curve.txt");
    writeFile(file, curveFile(startPower, "20"));
    return file;
  }
};
ON_BOTH_LINKS(CurveFiles);

TEST_P(CurveFiles, ACurveSavedWhileRunningOpensAsTheSecondOne) {
  startCCDF(GetParam());
  runCurves(2);
  const std::size_t before = told().size();
  save(fileCalled("curve"));
  const std::string text = savedText(fileCalled("curve.txt"));
  const Texts lines = linesOf(text);
  ASSERT_GT(lines.size(), 8U);
  EXPECT_EQ(lines[0], "2\r");
  EXPECT_TRUE(lines[1].starts_with("Date\t"));
  EXPECT_TRUE(lines[2].starts_with("Time\t"));
  EXPECT_EQ(lines[3], "\r");
  EXPECT_EQ(lines[4], "Graph Points\t" + std::to_string(lines.size() - 7) + "\r");
  EXPECT_EQ(lines[5], "-30\r");
  EXPECT_EQ(lines[6], "20\r");
  EXPECT_TRUE(lines.back().starts_with("20\t")) << lines.back();
  open(fileCalled("curve.txt"));
  awaitSecondShown();
  awaitMoreCurves(2);
  Texts texts = part(told(), before);
  const Texts pass = ccdfPass(true);
  std::erase_if(texts, [&pass](const std::string& message) {
    return std::find(pass.begin(), pass.end(), message) != pass.end();
  });
  EXPECT_EQ(texts, Texts{});
}

TEST_P(CurveFiles, WhileRunningTheLoopSendsThePowersOfTheFile) {
  startCCDF(GetParam());
  runCurves(1);
  const std::size_t before = told().size();
  open(writtenCurve("-25"));
  answerPowers(true);
  awaitCaption("lblStartPower", "-25dBm");
  awaitSecondShown();
  awaitMoreCurves(2);
  Texts texts = part(told(), before);
  std::erase_if(texts, [](const std::string& text) { return !text.starts_with("TTPS"); });
  EXPECT_EQ(texts, (Texts{"TTPST 1,-25", "TTPSP 1,20", "TTPST? 1", "TTPSP? 1"}));
}

TEST_P(CurveFiles, WhileStoppedThePowersOfTheFileAreSentAtOnce) {
  startCCDF(GetParam());
  const Pixels empty = grabGraph();
  const std::size_t before = told().size();
  open(writtenCurve("-25"));
  answerPowers(true);
  awaitSecondShown();
  EXPECT_EQ(toldUntilMark(before), (Texts{"TTPST 1,-25", "TTPSP 1,20"}));
  EXPECT_EQ(caption("lblStartPower"), "-25dBm");
  EXPECT_EQ(caption("lblStopPower"), "20dBm");
  EXPECT_FALSE(grabGraph().bytes == empty.bytes);
}

TEST_P(CurveFiles, DeclinedPowersLoadNothing) {
  startCCDF(GetParam());
  const std::size_t before = told().size();
  open(writtenCurve("-25"));
  answerPowers(false);
  expectMessages({{"Power is different", "Saved Graph cannot be displayed", "NoIcon", ""}});
  awaitSecondShown();
  EXPECT_EQ(toldUntilMark(before), Texts{});
  EXPECT_EQ(caption("lblStartPower"), "-30dBm");
}

TEST_P(CurveFiles, AProfilesFileIsRefused) {
  startCCDF(GetParam());
  writeFile(fileCalled("profile.txt"), profileFile(200, "0.0046", "-25"));
  const std::size_t before = told().size();
  open(fileCalled("profile.txt"));
  expectMessages(
      {{"not a CCDF graph", "This is not a CCDF graph. Can't load graph data here", "NoIcon", ""}});
  EXPECT_EQ(toldUntilMark(before), Texts{});
  EXPECT_FALSE(secondIsShown());
}

}  // namespace
}  // namespace endtoend
