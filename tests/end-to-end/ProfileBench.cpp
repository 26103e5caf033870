#include "ProfileBench.h"

#include <algorithm>

namespace endtoend {

namespace {

std::size_t countMarks(const Texts& told) {
  return static_cast<std::size_t>(std::count_if(told.begin(), told.end(), isMark));
}

}  // namespace

bool isMark(const std::string& message) { return message.starts_with("SYDISP "); }

void ProfileBench::runProfiles(std::size_t count) {
  const std::size_t before = profilesSoFar();
  clickStart();
  awaitMessages("TR1 1", before + count + 1);
}

void ProfileBench::stopProfiles() {
  clickStop();
  hands().waitUntil("frmMain/menuStart", "enabled", "true");
  awaitMark();
}

void ProfileBench::awaitMoreProfiles(std::size_t count) {
  awaitMessages("TR1 1", profilesSoFar() + count);
}

Texts ProfileBench::awaitMark() {
  const std::size_t before = countMarks(told());
  hands().key("frmMain", "F8");
  Texts texts = messages(awaitTranscript(
      "a mark", [before](const Events& events) { return countMarks(messages(events)) > before; }));
  while (!isMark(texts.back())) texts.pop_back();
  return texts;
}

Texts ProfileBench::toldUntilMark(std::size_t before) {
  Texts texts = part(awaitMark(), before);
  texts.erase(std::find_if(texts.begin(), texts.end(), isMark), texts.end());
  return texts;
}

void ProfileBench::giveItTime() {
  for (int look = 0; look < 50; ++look) hands().get("frmMain", "visible");
}

Pixels ProfileBench::grabGraph() {
  const std::filesystem::path file = folder() / "graph.ppm";
  hands().grab(robot::profileGraph, file);
  return readPixels(file);
}

std::string ProfileBench::lastReplyTo(const std::string& query) const {
  std::string reply;
  bool asked = false;
  for (const Event& event : transcript()) {
    if (event.kind == "<") asked = event.text == query;
    if (event.kind == ">" && asked) reply = event.text;
  }
  // Over RS232 each reply begins with this.
  if (reply.starts_with('R')) reply.erase(0, 1);
  reply.erase(std::min(reply.find('\r'), reply.size()));
  return reply;
}

}  // namespace endtoend
