#include "Transcript.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <chrono>

#include "Clock.h"
#include "NumberText.h"

namespace simmeter {
namespace {

constexpr std::size_t kShownText = 4096;
constexpr std::size_t kShownBlock = 32;

// A table, since a trace's reply has thousands of characters to look at.
constexpr std::array<bool, 256> kPlain = [] {
  std::array<bool, 256> plain{};
  for (std::size_t c = ' '; c <= '~'; ++c) plain[c] = c != '"' && c != '\\';
  return plain;
}();

bool isPlain(char c) { return kPlain[static_cast<unsigned char>(c)]; }

void appendEscaped(std::string& out, char c) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  out += '\\';
  switch (c) {
    case '\r':
      out += 'r';
      return;
    case '\n':
      out += 'n';
      return;
    case '\t':
      out += 't';
      return;
    case '"':
    case '\\':
      out += c;
      return;
    default:
      out += 'x';
      out += kDigits[static_cast<unsigned char>(c) >> 4];
      out += kDigits[static_cast<unsigned char>(c) & 15];
  }
}

}  // namespace

void appendQuoted(std::string& out, std::string_view text, std::size_t most) {
  text = text.substr(0, most);
  out += '"';
  std::size_t plain = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (isPlain(text[i])) continue;
    out.append(text, plain, i - plain);
    appendEscaped(out, text[i]);
    plain = i + 1;
  }
  out.append(text, plain, text.size() - plain);
  out += '"';
}

Transcript::~Transcript() {
  if (file_ >= 0) ::close(file_);
}

bool Transcript::open(const std::string& path) {
  file_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  return file_ >= 0;
}

void Transcript::begin(std::string_view kind) {
  const auto now =
      std::chrono::duration_cast<std::chrono::microseconds>(Clock::now().time_since_epoch());
  line_.clear();
  appendScaled(line_, now.count(), 6);
  line_ += ' ';
  line_ += kind;
  line_ += ' ';
}

void Transcript::finish() {
  line_ += '\n';
  // A full disk or a closed reader must not stop the meter; the record is then incomplete.
  [[maybe_unused]] const ssize_t written = ::write(file_, line_.data(), line_.size());
}

void Transcript::write(std::string_view kind, std::string_view text) {
  if (file_ < 0) return;
  begin(kind);
  line_ += text;
  if (text.empty()) line_.pop_back();
  finish();
}

void Transcript::received(std::string_view text, std::string_view end) {
  if (file_ < 0) return;
  begin("<");
  appendQuoted(line_, text, text.size());
  line_ += ' ';
  line_ += end;
  finish();
}

void Transcript::handedOver(std::string_view bytes) {
  if (file_ < 0) return;
  begin(">");
  appendInteger(line_, static_cast<std::int64_t>(bytes.size()));
  line_ += ' ';
  const bool isBlock = bytes.substr(0, 2).find('#') != std::string_view::npos;
  const std::size_t most = isBlock ? kShownBlock : kShownText;
  appendQuoted(line_, bytes, most);
  if (bytes.size() > most) line_ += "...";
  finish();
}

}  // namespace simmeter
