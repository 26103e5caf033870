#include "Exchanges.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "Expected.h"

namespace endtoend {

namespace {

/// Follows a query that was answered while the meter had an error to report.
constexpr auto clearErrors = "*CLS; *OPC?";

struct Parameter {
  const char* setting;
  const char* question;
  const char* questionAtOnce;
};
constexpr std::array parameters = {Parameter{"TRCAPT 1,PMOD,", "TRCAPT? 1,PMOD", "TRCAPT? 1,PMOD"},
                                   Parameter{"PMPREF 1,DB,", "PMPREF? 1,DB", "PMPREF? 1,DB"},
                                   Parameter{"TRDLYT 1,PMOD,", "TRDLYT? 1,PMOD", "TRDLYT? 1PMOD"},
                                   Parameter{"PMPSCAL 1,DB,", "PMPSCAL? 1,DB", "PMPSCAL? 1,DB"}};

class Reader {
 public:
  explicit Reader(const std::vector<std::string>& messages) : messages_(messages) {}

  std::string read() {
    while (at_ < messages_.size()) {
      const std::size_t begin = at_;
      if (!readExchange()) {
        tell(begin);
        // On with the next message that begins a pass.
        at_ = std::max(at_, begin + 1);
        while (at_ < messages_.size() && messages_[at_] != "TR1 1") ++at_;
      }
    }
    return broken_;
  }

 private:
  bool readExchange() {
    if (take("TR1 1")) return readPass();
    if (take("PMPO 1")) return readBackAtStart();
    if (takeHead("GPGATS 1, ")) return readGateWrite();
    if (take("TR3") || take("SYDISP ON") || take("SYDISP OFF")) return true;
    return readEdit(true) || readEdit(false);
  }

  bool readPass() {
    if (!take("PMPBO 1") && !take("PMPO 1")) return false;
    const bool failed = take(clearErrors);
    while (readEdit(false)) {
    }
    if (failed) return true;
    if (ask("PMRDO 1")) return readMarkers();
    while (at_ < messages_.size() && messages_[at_].starts_with("GPNMO 1,")) ask(messages_[at_]);
    return readMarkers();
  }

  bool readMarkers() { return ask("MKNO 1,1") && ask("MKNO 1,2") && ask("MKNO 1,3"); }

  bool readBackAtStart() {
    take(clearErrors);
    const Texts questions = startQuestions();
    return std::all_of(questions.begin() + 1, questions.end(),
                       [this](const std::string& question) { return ask(question); });
  }

  bool readGateWrite() {
    const std::string gate = messages_[at_ - 1].substr(std::string("GPGATS").size(), 6);
    if (!takeHead("GPFENS" + gate)) return false;
    return takeHead("GPTIMST" + gate) || takeHead("GPTIMSP" + gate) || takeHead("GPFENST" + gate) ||
           takeHead("GPFENSP" + gate);
  }

  bool readEdit(bool atOnce) {
    for (const Parameter& parameter : parameters) {
      if (at_ >= messages_.size() || !messages_[at_].starts_with(parameter.setting)) continue;
      const char* question = atOnce ? parameter.questionAtOnce : parameter.question;
      if (at_ + 1 >= messages_.size() || messages_[at_ + 1] != question) return false;
      ++at_;
      return ask(question);
    }
    return false;
  }

  bool ask(const std::string& question) {
    if (!take(question)) return false;
    take(clearErrors);
    return true;
  }

  bool take(const std::string& message) {
    const bool isThere = at_ < messages_.size() && messages_[at_] == message;
    if (isThere) ++at_;
    return isThere;
  }

  bool takeHead(const std::string& head) {
    const bool isThere = at_ < messages_.size() && messages_[at_].starts_with(head);
    if (isThere) ++at_;
    return isThere;
  }

  void tell(std::size_t begin) {
    constexpr std::size_t shown = 12;
    broken_ += "message " + std::to_string(begin) + ":\n";
    for (std::size_t i = begin; i < std::min(begin + shown, messages_.size()); ++i) {
      broken_ += (i == at_ ? "--> " : "    ") + messages_[i] + "\n";
    }
  }

  const std::vector<std::string>& messages_;
  std::size_t at_ = 0;
  std::string broken_;
};

}  // namespace

std::string brokenExchanges(const std::vector<std::string>& messages) {
  return Reader(messages).read();
}

}  // namespace endtoend
