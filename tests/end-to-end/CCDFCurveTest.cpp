#include <cmath>
#include <numeric>
#include <sstream>

#include "CCDFBench.h"

namespace endtoend {
namespace {

/// The signal that the simulated meter states, and the distribution that follows from it.
enum class Envelope { gaussian, fixed };
enum class Source { channel, gate, marker };

double milliwatts(double dbm) { return std::pow(10, dbm / 10); }

/// The level without noise at a time since the rise, of the period that begins with it.
double levelAt(double seconds) {
  constexpr double width = 6e-4;
  constexpr double off = -60;
  const auto top = [](double u) {
    return 5 + 1.2 * std::exp(-u / 30e-6) * std::sin(2 * M_PI * u / 50e-6) - 0.6 * u / width;
  };
  const double pulse = seconds < width
                           ? milliwatts(top(seconds)) * (1 - std::exp(-seconds / 4e-6))
                           : milliwatts(top(width)) * std::exp(-(seconds - width) / 6e-6);
  return 10 * std::log10(milliwatts(off) + pulse);
}

bool belongsTo(Source source, double seconds) {
  if (source == Source::channel) return true;
  // Gate 1 without its fence.
  return seconds >= 5e-5 && seconds <= 5.5e-4 && !(seconds > 2.2e-4 && seconds < 3.3e-4);
}

std::vector<double> levelsOf(Source source) {
  constexpr double period = 1.2e-3;
  constexpr double markerTime = 1e-4;
  constexpr int looks = 4800;
  if (source == Source::marker) return {levelAt(markerTime)};
  std::vector<double> levels;
  for (int look = 0; look < looks; ++look) {
    const double seconds = (look + 0.5) / looks * period;
    if (belongsTo(source, seconds)) levels.push_back(levelAt(seconds));
  }
  return levels;
}

class Distribution {
 public:
  Distribution(Envelope envelope, Source source) : envelope_(envelope), levels_(levelsOf(source)) {}

  /// The share of time, in percent, during which the power lies above this one.
  double above(double power) const {
    const auto add = [&](double sum, double level) { return sum + shareAbove(power, level); };
    return 100 * std::accumulate(levels_.begin(), levels_.end(), 0.0, add) /
           static_cast<double>(levels_.size());
  }

 private:
  double shareAbove(double power, double level) const {
    constexpr double noise = 0.1;
    if (envelope_ == Envelope::fixed) return std::erfc((power - level) / (noise * M_SQRT2)) / 2;
    return std::exp(-milliwatts(power - level));
  }

  Envelope envelope_;
  std::vector<double> levels_;
};

constexpr double axisStart = -5;
constexpr double axisStop = 15;
constexpr int points = 400;
/// The shares at the top and the bottom of the graph, as exponents of ten.
constexpr double topExponent = 2;
constexpr double decades = 5;
constexpr double leastShare = 0.01;

double powerOf(int point) { return axisStart + (axisStop - axisStart) * point / points; }

/// The share at a height in the picture, in percent.
double shareAt(double row, int height) {
  return std::pow(10, topExponent - row * decades / height);
}

struct SourceChoice {
  const char* name;
  Source source;
  /// Chosen after the one before; empty for what the meter begins with.
  const char* item;
};
constexpr SourceChoice sourceChoices[] = {
    {"channel", Source::channel, ""},
    {"gate", Source::gate, "menuMeasSourceGate"},
    {"marker", Source::marker, "menuMeasSourceActiveMarker"},
};

class CCDFCurve : public CCDFBench {
 protected:
  void startWith(const std::string& setup) {
    startCCDF(GetParam(), setup +
                              "setup = TTPST 1,-5\n"
                              "setup = TTPSP 1,15\n"
                              "setup = TTMKS 1,OFF\n");
  }
  /// A graph of three pixels a point, which are a twentieth of a decibel.
  void widenGraph();
  /// The rows that the drawn curve has at each of its points, in the mean of several curves; no
  /// number where one of them has none.
  std::vector<double> drawnShares(int& height);
  std::vector<double> receivedShares() const;
  void expectDistribution(const Distribution& distribution);
  void expectEachSource(Envelope envelope);
};
ON_BOTH_LINKS(CCDFCurve);

int graphWidth(robot::RobotClient& hands) {
  std::istringstream place(hands.get(robot::ccdfGraph, "place"));
  int skipped = 0;
  int width = 0;
  place >> skipped >> skipped >> width;
  return width;
}

void CCDFCurve::widenGraph() {
  constexpr int wished = 3 * points;
  constexpr int windowHeight = 1000;
  const int around = std::stoi(hands().get("frmCCDF", "width")) - graphWidth(hands());
  hands().resize("frmCCDF", wished + around, windowHeight);
  hands().waitUntil("frmCCDF", "width", std::to_string(wished + around));
  ASSERT_EQ(graphWidth(hands()), wished);
}

std::vector<double> CCDFCurve::drawnShares(int& height) {
  constexpr int curves = 9;
  std::vector<double> shares(points + 1, 0.0);
  for (int curve = 0; curve < curves; ++curve) {
    awaitMoreCurves(2);
    const Pixels picture = grabGraph();
    height = picture.height;
    for (int point = 1; point < points; ++point) {
      const double column = point * picture.width / points + 0.5;
      const auto [top, bottom] = picture.yellowSpan(column / picture.width);
      const double row = (top + bottom) / 2 * picture.height;
      const double share = top < 0 ? std::nan("") : shareAt(row, picture.height);
      shares[static_cast<std::size_t>(point)] += share / curves;
    }
  }
  return shares;
}

std::vector<double> CCDFCurve::receivedShares() const {
  std::string reply;
  bool asked = false;
  for (const Event& event : transcript()) {
    if (event.kind == "<") asked = event.text == "TTFRO 1";
    if (event.kind == ">" && asked) reply = event.text;
  }
  std::istringstream fields(reply.substr(reply.find(',') + 1));
  std::vector<double> values;
  for (std::string field; std::getline(fields, field, ',');) values.push_back(std::stod(field));
  // The point count, which takes the place of a point 0.
  EXPECT_EQ(values.empty() ? 0 : values[0], points);
  EXPECT_EQ(values.size(), points + 1);
  return values;
}

/// Nine curves of a million samples each: at 0.01 % their mean is uncertain by a thirtieth, a
/// sixtieth of a decibel of the gaussian envelope.
void CCDFCurve::expectDistribution(const Distribution& distribution) {
  int height = 0;
  const std::vector<double> shares = drawnShares(height);
  const double pixel = std::pow(10, decades / height);
  constexpr double tolerance = 0.1;
  int compared = 0;
  for (int point = 1; point < points; ++point) {
    const double power = powerOf(point);
    if (distribution.above(power) <= leastShare) break;
    const double share = shares[static_cast<std::size_t>(point)];
    EXPECT_GE(share * pixel, distribution.above(power + tolerance)) << power << " dBm";
    EXPECT_LE(share / pixel, distribution.above(power - tolerance)) << power << " dBm";
    ++compared;
  }
  constexpr int atLeast = 180;
  EXPECT_GT(compared, atLeast);
}

void CCDFCurve::expectEachSource(Envelope envelope) {
  widenGraph();
  for (const SourceChoice& choice : sourceChoices) {
    SCOPED_TRACE(choice.name);
    if (*choice.item != 0) {
      choose(choice.item);
      EXPECT_EQ(readMessage("Changing Measurement Source"), "The measurement source is changed");
      hands().waitGone("messageBox");
    }
    runCurves(1);
    expectDistribution(Distribution(envelope, choice.source));
    stopCurves();
  }
}

TEST_P(CCDFCurve, WhatIsDrawnIsTheDistributionOfAGaussianSignal) {
  startWith("");
  expectEachSource(Envelope::gaussian);
}

TEST_P(CCDFCurve, WhatIsDrawnIsTheDistributionOfAFixedEnvelope) {
  startWith("envelope = fixed\n");
  expectEachSource(Envelope::fixed);
}

TEST_P(CCDFCurve, WhatIsDrawnIsWhatWasReceived) {
  startWith("");
  for (const auto& [width, height] : {std::pair{800, 600}, {480, 360}, {1300, 900}}) {
    hands().resize("frmCCDF", width, height);
    runCurves(2);
    stopCurves();
    const Pixels picture = grabGraph();
    const std::vector<double> shares = receivedShares();
    int compared = 0;
    for (int point = 1; point < points; ++point) {
      const double share = shares.at(static_cast<std::size_t>(point));
      // The line to a point below the bottom is not all in the picture.
      if (share < 0.002) continue;
      const auto column = static_cast<int>(std::lround(1.0 * point * picture.width / points));
      const auto [top, bottom] = picture.yellowSpan((column + 0.5) / picture.width);
      const double row = (topExponent - std::log10(share)) / decades * picture.height;
      EXPECT_LE(top * picture.height, row + 1) << point;
      EXPECT_GE(bottom * picture.height, row - 1) << point;
      ++compared;
    }
    constexpr int atLeast = 300;
    EXPECT_GT(compared, atLeast);
  }
}

}  // namespace
}  // namespace endtoend
