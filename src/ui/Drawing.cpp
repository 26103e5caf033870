#include "ui/Drawing.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pulsemod {

namespace {

bool sameStep(const Drawing& one, const Drawing& other, std::size_t index) {
  const DrawingStep& step = one.steps[index];
  if (!(step == other.steps[index])) return false;
  const auto first = one.points.begin() + static_cast<std::ptrdiff_t>(step.firstPoint);
  const auto last = first + static_cast<std::ptrdiff_t>(step.pointCount);
  const auto otherFirst = other.points.begin() + static_cast<std::ptrdiff_t>(step.firstPoint);
  if (!std::equal(first, last, otherFirst)) return false;
  return step.kind != DrawingStep::Kind::text || one.texts[step.text] == other.texts[step.text];
}

}  // namespace

void Drawing::clear() {
  steps.clear();
  points.clear();
  texts.clear();
  backgroundSteps = 0;
}

bool sameBackground(const Drawing& one, const Drawing& other) {
  if (one.backgroundSteps != other.backgroundSteps || !(one.scale == other.scale)) return false;
  for (std::size_t index = 0; index < one.backgroundSteps; ++index) {
    if (!sameStep(one, other, index)) return false;
  }
  return true;
}

DrawingRecorder::DrawingRecorder(std::function<double()> textHeightShare,
                                 std::function<void()> onShow)
    : textHeightShare_(std::move(textHeightShare)), onShow_(std::move(onShow)) {}

void DrawingRecorder::clear() { recording_.clear(); }

void DrawingRecorder::setScale(const PictureScale& scale) { recording_.scale = scale; }

void DrawingRecorder::line(PicturePoint from, PicturePoint to, Colour colour) {
  recording_.steps.push_back(
      {DrawingStep::Kind::line, colour, recording_.points.size(), 2, recording_.texts.size()});
  recording_.points.push_back(from);
  recording_.points.push_back(to);
}

void DrawingRecorder::polyline(std::span<const PicturePoint> points, Colour colour) {
  recording_.steps.push_back({DrawingStep::Kind::polyline, colour, recording_.points.size(),
                              points.size(), recording_.texts.size()});
  recording_.points.insert(recording_.points.end(), points.begin(), points.end());
}

void DrawingRecorder::text(PicturePoint topLeft, std::string_view text, Colour colour) {
  recording_.steps.push_back(
      {DrawingStep::Kind::text, colour, recording_.points.size(), 1, recording_.texts.size()});
  recording_.points.push_back(topLeft);
  recording_.texts.emplace_back(text);
}

double DrawingRecorder::textHeight() const {
  return std::abs(recording_.scale.height) * textHeightShare_();
}

void DrawingRecorder::endBackground() { recording_.backgroundSteps = recording_.steps.size(); }

void DrawingRecorder::show() {
  recording_.textHeightShare = textHeightShare_();
  std::swap(recording_, shown_);
  recording_.clear();
  recording_.scale = shown_.scale;
  onShow_();
}

}  // namespace pulsemod
