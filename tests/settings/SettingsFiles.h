#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "link/Fault.h"
#include "profile/MeasurementSettings.h"
#include "profile/ProfileTest.h"
#include "settings/SettingsFile.h"
#include "support/FakePropertiesView.h"
#include "support/FileLines.h"
#include "support/Transcripts.h"

namespace pulsemod::test {

/// How many lines stand before "FILE END".
inline constexpr std::size_t valueLines = 52;

/// The file of the default settings.
inline FileLines defaultSettingsLines() {
  return {
      " 1 ",      "False",    " 0.0006 ",   " 3 ",                                //
      "False",    " 0.0001 ", " 0.000577 ", "False", " 0.000225 ", " 0.000321 ",  //
      "False",    " 0.0001 ", " 0.000577 ", "False", " 0.000225 ", " 0.000321 ",  //
      "False",    " 0.0001 ", " 0.000577 ", "False", " 0.000225 ", " 0.000321 ",  //
      "False",    " 0.0001 ", " 0.000577 ", "False", " 0.000225 ", " 0.000321 ",  //
      "False",    "True",     " 0.0001 ",                                         //
      "False",    "False",    " 0.0002 ",                                         //
      "False",    "False",    " 0.0003 ",                                         //
      "False",    "False",    " 0.0004 ",                                         //
      " 1 ",      "False",                                                        //
      " 10 ",     " 10 ",     " 0.0046 ",   " 0 ",                                //
      " 0 ",      "False",    " 1 ",                                              //
      " 0 ",      "False",    " 0 ",                                              //
      "FILE END",
  };
}

/// A file of which every value that is read differs from the default.
inline FileLines otherSettingsLines() {
  return {
      " 3 ",      "True",    "-0.0007 ", " 5 ",                            //
      "True",     " 0.011 ", " 0.012 ",  "True",    " 0.013 ", " 0.014 ",  //
      "True",     " 0.021 ", " 0.022 ",  "True",    " 0.023 ", " 0.024 ",  //
      "True",     " 0.031 ", " 0.032 ",  "True",    " 0.033 ", " 0.034 ",  //
      "True",     " 0.041 ", " 0.042 ",  "True",    " 0.043 ", " 0.044 ",  //
      "True",     "False",   " 0.015 ",                                    //
      "True",     "True",    " 0.025 ",                                    //
      "True",     "True",    " 0.035 ",                                    //
      "True",     "True",    " 0.045 ",                                    //
      " 4 ",      "True",                                                  //
      "-30 ",     " 2.5 ",   " 0.01 ",   "-5E-06 ",                        //
      " 100000 ", "True",    " 16 ",                                       //
      " 4 ",      "True",    " 256 ",                                      //
      "FILE END",
  };
}

/// What the model holds of each line, in the order of the file; the line that nobody reads is 0.
inline std::vector<double> storedValues() {
  std::vector<double> values{
      static_cast<double>(Settings.ActiveGate), static_cast<double>(Settings.RepeatEnabled),
      static_cast<double>(Settings.RepeatOffset), static_cast<double>(Settings.RepeatCount)};
  const auto add = [&values](auto value) { values.push_back(static_cast<double>(value)); };
  for (std::size_t gate = 0; gate < 4; ++gate) {
    const GateSettings& stored = Settings.Gates[gate];
    add(stored.Enabled);
    add(stored.StartTime);
    add(stored.StopTime);
    add(stored.FenceEnabled);
    add(stored.FenceStart);
    add(stored.FenceStop);
  }
  for (std::size_t marker = 0; marker < 4; ++marker) {
    add(Settings.Markers[marker].Enabled);
    add(Settings.Markers[marker].IsActive);
    add(Settings.Markers[marker].Position);
  }
  add(0);
  add(Settings.Markers[4].Enabled);
  add(Settings.ReferenceLevel);
  add(Settings.ScalePerDivision);
  add(Settings.CaptureTime);
  add(Settings.TriggerDelay);
  for (const ChannelSettings& channel : Settings.Channels) {
    add(channel.InputConfig);
    add(channel.AveragingOn);
    add(channel.AveragingCount);
  }
  return values;
}

/// The values that lines of a file stand for, as `storedValues` shows them.
inline std::vector<double> valuesOf(const FileLines& lines) {
  constexpr std::size_t unusedLine = 41;
  std::vector<double> values;
  for (std::size_t index = 0; index < valueLines && index < lines.size(); ++index) {
    const std::string& line = lines[index];
    if (index + 1 == unusedLine) {
      values.push_back(0);
    } else if (line == "True" || line == "False") {
      values.push_back(line == "True" ? -1 : 0);
    } else {
      values.push_back(static_cast<double>(std::stof(line)));
    }
  }
  return values;
}

/// An outside world with all windows, a meter at GPIB address 13, and one settings file.
class SettingsFileTest : public ProfileTest {
 protected:
  SettingsFileTest() { world.meter.replies["PPACQS? 1"] = "PPACQS 1,OFF"; }

  /// As the window does it: a fault comes to the user as a message.
  void load(const std::string& content) {
    world.files.contents[path] = content;
    reportFaults([this] { LoadSettingsFileFrom(path); });
  }

  void expectOneFault(const std::string& text) const {
    EXPECT_EQ(shownBoxes(), (std::vector<std::string>{"Pelmora|" + text + "|exclamation"}));
    EXPECT_TRUE(received().empty());
  }

  const std::string path = "/data/settings.txt";
  FakePropertiesView properties;
};

}  // namespace pulsemod::test
