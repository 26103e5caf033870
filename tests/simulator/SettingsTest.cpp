// Every setting there and back, with its refusals.
#include <gtest/gtest.h>

#include <ostream>

#include "Bench.h"

namespace simmeter {
namespace {

struct Case {
  const char* command;  // sent
  const char* query;    // asked then
  const char* reply;    // expected, whole
  const char* refused;  // a command that must be refused as out of range, or nullptr
};

void PrintTo(const Case& c, std::ostream* out) { *out << c.command; }

const Case kCases[] = {
    {"CHACTIV 2", "CHACTIV?", "CHACTIV 2", "CHACTIV 3"},
    {"CHACTIV 1&2", "CHACTIV? ", "CHACTIV 1&2", "CHACTIV ON"},
    {"CHDISPN 2", "CHDISPN?", "CHDISPN 2", "CHDISPN 3"},
    {"SYDISP OFF", "SYDISP?", "SYDISP OFF", "SYDISP 1"},
    {"SYDRES 200", "SYDRES?", "SYDRES 200", "SYDRES 300"},
    {"CHMODE 1, PMOD", "CHMODE? 1", "CHMODE 1,PMOD", "CHMODE 1,XYZ"},
    {"CHMODE 1,CW", "CHMODE? 1", "CHMODE 1,CW", nullptr},
    {"CHCFG 1, A-B", "CHCFG? 1", "CHCFG 1,A-B", "CHCFG 1, C"},
    {"CHCFG 2, B/A", "CHCFG? 2", "CHCFG 2,B/A", "CHCFG 3, A"},
    {"PMDTYP 1,PRF", "PMDTYP? 1", "PMDTYP 1,PRF", "PMDTYP 1,ABC"},
    {"TRCAPT 1,PMOD,0.0046", "TRCAPT? 1,PMOD", "TRCAPT 1,PMOD,0.0046", "TRCAPT 1,PMOD,0"},
    {"TRCAPT 1,PMOD,5E-06", "TRCAPT? 1,PMOD", "TRCAPT 1,PMOD,5E-06", "TRCAPT 1,PMOD,11"},
    {"TRDLYT 1,PMOD,0", "TRDLYT? 1,PMOD", "TRDLYT 1,PMOD,0", "TRDLYT 1,PMOD,10.5"},
    {"TRDLYT 1,PMOD,-0.0005", "TRDLYT? 1PMOD", "TRDLYT 1,PMOD,-0.0005", "TRDLYT 1,PMOD,-11"},
    {"PMPREF 1,DB,-20.5", "PMPREF? 1,DB", "PMPREF 1,DB,-20.5", "PMPREF 1,DB,100"},
    {"PMPSCAL 1,DB,5", "PMPSCAL? 1,DB", "PMPSCAL 1,DB,5", "PMPSCAL 1,DB,0"},
    {"PMAVGS 1,ON", "PMAVGS? 1", "PMAVGS 1,ON", "PMAVGS 1,YES"},
    {"PMAVGN 1, 64", "PMAVGN? 1", "PMAVGN 1,64", "PMAVGN 1, 0"},
    {"PMAVGN 1, 1000", "PMAVGN? 1", "PMAVGN 1,1000", "PMAVGN 1, 1001"},
    {"PMMEAS 1,4", "PMMEAS? 1", "PMMEAS 1,4", "PMMEAS 1,5"},
    {"GPHIDES 1, ON", "GPHIDES? 1", "GPHIDES 1,ON", "GPHIDES 1, 7"},
    {"GPACTN 1,4", "GPACTN? 1", "GPACTN 1,4", "GPACTN 1,5"},
    {"GPACTN 1, 2", "GPACTN? 1", "GPACTN 1,2", "GPACTN 1,0"},
    {"GP1REPS 1,ON", "GP1REPS? 1", "GP1REPS 1,ON", "GP1REPS 1,X"},
    {"GP1REPN 1, 8", "GP1REPN? 1", "GP1REPN 1,8", "GP1REPN 1, 9"},
    {"GP1REPT 1, 0.0006", "GP1REPT? 1", "GP1REPT 1,0.0006", "GP1REPT 1, -1"},
    {"GPGATS 1, 2, ON", "GPGATS? 1, 2", "GPGATS 1,2,ON", "GPGATS 1, 5, ON"},
    {"GPTIMST 1, 3, 0.0001", "GPTIMST? 1, 3", "GPTIMST 1,3,0.0001", "GPTIMST 1, 3, 21"},
    {"GPTIMSP 1, 3, 0.000577", "GPTIMSP? 1, 3", "GPTIMSP 1,3,0.000577", "GPTIMSP 1, 0, 0"},
    {"GPFENS 1, 4, ON", "GPFENS? 1, 4", "GPFENS 1,4,ON", "GPFENS 1, 4, MAYBE"},
    {"GPFENST 1, 4, 0.000225", "GPFENST? 1, 4", "GPFENST 1,4,0.000225", "GPFENST 1, 4, -21"},
    {"GPFENSP 1, 4, 0.000321", "GPFENSP? 1, 4", "GPFENSP 1,4,0.000321", "GPFENSP 1, 9, 0"},
    {"MKACTN 1, 3", "MKACTN? 1", "MKACTN 1,3", "MKACTN 1, 5"},
    {"MKSTATE 1,4,ON", "MKSTATE? 1,4", "MKSTATE 1,4,ON", "MKSTATE 1,5,ON"},
    {"MKPOS 1,2,0.0002", "MKPOS? 1,2", "MKPOS 1,2,0.0002", "MKPOS 1,2,99"},
    {"MKDELTS 1,ON", "MKDELTS? 1", "MKDELTS 1,ON", "MKDELTS 1,5"},
    {"MKDPOS 1,0.0005", "MKDPOS? 1", "MKDPOS 1,0.0005", "MKDPOS 1,-99"},
    {"MKDMEAS 1, PDIFF", "MKDMEAS? 1", "MKDMEAS 1,PDIFF", "MKDMEAS 1, POFF"},
    {"PPACQS 1,ON", "PPACQS? 1", "PPACQS 1,ON", "PPACQS 1,2"},
    {"PPFUNC 1,STATS", "PPFUNC? 1", "PPFUNC 1,STATS", "PPFUNC 1,NONE"},
    {"TTFUNC 1,CCDF", "TTFUNC? 1", "TTFUNC 1,CCDF", "TTFUNC 1,PDF"},
    {"TTPST 1,-25.5", "TTPST? 1", "TTPST 1,-25.5", "TTPST 1,-100"},
    {"TTPSP 1,15", "TTPSP? 1", "TTPSP 1,15", "TTPSP 1,100"},
    {"TTMKS 1,OFF", "TTMKS? 1", "TTMKS 1,OFF", "TTMKS 1,0"},
    {"TTSRC 1,GATE", "TTSRC? 1", "TTSRC 1,GATE", "TTSRC 1,NOISE"},
    {"TTSRC 1,MARKER", "TTSRC? 1", "TTSRC 1,MARKER", "TTSRC 3,MARKER"},
};

class EverySetting : public testing::TestWithParam<Case> {};

TEST_P(EverySetting, ComesBackAsItWasSet) {
  Bench bench;
  bench.tell("*CLS");
  EXPECT_EQ(bench.ask(GetParam().command), "");
  EXPECT_EQ(bench.ask(GetParam().query), GetParam().reply);
  EXPECT_EQ(bench.events(), 0);
}

TEST_P(EverySetting, IsKeptWhenACommandIsRefused) {
  if (GetParam().refused == nullptr) return;
  Bench bench;
  bench.tell("*CLS");
  bench.tell(GetParam().command);
  EXPECT_EQ(bench.ask(GetParam().refused), "");
  EXPECT_EQ(bench.events(), esr::kExecutionError);
  EXPECT_EQ(bench.ask(GetParam().query), GetParam().reply);
}

TEST_P(EverySetting, IsUnderstoodInLowerCaseAndWithoutBlanksAfterCommas) {
  std::string command(GetParam().command);
  for (std::size_t at; (at = command.find(", ")) != std::string::npos;) command.erase(at + 1, 1);
  for (char& c : command) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  Bench bench;
  bench.tell("*CLS");
  bench.tell(command);
  EXPECT_EQ(bench.ask(GetParam().query), GetParam().reply);
  EXPECT_EQ(bench.events(), 0);
}

TEST_P(EverySetting, RefusesAMissingOrSpareArgument) {
  const std::string command(GetParam().command);
  Bench bench;
  bench.tell("*CLS");
  const std::string before = bench.ask(GetParam().query);
  bench.tell(command + ",1,1,1");
  EXPECT_EQ(bench.events(), esr::kCommandError);
  bench.tell(command.substr(0, command.find(' ')));
  EXPECT_EQ(bench.events(), esr::kCommandError);
  EXPECT_EQ(bench.ask(GetParam().query), before);
}

INSTANTIATE_TEST_SUITE_P(Table, EverySetting, testing::ValuesIn(kCases));

TEST(Settings, EachRowOfTheTableIsTriedAbove) {
  for (const SettingRow& row : settingTable()) {
    bool tried = row.id == SettingId::kCursorPower;  // has its own test: its query says more
    for (const Case& c : kCases) {
      const std::string_view command = c.command;
      tried = tried || command.substr(0, command.find(' ')) == row.mnemonic;
    }
    EXPECT_TRUE(tried) << row.mnemonic;
  }
}

TEST(Settings, PowerOnValuesAreWithinTheirRanges) {
  for (const SettingRow& row : settingTable()) {
    if (row.kind == ValueKind::kWord) {
      EXPECT_NE(wordAt(row, static_cast<int>(row.powerOn[0])), "") << row.mnemonic;
      continue;
    }
    for (int i = 0; i < std::max(row.elements, 1); ++i) {
      EXPECT_GE(row.powerOn[static_cast<std::size_t>(i)], row.minimum) << row.mnemonic;
      EXPECT_LE(row.powerOn[static_cast<std::size_t>(i)], row.maximum) << row.mnemonic;
    }
  }
}

TEST(Settings, ChannelsAreSeparate) {
  Bench bench;
  bench.tell("PMPREF 2,DB,-5");
  EXPECT_EQ(bench.ask("PMPREF? 1,DB"), "PMPREF 1,DB,10");
  EXPECT_EQ(bench.ask("PMPREF? 2,DB"), "PMPREF 2,DB,-5");
}

TEST(Settings, BothChannelsAtOnceAreSetAndEchoed) {
  Bench bench;
  bench.tell("PMPREF 1&2,DB,3");
  EXPECT_EQ(bench.ask("PMPREF? 1&2,DB"), "PMPREF 1&2,DB,3");
  EXPECT_EQ(bench.ask("PMPREF? 2,DB"), "PMPREF 2,DB,3");
}

TEST(Settings, WrongSyntaxIsACommandError) {
  for (const char* wrong : {"NONSENSE 1,2",
                            "PMPREF 1,DBM,3",
                            "PMPREF 1,DB,",
                            "PMPREF 1,DB,abc",
                            "PMPREF 1,DB,1,5",
                            "GPGATS 1, x, ON",
                            "CHCFG 1, ",
                            "PMPREF? 1",
                            "GPTIMST? 1",
                            "TRCAPT? 1",
                            "?",
                            "*FOO",
                            "*ESE",
                            "*CLS 1",
                            "*ESE x",
                            "TR3 1",
                            "PMPO",
                            "PMPO 1,2",
                            "GPNMO 1",
                            "MKNO 1,x"}) {
    Bench bench;
    bench.tell("*CLS");
    EXPECT_EQ(bench.ask(wrong), "") << wrong;
    EXPECT_EQ(bench.events(), esr::kCommandError) << wrong;
  }
}

TEST(Settings, TheOrderOfWritingAGateDoesNotMatter) {
  Bench bench;
  bench.tell("*CLS");
  bench.tell("GPTIMST 1, 1, 0.003");  // past its stop for the moment
  bench.tell("GPTIMSP 1, 1, 0.004");
  bench.tell("GPFENST 1, 1, 0.0032");
  bench.tell("GPFENSP 1, 1, 0.0034");
  EXPECT_EQ(bench.events(), 0);
  EXPECT_EQ(bench.ask("GPTIMST? 1, 1"), "GPTIMST 1,1,0.003");
}

TEST(Settings, ASourceThatIsOffIsRefused) {
  Bench bench;
  bench.tell("*CLS");
  bench.tell("GPGATS 1, 1, OFF");
  bench.tell("TTSRC 1,GATE");
  EXPECT_EQ(bench.events(), esr::kExecutionError);
  EXPECT_EQ(bench.ask("TTSRC? 1"), "TTSRC 1,CHANNEL");
  bench.tell("GPGATS 1, 1, ON");
  bench.tell("TTSRC 1,GATE");
  EXPECT_EQ(bench.ask("TTSRC? 1"), "TTSRC 1,GATE");
  bench.tell("MKACTN 1, 4");
  bench.tell("TTSRC 1,MARKER");  // marker 4 is off
  EXPECT_EQ(bench.events(), esr::kExecutionError);
  EXPECT_EQ(bench.ask("TTSRC? 1"), "TTSRC 1,GATE");
}

TEST(Settings, ResetBringsThePowerOnSettingsBack) {
  Bench bench("setup = PMPREF 1,DB,7\n");
  bench.tell("PMPREF 1,DB,-1");
  bench.tell("GPGATS 1,3,ON");
  bench.tell("*RST");
  EXPECT_EQ(bench.ask("PMPREF? 1,DB"), "PMPREF 1,DB,7");
  EXPECT_EQ(bench.ask("GPGATS? 1,3"), "GPGATS 1,3,OFF");
}

}  // namespace
}  // namespace simmeter
