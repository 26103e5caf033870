#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <string_view>

#include "SettingsFiles.h"
#include "support/CommaLocale.h"

namespace pulsemod::test {
namespace {

std::string faultOf(std::string_view text) {
  try {
    readSettings(text);
  } catch (const Fault& fault) {
    return fault.what();
  }
  return {};
}

/// The file of the defaults with one line replaced; lines are numbered from 1.
std::string fileWithLine(std::size_t number, const std::string& line) {
  FileLines lines = defaultSettingsLines();
  lines.at(number - 1) = line;
  return fileOf(lines);
}

TEST_F(SettingsFileTest, DefaultsByteForByte) {
  const std::string expected =
      " 1 \r\nFalse\r\n 0.0006 \r\n 3 \r\n"
      "False\r\n 0.0001 \r\n 0.000577 \r\nFalse\r\n 0.000225 \r\n 0.000321 \r\n"
      "False\r\n 0.0001 \r\n 0.000577 \r\nFalse\r\n 0.000225 \r\n 0.000321 \r\n"
      "False\r\n 0.0001 \r\n 0.000577 \r\nFalse\r\n 0.000225 \r\n 0.000321 \r\n"
      "False\r\n 0.0001 \r\n 0.000577 \r\nFalse\r\n 0.000225 \r\n 0.000321 \r\n"
      "False\r\nTrue\r\n 0.0001 \r\n"
      "False\r\nFalse\r\n 0.0002 \r\n"
      "False\r\nFalse\r\n 0.0003 \r\n"
      "False\r\nFalse\r\n 0.0004 \r\n"
      " 1 \r\nFalse\r\n 10 \r\n 10 \r\n 0.0046 \r\n 0 \r\n"
      " 0 \r\nFalse\r\n 1 \r\n 0 \r\nFalse\r\n 0 \r\n"
      "FILE END\r\n";
  EXPECT_EQ(settingsText(), expected);
  EXPECT_EQ(fileOf(defaultSettingsLines()), expected);
}

TEST_F(SettingsFileTest, EveryFieldStandsInItsLineAndIsReadBackFromIt) {
  readSettings(fileOf(otherSettingsLines()));
  EXPECT_EQ(storedValues(), valuesOf(otherSettingsLines()));
  EXPECT_EQ(settingsText(), fileOf(otherSettingsLines()));
  // A line that is exchanged for another is seen.
  const std::vector<double> defaults = valuesOf(defaultSettingsLines());
  const std::vector<double> others = valuesOf(otherSettingsLines());
  ASSERT_EQ(others.size(), valueLines);
  for (std::size_t index = 0; index < valueLines; ++index) {
    if (index + 1 == 41) continue;
    EXPECT_NE(defaults[index], others[index]) << "line " << index + 1;
  }
}

TEST_F(SettingsFileTest, TimesOfAGateStandInTheOrderOfTheFile) {
  Settings.Gates[1] = {0.001F, 0.002F, 0.003F, 0.004F, 0, 0, 0, 0, True16, False16};
  FileLines expected = defaultSettingsLines();
  const FileLines gate = {"False", " 0.001 ", " 0.004 ", "True", " 0.002 ", " 0.003 "};
  std::copy(gate.begin(), gate.end(), expected.begin() + 10);
  EXPECT_EQ(settingsText(), fileOf(expected));
  Settings.Gates[1] = {};
  readSettings(fileOf(expected));
  EXPECT_EQ(Settings.Gates[1].StartTime, 0.001F);
  EXPECT_EQ(Settings.Gates[1].FenceStart, 0.002F);
  EXPECT_EQ(Settings.Gates[1].FenceStop, 0.003F);
  EXPECT_EQ(Settings.Gates[1].StopTime, 0.004F);
  EXPECT_EQ(Settings.Gates[1].FenceEnabled, True16);
  EXPECT_EQ(Settings.Gates[1].Enabled, False16);
}

TEST_F(SettingsFileTest, NegativeNumbersHaveNoBlankBeforeThem) {
  struct Row {
    float value;
    const char* line;
  };
  const Row rows[] = {
      {-30.0F, "-30 "},
      {-0.5F, "-0.5 "},
      {-34.56789F, "-34.56789 "},
      {-5E-06F, "-5E-06 "},
      {0.0F, " 0 "},
      {-0.0F, " 0 "},
      {5E-06F, " 5E-06 "},
      {1E7F, " 1E+07 "},
      {1234567.0F, " 1234567 "},
      {std::numeric_limits<float>::max(), " 3.402823E+38 "},
      {-std::numeric_limits<float>::max(), "-3.402823E+38 "},
      {std::numeric_limits<float>::denorm_min(), " 1.401298E-45 "},
  };
  for (const Row& row : rows) {
    Settings.ReferenceLevel = row.value;
    EXPECT_EQ(settingsText(), fileWithLine(43, row.line));
    Settings.ReferenceLevel = 77;
    readSettings(fileWithLine(43, row.line));
    EXPECT_EQ(Settings.ReferenceLevel, std::strtof(row.line, nullptr)) << row.line;
  }
  InitMeasurementSettings();
  Settings.Channels[1].InputConfig = -2147483647 - 1;
  Settings.Channels[1].AveragingCount = -32768;
  FileLines expected = defaultSettingsLines();
  expected[49] = "-2147483648 ";
  expected[51] = "-32768 ";
  EXPECT_EQ(settingsText(), fileOf(expected));
  Settings.Channels[1] = {};
  readSettings(fileOf(expected));
  EXPECT_EQ(Settings.Channels[1].InputConfig, -2147483647 - 1);
  EXPECT_EQ(Settings.Channels[1].AveragingCount, -32768);
}

TEST_F(SettingsFileTest, LineOfTheActiveMarkerNamesTheLastOne) {
  struct Row {
    std::vector<std::size_t> active;
    const char* line;
  };
  const Row rows[] = {
      {{}, ""},        {{1}, " 1 "},    {{2}, " 2 "},       {{3}, " 3 "}, {{4}, " 4 "},
      {{1, 3}, " 3 "}, {{1, 2}, " 2 "}, {{1, 2, 4}, " 4 "}, {{5}, ""},    {{2, 5}, " 2 "},
  };
  for (const Row& row : rows) {
    FileLines expected = defaultSettingsLines();
    for (std::size_t marker = 1; marker <= markerCount; ++marker) {
      const bool active = std::count(row.active.begin(), row.active.end(), marker) > 0;
      Settings.Markers[marker - 1].IsActive = active ? True16 : False16;
      if (marker <= 4) expected[28 + 3 * (marker - 1) + 1] = active ? "True" : "False";
    }
    expected[40] = row.line;
    EXPECT_EQ(settingsText(), fileOf(expected));
  }
}

TEST_F(SettingsFileTest, LineOfTheActiveMarkerIsNotUsed) {
  for (const char* line : {"", " ", " 4 ", "-1 ", "70000", "1E400", "abc", "True", "FILE END"}) {
    InitMeasurementSettings();
    EXPECT_EQ(faultOf(fileWithLine(41, line)), "") << line;
    EXPECT_EQ(storedValues(), valuesOf(defaultSettingsLines())) << line;
  }
}

TEST_F(SettingsFileTest, NoActiveMarkerAndSeveralAreKept) {
  FileLines lines = defaultSettingsLines();
  lines[29] = "False";
  lines[40] = "";
  readSettings(fileOf(lines));
  for (const MarkerSettings& marker : Settings.Markers) EXPECT_EQ(marker.IsActive, False16);
  lines[29] = lines[38] = "True";
  readSettings(fileOf(lines));
  EXPECT_EQ(Settings.Markers[0].IsActive, True16);
  EXPECT_EQ(Settings.Markers[1].IsActive, False16);
  EXPECT_EQ(Settings.Markers[3].IsActive, True16);
}

TEST_F(SettingsFileTest, TruthValuesAreWordsOrNumbers) {
  struct Row {
    std::string line;
    Boolean16 value;
  };
  const Row rows[] = {
      {"True", True16},   {"true", True16},    {"TRUE", True16},   {"tRuE", True16},
      {" True ", True16}, {"\tTrue", True16},  {"False", False16}, {"FALSE", False16},
      {"fAlSe", False16}, {" false", False16}, {"1", True16},      {"-1", True16},
      {" 0 ", False16},   {"0.0", False16},    {"-0", False16},    {"0.5", True16},
      {"1E-3", True16},   {"-32768", True16},  {"70000", True16},
  };
  for (const Row& row : rows) {
    Settings.Gates[0].FenceEnabled = static_cast<Boolean16>(row.value == True16 ? False16 : True16);
    EXPECT_EQ(faultOf(fileWithLine(8, row.line)), "") << row.line;
    EXPECT_EQ(Settings.Gates[0].FenceEnabled, row.value) << row.line;
  }
}

TEST_F(SettingsFileTest, AllOtherTruthValuesAreFaults) {
  for (const std::string line :
       {"", " ", "maybe", "Tru", "Truee", "True False", "Fals", "ON", "OFF", "Yes", "1 2", "1x",
        "True.", "0x1", "nan", "1E400", "Wahr"}) {
    EXPECT_EQ(faultOf(fileWithLine(2, line)), "Type mismatch: line 2 is neither True nor False")
        << line;
  }
  EXPECT_EQ(faultOf(fileWithLine(51, "maybe")), "Type mismatch: line 51 is neither True nor False");
}

TEST_F(SettingsFileTest, EveryTruthValueIsCheckedInItsOwnLine) {
  for (const std::size_t line : {2U,  5U,  8U,  11U, 14U, 17U, 20U, 23U, 26U, 29U,
                                 30U, 32U, 33U, 35U, 36U, 38U, 39U, 42U, 48U, 51U}) {
    EXPECT_EQ(faultOf(fileWithLine(line, "x")),
              "Type mismatch: line " + std::to_string(line) + " is neither True nor False");
  }
}

TEST_F(SettingsFileTest, NumbersAreLeadingNumbers) {
  struct Row {
    const char* line;
    float value;
  };
  const Row rows[] = {
      {"abc", 0.0F},     {"", 0.0F},      {"0.5 s", 0.5F}, {"  0.5  ", 0.5F},   {"\t0.5", 0.5F},
      {"+0.5", 0.5F},    {".5", 0.5F},    {"5E-1", 0.5F},  {"0,5", 0.0F},       {"1,5", 1.0F},
      {"-7.25", -7.25F}, {"1E-60", 0.0F}, {"True", 0.0F},  {"3.4E38", 3.4E38F}, {"FILE END", 0.0F},
  };
  for (const Row& row : rows) {
    Settings.RepeatOffset = 99;
    EXPECT_EQ(faultOf(fileWithLine(3, row.line)), "") << row.line;
    EXPECT_EQ(Settings.RepeatOffset, row.value) << row.line;
  }
}

TEST_F(SettingsFileTest, WholeNumbersAreRounded) {
  struct Row {
    const char* line;
    std::int16_t value;
  };
  const Row rows[] = {{"2.5", 2},     {"3.5", 4},       {"abc", 0},         {"", 0},
                      {"7 gates", 7}, {"32767", 32767}, {"-32768", -32768}, {"32767.4", 32767}};
  for (const Row& row : rows) {
    EXPECT_EQ(faultOf(fileWithLine(4, row.line)), "") << row.line;
    EXPECT_EQ(Settings.RepeatCount, row.value) << row.line;
  }
}

TEST_F(SettingsFileTest, NumbersThatDoNotFitAreFaultsOfTheirLine) {
  struct Row {
    std::size_t line;
    const char* text;
  };
  const Row rows[] = {{1, "32768"},       {1, "-32769"},       {4, "70000"},  {4, "1E20"},
                      {3, "3.5E38"},      {3, "-1E400"},       {31, "1E39"},  {46, "1E39"},
                      {47, "2147483648"}, {50, "-3000000000"}, {49, "32768"}, {52, "1E400"}};
  for (const Row& row : rows) {
    EXPECT_EQ(faultOf(fileWithLine(row.line, row.text)),
              "Overflow: the number in line " + std::to_string(row.line) + " does not fit");
  }
  EXPECT_EQ(faultOf(fileWithLine(47, "2147483647")), "");
  EXPECT_EQ(Settings.Channels[0].InputConfig, 2147483647);
}

TEST_F(SettingsFileTest, EitherLineEndAndNoneAtTheLastLine) {
  for (const char* end : {"\r\n", "\n"}) {
    InitMeasurementSettings();
    EXPECT_EQ(faultOf(fileOf(otherSettingsLines(), end)), "");
    EXPECT_EQ(storedValues(), valuesOf(otherSettingsLines()));
    InitMeasurementSettings();
    std::string text = fileOf(otherSettingsLines(), end);
    text.erase(text.size() - std::string_view(end).size());
    EXPECT_EQ(faultOf(text), "");
    EXPECT_EQ(storedValues(), valuesOf(otherSettingsLines()));
  }
}

TEST_F(SettingsFileTest, LinesBeforeTheEndAreSkipped) {
  FileLines lines = otherSettingsLines();
  lines.insert(lines.begin() + valueLines,
               {"", " ", "FILE", "FILE END ", " FILE END", "File End", "END", "12", "version 3"});
  EXPECT_EQ(faultOf(fileOf(lines)), "");
  EXPECT_EQ(storedValues(), valuesOf(otherSettingsLines()));
  EXPECT_TRUE(properties.versions.empty());
}

TEST_F(SettingsFileTest, NothingAfterTheEndIsRead) {
  EXPECT_EQ(faultOf(fileOf(defaultSettingsLines()) + "7 VERSION\r\nmore"), "");
  EXPECT_TRUE(properties.versions.empty());
}

TEST_F(SettingsFileTest, VersionIsTheLeadingNumberOfItsLine) {
  struct Row {
    const char* line;
    std::vector<std::int16_t> versions;
  };
  const Row rows[] = {
      {"VERSION 2", {0}},    {"2 VERSION", {2}},        {"VERSION", {0}},
      {" 3 VERSION 4", {3}}, {"xVERSIONx", {0}},        {"-1VERSION", {-1}},
      {"2.5 VERSION", {2}},  {"version 2", {}},         {"Version 2", {}},
      {"VERSIO N", {}},      {"FILE END VERSION", {0}}, {"32767 VERSION", {32767}},
  };
  for (const Row& row : rows) {
    properties.versions.clear();
    FileLines lines = defaultSettingsLines();
    lines.insert(lines.begin() + valueLines, row.line);
    EXPECT_EQ(faultOf(fileOf(lines)), "") << row.line;
    EXPECT_EQ(properties.versions, row.versions) << row.line;
  }
}

TEST_F(SettingsFileTest, EachVersionLineCountsAndOneThatDoesNotFitIsAFault) {
  FileLines lines = defaultSettingsLines();
  lines.insert(lines.begin() + valueLines, {"1 VERSION", "", "2 VERSION", "40000 VERSION"});
  EXPECT_EQ(faultOf(fileOf(lines)), "Overflow: the number in line 56 does not fit");
  EXPECT_EQ(properties.versions, (std::vector<std::int16_t>{1, 2}));
}

TEST_F(SettingsFileTest, VersionAmongTheValuesIsNone) {
  EXPECT_EQ(faultOf(fileWithLine(43, "5 VERSION")), "");
  EXPECT_EQ(faultOf(fileWithLine(41, "5 VERSION")), "");
  EXPECT_TRUE(properties.versions.empty());
  EXPECT_EQ(Settings.ReferenceLevel, 10);
}

TEST_F(SettingsFileTest, TextsAreThoseOfADecimalPointEverywhere) {
  readSettings(fileOf(otherSettingsLines()));
  const CommaLocale comma;
  EXPECT_EQ(settingsText(), fileOf(otherSettingsLines()));
  InitMeasurementSettings();
  readSettings(fileOf(otherSettingsLines()));
  EXPECT_EQ(Settings.CaptureTime, 0.01F);
  EXPECT_EQ(settingsText(), fileOf(otherSettingsLines()));
}

TEST_F(SettingsFileTest, GatesOfTheRepeatThatNoFileHoldsFollowGateFour) {
  readSettings(fileOf(otherSettingsLines()));  // the repeat is on, with 5 gates, -0.0007 apart
  EXPECT_EQ(Settings.Gates[4].Enabled, True16);
  EXPECT_EQ(Settings.Gates[4].FenceEnabled, True16);
  EXPECT_EQ(Settings.Gates[4].StartTime, 0.0403F);
  EXPECT_EQ(Settings.Gates[4].StopTime, 0.0413F);
  EXPECT_EQ(Settings.Gates[4].FenceStart, 0.0423F);
  EXPECT_EQ(Settings.Gates[4].FenceStop, 0.0433F);
  EXPECT_EQ(Settings.Gates[5].Enabled, False16);
  EXPECT_EQ(Settings.Gates[5].StartTime, 0.0001F);
}

TEST_F(SettingsFileTest, GateOneOfARepeatStaysAsTheFileHasIt) {
  FileLines lines = otherSettingsLines();
  lines[4] = "False";
  readSettings(fileOf(lines));
  EXPECT_EQ(Settings.Gates[0].Enabled, False16);
  EXPECT_EQ(settingsText(), fileOf(lines));
}

TEST_F(SettingsFileTest, ARepeatBeyondTheGatesFillsThemAll) {
  FileLines lines = otherSettingsLines();
  lines[3] = " 100 ";
  readSettings(fileOf(lines));
  EXPECT_EQ(Settings.RepeatCount, 100);
  EXPECT_EQ(Settings.Gates[7].Enabled, True16);
  EXPECT_EQ(Settings.Gates[7].StartTime, 0.0382F);
}

TEST_F(SettingsFileTest, WithoutTheRepeatTheOtherGatesStay) {
  FileLines lines = otherSettingsLines();
  lines[1] = "False";
  Settings.Gates[6].StartTime = 0.7F;
  readSettings(fileOf(lines));
  EXPECT_EQ(Settings.Gates[4].StartTime, 0.0001F);
  EXPECT_EQ(Settings.Gates[6].StartTime, 0.7F);
  EXPECT_EQ(Settings.Gates[4].Enabled, False16);
}

/// Settings at random: singles of every size and sign, whole numbers over their whole range.
class RandomSettings {
 public:
  MeasurementSettings next() {
    MeasurementSettings made;
    made.CaptureTime = single();
    made.TriggerDelay = single();
    made.ReferenceLevel = single();
    made.ScalePerDivision = single();
    made.ActiveChannel = whole<std::int16_t>();
    made.ActiveGate = whole<std::int16_t>();
    made.GatesVisible = truth();
    made.MeasurementType = whole<std::int32_t>();
    made.DeltaMeasurement = whole<std::int32_t>();
    made.DisplayPoints = whole<std::int16_t>();
    made.RepeatEnabled = truth();
    made.RepeatCount = whole<std::int16_t>();
    made.RepeatOffset = single();
    for (GateSettings& gate : made.Gates) {
      gate = {single(), single(), single(), single(), 1, 2, 3, 4, truth(), truth()};
    }
    for (MarkerSettings& marker : made.Markers) marker = {single(), single(), 5, truth(), truth()};
    for (ChannelSettings& channel : made.Channels) {
      channel = {whole<std::int32_t>(), whole<std::int16_t>(), truth()};
    }
    return made;
  }

 private:
  /// Any finite single, or one with few digits, as users type them.
  float single() {
    if (random_() % 4 == 0) return static_cast<float>(whole<std::int16_t>()) / 1000.0F;
    for (;;) {
      const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random_()));
      if (std::isfinite(value)) return value;
    }
  }
  template <typename Whole>
  Whole whole() {
    return static_cast<Whole>(random_());
  }
  Boolean16 truth() { return random_() % 2 == 0 ? True16 : False16; }

  std::mt19937 random_{20261121};
};

TEST_F(SettingsFileTest, AThousandRandomSettingsWrittenLoadedAndWrittenAgain) {
  RandomSettings random;
  for (int round = 0; round < 1000; ++round) {
    Settings = random.next();
    const std::string written = settingsText();
    ASSERT_EQ(std::count(written.begin(), written.end(), '\n'), 53);
    const std::vector<double> before = storedValues();

    const MeasurementSettings others = random.next();
    Settings = others;
    readSettings(written);
    ASSERT_EQ(settingsText(), written);

    // Seven digits of each number came through, and nothing else changed.
    const std::vector<double> after = storedValues();
    for (std::size_t index = 0; index < before.size(); ++index) {
      const double smallest = static_cast<double>(std::numeric_limits<float>::denorm_min());
      ASSERT_NEAR(after[index], before[index], std::abs(before[index]) * 1e-6 + smallest)
          << "line " << index + 1;
    }
    EXPECT_EQ(Settings.ActiveChannel, others.ActiveChannel);
    EXPECT_EQ(Settings.DisplayPoints, others.DisplayPoints);
    EXPECT_EQ(Settings.MeasurementType, others.MeasurementType);
    EXPECT_EQ(Settings.DeltaMeasurement, others.DeltaMeasurement);
    EXPECT_EQ(Settings.GatesVisible, others.GatesVisible);
    EXPECT_EQ(Settings.Markers[4].Position, others.Markers[4].Position);
    EXPECT_EQ(Settings.Markers[4].IsActive, others.Markers[4].IsActive);
    for (std::size_t marker = 0; marker < markerCount; ++marker) {
      EXPECT_EQ(Settings.Markers[marker].Reading, others.Markers[marker].Reading);
    }
    const int repeated = Settings.RepeatEnabled == False16 ? 0 : Settings.RepeatCount;
    for (int gate = 5; gate <= 8; ++gate) {
      if (gate <= repeated) continue;
      const auto index = static_cast<std::size_t>(gate - 1);
      EXPECT_EQ(Settings.Gates[index].Enabled, others.Gates[index].Enabled);
      EXPECT_EQ(Settings.Gates[index].StartTime, others.Gates[index].StartTime);
      EXPECT_EQ(Settings.Gates[index].FenceStop, others.Gates[index].FenceStop);
    }
  }
}

TEST_F(SettingsFileTest, RandomFilesAllReachTheMeter) {
  RandomSettings random;
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    Settings = random.next();
    const std::string written = settingsText();
    InitMeasurementSettings();
    world.meter.received.clear();
    properties.timesRefreshed = 0;
    load(written);
    ASSERT_FALSE(received().empty());
    EXPECT_EQ(received().back(), "*OPC?");
    EXPECT_EQ(properties.timesRefreshed, 1);
  }
}

}  // namespace
}  // namespace pulsemod::test
