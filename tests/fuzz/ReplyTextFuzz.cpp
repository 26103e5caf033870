// Fields of replies, and the model in an identity.
#include <string>
#include <vector>

#include "FuzzInput.h"
#include "link/ReplyText.h"
#include "startup/MeterModel.h"

namespace pulsemod::fuzz {
namespace {

constexpr std::string_view padding = " \t\r\n";

bool isPadding(char character) { return padding.find(character) != std::string_view::npos; }

std::string withoutPadding(std::string text) {
  while (!text.empty() && isPadding(text.back())) text.pop_back();
  while (!text.empty() && isPadding(text.front())) text.erase(0, 1);
  return text;
}

/// All fields of a reply at once.
std::vector<std::string> fieldsOf(const std::string& reply) {
  std::size_t separator = reply.find('\t');
  if (separator == std::string::npos) separator = reply.find(' ');
  std::vector<std::string> fields(1);
  for (std::size_t at = separator == std::string::npos ? 0 : separator + 1; at < reply.size();
       ++at) {
    if (reply[at] == ',') {
      fields.emplace_back();
    } else {
      fields.back() += reply[at];
    }
  }
  return fields;
}

void checkFields(std::string_view reply) {
  constexpr std::size_t mostFields = 12;
  const std::vector<std::string> fields = fieldsOf(std::string(reply));
  for (std::size_t field = 0; field < std::min(fields.size(), mostFields); ++field) {
    require(SplitReply(reply, static_cast<int>(field)) == withoutPadding(fields[field]),
            "a field stands between its commas, trimmed");
  }
  require(SplitReply(reply, static_cast<int>(fields.size())).empty(),
          "a field that is not there is empty");
}

void checkTrimmed(std::string_view text) {
  require(trimmed(text) == withoutPadding(std::string(text)), "padding goes, and nothing else");
}

void checkClosedFields(std::string_view text) {
  std::string joined;
  std::size_t count = 0;
  const bool walked = walkClosedFields(text, [&](std::string_view field) {
    joined += (count++ == 0 ? "" : ",") + std::string(field);
    return true;
  });
  require(walked && joined == text.substr(0, text.empty() ? 0 : text.size() - 1),
          "the fields are the text but for its last character");
  std::size_t taken = 0;
  const bool whole = walkClosedFields(text, [&](std::string_view) { return ++taken * 2 < count; });
  require(whole == (count == 0) && taken == (count + 1) / 2, "the walk ends where it is told");
}

void checkModel(std::string_view identity) {
  bool supported = false;
  for (const char* name : {"QX7104", "QX7105", "QX7204", "QX7205"}) {
    supported = supported || identity.find(name) != std::string_view::npos;
  }
  const std::int32_t model = modelOfIdentity(identity);
  require(model >= 0 && model <= 5 && (model != 0) == supported, "a model is one of five");
}

}  // namespace
}  // namespace pulsemod::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pulsemod::fuzz;
  const std::string_view text = FuzzInput(data, size).rest();
  checkFields(text);
  checkTrimmed(text);
  checkClosedFields(text);
  checkModel(text);
  return 0;
}
