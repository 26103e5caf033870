// Whatever a controller sends to the simulated meter, as GPIB messages and over the serial line.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "MessageExchange.h"
#include "MeterSettings.h"
#include "NumberText.h"

namespace simmeter::fuzz {
namespace {

void require(bool holds, std::string_view property) {
  if (holds) return;
  std::cerr << "BROKEN: " << property << std::endl;
  std::abort();
}

/// A curve over a whole period takes thousandths of a second; over a marker it costs nothing.
Scenario quickScenario() { return parseScenario("setup = TTSRC 1&2,MARKER\n"); }

/// A meter behind one of the two links, without time.
class Bench {
 public:
  explicit Bench(bool serial)
      : serial_(serial),
        exchange_(scenario_, serial ? kSerialFraming : kGpibFraming, transcript_) {}

  /// The bytes `length` at a time; replies are taken as soon as they are there.
  void tell(std::string_view bytes, std::size_t length) {
    while (!bytes.empty()) {
      const std::string_view piece = bytes.substr(0, length);
      bytes.remove_prefix(piece.size());
      exchange_.receive(piece, false, TimePoint{});
      if (bytes.empty()) exchange_.receive(serial_ ? "\r\n" : "\n", !serial_, TimePoint{});
      takeReply();
    }
    checkStatus();
  }

  /// The text of the reply to one message.
  std::string ask(const std::string& message) {
    replies.clear();
    tell(message, message.size());
    if (replies.empty()) return {};
    std::string text = replies.back().substr(serial_ ? 1 : 0);
    return text.substr(0, text.find('\r'));
  }

  int events() { return static_cast<int>(parseInteger(ask("*ESR?")).value_or(-1)); }
  void clear() { exchange_.deviceClear(); }
  void checkReadInVain() {
    exchange_.readInVain();
    require((events() & esr::kQueryError) != 0, "a reply that nobody asked for is an error");
    require(events() == 0, "an event is told once");
  }

  std::vector<std::string> replies;

 private:
  void takeReply() {
    const Reply* reply = exchange_.reply();
    if (reply == nullptr) return;
    checkReply(*reply);
    replies.push_back(reply->bytes);
    exchange_.reply()->taken = reply->bytes.size();
    exchange_.replyFinished();
    require(exchange_.reply() == nullptr, "a reply that was taken is gone");
  }

  void checkReply(const Reply& reply) const {
    constexpr std::size_t longestUnit = 8192;
    require(reply.bytes.ends_with('\n'), "a reply has its terminator");
    require(!serial_ || reply.bytes.starts_with('R'), "a serial reply has its prefix");
    require(reply.bytes.size() > 1 &&
                reply.bytes.size() <= MessageExchange::kLongestAnswer + longestUnit,
            "a reply has a text, and not too much of it");
    require(reply.taken == 0 && reply.available(TimePoint{}) == reply.bytes.size(),
            "a reply is there at once");
  }

  void checkStatus() {
    const int status = exchange_.serialPoll(TimePoint{});
    require(status >= 0 && status <= 255, "a status byte has eight bits");
    require((status & stb::kMessageAvailable) == 0, "what was taken is not available");
    require(!exchange_.requestsService(TimePoint{}), "a poll ends the request for service");
  }

  bool serial_;
  Scenario scenario_ = quickScenario();
  Transcript transcript_;
  MessageExchange exchange_;
};

/// The mnemonic with its channel and its element, as in "GPTIMST? 1,2".
std::string settingText(const SettingRow& row, bool query, int element) {
  std::string text = std::string(row.mnemonic) + (query ? "?" : "");
  std::string separator = " ";
  const auto add = [&](std::string_view part) {
    text += separator + std::string(part);
    separator = ",";
  };
  if (row.perChannel) add("1");
  if (row.elements > 0) add(std::to_string(element));
  if (!row.qualifier.empty()) add(row.qualifier);
  return text;
}

/// The value in the answer to a query. That of the cursor has its share behind it.
std::string valueIn(const std::string& answer, const std::string& head) {
  require(answer.starts_with(head), "an answer begins with what was asked");
  const std::string value = answer.substr(head.size());
  return value.substr(0, value.find(','));
}

/// Whatever was sent, a setting can be read, and what was read is in its range and can be set.
void checkSetting(Bench& bench, const SettingRow& row) {
  for (int element = 1; element <= std::max(row.elements, 1); ++element) {
    const std::string query = settingText(row, true, element);
    const std::string head = settingText(row, false, element) + (row.perChannel ? "," : " ");
    bench.ask("*CLS");
    const std::string value = valueIn(bench.ask(query), head);
    require(!value.empty() && bench.events() == 0, "a setting can be read");
    if (row.kind == ValueKind::kNumber || row.kind == ValueKind::kWhole) {
      const auto number = parseNumber(value);
      require(number && *number >= row.minimum && *number <= row.maximum, "it is in its range");
    }
    // A source needs its gate or marker, which may have gone meanwhile.
    const bool mayBeRefused = row.id == SettingId::kSource;
    bench.ask(head + value);
    require(bench.events() == 0 || mayBeRefused, "what was read can be set");
    require(valueIn(bench.ask(query), head) == value, "and is the same again");
  }
}

void checkCursor(Bench& bench) {
  const auto value = [&](const std::string& mnemonic) {
    const auto number = parseNumber(valueIn(bench.ask(mnemonic + "? 1"), mnemonic + " 1,"));
    require(number.has_value(), "a power is a number");
    return *number;
  };
  const auto [least, most] = std::minmax({value("TTPST"), value("TTPSP")});
  const double power = value("TTMKPOS");
  require(power >= least && power <= most, "the cursor is on the axis");
}

void check(std::string_view bytes, bool serial, std::size_t pieceLength, std::size_t row) {
  Bench whole(serial);
  whole.tell(bytes, std::string_view::npos);
  Bench pieces(serial);
  pieces.tell(bytes, pieceLength);
  // Only a controller that sends on while a reply waits makes a difference: its replies are lost.
  require(whole.replies.size() <= pieces.replies.size(), "pieces lose no reply");
  pieces.clear();
  pieces.checkReadInVain();
  checkSetting(pieces, settingTable()[row % settingTable().size()]);
  checkCursor(pieces);
}

}  // namespace
}  // namespace simmeter::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t head = 2;
  if (size <= head) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data) + head, size - head);
  simmeter::fuzz::check(bytes, data[0] % 2 != 0, 1 + data[0] / 8U, data[1]);
  return 0;
}
