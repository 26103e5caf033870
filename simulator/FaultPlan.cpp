#include "FaultPlan.h"

#include <array>

#include "NumberText.h"

namespace simmeter {
namespace {

enum class Takes { kNothing, kAmount, kTwoAmounts, kText, kRefusal, kErrorName };

struct FaultWord {
  std::string_view word;
  FaultKind kind;
  Takes takes;
  bool ofMessage;  // may stand with a message
  bool ofCall;     // may stand with a library call
};

constexpr std::array kWords = {
    FaultWord{"late", FaultKind::kLate, Takes::kAmount, true, false},
    FaultWord{"cut", FaultKind::kCut, Takes::kAmount, true, false},
    FaultWord{"short", FaultKind::kShort, Takes::kAmount, true, false},
    FaultWord{"empty", FaultKind::kEmpty, Takes::kNothing, true, false},
    FaultWord{"missing", FaultKind::kMissing, Takes::kNothing, true, false},
    FaultWord{"drop", FaultKind::kMissing, Takes::kNothing, true, false},
    FaultWord{"garble", FaultKind::kGarble, Takes::kNothing, true, false},
    FaultWord{"replace", FaultKind::kReplace, Takes::kText, true, false},
    FaultWord{"raw", FaultKind::kRaw, Takes::kText, true, false},
    FaultWord{"bytewise", FaultKind::kByteWise, Takes::kAmount, true, false},
    FaultWord{"stall", FaultKind::kStall, Takes::kTwoAmounts, true, false},
    FaultWord{"hang-up", FaultKind::kHangUp, Takes::kNothing, true, true},
    FaultWord{"refuse", FaultKind::kRefuse, Takes::kRefusal, true, false},
    FaultWord{"error", FaultKind::kError, Takes::kErrorName, false, true},
    FaultWord{"timeout", FaultKind::kTimeOut, Takes::kNothing, false, true},
    FaultWord{"status", FaultKind::kStatus, Takes::kAmount, false, true},
};

struct ErrorName {
  std::string_view name;
  std::int64_t code;
};
constexpr std::array kErrors = {
    ErrorName{"EDVR", 0}, ErrorName{"ECIC", 1}, ErrorName{"ENOL", 2}, ErrorName{"EADR", 3},
    ErrorName{"EARG", 4}, ErrorName{"ESAC", 5}, ErrorName{"EABO", 6}, ErrorName{"ENEB", 7},
};

// The first word of the text; the text keeps the rest.
std::string_view takeWord(std::string_view& text) {
  text = trimBlanks(text);
  const std::size_t end = text.find_first_of(" \t");
  const std::string_view word = text.substr(0, end);
  text = end == std::string_view::npos ? std::string_view{} : trimBlanks(text.substr(end));
  return word;
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::optional<std::int64_t> parseAmount(std::string_view text) {
  if (!startsIgnoringCase(text, "0x")) {
    const auto number = parseInteger(text);
    return number && *number >= 0 ? number : std::nullopt;
  }
  std::int64_t value = 0;
  if (text.size() < 3 || text.size() > 6) return std::nullopt;
  for (const char c : text.substr(2)) {
    if (hexDigit(c) < 0) return std::nullopt;
    value = value * 16 + hexDigit(c);
  }
  return value;
}

std::optional<std::string> unescape(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      result += text[i];
      continue;
    }
    if (++i == text.size()) return std::nullopt;
    switch (text[i]) {
      case 'r':
        result += '\r';
        break;
      case 'n':
        result += '\n';
        break;
      case 't':
        result += '\t';
        break;
      case 's':
        result += ' ';
        break;
      case '\\':
        result += '\\';
        break;
      case 'x': {
        if (i + 2 >= text.size()) return std::nullopt;
        const int high = hexDigit(text[i + 1]);
        const int low = hexDigit(text[i + 2]);
        if (high < 0 || low < 0) return std::nullopt;
        result += static_cast<char>(high * 16 + low);
        i += 2;
        break;
      }
      default:
        return std::nullopt;
    }
  }
  return result;
}

// `every`, `N` or `from N`.
bool parseOccurrence(std::string_view text, FaultRule& rule) {
  if (equalIgnoringCase(text, "every")) return true;
  std::string_view rest = text;
  const bool from = equalIgnoringCase(takeWord(rest), "from");
  const auto number = parseInteger(from ? rest : text);
  if (!number || *number < 1) return false;
  rule.first = static_cast<std::uint64_t>(*number);
  if (!from) rule.last = rule.first;
  return true;
}

bool parseDetails(const FaultWord& word, std::string_view rest, FaultRule& rule) {
  switch (word.takes) {
    case Takes::kNothing:
      return rest.empty();
    case Takes::kText: {
      const auto text = unescape(rest);
      if (text) rule.text = *text;
      return text.has_value();
    }
    case Takes::kRefusal:
      if (rest.empty() || rest == "execution") return true;
      rule.refusal = rest == "command" ? Refusal::kCommand : Refusal::kDevice;
      return rest == "command" || rest == "device";
    case Takes::kErrorName:
      for (const ErrorName& error : kErrors) {
        if (error.name != rest) continue;
        rule.amount = error.code;
        return true;
      }
      return false;
    case Takes::kAmount:
    case Takes::kTwoAmounts: {
      const auto amount = parseAmount(takeWord(rest));
      if (!amount) return false;
      rule.amount = *amount;
      if (word.takes == Takes::kAmount) return rest.empty();
      const auto second = parseAmount(takeWord(rest));
      if (!second) return false;
      rule.second = *second;
      return rest.empty();
    }
  }
  return false;
}

// Messages by their beginning; calls by their whole name, since one name begins another.
bool matches(const FaultRule& rule, std::string_view text) {
  if (rule.match.empty()) return true;
  return rule.ofCall ? text == rule.match : startsIgnoringCase(text, rule.match);
}

}  // namespace

std::optional<FaultRule> parseFault(std::string_view text) {
  FaultRule rule;
  rule.written = std::string(trimBlanks(text));
  // The match and the occurrence end at the first two commas; what follows may hold commas.
  const std::size_t first = text.find(',');
  if (first == std::string_view::npos) return std::nullopt;
  const std::size_t second = text.find(',', first + 1);
  if (second == std::string_view::npos) return std::nullopt;
  std::string_view match = trimBlanks(text.substr(0, first));
  const std::string_view occurrence = trimBlanks(text.substr(first + 1, second - first - 1));
  std::string_view action = trimBlanks(text.substr(second + 1));

  if (startsIgnoringCase(match, "lib ")) {
    rule.ofCall = true;
    match = trimBlanks(match.substr(4));
  }
  if (match.empty() || !parseOccurrence(occurrence, rule)) return std::nullopt;
  if (!equalIgnoringCase(match, "any")) rule.match = std::string(match);

  const std::string_view name = takeWord(action);
  for (const FaultWord& word : kWords) {
    if (word.word != name) continue;
    if (!(rule.ofCall ? word.ofCall : word.ofMessage)) return std::nullopt;
    rule.kind = word.kind;
    if (!parseDetails(word, action, rule)) return std::nullopt;
    return rule;
  }
  return std::nullopt;
}

const std::vector<const FaultRule*>& FaultPlan::strike(Moment moment, std::string_view text) {
  struck_.clear();
  for (FaultRule& rule : rules_) {
    const Moment when = rule.ofCall                       ? Moment::kCall
                        : rule.kind == FaultKind::kRefuse ? Moment::kUnit
                                                          : Moment::kReply;
    if (when != moment || !matches(rule, text)) continue;
    ++rule.seen;
    if (rule.seen >= rule.first && rule.seen <= rule.last) struck_.push_back(&rule);
  }
  strikes_ += struck_.size();
  return struck_;
}

const std::vector<const FaultRule*>& FaultPlan::onReply(std::string_view message) {
  return strike(Moment::kReply, trimBlanks(message));
}

const std::vector<const FaultRule*>& FaultPlan::onUnit(std::string_view unit) {
  return strike(Moment::kUnit, trimBlanks(unit));
}

const std::vector<const FaultRule*>& FaultPlan::onCall(std::string_view name) {
  return strike(Moment::kCall, name);
}

}  // namespace simmeter
