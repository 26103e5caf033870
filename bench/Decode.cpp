// Decoding one profile of 400 points, beside the least that any decoder must do with the same
// bytes.

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "Samples.h"
#include "link/NumberText.h"
#include "profile/ProfileReader.h"

namespace {

constexpr int points = 400;

float sampleLevel(int point) {
  return static_cast<float>(-34.567 + 30.0 * std::sin(point * 0.037));
}

std::string textReply() {
  std::string reply = "PMPO 1," + std::to_string(points);
  for (int point = 0; point < points; ++point) {
    reply.append(",").append(pulsemod::fixedText(static_cast<double>(sampleLevel(point)), 3, 3));
  }
  return reply + "\r";
}

std::string blockReply() {
  std::string reply = "#41600";
  for (int point = 0; point < points; ++point) {
    const auto bits = std::bit_cast<std::uint32_t>(sampleLevel(point));
    for (const unsigned shift : {16U, 24U, 8U, 0U}) {
      reply += static_cast<char>((bits >> shift) & 0xFFU);
    }
  }
  return reply;
}

/// Sum of the numbers between commas: the conversions alone.
float sumOfText(const std::string& reply) {
  float sum = 0;
  const char* at = reply.data() + 11;
  const char* const end = reply.data() + reply.size();
  while (at < end) {
    float value = 0;
    at = std::from_chars(at, end, value).ptr + 1;
    sum += value;
  }
  return sum;
}

/// Sum of the four-byte words: the loads alone.
float sumOfBlock(const std::string& reply) {
  float sum = 0;
  for (std::size_t at = 6; at + 4 <= reply.size(); at += 4) {
    std::uint32_t bits = 0;
    for (std::size_t byte = 0; byte < 4; ++byte) {
      bits = bits << 8U | static_cast<unsigned char>(reply[at + byte]);
    }
    sum += std::bit_cast<float>(bits);
  }
  return sum;
}

volatile float sink = 0;

void require(bool held, const char* what) {
  if (held) return;
  std::fprintf(stderr, "bench-decode: %s\n", what);
  std::exit(1);
}

}  // namespace

int main() {
  using pulsemod::decodeBlockProfile;
  using pulsemod::decodeTextProfile;
  const std::string text = textReply();
  const std::string block = blockReply();
  require(decodeTextProfile(text) && decodeTextProfile(text)->count == points, "text refused");
  require(decodeBlockProfile(block) && decodeBlockProfile(block)->count == points, "block refused");
  constexpr int rounds = 21;
  constexpr int calls = 2000;
  bench::compare(
      "text reply / its number conversions alone",
      [&text] { sink = decodeTextProfile(text)->values[points - 1]; },
      [&text] { sink = sumOfText(text); }, rounds, calls);
  bench::compare(
      "block / its byte loads alone",
      [&block] { sink = decodeBlockProfile(block)->values[points - 1]; },
      [&block] { sink = sumOfBlock(block); }, rounds, calls);
}
