#include "CCDFExchanges.h"

#include "ExchangeReader.h"

namespace endtoend {

namespace {

class CurvePassReader : public ExchangeReader {
 public:
  explicit CurvePassReader(const std::vector<std::string>& messages) : ExchangeReader(messages) {}

 private:
  /// A pass, a restart while stopped, or requests that were carried out while stopped.
  bool readExchange() override {
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
      const bool failed = takeClear();
      if (!failed && takeHead("TTSRC 1,") && !ask("TTSRC? 1")) return false;
    }
    return true;
  }

  bool readCursor() {
    if (take("TTMKS 1,ON") && take("TTMKRO 1")) mayClear();
    take("TTMKS 1,OFF");
    return !takeHead("TTMKPOS 1,") || !take("TTMKPOS? 1") || mayClear();
  }
};

}  // namespace

std::string brokenCCDFExchanges(const std::vector<std::string>& messages) {
  return CurvePassReader(messages).read("PPACQRT 1");
}

}  // namespace endtoend
