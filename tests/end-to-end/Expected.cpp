#include "Expected.h"

#include <algorithm>
#include <sstream>

namespace endtoend {

Texts operator+(Texts first, const Texts& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

Texts part(const Texts& texts, std::size_t begin, std::size_t count) {
  begin = std::min(begin, texts.size());
  const std::size_t end = begin + std::min(count, texts.size() - begin);
  using Offset = Texts::difference_type;
  return {texts.begin() + static_cast<Offset>(begin), texts.begin() + static_cast<Offset>(end)};
}

Texts startQuestions() {
  return {"PMPO 1",        "TRCAPT? 1,PMOD", "PMPREF? 1,DB",
          "PMPSCAL? 1,DB", "TRCAPT? 1,PMOD", "TRDLYT? 1,PMOD"};
}

Texts profilePass(Link link) {
  return {"TR1 1", link == Link::gpib ? "PMPBO 1" : "PMPO 1", "MKNO 1,1", "MKNO 1,2", "MKNO 1,3"};
}

Box shownBox(robot::RobotClient& hands) {
  hands.waitVisible("messageBox");
  return {hands.get("messageBox", "windowTitle"), hands.get("messageBox", "text"),
          hands.get("messageBox", "icon"), hands.get("messageBox", "informativeText")};
}

Pixels readPixels(const std::filesystem::path& ppmFile) {
  const std::string text = readFile(ppmFile);
  std::istringstream head(text);
  std::string magic;
  int most = 0;
  Pixels pixels;
  head >> magic >> pixels.width >> pixels.height >> most;
  const auto start = static_cast<std::size_t>(head.tellg()) + 1;
  if (!head || magic != "P6" || text.size() < start) throw std::runtime_error("not a picture");
  pixels.bytes = text.substr(start);
  if (pixels.bytes.size() != static_cast<std::size_t>(pixels.width * pixels.height * 3)) {
    throw std::runtime_error("not a whole picture");
  }
  return pixels;
}

bool Pixels::isYellow(int x, int y) const {
  const auto at = static_cast<std::size_t>((y * width + x) * 3);
  const auto channel = [this, at](std::size_t i) {
    return static_cast<int>(static_cast<unsigned char>(bytes.at(at + i)));
  };
  constexpr int bright = 150;
  constexpr int dark = 90;
  return channel(0) > bright && channel(1) > bright && channel(2) < dark;
}

std::pair<double, double> Pixels::yellowSpan(double x) const {
  const int column = std::clamp(static_cast<int>(x * width), 0, width - 1);
  int first = -1;
  int last = -1;
  for (int y = 0; y < height; ++y) {
    if (!isYellow(column, y)) continue;
    if (first < 0) first = y;
    last = y;
  }
  if (first < 0) return {-1, -1};
  return {static_cast<double>(first) / height, static_cast<double>(last) / height};
}

}  // namespace endtoend
