#pragma once

#include <string>
#include <vector>

/// What the program says to a meter on channel 1, message by message. Both the tests of the
/// subsystems and those of the whole program hold it against this.

namespace pulsemod::test {

/// "*CLS; *ESE 56" and the like: the texts that reached the meter, in order.
using Transcript = std::vector<std::string>;

/// The bytes of a transcript on the serial line.
inline std::string serialBytes(const Transcript& lines) {
  std::string bytes;
  for (const std::string& line : lines) bytes += line + "\r";
  return bytes;
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

/// What the program tells a meter to take over the default settings, in order.
inline Transcript defaultsTranscript() {
  return {"PPACQS? 1",
          "CHDISPN 1",
          "CHACTIV 1",
          "CHMODE 1, PMOD",
          "CHCFG 1, A",
          "TRCAPT 1,PMOD,0.0046",
          "TRDLYT 1,PMOD,0",
          "PMPREF 1,DB,10",
          "PMPSCAL 1,DB,10",
          "PMAVGS 1,OFF",
          "GP1REPS 1,OFF",
          "GP1REPN 1, 3",
          "GP1REPT 1, 0.0006",
          "GPACTN 1,1",
          "GPGATS 1, 1, OFF",
          "GPFENS 1, 1, OFF",
          "GPTIMST 1, 1, 0.0001",
          "GPGATS 1, 1, OFF",
          "GPFENS 1, 1, OFF",
          "GPTIMSP 1, 1, 0.000577",
          "GPGATS 1, 1, OFF",
          "GPFENS 1, 1, OFF",
          "GPFENST 1, 1, 0.000225",
          "GPGATS 1, 1, OFF",
          "GPFENS 1, 1, OFF",
          "GPFENSP 1, 1, 0.000321",
          "GPGATS 1, 2, OFF",
          "GPFENS 1, 2, OFF",
          "GPTIMST 1, 2, 0.0001",
          "GPGATS 1, 2, OFF",
          "GPFENS 1, 2, OFF",
          "GPTIMSP 1, 2, 0.000577",
          "GPGATS 1, 2, OFF",
          "GPFENS 1, 2, OFF",
          "GPFENST 1, 2, 0.000225",
          "GPGATS 1, 2, OFF",
          "GPFENS 1, 2, OFF",
          "GPFENSP 1, 2, 0.000321",
          "GPGATS 1, 3, OFF",
          "GPFENS 1, 3, OFF",
          "GPTIMST 1, 3, 0.0001",
          "GPGATS 1, 3, OFF",
          "GPFENS 1, 3, OFF",
          "GPTIMSP 1, 3, 0.000577",
          "GPGATS 1, 3, OFF",
          "GPFENS 1, 3, OFF",
          "GPFENST 1, 3, 0.000225",
          "GPGATS 1, 3, OFF",
          "GPFENS 1, 3, OFF",
          "GPFENSP 1, 3, 0.000321",
          "GPGATS 1, 4, OFF",
          "GPFENS 1, 4, OFF",
          "GPTIMST 1, 4, 0.0001",
          "GPGATS 1, 4, OFF",
          "GPFENS 1, 4, OFF",
          "GPTIMSP 1, 4, 0.000577",
          "GPGATS 1, 4, OFF",
          "GPFENS 1, 4, OFF",
          "GPFENST 1, 4, 0.000225",
          "GPGATS 1, 4, OFF",
          "GPFENS 1, 4, OFF",
          "GPFENSP 1, 4, 0.000321",
          "MKACTN 1, 1",
          "MKSTATE 1,1,OFF",
          "MKPOS 1,1,0.0001",
          "MKSTATE 1,2,OFF",
          "MKPOS 1,2,0.0002",
          "MKSTATE 1,3,OFF",
          "MKPOS 1,3,0.0003",
          "MKSTATE 1,4,OFF",
          "MKPOS 1,4,0.0004",
          "MKDELTS 1,OFF",
          "MKDPOS 1,0.0005",
          "*OPC?"};
}

/// What the program tells a meter to enter CCDF mode with the default settings, in order.
inline Transcript ccdfConfigurationTranscript() {
  return {"PPACQS 1,ON",    "PPFUNC 1,STATS", "TTFUNC 1,CCDF",  "CHDISPN 1",       "CHACTIV 1",
          "CHMODE 1, PMOD", "CHCFG 1, A",     "PMPREF 1,DB,10", "PMPSCAL 1,DB,10", "*OPC?"};
}

/// What it asks then, in order; the cursor's place only while the cursor is on.
inline Transcript ccdfSettingsTranscript(bool cursorOn) {
  Transcript lines = {"TTFRO 1", "TTPSP? 1", "TTPST? 1", "TTMKS? 1"};
  if (cursorOn) lines.emplace_back("TTMKRO 1");
  lines.emplace_back("TTSRC? 1");
  return lines;
}

/// The start-up's own lines, then those.
inline Transcript startTranscript() { return {"*CLS; *ESE 56; *OPC?", "*IDN?"}; }
inline Transcript loadTranscript() {
  Transcript lines = startTranscript();
  const Transcript configuration = configurationTranscript();
  lines.insert(lines.end(), configuration.begin(), configuration.end());
  return lines;
}
inline Transcript configureTranscript() {
  Transcript lines = startTranscript();
  const Transcript configuration = defaultsTranscript();
  lines.insert(lines.end(), configuration.begin(), configuration.end());
  return lines;
}
inline Transcript ccdfTranscript(bool cursorOn) {
  Transcript lines = startTranscript();
  for (const Transcript& part : {ccdfConfigurationTranscript(), ccdfSettingsTranscript(cursorOn)}) {
    lines.insert(lines.end(), part.begin(), part.end());
  }
  return lines;
}

}  // namespace pulsemod::test
