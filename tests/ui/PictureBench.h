#pragma once

#include <QAction>
#include <QImage>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QXmlStreamReader>

#include "WindowTest.h"
#include "profile/MeasurementSettings.h"
#include "profile/ProfileGraph.h"
#include "startup/MeterModel.h"
#include "support/FakeWorld.h"
#include "ui/MainWindow.h"
#include "ui/PictureDialog.h"
#include "ui/PictureFile.h"
#include "ui/ProfilePanel.h"
#include "ui/ProfileSheet.h"

namespace pulsemod::test {

/// `frmMain` on the screen with a pulse of 200 points from -70 to -5 dBm, a second profile at -40
/// dBm, a gate with its fence, two markers and the delta marker.
struct PictureBench {
  FakeWorld world;
  MainWindow window{[] {}};
  ProfileViewGuard isTheView{window};

  PictureBench() {
    LastPictureChoice = {};
    MeterIdentity = "PELMORA,QX7205A,123456,1.10";
    ProfileTrace.fill(-70);
    for (std::size_t point = 60; point < 140; ++point) ProfileTrace[point] = -5;
    SecondProfileTrace.fill(-40);
    GateSettings& gate = Settings.Gates[0];
    gate.Enabled = gate.FenceEnabled = True16;
    gate.StartTime = 0.001F;
    gate.FenceStart = 0.0015F;
    gate.FenceStop = 0.0025F;
    gate.StopTime = 0.003F;
    Settings.Markers[0] = {-5.25F, 0.002F, 0, True16, True16};
    Settings.Markers[2] = {-70, 0.0005F, 0, True16, False16};
    Settings.Markers[deltaMarker] = {0, 0.0025F, 0, True16, False16};
    window.showSecondProfile();
    window.show();
    window.activateWindow();
    QCoreApplication::processEvents();
    DrawGraph();
  }

  ProfilePanel& panel() { return dynamic_cast<ProfilePanel&>(*window.centralWidget()); }
  GraphSheet sheet() { return profileSheet(panel()); }
  QAction& item(const char* name) { return *window.findChild<QAction*>(name); }
};

/// All texts that the sheet of the bench has.
inline QStringList benchTexts() {
  return {"Pulse profile",
          "Channel 1",
          "PELMORA,QX7205A,123456,1.10",
          "2026-11-21 10:30:00",
          "Ref: 10.00 dBm",
          "Scale: 10.00 dB per division",
          "Start: 0.0s",
          "Capture period: 4.6ms",
          "Stop: 4.6ms",
          "Live profile",
          "Second profile",
          "Gate 1, 1ms to 3ms",
          "Fence 1, 1.5ms to 2.5ms",
          "Marker 1: -5.25 dBm at 2ms",
          "Marker 3: -70 dBm at 500us",
          "Delta marker D at 2.5ms",
          "1",
          "3",
          "D"};
}

/// The contents of the text elements of an SVG file, and how often other elements come.
struct SvgContent {
  QStringList texts;
  QMap<QString, int> elements;
  QString error;
};

inline SvgContent svgContent(const std::string& bytes) {
  SvgContent content;
  QXmlStreamReader reader(QByteArray::fromStdString(bytes));
  while (!reader.atEnd()) {
    if (reader.readNext() != QXmlStreamReader::StartElement) continue;
    ++content.elements[reader.name().toString()];
    if (reader.name() == QLatin1String("text")) {
      content.texts << reader.readElementText().trimmed();
    }
  }
  if (reader.hasError()) content.error = reader.errorString();
  return content;
}

/// A surface that keeps which texts were painted where, and how.
class TextRecorder : public QPaintDevice {
 public:
  struct Text {
    QString text;
    QRectF place;
  };

  explicit TextRecorder(const QSize& size) : size_(size) {}
  QPaintEngine* paintEngine() const override { return &engine_; }
  const std::vector<Text>& texts() const { return engine_.texts; }

 protected:
  int metric(PaintDeviceMetric metric) const override {
    switch (metric) {
      case PdmWidth:
        return size_.width();
      case PdmHeight:
        return size_.height();
      case PdmDevicePixelRatio:
        return 1;
      case PdmDepth:
        return 32;
      case PdmDpiX:
      case PdmDpiY:
      case PdmPhysicalDpiX:
      case PdmPhysicalDpiY:
        return 96;
      default:
        return QPaintDevice::metric(metric);
    }
  }

 private:
  class Engine : public QPaintEngine {
   public:
    Engine() : QPaintEngine(AllFeatures) {}
    bool begin(QPaintDevice* /*device*/) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState& /*state*/) override {}
    void drawPixmap(const QRectF& /*to*/, const QPixmap& /*pixmap*/,
                    const QRectF& /*from*/) override {}
    void drawPath(const QPainterPath& /*path*/) override {}
    void drawPolygon(const QPointF* /*points*/, int /*count*/, PolygonDrawMode /*mode*/) override {}
    void drawTextItem(const QPointF& place, const QTextItem& item) override {
      const QRectF box(place.x(), place.y() - item.ascent(), item.width(),
                       item.ascent() + item.descent());
      texts.push_back({item.text(), painter()->combinedTransform().mapRect(box)});
    }
    Type type() const override { return User; }

    std::vector<Text> texts;
  };

  QSize size_;
  mutable Engine engine_;
};

inline int pixelsOf(const QImage& image, const QColor& colour) {
  int count = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) count += image.pixel(x, y) == colour.rgb() ? 1 : 0;
  }
  return count;
}

}  // namespace pulsemod::test
