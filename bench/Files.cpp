// Saving and opening each kind of file, with the events that follow at once, beside the same bytes
// through the toolkit alone. The windows may paint later: what that takes is in the redraw figures.

#include <QApplication>
#include <QFile>
#include <QSaveFile>
#include <QTemporaryDir>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "Bounded.h"
#include "ccdf/CCDFGraphFile.h"
#include "ccdf/CCDFState.h"
#include "files/TextFile.h"
#include "host/Host.h"
#include "platform/Services.h"
#include "profile/MeasurementSettings.h"
#include "settings/SettingsFile.h"
#include "tracefiles/ProfileTraceFile.h"
#include "ui/CCDFWindow.h"
#include "ui/MainWindow.h"
#include "ui/PleaseWait.h"

namespace {

using namespace pulsemod;

constexpr double boundMs = 5;

void drawCurves() {
  for (std::size_t point = 0; point < tracePoints; ++point) {
    const auto x = static_cast<double>(point);
    ProfileTrace[point] = static_cast<float>(-20 + 15 * std::sin(x / 40));
    CCDFData[point] = static_cast<float>(100 * std::exp(-std::pow(10, x / 400 - 8)));
  }
}

void require(bool done) {
  if (done) return;
  std::fprintf(stderr, "The file is not what it should be\n");
  std::_Exit(1);
}

void writeBare(const QString& path, const std::string& bytes) {
  QSaveFile file(path);
  require(file.open(QIODevice::WriteOnly));
  require(file.write(bytes.data(), static_cast<qint64>(bytes.size())) ==
          static_cast<qint64>(bytes.size()));
  require(file.commit());
}

void readBare(const QString& path, const std::string& bytes) {
  QFile file(path);
  require(file.open(QIODevice::ReadOnly));
  require(file.readAll().size() == static_cast<qsizetype>(bytes.size()));
}

/// Of one kind of file: `text` makes its content, `open` takes the file over.
template <typename Text, typename Open>
void measure(const QTemporaryDir& folder, const std::string& kind, const Text& text,
             const Open& open) {
  const QString ours = folder.filePath(QString::fromStdString(kind + ".txt"));
  const QString bare = folder.filePath(QString::fromStdString(kind + ", bare.txt"));
  const std::string path = ours.toStdString();
  const std::string bytes = text();
  bench::compareWithBound(("save " + kind).c_str(), boundMs,
                          [&] { return bench::secondsOf([&] { writeFile(path, text()); }); },
                          [&] { return bench::secondsOf([&] { writeBare(bare, bytes); }); });
  require(readTextFile(path).size() == bytes.size());
  bench::compareWithBound(("open " + kind).c_str(), boundMs,
                          [&] {
                            return bench::secondsOf([&] {
                              open(path);
                              QCoreApplication::processEvents();
                            });
                          },
                          [&] { return bench::secondsOf([&] { readBare(bare, bytes); }); });
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  PleaseWait pleaseWait;
  const Host host(pleaseWait);
  const ServicesGuard services(host.services());
  InitMeasurementSettings();
  Settings.DisplayPoints = 400;
  CCDF.StartPower = -30;
  CCDF.StopPower = 20;
  drawCurves();

  MainWindow profile([] {});
  const ProfileViewGuard profileIsTheView(profile);
  CCDFWindow ccdf;
  const CCDFViewGuard ccdfIsTheView(ccdf);
  for (QWidget* window : {static_cast<QWidget*>(&profile), static_cast<QWidget*>(&ccdf)}) {
    window->resize(1200, 900);
    window->show();
  }
  QCoreApplication::processEvents();

  const QTemporaryDir folder;
  measure(folder, "profile, 400 points", profileTraceText, OpenProfileTraceFile);
  require(std::abs(SecondProfileTrace[399] - ProfileTrace[399]) < 0.001F);
  measure(folder, "CCDF, 400 points", ccdfGraphText, OpenCCDFGraphFile);
  require(std::abs(SecondCCDFData[0] - CCDFData[0]) < 0.001F);
  measure(folder, "settings", settingsText,
          [](const std::string& path) { readSettings(readTextFile(path)); });
  std::fflush(stdout);
  std::_Exit(0);
}
