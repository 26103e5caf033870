// Writes what the corpus begins with: what the simulated meter answers the program, and the files
// that the program writes of it, whole and cut. The one argument is the folder; each target gets
// one of its own below it.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <string>
#include <utility>

#include "FuzzMeter.h"
#include "MessageExchange.h"
#include "ModelChecks.h"
#include "ccdf/CCDFConfig.h"
#include "ccdf/CCDFGraphFile.h"
#include "ccdf/CCDFLoop.h"
#include "ccdf/CCDFReader.h"
#include "ccdf/MeasurementSource.h"
#include "ccdf/PowerAxis.h"
#include "profile/AcquisitionLoop.h"
#include "profile/ParameterEdits.h"
#include "profile/ProfileParameters.h"
#include "profile/ProfileReader.h"
#include "settings/ConfigExchange.h"
#include "settings/SettingsFile.h"
#include "startup/FakeStartUpView.h"
#include "startup/ReadMeterConfig.h"
#include "support/FakePropertiesView.h"
#include "tracefiles/ProfileTraceFile.h"

namespace pulsemod::fuzz {
namespace {

std::filesystem::path folder;

void write(const std::string& target, const std::string& name, const std::string& bytes) {
  std::filesystem::create_directories(folder / target);
  std::ofstream(folder / target / name, std::ios::binary) << bytes;
}

void writeWholeAndCut(const std::string& target, const std::string& name,
                      const std::string& bytes) {
  write(target, name, bytes);
  int part = 0;
  for (const std::size_t length : {bytes.size() / 20, bytes.size() / 4, bytes.size() - 1}) {
    write(target, name + "-cut" + std::to_string(++part), bytes.substr(0, length));
  }
}

/// The program with a simulated meter behind the tests' world; it keeps what the meter answered.
class Bench {
 public:
  explicit Bench(bool serial, const std::string& setup = {})
      : serial_(serial),
        scenario_(simmeter::parseScenario(setup)),
        exchange_(scenario_, serial ? simmeter::kSerialFraming : simmeter::kGpibFraming,
                  transcript_) {
    if (serial) world.useSerial();
    world.gpib.terminator.clear();
    world.meter.onMessage = [this](const std::string& message) { answer(message); };
  }

  /// The answers since the last call, as the targets take them.
  std::string takeAnswers() { return std::exchange(answers_, {}); }

  std::string ask(const std::string& message) {
    exchange_.receive(message, false, simmeter::Clock::now());
    exchange_.receive(serial_ ? "\r" : "\n", !serial_, simmeter::Clock::now());
    if (exchange_.reply() == nullptr) return {};
    const std::string bytes = exchange_.reply()->bytes;
    exchange_.reply()->taken = bytes.size();
    exchange_.replyFinished();
    return bytes;
  }

  test::FakeWorld world;
  test::FakeProfileView view;
  test::FakeCCDFView ccdfView;
  test::FakePropertiesView properties;

 private:
  void answer(const std::string& message) {
    world.meter.replies.clear();
    const std::string bytes = ask(message);
    if (bytes.empty()) return;
    // The fakes frame a reply by themselves.
    std::string text = serial_ ? bytes.substr(1, bytes.size() - 3) : bytes;
    world.meter.replies[message] = text;
    if (!isQuery(message)) return;
    if (!serial_) text.erase(text.size() - terminatorLength);
    // A value of a block may well hold the separator.
    std::replace(text.begin(), text.end(), endOfReply, '{');
    answers_ += text + endOfReply;
  }

  static constexpr std::size_t terminatorLength = 2;

  bool serial_;
  simmeter::Scenario scenario_;
  simmeter::Transcript transcript_;
  simmeter::MessageExchange exchange_;
  std::string answers_;
};

struct Course {
  const char* name;
  const char* target;
  unsigned routine;
  std::function<void(Bench&)> run;
  /// What the user types in that course comes first.
  std::string typed;
};

void answerAll(Bench& bench, const std::string& text) {
  bench.world.dialogs.textAnswers.assign(8, text);
}

void startUp(Bench& bench) {
  test::FakeStartUpView view;
  view.answers = {StartChoice::justStart};
  test::storeComms(bench.world, std::to_string(LinkSettings.commsType));
  StartUp(view);
}

void readParameters(Bench&) {
  for (const ProfileParameter& parameter :
       {captureTimeParameter, triggerDelayParameter, referenceLevelParameter, scaleParameter}) {
    ReadParameter(parameter);
    ReadParameter(parameter);
  }
  ReadDisplayPoints();
}

void readReadouts(Bench&) {
  ReadGateMeasurements(GateMeasurementMode::profile);
  for (std::size_t gate = 0; gate < meterGates; ++gate) Settings.Gates[gate].Enabled = True16;
  ReadGateMeasurements(GateMeasurementMode::gates);
  for (MarkerSettings& marker : Settings.Markers) marker.Enabled = True16;
  ReadMarkerReadings();
}

void acquire(Bench& bench) {
  bench.view.infoBoxOpen = bench.view.markersOpen = true;
  StartAcquisition();
  Settings.Markers[1].Enabled = True16;
  for (int pass = 0; pass < 2; ++pass) AcquireProfile();
  AcquisitionRunning = False16;
}

void changeSource(Bench&) {
  for (const CCDFSource source : {CCDFSource::gate, CCDFSource::marker, CCDFSource::channel}) {
    ChangeMeasurementSource(source);
  }
}

void acquireCCDF(Bench& bench) {
  StartCCDF();
  bench.world.dialogs.textAnswers = {"-20", "10", "0"};
  AcquisitionRunning = True16;
  EditStartPower();
  EditStopPower();
  SwitchCursorOn();
  EditCursorPosition();
  RequestMeasurementSource(CCDFSource::gate);
  RequestMeasurementSource(CCDFSource::channel);
  for (int pass = 0; pass < 3; ++pass) AcquireCCDF();
  AcquisitionRunning = False16;
}

void readAxisAndCursor(Bench&) {
  CCDF.CursorOn = True16;
  ReadStartPower();
  ReadStopPower();
  ReadCursor();
  ReadMeasurementSource();
  ReadCCDFPoints();
}

const Course courses[] = {
    {"start", "profile-replies", 0, startUp, ""},
    {"profile", "profile-replies", 1, [](Bench&) { ReadProfile(); }, ""},
    {"parameters", "profile-replies", 2, readParameters, ""},
    {"readouts", "profile-replies", 3, readReadouts, ""},
    {"config", "profile-replies", 4, [](Bench&) { converse(ReadMeterConfig); }, ""},
    {"load", "profile-replies", 5, [](Bench&) { LoadFromMeter(); }, ""},
    {"acquire", "profile-replies", 6, acquire, ""},
    {"edit", "profile-replies", 7,
     [](Bench& bench) {
       answerAll(bench, "1ms");
       EditCaptureTime();
     },
     "1ms|"},
    {"curve", "ccdf-replies", 0, [](Bench&) { ReadCCDFData(); }, ""},
    {"settings", "ccdf-replies", 1, [](Bench&) { converse(ReadCCDFSettings); }, ""},
    {"acquire", "ccdf-replies", 2, acquireCCDF, "-20|10|0|"},
    {"source", "ccdf-replies", 3, changeSource, ""},
    {"edit", "ccdf-replies", 4,
     [](Bench& bench) {
       answerAll(bench, "-10");
       EditStartPower();
     },
     "-10|"},
    {"axis", "ccdf-replies", 5, readAxisAndCursor, ""},
};

void writeReplies() {
  for (const Course& course : courses) {
    for (const bool serial : {false, true}) {
      Bench bench(serial, "setup = SYDRES 200\nsetup = GP1REPS 1,ON\n");
      course.run(bench);
      const auto choice = static_cast<char>(course.routine << 2U | (serial ? 1U : 0U));
      const std::string name = course.name + std::string(serial ? "-rs232" : "-gpib");
      const std::string answers = bench.takeAnswers();
      writeWholeAndCut(course.target, name, choice + course.typed + answers);
      // More repeats than there are gates.
      const std::string repeats = "GP1REPN 1,";
      const std::size_t count = answers.find(repeats);
      if (serial || count == std::string::npos) continue;
      write(course.target, name + "-repeats",
            choice + std::string(answers).insert(count + repeats.size(), "9"));
    }
  }
}

void writeDecoderSeeds() {
  for (const char* points : {"200", "400"}) {
    Bench bench(true, "setup = SYDRES " + std::string(points) + "\n");
    const auto reply = [&](const std::string& query) {
      const std::string bytes = bench.ask(query);
      return bytes.substr(1, bytes.size() - 2);
    };
    writeWholeAndCut("profile-text", std::string("profile-") + points, reply("PMPO 1"));
    writeWholeAndCut("curve", std::string("curve-") + points, reply("TTFRO 1"));
    writeWholeAndCut("block", std::string("block-") + points, reply("PMPBO 1"));
    writeWholeAndCut("serial-framing", std::string("profile-") + points,
                     "\x07" + bench.ask("PMPO 1") + bench.ask("*IDN?"));
    writeWholeAndCut("gpib-framing", std::string("profile-") + points,
                     std::string(9, '\0') + reply("PMPBO 1"));
  }
  Bench bench(true);
  for (const char* query : {"*IDN?", "TRCAPT? 1,PMOD", "CHACTIV?", "GPTIMST? 1,2", "MKNO 1,1",
                            "PMRDO 1", "TTSRC? 1", "TTMKRO 1"}) {
    const std::string bytes = bench.ask(query);
    writeWholeAndCut("reply-text", "reply-" + std::to_string(bytes.size()), bytes.substr(1));
    write("serial-framing", "reply-" + std::to_string(bytes.size()), "\x02" + bytes + bytes);
  }
}

/// Of a few values more than there is room for.
void writeLongSeeds() {
  std::string many;
  for (int value = 0; value < 402; ++value) many += ",1";
  write("profile-text", "long", "PMPO 1,400" + many + "\r");
  write("curve", "long", "TTFRO 1,400" + many + "\r");
  write("block", "long", "#41604" + std::string(1604, '\0'));
  write("ccdf-replies", "stated", std::string(1, '\0') + "TTFRO 1,401,1,1,1|");
  write("ccdf-replies", "short-axis", "\x14TTPST 1,3|TTPSP 1,3.001|TTMKRO 1,50,3e38|");
  write("ccdf-replies", "long-axis", "\x14TTPST 1,3|TTPSP 1,3e38|TTMKRO 1,50,3|");
  write("ccdf-replies", "no-axis", "\x14TTPST 1,3|TTPSP 1,3|TTMKRO 1,50,3|");
  std::string lines;
  for (int point = 0; point < 401; ++point) lines += "1\t1\n";
  write("trace-file", "long", "\n\n\n\t401\n\t0.002\n" + lines);
  write("curve-file", "long", "2\n\n\n\n\t401\n-30\n20\n" + lines);
}

void writeNumberSeeds() {
  int number = 0;
  for (const char* text :
       {"0.0046", "-5E-06", " 1e38", "3.4028236E+38", "1.7976931348623159e308", "1e-400", "-0",
        "+.5e1x", "8.589973e9", "0.00099999994", "1e99999999999999999999", "0.000e999", "12345678",
        "1e", "2E+ ", "-32768.5", "2147483647.5", "4.9e-324", "\r\n7\r\n"}) {
    write("numbers", "number-" + std::to_string(++number), text);
  }
  const std::string zeros(400, '0');
  write("numbers", "large", "1" + zeros + "e-5");
  write("numbers", "small", "0." + zeros + "1e5");
  number = 0;
  for (const char* text : {"4.6ms", "100 us", "-5uS", "250NS", "1.5s", "2", "5 ms", "1e3s", "--3",
                           "340282356779733661637539395458142568448", "999.9999us"}) {
    write("times", "time-" + std::to_string(++number), text);
  }
}

std::string withPlainLineEnds(std::string text) {
  std::erase(text, '\r');
  return text;
}

void writeFileSeeds() {
  Bench bench(true, "setup = GPGATS 1,2,ON\nsetup = GP1REPS 1,ON\n");
  converse(ReadMeterConfig);
  ReadProfile();
  std::string text = settingsText();
  writeWholeAndCut("settings-file", "settings.txt", text);
  write("settings-file", "plain.txt", withPlainLineEnds(text));
  const std::size_t end = text.find("FILE END");
  write("settings-file", "version.txt", text.substr(0, end) + "3 VERSION\r\n" + text.substr(end));
  writeWholeAndCut("trace-file", "profile-400.txt", profileTraceText());
  Settings.DisplayPoints = 12;
  writeWholeAndCut("trace-file", "profile-12.txt", profileTraceText());
  Settings.DisplayPoints = 200;
  writeWholeAndCut("trace-file", "profile-200.txt", profileTraceText());
  CCDF.StartPower = -30;
  CCDF.StopPower = 20;
  ReadCCDFData();
  writeWholeAndCut("curve-file", "curve-400.txt", ccdfGraphText());
  write("curve-file", "plain.txt", withPlainLineEnds(ccdfGraphText()));
  Settings.DisplayPoints = 12;
  writeWholeAndCut("curve-file", "curve-12.txt", ccdfGraphText());
  CCDF.StartPower = std::nextafter(-30.0F, 0.0F);
  writeWholeAndCut("curve-file", "axis.txt", ccdfGraphText());
}

void writeStoreSeeds() {
  write("settings-store", "gpib", "2\n13\n9600\n1");
  write("settings-store", "rs232", "1\n30\n57600\n10\n");
  write("settings-store", "odd", "1\n99999\n3e9\n0");
  write("settings-store", "address", " 17 ");
}

void writeMeterSeeds() {
  const std::string all =
      "*CLS;*ESE 56;*OPC?\n*IDN?\n*ESR?;*STB?;*SRE 48;*SRE?;*TST?;*WAI\nTR1 1\nPMPO 1\nPMPBO "
      "1\nTR3\n"
      "TTFRO 1&2\nPPACQS 1,ON;PPACQRT 1;TTFRO 1\nTTMKPOS 1,3;TTMKPOS? 1;TTMKRO 1\n"
      "GPNMO 1,1;MKNO 1,2;PMRDO 1;MKDO 1\nMKDMEAS 1,PDIFF;MKDO 1\nGP1REPS 1,ON;GPNMO 1,2\n*RST\n"
      "PMMEAS 1,2;PMRDO 1;PMMEAS 1,4;PMRDO 1;PMMEAS 1,1;PMRDO 1\n";
  for (const char first : {'\0', '\1', '\x08', '\x79'}) {
    write("simulated-meter", "all-" + std::to_string(static_cast<int>(first)),
          std::string{first, '\0'} + all);
  }
  write("simulated-meter", "large",
        std::string(2, '\0') +
            "TRCAPT 1,PMOD,1E9999;TRCAPT 1,PMOD,-0.1E-9999;TTMKPOS 1,77\nGPTIMST? 1,9\nGPTIMST? "
            "9,1\n");
  // More answers at once than the meter has room for.
  std::string many;
  for (int query = 0; query < 60; ++query) many += "PMPO 1;";
  write("simulated-meter", "deadlock", std::string(2, '\0') + "TR1 1\n" + many);
  int row = 0;
  for (const simmeter::SettingRow& setting : simmeter::settingTable()) {
    std::string arguments = setting.perChannel ? "1," : "";
    if (setting.elements > 0) arguments += "1,";
    if (!setting.qualifier.empty()) arguments += std::string(setting.qualifier) + ",";
    const std::string value = setting.words.empty()
                                  ? (setting.kind == simmeter::ValueKind::kOnOff ? "ON" : "2")
                                  : std::string(wordAt(setting, 1));
    std::string message = std::string(setting.mnemonic) + " " + arguments + value + "\n";
    if (!arguments.empty()) arguments.pop_back();
    message += std::string(setting.mnemonic) + "? " + arguments + "\n";
    write("simulated-meter", "setting-" + std::to_string(row),
          std::string{static_cast<char>(row % 2), static_cast<char>(row)} + message);
    ++row;
  }
}

}  // namespace

void writeSeeds(const char* path) {
  folder = path;
  writeReplies();
  writeDecoderSeeds();
  writeLongSeeds();
  writeNumberSeeds();
  writeFileSeeds();
  writeStoreSeeds();
  writeMeterSeeds();
}

}  // namespace pulsemod::fuzz

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "make-seeds FOLDER\n";
    return 2;
  }
  pulsemod::fuzz::writeSeeds(arguments[1]);
  return 0;
}
