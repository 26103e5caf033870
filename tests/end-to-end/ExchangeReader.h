#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace endtoend {

/// Reads what the program said to the meter as a row of whole exchanges. What an exchange is, a
/// descendant knows.
class ExchangeReader {
 public:
  /// Where an exchange was broken into, or begun and not brought to its end; empty when none was.
  /// After such a place it goes on with the next `passHead`.
  std::string read(const std::string& passHead);

 protected:
  explicit ExchangeReader(const std::vector<std::string>& messages) : messages_(messages) {}
  ~ExchangeReader() = default;
  ExchangeReader(const ExchangeReader&) = delete;
  ExchangeReader& operator=(const ExchangeReader&) = delete;

  /// Takes the messages of one exchange; false where they do not go on as they should.
  virtual bool readExchange() = 0;

  bool isAtEnd() const { return at_ >= messages_.size(); }
  const std::string& next() const { return messages_[at_]; }
  const std::string& last() const { return messages_[at_ - 1]; }
  bool take(const std::string& message);
  bool takeHead(const std::string& head);
  /// A query; one that was answered while the meter had an error to report is followed by the
  /// command that clears it.
  bool ask(const std::string& question) { return take(question) && mayClear(); }
  bool takeClear();
  bool mayClear();
  /// A command and, right after it, its query; nothing is taken otherwise.
  bool tellAndAsk(const std::string& commandHead, const std::string& question);

 private:
  void tell(std::size_t begin);

  const std::vector<std::string>& messages_;
  std::size_t at_ = 0;
  std::string broken_;
};

}  // namespace endtoend
