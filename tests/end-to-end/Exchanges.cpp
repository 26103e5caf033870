#include "Exchanges.h"

#include <algorithm>
#include <array>

#include "ExchangeReader.h"
#include "Expected.h"

namespace endtoend {

namespace {

struct Parameter {
  const char* setting;
  const char* question;
  const char* questionAtOnce;
};
constexpr std::array parameters = {Parameter{"TRCAPT 1,PMOD,", "TRCAPT? 1,PMOD", "TRCAPT? 1,PMOD"},
                                   Parameter{"PMPREF 1,DB,", "PMPREF? 1,DB", "PMPREF? 1,DB"},
                                   Parameter{"TRDLYT 1,PMOD,", "TRDLYT? 1,PMOD", "TRDLYT? 1PMOD"},
                                   Parameter{"PMPSCAL 1,DB,", "PMPSCAL? 1,DB", "PMPSCAL? 1,DB"}};

class ProfilePassReader : public ExchangeReader {
 public:
  explicit ProfilePassReader(const std::vector<std::string>& messages) : ExchangeReader(messages) {}

 private:
  bool readExchange() override {
    if (take("TR1 1")) return readPass();
    if (take("PMPO 1")) return readBackAtStart();
    if (takeHead("GPGATS 1, ")) return readGateWrite();
    if (take("TR3") || take("SYDISP ON") || take("SYDISP OFF")) return true;
    return readEdit(true) || readEdit(false);
  }

  /// An error that the meter has reported for an earlier command fails the first query or the
  /// second one, and what the user has edited is told all the same.
  bool readPass() {
    bool failed = takeClear();
    if (!failed && !take("PMPBO 1") && !take("PMPO 1")) return false;
    failed = takeClear() || failed;
    while (readEdit(false)) {
    }
    if (failed) return true;
    if (ask("PMRDO 1")) return readMarkers();
    while (!isAtEnd() && next().starts_with("GPNMO 1,")) ask(std::string(next()));
    return readMarkers();
  }

  bool readMarkers() { return ask("MKNO 1,1") && ask("MKNO 1,2") && ask("MKNO 1,3"); }

  bool readBackAtStart() {
    takeClear();
    const Texts questions = startQuestions();
    return std::all_of(questions.begin() + 1, questions.end(),
                       [this](const std::string& question) { return ask(question); });
  }

  bool readGateWrite() {
    const std::string gate = last().substr(std::string("GPGATS").size(), 6);
    if (!takeHead("GPFENS" + gate)) return false;
    return takeHead("GPTIMST" + gate) || takeHead("GPTIMSP" + gate) || takeHead("GPFENST" + gate) ||
           takeHead("GPFENSP" + gate);
  }

  bool readEdit(bool atOnce) {
    return std::any_of(parameters.begin(), parameters.end(), [&](const Parameter& parameter) {
      return tellAndAsk(parameter.setting, atOnce ? parameter.questionAtOnce : parameter.question);
    });
  }
};

}  // namespace

std::string brokenExchanges(const std::vector<std::string>& messages) {
  return ProfilePassReader(messages).read("TR1 1");
}

}  // namespace endtoend
