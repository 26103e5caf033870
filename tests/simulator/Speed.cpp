// Prints the time that exchanges and transcript lines take, and how the process grows.
#include <sys/resource.h>

#include <cstdio>

#include "Bench.h"

namespace simmeter {
namespace {

double microseconds(TimePoint began, int count) {
  return std::chrono::duration<double, std::micro>(Clock::now() - began).count() / count;
}

void measureExchange(const char* text) {
  const Scenario scenario = parseScenario("setup = PPACQS 1,ON\n");
  Transcript none;
  MessageExchange exchange(scenario, kGpibFraming, none);
  constexpr int kCount = 20000;
  const TimePoint began = Clock::now();
  for (int i = 0; i < kCount; ++i) {
    exchange.receive(text, true, Clock::now());
    exchange.reply()->taken = exchange.reply()->bytes.size();
    exchange.replyFinished();
  }
  std::printf("%-12s %8.2f us\n", text, microseconds(began, kCount));
}

void measureLine(const char* name, std::string_view text, bool isReply) {
  TemporaryFolder folder;
  Transcript transcript;
  transcript.open(folder / "transcript");
  constexpr int kCount = 20000;
  const TimePoint began = Clock::now();
  for (int i = 0; i < kCount; ++i) {
    if (isReply) {
      transcript.handedOver(text);
    } else {
      transcript.received(text, "NL+EOI");
    }
  }
  std::printf("%-30s %6.2f us a line\n", name, microseconds(began, kCount));
}

void measureGrowth() {
  const Scenario scenario = parseScenario("setup = PPACQS 1,ON\n");
  Transcript none;
  MessageExchange exchange(scenario, kGpibFraming, none);
  const auto run = [&](int count) {
    for (int i = 0; i < count; ++i) {
      for (const char* text : {"TR1 1", "PMPBO 1", "PMPO 1", "GPNMO 1,1", "PPACQRT 1;TTFRO 1"}) {
        exchange.receive(text, true, Clock::now());
        exchange.reply()->taken = exchange.reply()->bytes.size();
        exchange.replyFinished();
      }
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
  };
  const long before = run(1000);
  const long after = run(50000);
  std::printf("peak memory after 5000 and 255000 exchanges: %ld and %ld KiB\n", before, after);
}

}  // namespace
}  // namespace simmeter

int main() {
  for (const char* text : {"PMPBO 1", "PMPO 1", "TR1 1", "GPNMO 1,1", "MKNO 1,1", "TTFRO 1",
                           "PMPREF? 1,DB", "*OPC?"}) {
    simmeter::measureExchange(text);
  }
  simmeter::measureLine("message", "GPTIMST 1, 1, 0.0001", false);
  simmeter::measureLine("reply of 20 bytes", "GPTIMST 1,1,0.0001\r\n", true);
  simmeter::measureLine("reply of 2700 bytes", std::string(2700, '1'), true);
  simmeter::measureLine("block of 1607 bytes", "#41600" + std::string(1601, '\xc2'), true);
  simmeter::measureGrowth();
}
