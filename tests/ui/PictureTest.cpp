#include <QPrinter>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <limits>

#include "Contrast.h"
#include "PictureBench.h"
#include "ccdf/CCDFGraph.h"
#include "link/Fault.h"
#include "profile/Readouts.h"
#include "ui/Look.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

QImage imageOf(const std::string& bytes) {
  return QImage::fromData(QByteArray::fromStdString(bytes)).convertToFormat(QImage::Format_RGB32);
}

/// What a program of the PDF tools says about a file with these bytes.
QString askTool(const QString& tool, const std::string& bytes, const QStringList& before,
                const QStringList& after = {}) {
  QTemporaryDir folder;
  QFile file(folder.filePath("picture.pdf"));
  file.open(QIODevice::WriteOnly);
  file.write(bytes.data(), static_cast<qint64>(bytes.size()));
  file.close();
  QProcess process;
  process.start(tool, before + QStringList{file.fileName()} + after);
  process.waitForFinished();
  return QString::fromUtf8(process.readAllStandardOutput());
}

bool isThere(const QString& tool) { return !QStandardPaths::findExecutable(tool).isEmpty(); }

}  // namespace

class PictureTest : public QObject {
  Q_OBJECT

 private slots:
  void pngHasTheChosenSize_data();
  void pngHasTheChosenSize();
  void pngShowsCurvesAndLines_data();
  void pngShowsCurvesAndLines();
  void curvesStandAtTheirPlaces_data();
  void curvesStandAtTheirPlaces();
  void slopesAreSmooth();
  void svgHasTextsAndLinesAndNoBitmap();
  void pdfHasTextsAndLinesAndNoBitmap();
  void pdfIsAsLargeAsChosen();
  void pdfFillsItsPage();
  void textsGrowWithThePicture();
  void suffixDecides();
  void printedPageIsLandscapeAndComplete();
  void printerThatDoesNotTakeThePageIsAFault();
  void pictureTooLargeForTheMemoryIsAFault();
  void noTextIsCutOrCoversAnother_data();
  void noTextIsCutOrCoversAnother();
  void markerLabelsStayInThePicture();
  void curvesAreClippedWithoutTheHelpOfTheFormat();
  void headingNamesChannelsAndMeter();
  void legendOnlyForTwoCurves();
  void readingsOnlyWhileTheyAreRead();
  void hiddenGatesHaveNoEntry();
  void coloursKeepTheirContrast();
};

void PictureTest::pngHasTheChosenSize_data() {
  QTest::addColumn<QSize>("size");
  QTest::newRow("as on the screen") << QSize();
  QTest::newRow("1024 x 768") << QSize(1024, 768);
  QTest::newRow("1600 x 1200") << QSize(1600, 1200);
  QTest::newRow("smallest") << smallestPicture;
  QTest::newRow("wide") << QSize(2000, 300);
  QTest::newRow("high") << QSize(400, 1500);
}

void PictureTest::pngHasTheChosenSize() {
  QFETCH(QSize, size);
  PictureBench bench;
  const GraphSheet sheet = bench.sheet();
  const PictureForm form =
      size.isEmpty() ? screenForm(sheet, Ground::white) : sizedForm(size, Ground::white);
  const QSize expected =
      size.isEmpty() ? bench.panel().size() * bench.panel().devicePixelRatioF() : size;
  QCOMPARE(imageOf(pictureBytes(sheet, form, "a.png")).size(), expected);
}

void PictureTest::pngShowsCurvesAndLines_data() {
  QTest::addColumn<bool>("white");
  QTest::newRow("white") << true;
  QTest::newRow("dark") << false;
}

void PictureTest::pngShowsCurvesAndLines() {
  QFETCH(bool, white);
  PictureBench bench;
  const Ground ground = white ? Ground::white : Ground::dark;
  const GraphSheet sheet = bench.sheet();
  const QImage image = imageOf(pictureBytes(sheet, sizedForm({1600, 1200}, ground), "a.png"));
  const auto shown = [white](const QColor& colour) { return white ? onWhite(colour) : colour; };
  QCOMPARE(QColor(image.pixel(0, 0)), white ? QColor(Qt::white) : look::surround);
  // The flat parts of both curves, over most of the graph's width.
  QVERIFY(pixelsOf(image, shown(toQt(liveTraceColour))) > 1300);
  QVERIFY(pixelsOf(image, shown(toQt(secondProfileColour))) > 1300);
  // Two lines over the height of the graph, and the dashes of two.
  QVERIFY(pixelsOf(image, shown(look::gateLine)) > 2 * 900);
  QVERIFY(pixelsOf(image, shown(look::fenceLine)) > 900);
  QVERIFY(pixelsOf(image, shown(toQt(gridColour))) > 10000);
  QVERIFY(pixelsOf(image, shown(toQt(activeMarkerColour))) > 5);
  QVERIFY(pixelsOf(image, shown(toQt(markerColour))) > 5);
  // Each text has its pixels: without it the picture is another one.
  for (QString GraphSheet::*label :
       {&GraphSheet::topLeft, &GraphSheet::topRight, &GraphSheet::bottomLeft,
        &GraphSheet::bottomCentre, &GraphSheet::bottomRight}) {
    GraphSheet without = sheet;
    without.*label = "";
    QVERIFY(imageOf(pictureBytes(without, sizedForm({1600, 1200}, ground), "a.png")) != image);
  }
}

void PictureTest::curvesStandAtTheirPlaces_data() {
  QTest::addColumn<QSize>("size");
  QTest::newRow("1024 x 768") << QSize(1024, 768);
  QTest::newRow("1600 x 1200") << QSize(1600, 1200);
  QTest::newRow("4096 x 4096") << QSize(4096, 4096);
}

void PictureTest::curvesStandAtTheirPlaces() {
  QFETCH(QSize, size);
  PictureBench bench;
  const QImage image = imageOf(pictureBytes(bench.sheet(), sizedForm(size, Ground::dark), "a.png"));
  // The graph: from the first to the last of the pixels with the ground of the graph.
  QRect graph;
  QRect second;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixel(x, y) == look::graphBackground.rgb()) graph |= QRect(x, y, 1, 1);
    }
  }
  for (int y = graph.top(); y <= graph.bottom(); ++y) {
    if (image.pixel(graph.left() + graph.width() / 20, y) == toQt(secondProfileColour).rgb()) {
      second |= QRect(0, y, 1, 1);
    }
  }
  // -40 of 10 to -90 dBm.
  QVERIFY(!second.isEmpty());
  const double share = static_cast<double>(second.center().y() - graph.top()) / graph.height();
  QVERIFY2(std::abs(share - 0.5) < 0.005, qPrintable(QString::number(share)));
  // The gate begins at 1 of 4.6 ms, which is 43.48 points: its column is 43, from column 1.
  const int row = graph.top() + graph.height() / 100;
  QList<int> columns;
  for (int x = graph.left(); x <= graph.right(); ++x) {
    if (image.pixel(x, row) == look::gateLine.rgb()) columns << x;
  }
  QVERIFY(!columns.isEmpty());
  const double place = static_cast<double>(columns.front() - graph.left()) / graph.width();
  QVERIFY2(std::abs(place - 42.0 / 200) < 0.005, qPrintable(QString::number(place)));
}

void PictureTest::slopesAreSmooth() {
  PictureBench bench;
  for (std::size_t point = 0; point < 200; ++point) {
    ProfileTrace[point] = -80 + 0.4F * static_cast<float>(point);
  }
  DrawGraph();
  const QImage image =
      imageOf(pictureBytes(bench.sheet(), sizedForm({1024, 768}, Ground::dark), "a.png"));
  int mixed = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const QColor colour(image.pixel(x, y));
      // Of the yellow curve and the ground.
      const bool isYellowish = std::abs(colour.red() - colour.green()) < 8 && colour.blue() < 20;
      mixed += isYellowish && colour.red() > 60 && colour.red() < 200 ? 1 : 0;
    }
  }
  QVERIFY2(mixed > 500, qPrintable(QString::number(mixed)));
}

void PictureTest::svgHasTextsAndLinesAndNoBitmap() {
  PictureBench bench;
  const std::string bytes =
      pictureBytes(bench.sheet(), sizedForm({1024, 768}, Ground::white), "a.svg");
  const SvgContent content = svgContent(bytes);
  QCOMPARE(content.error, "");
  QStringList texts = content.texts;
  QStringList expected = benchTexts();
  texts.sort();
  expected.sort();
  QCOMPARE(texts, expected);
  QVERIFY(!content.elements.contains("image"));
  QVERIFY(content.elements["polyline"] + content.elements["path"] >= 24);
  QCOMPARE(content.elements["title"], 1);
  QVERIFY(bytes.find("viewBox=\"0 0 1024 768\"") != std::string::npos);
}

void PictureTest::pdfHasTextsAndLinesAndNoBitmap() {
  PictureBench bench;
  const std::string bytes =
      pictureBytes(bench.sheet(), sizedForm({1024, 768}, Ground::white), "a.pdf");
  QVERIFY(bytes.starts_with("%PDF-"));
  QVERIFY(bytes.find("%%EOF") != std::string::npos);
  QVERIFY(bytes.find("/Subtype /Image") == std::string::npos);
  if (!isThere("pdftotext")) QSKIP("pdftotext is not installed");
  const QString text = askTool("pdftotext", bytes, {"-layout"}, {"-"});
  for (const QString& expected : benchTexts()) QVERIFY2(text.contains(expected), qPrintable(text));
}

void PictureTest::pdfIsAsLargeAsChosen() {
  if (!isThere("pdfinfo")) QSKIP("pdfinfo is not installed");
  PictureBench bench;
  const std::string bytes =
      pictureBytes(bench.sheet(), sizedForm({1024, 768}, Ground::white), "a.pdf");
  const QString info = askTool("pdfinfo", bytes, {});
  QVERIFY2(info.contains("768 x 576 pts"), qPrintable(info));
  QVERIFY2(info.contains(QRegularExpression("Pages: +1\n")), qPrintable(info));
  QVERIFY2(info.contains(QRegularExpression("Title: +Pulse profile\n")), qPrintable(info));
}

void PictureTest::pdfFillsItsPage() {
  if (!isThere("pdftotext")) QSKIP("pdftotext is not installed");
  PictureBench bench;
  const std::string bytes =
      pictureBytes(bench.sheet(), sizedForm({1024, 768}, Ground::white), "a.pdf");
  const QString words = askTool("pdftotext", bytes, {"-bbox"}, {"-"});
  QRectF all;
  const QRegularExpression word(
      R"re(<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="([\d.]+)">)re");
  for (const auto& match : word.globalMatch(words)) {
    all |= QRectF(QPointF(match.captured(1).toDouble(), match.captured(2).toDouble()),
                  QPointF(match.captured(3).toDouble(), match.captured(4).toDouble()));
  }
  // Of 768 x 576 points, but for margins of 10 pixels of a font, each 1.28 pixels of the picture.
  const QRectF expected(9.6, 9.6, 768 - 19.2, 576 - 19.2);
  const auto isNear = [](double one, double other) { return std::abs(one - other) < 4; };
  QVERIFY2(isNear(all.left(), expected.left()), qPrintable(QString::number(all.left())));
  QVERIFY2(isNear(all.top(), expected.top()), qPrintable(QString::number(all.top())));
  QVERIFY2(isNear(all.right(), expected.right()), qPrintable(QString::number(all.right())));
  QVERIFY2(isNear(all.bottom(), expected.bottom()), qPrintable(QString::number(all.bottom())));
}

void PictureTest::textsGrowWithThePicture() {
  QCOMPARE(sizedForm({800, 600}, Ground::white).ratio, 1.0);
  QCOMPARE(sizedForm({1600, 1200}, Ground::white).ratio, 2.0);
  QCOMPARE(sizedForm({4000, 1200}, Ground::white).ratio, 2.0);
  // A small one keeps them readable as long as there is room.
  QCOMPARE(sizedForm({320, 240}, Ground::white).ratio, 1.0);
  QCOMPARE(sizedForm({2000, 300}, Ground::white).ratio, 1.0);
}

void PictureTest::suffixDecides() {
  PictureBench bench;
  const PictureForm form = sizedForm({320, 240}, Ground::white);
  const auto startOf = [&](const char* path) {
    return QByteArray::fromStdString(pictureBytes(bench.sheet(), form, path)).first(5);
  };
  QCOMPARE(startOf("/data/a.png"), QByteArray("\x89PNG\r"));
  QCOMPARE(startOf("/data/a.PNG"), QByteArray("\x89PNG\r"));
  QCOMPARE(startOf("/data/a"), QByteArray("\x89PNG\r"));
  QCOMPARE(startOf("/data/a.svg.txt"), QByteArray("\x89PNG\r"));
  QCOMPARE(startOf("/data/a.Svg"), QByteArray("<?xml"));
  QCOMPARE(startOf("/data/a.PDF"), QByteArray("%PDF-"));
}

void PictureTest::printedPageIsLandscapeAndComplete() {
  PictureBench bench;
  QTemporaryDir folder;
  const QString path = folder.filePath("page.pdf");
  QPrinter printer(QPrinter::HighResolution);
  printer.setOutputFormat(QPrinter::PdfFormat);
  printer.setOutputFileName(path);
  printer.setPageSize(QPageSize(QPageSize::A4));
  printer.setPageOrientation(QPageLayout::Landscape);
  printSheet(bench.sheet(), printer);
  QFile file(path);
  QVERIFY(file.open(QIODevice::ReadOnly));
  const std::string bytes = file.readAll().toStdString();
  QVERIFY(bytes.starts_with("%PDF-"));
  QVERIFY(bytes.find("/Subtype /Image") == std::string::npos);
  if (!isThere("pdftotext")) QSKIP("pdftotext is not installed");
  const QString text = askTool("pdftotext", bytes, {"-layout"}, {"-"});
  for (const QString& expected : benchTexts()) QVERIFY2(text.contains(expected), qPrintable(text));
  const QString info = askTool("pdfinfo", bytes, {});
  QVERIFY2(info.contains(QRegularExpression("Page size: +84[12](\\.\\d+)? x 59[56]")),
           qPrintable(info));
  QVERIFY2(info.contains(QRegularExpression("Pages: +1\n")), qPrintable(info));
}

void PictureTest::printerThatDoesNotTakeThePageIsAFault() {
  PictureBench bench;
  QPrinter printer;
  printer.setOutputFormat(QPrinter::PdfFormat);
  printer.setOutputFileName("/nowhere/at/all/page.pdf");
  QVERIFY_THROWS_EXCEPTION(Fault, printSheet(bench.sheet(), printer));
}

void PictureTest::pictureTooLargeForTheMemoryIsAFault() {
  PictureBench bench;
  QVERIFY_THROWS_EXCEPTION(
      Fault,
      pictureBytes(bench.sheet(), sizedForm({400'000'000, 400'000'000}, Ground::white), "a.png"));
}

void PictureTest::noTextIsCutOrCoversAnother_data() {
  QTest::addColumn<int>("graphFont");
  QTest::addColumn<QSize>("size");
  for (const int font : {6, 10, 24, 48, 72}) {
    for (const QSize size : {QSize(320, 240), QSize(1024, 768), QSize(1600, 1200), QSize(4000, 300),
                             QSize(320, 4000)}) {
      QTest::addRow("%d points, %d x %d", font, size.width(), size.height()) << font << size;
    }
  }
}

void PictureTest::noTextIsCutOrCoversAnother() {
  QFETCH(int, graphFont);
  QFETCH(QSize, size);
  PictureBench bench;
  QFont font = bench.panel().graphFont();
  font.setPointSize(graphFont);
  bench.window.applyGraphFont(font);
  GraphSheet sheet = bench.sheet();
  sheet.leftLabels = {"100%", "10%", ".001%"};
  TextRecorder recorder(size);
  QPainter painter(&recorder);
  const PictureForm form = sizedForm(size, Ground::white);
  paintSheet(painter, sheet, {form.size, form.ratio, Surface::vector, form.ground});
  painter.end();
  const auto& texts = recorder.texts();
  QCOMPARE(texts.size(), static_cast<std::size_t>(benchTexts().size() + 3));
  const QSet<QString> onTheGraph{"1", "3", "D"};
  for (std::size_t one = 0; one < texts.size(); ++one) {
    const QRectF place = texts[one].place;
    QVERIFY2(QRectF(QPointF(), size).contains(place), qPrintable(texts[one].text));
    for (std::size_t other = 0; other < one; ++other) {
      if (onTheGraph.contains(texts[one].text) && onTheGraph.contains(texts[other].text)) continue;
      QVERIFY2(!place.intersects(texts[other].place),
               qPrintable(texts[one].text + " / " + texts[other].text));
    }
  }
}

/// A label that hangs over the edge of the graph is moved in; one of a marker beside it is not
/// painted.
void PictureTest::markerLabelsStayInThePicture() {
  PictureBench bench;
  Settings.Markers[0].Reading = -89.9F;
  Settings.Markers[0].Position = Settings.CaptureTime;
  Settings.Markers[2].Reading = -140;
  DrawGraph();
  const GraphSheet sheet = bench.sheet();
  const SvgContent content =
      svgContent(pictureBytes(sheet, sizedForm({1024, 768}, Ground::white), "a.svg"));
  QVERIFY(content.texts.contains("1"));
  QVERIFY(!content.texts.contains("3"));
  TextRecorder recorder({1024, 768});
  QPainter painter(&recorder);
  paintSheet(painter, sheet, {QSize(1024, 768), 1.28, Surface::vector, Ground::white});
  painter.end();
  double bottomLabels = 0;
  QRectF label;
  for (const TextRecorder::Text& text : recorder.texts()) {
    if (text.text == "1") label = text.place;
    if (text.text == "Stop: 4.6ms") bottomLabels = text.place.top();
  }
  QVERIFY(!label.isEmpty());
  QVERIFY(label.bottom() < bottomLabels);
  QVERIFY(label.right() < 1024);
}

void PictureTest::curvesAreClippedWithoutTheHelpOfTheFormat() {
  PictureBench bench;
  ProfileTrace.fill(-40);
  for (std::size_t point = 50; point < 150; point += 2) ProfileTrace[point] = -1e9F;
  ProfileTrace[20] = std::numeric_limits<float>::quiet_NaN();
  ProfileTrace[30] = 1e30F;
  // At the trigger delay: one point left of the edge.
  Settings.Gates[0].StartTime = 0;
  DrawGraph();
  const std::string bytes =
      pictureBytes(bench.sheet(), sizedForm({1024, 768}, Ground::white), "a.svg");
  QXmlStreamReader reader(QByteArray::fromStdString(bytes));
  int points = 0;
  while (!reader.atEnd()) {
    if (reader.readNext() != QXmlStreamReader::StartElement) continue;
    const auto attributes = reader.attributes();
    for (const QString& pair : attributes.value("points").toString().split(' ')) {
      if (pair.trimmed().isEmpty()) continue;
      const QStringList numbers = pair.split(',');
      QVERIFY2(numbers[0].toDouble() > -0.01 && numbers[0].toDouble() < 1024.01, qPrintable(pair));
      QVERIFY2(numbers[1].toDouble() > -0.01 && numbers[1].toDouble() < 768.01, qPrintable(pair));
      ++points;
    }
  }
  QVERIFY(points > 200);
}

void PictureTest::headingNamesChannelsAndMeter() {
  PictureBench bench;
  const auto heading = [&bench] {
    QStringList texts;
    for (const SheetEntry& entry : bench.sheet().heading) texts << entry.text;
    return texts.join('|');
  };
  QCOMPARE(heading(), "Pulse profile|Channel 1|PELMORA,QX7205A,123456,1.10|2026-11-21 10:30:00");
  Settings.ActiveChannel = 3;
  MeterIdentity.clear();
  QCOMPARE(heading(), "Pulse profile|Channels 1 and 2|2026-11-21 10:30:00");
}

namespace {

QStringList footOf(const GraphSheet& sheet) {
  QStringList texts;
  for (const SheetEntry& entry : sheet.foot) texts << entry.text;
  return texts;
}

}  // namespace

void PictureTest::legendOnlyForTwoCurves() {
  PictureBench bench;
  const GraphSheet sheet = bench.sheet();
  QCOMPARE(sheet.foot[0].text, "Live profile");
  QCOMPARE(*sheet.foot[0].line, toQt(liveTraceColour));
  QCOMPARE(sheet.foot[1].text, "Second profile");
  QCOMPARE(*sheet.foot[1].line, toQt(secondProfileColour));
  QCOMPARE(*sheet.foot[2].line, look::gateLine);
  QVERIFY(!sheet.foot[2].dashed);
  QCOMPARE(*sheet.foot[3].line, look::fenceLine);
  QVERIFY(sheet.foot[3].dashed);
  // Until the next drawing the second one is on the screen.
  bench.item("menuSecondProfile").trigger();
  QVERIFY(footOf(bench.sheet()).contains("Second profile"));
  DrawGraph();
  QCOMPARE(footOf(bench.sheet()).front(), "Gate 1, 1ms to 3ms");
}

void PictureTest::readingsOnlyWhileTheyAreRead() {
  PictureBench bench;
  Settings.MeasurementType = 2;
  GateReadings[3] = -12.3F;
  GateReadings[4] = 4.5678F;
  GateReadings[0] = -33;
  QVERIFY(footOf(bench.sheet()).contains("Gate 1, 1ms to 3ms"));
  bench.item("menuInfoBox").trigger();
  QVERIFY2(footOf(bench.sheet()).contains("Gate 1, 1ms to 3ms: Avg -12.30 dBm, Pk 4.568 dBm"),
           qPrintable(footOf(bench.sheet()).join('|')));
  Settings.Gates[0].Enabled = False16;
  const QStringList foot = footOf(bench.sheet());
  QVERIFY2(foot.contains("Profile: Avg -33.00 dBm, Pk 0.00 dBm"), qPrintable(foot.join('|')));
  QVERIFY(!foot.contains("Fence 1, 1.5ms to 2.5ms"));
}

void PictureTest::hiddenGatesHaveNoEntry() {
  PictureBench bench;
  Settings.GatesVisible = False16;
  DrawGraph();
  const GraphSheet sheet = bench.sheet();
  QVERIFY(sheet.lines.empty());
  for (const QString& text : footOf(sheet)) QVERIFY(!text.startsWith("Gate 1"));
}

void PictureTest::coloursKeepTheirContrast() {
  const QColor dark[] = {toQt(liveTraceColour),
                         toQt(secondProfileColour),
                         toQt(activeMarkerColour),
                         toQt(markerColour),
                         toQt(liveCurveColour),
                         toQt(secondCurveColour),
                         look::gateLine,
                         look::fenceLine,
                         look::cursorLine,
                         look::label,
                         look::rule};
  for (const QColor& colour : dark) {
    QVERIFY2(contrast(onWhite(colour), Qt::white) >= 4.5, qPrintable(colour.name()));
    // None is left to the black of the colours that nobody has thought of.
    QVERIFY2(onWhite(colour) != QColor(Qt::black), qPrintable(colour.name()));
  }
  QCOMPARE(onWhite(QColor(1, 2, 3)), QColor(Qt::black));
  for (const Colour& grid : {gridColour, ccdfGridColour}) {
    const double apart = contrast(onWhite(toQt(grid)), Qt::white);
    QVERIFY2(apart >= 1.5 && apart < 3, qPrintable(QString::number(apart)));
  }
}

QTEST_MAIN(PictureTest)
#include "PictureTest.moc"
