// The record of everything that happened, one line an event. Lines are appended with one write
// each, so that a process that ends without cleaning up loses none.
#pragma once

#include <string>
#include <string_view>

namespace simmeter {

// Text between double quotes in which every byte can be told apart: \\ \" \r \n \t, and \xHH for
// what else is not printable ASCII. At most `most` bytes of the text are shown; the caller says
// so when there were more.
void appendQuoted(std::string& out, std::string_view text, std::size_t most);

class Transcript {
 public:
  Transcript() = default;
  Transcript(const Transcript&) = delete;
  Transcript& operator=(const Transcript&) = delete;
  ~Transcript();

  // False when the file cannot be opened for appending; nothing is recorded then.
  bool open(const std::string& path);
  bool isOpen() const { return file_ >= 0; }

  // `<seconds> <kind> <text>`, seconds of CLOCK_MONOTONIC; costs nothing while no file is open.
  void write(std::string_view kind, std::string_view text);

  // `< "<text>" <end>`: a message as it came, and how it ended.
  void received(std::string_view text, std::string_view end);
  // `> <count> "<bytes>"`: a reply handed over completely, terminator included. The first 4096
  // bytes of a text and the first 32 of a block are shown, followed by `...` if there were more.
  void handedOver(std::string_view bytes);

 private:
  void begin(std::string_view kind);
  void finish();

  int file_ = -1;
  std::string line_;
};

}  // namespace simmeter
