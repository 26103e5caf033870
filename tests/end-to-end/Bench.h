#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "Process.h"
#include "RobotClient.h"
#include "Transcript.h"

namespace endtoend {

enum class Link { gpib, serial };
/// For the names of the tests.
void PrintTo(Link link, std::ostream* out);

/// How long anything is waited for: generous, since a loaded machine is slow and no test is about
/// speed.
constexpr std::chrono::milliseconds patience{60000};

/// A bench of its own for each test: a private folder for the settings store, a simulated meter and
/// the unmodified program, worked by the robot. At the end everything is killed, and the test fails
/// if the program ended unasked, if anything was written to a standard error (a sanitizer's report,
/// a warning of the toolkit), or if the transcript holds an offence.
class Bench : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Before the start.
  void useLink(Link link) { link_ = link; }
  /// Lines of the simulated meter's scenario file.
  void setScenario(const std::string& lines) { scenario_ = lines; }
  /// The text of the store's file; nothing at all without a call of one of these two.
  void setStore(const std::string& text);
  void storeLinkSettings();
  void startMeter();
  void startProgram();
  /// A stored link of the given kind, the meter, the program, and its first dialog on the screen.
  void startOn(Link link, const std::string& scenario = {});
  /// The same, and "Load from Power Meter" up to the main window.
  void startLoaded(Link link, const std::string& scenario = {});
  /// The same, and "CCDF Mode" up to its window.
  void startCCDF(Link link, const std::string& scenario = {});
  void hideGpibLibrary() { gpibLibraryIsThere_ = false; }
  /// Of the program and of the serial meter, before what the bench gives them.
  void setEnvironment(std::map<std::string, std::string> variables) {
    environment_ = std::move(variables);
  }

  // While it runs.
  robot::RobotClient& hands() { return *hands_; }
  Process& program() { return *program_; }
  Process& meter() { return *meter_; }
  Events transcript() const { return readTranscript(transcriptFile()); }
  /// Waits until the transcript is as told; fails the test with its last lines otherwise.
  Events awaitTranscript(const std::string& what, const std::function<bool(const Events&)>& isSo);
  Events awaitMessages(const std::string& text, std::size_t count);
  std::string windows() { return hands().windows(); }
  std::string storeText() const;

  void clickStart();
  void clickStop();
  /// A command of its own that the program sends when nothing else is under way, so that what came
  /// before it in the transcript is complete.
  Events markTranscript();

  // The end.
  void expectProgramEnd();
  void closeMainWindowAndExpectEnd();
  /// The scenario makes the meter refuse or lose something.
  void allowOffences() { offencesAllowed_ = true; }

  std::filesystem::path folder() const { return folder_; }
  std::string transcriptFile() const { return folder_ / "transcript"; }

 private:
  std::filesystem::path storeFile() const;
  std::filesystem::path portLink() const;
  void connectRobot(int listener);
  void checkErrorFile(const char* name);
  void tellWhatHappened();

  std::filesystem::path folder_;
  Link link_ = Link::gpib;
  std::string scenario_;
  bool gpibLibraryIsThere_ = true;
  std::map<std::string, std::string> environment_;
  bool offencesAllowed_ = false;
  bool endExpected_ = false;
  std::size_t marks_ = 0;
  std::unique_ptr<Process> meter_;
  std::unique_ptr<Process> program_;
  std::unique_ptr<robot::RobotClient> hands_;
};

class BenchOnEachLink : public Bench, public ::testing::WithParamInterface<Link> {};

std::string linkName(const ::testing::TestParamInfo<Link>& info);

/// All tests of `BenchOnEachLink`'s descendant run on both links.
#define ON_BOTH_LINKS(suite)                                                                    \
  INSTANTIATE_TEST_SUITE_P(Links, suite,                                                        \
                           ::testing::Values(::endtoend::Link::gpib, ::endtoend::Link::serial), \
                           ::endtoend::linkName)

std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& text);

}  // namespace endtoend
