// What the tests share: a meter behind the exchange rules without a link, files that vanish, and
// numbers out of replies.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "MessageExchange.h"
#include "NumberText.h"

namespace simmeter {

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "simmeter-XXXXXX").string();
    path_ = ::mkdtemp(pattern.data());
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  std::string operator/(std::string_view name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

inline std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void writeFile(const std::string& path, std::string_view text) {
  std::ofstream(path, std::ios::binary) << text;
}

// How many lines of a transcript are of this kind.
inline int countKind(const std::string& transcript, std::string_view kind) {
  int count = 0;
  std::string_view rest = transcript;
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    const std::size_t blank = line.find(' ');
    if (blank == std::string_view::npos) continue;
    const std::string_view tail = line.substr(blank + 1);
    if (tail.substr(0, tail.find(' ')) == kind) ++count;
  }
  return count;
}

// Fields of a reply after its mnemonic, split at commas: field 0 is the channel.
inline std::vector<std::string> fields(std::string_view reply) {
  std::vector<std::string> result;
  std::string_view rest = reply.substr(std::min(reply.size(), reply.find(' ') + 1));
  while (true) {
    const std::size_t comma = rest.find(',');
    result.emplace_back(rest.substr(0, comma));
    if (comma == std::string_view::npos) return result;
    rest.remove_prefix(comma + 1);
  }
}

inline double numberAt(std::string_view reply, std::size_t field) {
  const std::vector<std::string> all = fields(reply);
  if (field >= all.size()) return 1e99;
  return parseNumber(all[field]).value_or(1e99);
}

// Levels of a PMPO reply.
inline std::vector<double> levels(std::string_view reply) {
  std::vector<double> result;
  const std::vector<std::string> all = fields(reply);
  for (std::size_t i = 2; i < all.size(); ++i) {
    result.push_back(parseNumber(all[i]).value_or(1e99));
  }
  return result;
}

class Bench {
 public:
  explicit Bench(std::string_view scenarioText = {}, Framing framing = kGpibFraming)
      : scenario(parseScenario(scenarioText)) {
    transcript.open(folder / "transcript");
    exchange.emplace(scenario, framing, transcript);
  }

  // A message with newline and EOI.
  void tell(std::string_view text) {
    exchange->receive(text, false, Clock::now());
    exchange->receive("\n", true, Clock::now());
  }

  bool hasReply() { return exchange->reply() != nullptr; }

  // All bytes of the reply; empty when there is none.
  std::string take() {
    if (!hasReply()) return {};
    std::string bytes = exchange->reply()->bytes;
    exchange->reply()->taken = bytes.size();
    exchange->replyFinished();
    return bytes;
  }

  // The reply's text without its terminator.
  std::string ask(std::string_view text) {
    tell(text);
    std::string reply = take();
    while (!reply.empty() && (reply.back() == '\n' || reply.back() == '\r')) reply.pop_back();
    return reply;
  }

  // Reads and clears the event status register.
  int events() { return static_cast<int>(parseInteger(ask("*ESR?")).value_or(-1)); }
  int poll() { return exchange->serialPoll(Clock::now()); }
  std::string record() { return readFile(folder / "transcript"); }

  TemporaryFolder folder;
  Scenario scenario;
  Transcript transcript;
  std::optional<MessageExchange> exchange;
};

}  // namespace simmeter
