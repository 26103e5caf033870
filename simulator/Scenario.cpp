#include "Scenario.h"

#include <array>
#include <fstream>
#include <iterator>

#include "NumberText.h"

namespace simmeter {
namespace {

// Sets one key; false when the value is not acceptable.
using Setter = bool (*)(Scenario&, std::string_view);

bool setWhole(std::string_view text, std::int64_t least, std::int64_t most, auto store) {
  const auto number = parseInteger(text);
  if (!number || *number < least || *number > most) return false;
  store(*number);
  return true;
}

bool setSwitch(std::string_view text, bool& target) {
  if (!equalIgnoringCase(text, "on") && !equalIgnoringCase(text, "off")) return false;
  target = equalIgnoringCase(text, "on");
  return true;
}

bool setModel(Scenario& scenario, std::string_view text) {
  scenario.meter.identity = "PELMORA," + std::string(text) + ",SN001234,V1.05";
  return !text.empty();
}

bool setIdentity(Scenario& scenario, std::string_view text) {
  scenario.meter.identity = std::string(text);
  return true;
}

bool setSeed(Scenario& scenario, std::string_view text) {
  return setWhole(text, 0, UINT32_MAX,
                  [&](std::int64_t n) { scenario.meter.seed = static_cast<std::uint32_t>(n); });
}

bool setNoise(Scenario& scenario, std::string_view text) {
  if (text != "moving" && text != "still") return false;
  scenario.meter.stillNoise = text == "still";
  return true;
}

bool setAveraging(Scenario& scenario, std::string_view text) {
  if (equalIgnoringCase(text, "off")) {
    scenario.setup.emplace_back("PMAVGS 1&2,OFF");
    return true;
  }
  return setWhole(text, 1, 1000, [&](std::int64_t n) {
    scenario.setup.push_back("PMAVGN 1&2," + std::to_string(n));
    scenario.setup.emplace_back("PMAVGS 1&2,ON");
  });
}

bool setEnvelope(Scenario& scenario, std::string_view text) {
  if (text != "fixed" && text != "gaussian") return false;
  scenario.meter.envelope = text == "fixed" ? Envelope::kFixed : Envelope::kGaussian;
  return true;
}

bool setNumberTraces(Scenario& scenario, std::string_view text) {
  return setSwitch(text, scenario.meter.numberTraces);
}

bool addSetup(Scenario& scenario, std::string_view text) {
  scenario.setup.emplace_back(text);
  return !text.empty();
}

bool setAddress(Scenario& scenario, std::string_view text) {
  return setWhole(text, 1, 30, [&](std::int64_t n) { scenario.address = static_cast<int>(n); });
}

bool setTimeOut(Scenario& scenario, std::string_view text) {
  return setWhole(text, 1, 1'000'000,
                  [&](std::int64_t n) { scenario.boardTimeOut = std::chrono::milliseconds(n); });
}

bool setReplyDelay(Scenario& scenario, std::string_view text) {
  return setWhole(text, 0, 1'000'000,
                  [&](std::int64_t n) { scenario.replyDelay = std::chrono::milliseconds(n); });
}

bool addFault(Scenario& scenario, std::string_view text) {
  auto rule = parseFault(text);
  if (rule) scenario.faults.push_back(std::move(*rule));
  return rule.has_value();
}

struct Key {
  std::string_view name;
  Setter set;
};
constexpr std::array kKeys = {
    Key{"model", setModel},
    Key{"identity", setIdentity},
    Key{"seed", setSeed},
    Key{"noise", setNoise},
    Key{"averaging", setAveraging},
    Key{"envelope", setEnvelope},
    Key{"number-traces", setNumberTraces},
    Key{"setup", addSetup},
    Key{"address", setAddress},
    Key{"board-timeout", setTimeOut},
    Key{"reply-delay", setReplyDelay},
    Key{"fault", addFault},
};

// Empty when the line was used, or the reason why not.
std::string readLine(Scenario& scenario, std::string_view line) {
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos) return "no '='";
  const std::string_view name = trimBlanks(line.substr(0, equals));
  const std::string_view value = trimBlanks(line.substr(equals + 1));
  for (const Key& key : kKeys) {
    if (key.name != name) continue;
    if (key.set(scenario, value)) return {};
    return "bad value for '" + std::string(name) + "': " + std::string(value);
  }
  return "unknown key '" + std::string(name) + "'";
}

}  // namespace

Scenario parseScenario(std::string_view text) {
  Scenario scenario;
  for (int number = 1; !text.empty(); ++number) {
    const std::size_t end = text.find('\n');
    const std::string_view line = trimBlanks(text.substr(0, end));
    text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
    if (line.empty() || line.front() == '#') continue;
    const std::string problem = readLine(scenario, line);
    if (!problem.empty()) {
      scenario.problems.push_back("line " + std::to_string(number) + ": " + problem);
    }
  }
  return scenario;
}

Scenario readScenario(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  if (!file.is_open() || file.bad()) {
    Scenario scenario;
    scenario.problems.push_back("cannot read " + path);
    return scenario;
  }
  return parseScenario(text);
}

}  // namespace simmeter
