#pragma once

#include <string>

#include "support/FakeWorld.h"
#include "support/Transcripts.h"

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

}  // namespace pulsemod::test
