#include "CCDFExchanges.h"

#include <algorithm>
#include <cstddef>

namespace endtoend {

namespace {

/// Follows a query that was answered while the meter had an error to report.
constexpr auto clearErrors = "*CLS; *OPC?";

class Reader {
 public:
  explicit Reader(const std::vector<std::string>& messages) : messages_(messages) {}

  std::string read() {
    while (at_ < messages_.size()) {
      const std::size_t begin = at_;
      if (readExchange() && at_ > begin) continue;
      tell(begin);
      // On with the next message that begins a pass.
      at_ = std::max(at_, begin + 1);
      while (at_ < messages_.size() && messages_[at_] != "PPACQRT 1") ++at_;
    }
    return broken_;
  }

 private:
  /// A pass, a restart while stopped, or requests that were carried out while stopped.
  bool readExchange() {
    if (take("PPACQRT 1") && !take("TTFRO 1")) return true;
    if (!readRequests()) return false;
    return !take("TTMKRO 1") || mayClear();
  }

  bool readRequests() {
    return readAxisEnd("TTPST") && readAxisEnd("TTPSP") && readSources() && readCursor();
  }

  bool readAxisEnd(const std::string& mnemonic) {
    return !takeHead(mnemonic + " 1,") || ask(mnemonic + "? 1");
  }

  bool readSources() {
    constexpr int most = 3;
    for (int source = 0; source < most && take("TTSRC? 1"); ++source) {
      const bool failed = take(clearErrors);
      if (!failed && takeHead("TTSRC 1,") && !ask("TTSRC? 1")) return false;
    }
    return true;
  }

  bool readCursor() {
    if (take("TTMKS 1,ON") && take("TTMKRO 1")) mayClear();
    take("TTMKS 1,OFF");
    return !takeHead("TTMKPOS 1,") || !take("TTMKPOS? 1") || mayClear();
  }

  bool ask(const std::string& question) { return take(question) && mayClear(); }
  bool mayClear() {
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

std::string brokenCCDFExchanges(const std::vector<std::string>& messages) {
  return Reader(messages).read();
}

}  // namespace endtoend
