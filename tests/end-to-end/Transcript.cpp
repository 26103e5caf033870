#include "Transcript.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace endtoend {

namespace {

int hexDigit(char character) {
  if (character >= '0' && character <= '9') return character - '0';
  return character - 'a' + 10;
}

/// Reads `"..."` at the start of `text` and leaves what comes after.
std::string takeQuoted(std::string_view& text) {
  std::string result;
  if (text.empty() || text.front() != '"') return result;
  std::size_t i = 1;
  for (; i < text.size() && text[i] != '"'; ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      result += text[i];
      continue;
    }
    const char code = text[++i];
    if (code == 'x' && i + 2 < text.size()) {
      result += static_cast<char>(hexDigit(text[i + 1]) * 16 + hexDigit(text[i + 2]));
      i += 2;
    } else {
      result += code == 'n' ? '\n' : code == 'r' ? '\r' : code == 't' ? '\t' : code;
    }
  }
  text.remove_prefix(std::min(i + 1, text.size()));
  return result;
}

std::string_view takeWord(std::string_view& text) {
  const std::size_t end = std::min(text.find(' '), text.size());
  const std::string_view word = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return word;
}

Event readLine(std::string_view line) {
  Event event;
  std::istringstream(std::string(takeWord(line))) >> event.seconds;
  event.kind = takeWord(line);
  if (event.kind == "<") {
    event.text = takeQuoted(line);
    takeWord(line);
    event.end = line;
  } else if (event.kind == ">") {
    takeWord(line);
    event.text = takeQuoted(line);
  } else {
    event.text = line;
  }
  return event;
}

}  // namespace

Events readTranscript(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream all;
  all << file.rdbuf();
  const std::string text = all.str();
  Events events;
  std::size_t begin = 0;
  for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', begin)) {
    events.push_back(readLine(std::string_view(text).substr(begin, end - begin)));
    begin = end + 1;
  }
  return events;
}

std::vector<std::string> messages(const Events& events) {
  std::vector<std::string> texts;
  for (const Event& event : events) {
    if (event.kind == "<") texts.push_back(event.text);
  }
  return texts;
}

std::vector<std::string> happenings(const Events& events) {
  std::vector<std::string> texts;
  for (const Event& event : events) {
    if (event.kind != ">") texts.push_back(event.kind == "<" ? event.text : event.kind);
  }
  return texts;
}

std::size_t countMessages(const Events& events, std::string_view text) {
  return static_cast<std::size_t>(std::count_if(
      events.begin(), events.end(),
      [text](const Event& event) { return event.kind == "<" && event.text == text; }));
}

std::size_t countKind(const Events& events, std::string_view kind) {
  return static_cast<std::size_t>(std::count_if(
      events.begin(), events.end(), [kind](const Event& event) { return event.kind == kind; }));
}

std::string offences(const Events& events) {
  std::string lines;
  for (const Event& event : events) {
    const bool isOffence =
        event.kind == "INTERRUPTED" || event.kind == "ERROR" || event.kind == "SCENARIO";
    if (isOffence) lines += event.kind + " " + event.text + "\n";
  }
  return lines;
}

}  // namespace endtoend
