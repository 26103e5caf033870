#pragma once

#include <string>
#include <vector>

#include "support/FakeWorld.h"

namespace pulsemod::test {

/// A meter on channel 1 whose every reading differs from the program's defaults.
inline void answerConfiguration(FakeMeter& meter) {
  meter.replies = {
      {"*IDN?", "PELMORA,QX7205A,1234,1.00"},
      {"PPACQS? 1", "PPACQS 1,OFF"},
      {"CHACTIV?", "CHACTIV 1"},
      {"GPACTN? 1", "GPACTN 1,3"},
      {"GP1REPS? 1", "GP1REPS 1,OFF"},
      {"GP1REPT? 1", "GP1REPT 1,0.0007"},
      {"GP1REPN? 1", "GP1REPN 1,1"},
      {"MKACTN? 1", "MKACTN 1,2"},
      {"MKDELTS? 1", "MKDELTS 1,ON"},
      {"PMPREF? 1,DB", "PMPREF 1,DB,5"},
      {"PMPSCAL? 1,DB", "PMPSCAL 1,DB,2.5"},
      {"TRCAPT? 1,PMOD", "TRCAPT 1,PMOD,0.01"},
      {"TRDLYT? 1,PMOD", "TRDLYT 1,PMOD,-5E-06"},
      {"PMAVGS? 1", "PMAVGS 1,ON"},
      {"PMAVGN? 1", "PMAVGN 1,16"},
      {"PMPO 1", "PMPO 1,400,-30,-31"},
  };
  for (int number = 1; number <= 4; ++number) {
    const std::string digit = std::to_string(number);
    const auto answerGate = [&](const std::string& mnemonic, const std::string& value) {
      meter.replies[mnemonic + "? 1, " + digit] = mnemonic + " 1," + digit + "," + value;
    };
    answerGate("GPGATS", "ON");
    answerGate("GPTIMST", "0.00" + digit + "1");
    answerGate("GPTIMSP", "0.00" + digit + "2");
    answerGate("GPFENS", "ON");
    answerGate("GPFENST", "0.00" + digit + "3");
    answerGate("GPFENSP", "0.00" + digit + "4");
    meter.replies["MKSTATE? 1," + digit] = "MKSTATE 1," + digit + ",ON";
    meter.replies["MKPOS? 1," + digit] = "MKPOS 1," + digit + ",0.00" + digit + "5";
  }
}

/// What the program tells a meter on channel 1 to read its configuration, in order.
inline Transcript configurationTranscript() {
  return {
      "PPACQS? 1",      "CHACTIV?",       "CHDISPN 1",     "CHMODE 1,PMOD", "PMDTYP 1,PRF",
      "GPACTN? 1",      "GP1REPS? 1",     "GP1REPT? 1",    "GP1REPN? 1",    "GPGATS? 1, 1",
      "GPTIMST? 1, 1",  "GPTIMSP? 1, 1",  "GPFENS? 1, 1",  "GPFENST? 1, 1", "GPFENSP? 1, 1",
      "GPGATS? 1, 2",   "GPTIMST? 1, 2",  "GPTIMSP? 1, 2", "GPFENS? 1, 2",  "GPFENST? 1, 2",
      "GPFENSP? 1, 2",  "GPGATS? 1, 3",   "GPTIMST? 1, 3", "GPTIMSP? 1, 3", "GPFENS? 1, 3",
      "GPFENST? 1, 3",  "GPFENSP? 1, 3",  "GPGATS? 1, 4",  "GPTIMST? 1, 4", "GPTIMSP? 1, 4",
      "GPFENS? 1, 4",   "GPFENST? 1, 4",  "GPFENSP? 1, 4", "MKSTATE? 1,1",  "MKPOS? 1,1",
      "MKSTATE? 1,2",   "MKPOS? 1,2",     "MKSTATE? 1,3",  "MKPOS? 1,3",    "MKSTATE? 1,4",
      "MKPOS? 1,4",     "MKACTN? 1",      "MKDELTS? 1",    "PMPREF? 1,DB",  "PMPSCAL? 1,DB",
      "TRCAPT? 1,PMOD", "TRDLYT? 1,PMOD", "PMAVGS? 1",     "PMAVGN? 1",     "PMPO 1",
  };
}

/// The start-up's own lines, then those.
inline Transcript startTranscript() { return {"*CLS; *ESE 56; *OPC?", "*IDN?"}; }
inline Transcript loadTranscript() {
  Transcript lines = startTranscript();
  const Transcript configuration = configurationTranscript();
  lines.insert(lines.end(), configuration.begin(), configuration.end());
  return lines;
}

/// The bytes of a transcript on the serial line.
inline std::string serialBytes(const Transcript& lines) {
  std::string bytes;
  for (const std::string& line : lines) bytes += line + "\r";
  return bytes;
}

}  // namespace pulsemod::test
