#include <QAbstractButton>
#include <QCheckBox>
#include <QClipboard>
#include <QPrintDialog>
#include <QPrinter>
#include <QSpinBox>
#include <QTemporaryDir>
#include <utility>

#include "CCDFWindowBench.h"
#include "PictureBench.h"
#include "ccdf/CCDFGraph.h"
#include "ccdf/CCDFGraphFile.h"
#include "ccdf/MeasurementSource.h"
#include "profile/AcquisitionLoop.h"
#include "tracefiles/ProfileTraceFile.h"
#include "ui/CCDFPanel.h"
#include "ui/CCDFSheet.h"
#include "ui/Look.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

/// The user of `frmPicture`: ticks an option and presses a button.
void answerPictureDialog(int size, const char* button,
                         const std::function<void(QDialog&)>& look = {}) {
  whenModalIsShown<QDialog>("frmPicture", [=](QDialog& dialog) {
    if (look) look(dialog);
    dialog.findChild<QAbstractButton*>(QStringLiteral("optPictureSize_%1").arg(size))->click();
    dialog.findChild<QAbstractButton*>(button)->click();
  });
}

template <typename Control>
Control& part(QDialog& dialog, const char* name) {
  return *dialog.findChild<Control*>(name);
}

QImage imageOf(const std::string& bytes) {
  return QImage::fromData(QByteArray::fromStdString(bytes)).convertToFormat(QImage::Format_RGB32);
}

QString clipboardText() { return QGuiApplication::clipboard()->text(); }

}  // namespace

class PictureMenuTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }
  void pictureIsSaved();
  void cancellingWritesNothing();
  void choiceIsRemembered();
  void cancelledChoiceIsForgotten();
  void freeSizeHasLimits();
  void pictureThatCannotBeWrittenIsTold();
  void pictureIsCopied();
  void dataAreCopiedAsTheFileHasThem();
  void dataThatCannotBeMadeAreTold();
  void pageIsPrinted();
  void printingIsCancelled();
  void pictureIsOfTheMomentOfTheAnswer();
  void acquisitionGoesOn();
  void curveIsSavedCopiedAndPrinted();
  void curveSheetHasItsLabels();
};

void PictureMenuTest::pictureIsSaved() {
  PictureBench bench;
  bench.world.fileDialogs.saveAnswer = "/data/pulse.svg";
  answerPictureDialog(1, "cmdSave");
  bench.item("menuSavePicture").trigger();
  const std::string bytes = bench.world.files.contents.at("/data/pulse.svg");
  QVERIFY(bytes.find("viewBox=\"0 0 1024 768\"") != std::string::npos);
  QStringList texts = svgContent(bytes).texts;
  QStringList expected = benchTexts();
  texts.sort();
  expected.sort();
  QCOMPARE(texts, expected);
  QCOMPARE(bench.world.fileDialogs.titles, std::vector<std::string>{"Save Picture"});
  QCOMPARE(bench.world.fileDialogs.suffixes, (std::vector<std::string>{"png", "svg", "pdf"}));
  QVERIFY(bench.world.dialogs.messages.empty());

  bench.world.fileDialogs.saveAnswer = "/data/pulse.png";
  answerPictureDialog(0, "cmdSave");
  bench.item("menuSavePicture").trigger();
  QCOMPARE(imageOf(bench.world.files.contents.at("/data/pulse.png")).size(),
           bench.panel().size() * bench.panel().devicePixelRatioF());
  QVERIFY(bench.world.meter.received.empty());
}

void PictureMenuTest::cancellingWritesNothing() {
  PictureBench bench;
  bench.world.fileDialogs.saveAnswer = "/data/pulse.png";
  answerPictureDialog(1, "cmdCancel");
  bench.item("menuSavePicture").trigger();
  QVERIFY(bench.world.fileDialogs.titles.empty());
  // And without a name.
  bench.world.fileDialogs.saveAnswer = "";
  answerPictureDialog(1, "cmdSave");
  bench.item("menuSavePicture").trigger();
  QCOMPARE(bench.world.fileDialogs.titles.size(), std::size_t{1});
  QVERIFY(bench.world.files.contents.empty());
  QVERIFY(bench.world.dialogs.messages.empty());
}

void PictureMenuTest::choiceIsRemembered() {
  PictureBench bench;
  bench.world.fileDialogs.saveAnswer = "/data/pulse.png";
  const QSize screen = bench.panel().size() * bench.panel().devicePixelRatioF();
  answerPictureDialog(3, "cmdSave", [&screen](QDialog& dialog) {
    // The first time.
    QVERIFY(part<QAbstractButton>(dialog, "optPictureSize_0").isChecked());
    QCOMPARE(
        part<QAbstractButton>(dialog, "optPictureSize_0").text(),
        QStringLiteral("&As on the screen (%1 x %2)").arg(screen.width()).arg(screen.height()));
    QCOMPARE(part<QAbstractButton>(dialog, "optPictureSize_1").text(), "1024 x 768");
    QCOMPARE(part<QAbstractButton>(dialog, "optPictureSize_2").text(), "1600 x 1200");
    QVERIFY(part<QCheckBox>(dialog, "chkWhite").isChecked());
    QVERIFY(!part<QSpinBox>(dialog, "txtPictureWidth").isEnabled());
    part<QAbstractButton>(dialog, "optPictureSize_3").click();
    QVERIFY(part<QSpinBox>(dialog, "txtPictureWidth").isEnabled());
    part<QSpinBox>(dialog, "txtPictureWidth").setValue(700);
    part<QSpinBox>(dialog, "txtPictureHeight").setValue(500);
    part<QCheckBox>(dialog, "chkWhite").click();
  });
  bench.item("menuSavePicture").trigger();
  const QImage dark = imageOf(bench.world.files.contents.at("/data/pulse.png"));
  QCOMPARE(dark.size(), QSize(700, 500));
  QCOMPARE(QColor(dark.pixel(0, 0)), look::surround);

  answerPictureDialog(3, "cmdSave", [](QDialog& dialog) {
    QVERIFY(part<QAbstractButton>(dialog, "optPictureSize_3").isChecked());
    QCOMPARE(part<QSpinBox>(dialog, "txtPictureWidth").value(), 700);
    QCOMPARE(part<QSpinBox>(dialog, "txtPictureHeight").value(), 500);
    QVERIFY(!part<QCheckBox>(dialog, "chkWhite").isChecked());
    part<QCheckBox>(dialog, "chkWhite").click();
  });
  bench.item("menuSavePicture").trigger();
  const QImage white = imageOf(bench.world.files.contents.at("/data/pulse.png"));
  QCOMPARE(QColor(white.pixel(0, 0)), QColor(Qt::white));
}

void PictureMenuTest::cancelledChoiceIsForgotten() {
  PictureBench bench;
  answerPictureDialog(2, "cmdCancel");
  bench.item("menuSavePicture").trigger();
  answerPictureDialog(0, "cmdCancel", [](QDialog& dialog) {
    QVERIFY(part<QAbstractButton>(dialog, "optPictureSize_0").isChecked());
  });
  bench.item("menuSavePicture").trigger();
}

void PictureMenuTest::freeSizeHasLimits() {
  PictureBench bench;
  answerPictureDialog(3, "cmdCancel", [](QDialog& dialog) {
    const auto limits = [&dialog](const char* name) {
      auto& side = part<QSpinBox>(dialog, name);
      return std::pair(side.minimum(), side.maximum());
    };
    QCOMPARE(limits("txtPictureWidth"), std::pair(320, 4096));
    QCOMPARE(limits("txtPictureHeight"), std::pair(240, 4096));
    QVERIFY(!part<QSpinBox>(dialog, "txtPictureWidth").accessibleName().isEmpty());
  });
  bench.item("menuSavePicture").trigger();
}

void PictureMenuTest::pictureThatCannotBeWrittenIsTold() {
  PictureBench bench;
  bench.world.fileDialogs.saveAnswer = "/data/pulse.png";
  bench.world.files.contents["/data/pulse.png"] = "old";
  bench.world.files.writeFailure = "No space left on device";
  answerPictureDialog(0, "cmdSave");
  bench.item("menuSavePicture").trigger();
  QCOMPARE(bench.world.dialogs.messages,
           (std::vector<ShownBox>{{"/data/pulse.png cannot be written: No space left on device",
                                   "Pelmora", MessageIcon::exclamation, ""}}));
  QCOMPARE(bench.world.files.contents["/data/pulse.png"], std::string("old"));
}

void PictureMenuTest::pictureIsCopied() {
  PictureBench bench;
  bench.item("menuCopyPicture").trigger();
  const QImage white = QGuiApplication::clipboard()->image();
  QCOMPARE(white.size(), bench.panel().size() * bench.panel().devicePixelRatioF());
  QCOMPARE(QColor(white.pixel(0, 0)), QColor(Qt::white));
  QVERIFY(pixelsOf(white, onWhite(look::gateLine)) > white.height());
  // As dark as the last picture that was saved.
  LastPictureChoice.ground = Ground::dark;
  bench.item("menuCopyPicture").trigger();
  const QImage dark = QGuiApplication::clipboard()->image();
  QCOMPARE(QColor(dark.pixel(0, 0)), look::surround);
  QVERIFY(pixelsOf(dark, look::gateLine) > dark.height());
  QVERIFY(bench.world.meter.received.empty());
}

void PictureMenuTest::dataAreCopiedAsTheFileHasThem() {
  PictureBench bench;
  bench.world.fileDialogs.saveAnswer = "/data/pulse.txt";
  bench.item("menuSave").trigger();
  bench.item("menuCopyData").trigger();
  QCOMPARE(clipboardText().toStdString(), bench.world.files.contents.at("/data/pulse.txt"));
  QVERIFY(clipboardText().contains("0.0023\t-5\n"));
}

void PictureMenuTest::dataThatCannotBeMadeAreTold() {
  PictureBench bench;
  QGuiApplication::clipboard()->setText("before");
  Settings.DisplayPoints = 0;
  bench.item("menuCopyData").trigger();
  QCOMPARE(bench.world.dialogs.messages.size(), std::size_t{1});
  QCOMPARE(clipboardText(), "before");
}

void PictureMenuTest::pageIsPrinted() {
  PictureBench bench;
  QTemporaryDir folder;
  const QString path = folder.filePath("page.pdf");
  whenModalIsShown<QPrintDialog>("printDialog", [&path](QPrintDialog& dialog) {
    QCOMPARE(dialog.printer()->pageLayout().orientation(), QPageLayout::Landscape);
    dialog.printer()->setOutputFormat(QPrinter::PdfFormat);
    dialog.printer()->setOutputFileName(path);
    dialog.done(QDialog::Accepted);
  });
  bench.item("menuPrint").trigger();
  QFile file(path);
  QVERIFY(file.open(QIODevice::ReadOnly));
  QVERIFY(file.readAll().startsWith("%PDF-"));
  QVERIFY(bench.world.dialogs.messages.empty());
  QVERIFY(bench.world.meter.received.empty());

  whenModalIsShown<QPrintDialog>("printDialog", [](QPrintDialog& dialog) {
    dialog.printer()->setOutputFormat(QPrinter::PdfFormat);
    dialog.printer()->setOutputFileName("/nowhere/at/all/page.pdf");
    dialog.done(QDialog::Accepted);
  });
  bench.item("menuPrint").trigger();
  QCOMPARE(bench.world.dialogs.messages,
           (std::vector<ShownBox>{
               {"The printer did not take the page", "Pelmora", MessageIcon::exclamation, ""}}));
}

void PictureMenuTest::printingIsCancelled() {
  PictureBench bench;
  QTemporaryDir folder;
  const QString path = folder.filePath("page.pdf");
  whenModalIsShown<QPrintDialog>("printDialog", [&path](QPrintDialog& dialog) {
    dialog.printer()->setOutputFormat(QPrinter::PdfFormat);
    dialog.printer()->setOutputFileName(path);
    dialog.reject();
  });
  bench.item("menuPrint").trigger();
  QVERIFY(!QFile::exists(path));
  QVERIFY(bench.world.dialogs.messages.empty());
}

void PictureMenuTest::pictureIsOfTheMomentOfTheAnswer() {
  PictureBench bench;
  bench.world.fileDialogs.saveAnswer = "/data/pulse.svg";
  answerPictureDialog(1, "cmdSave", [](QDialog&) {
    Settings.ReferenceLevel = 25;
    DrawGraph();
  });
  bench.item("menuSavePicture").trigger();
  const QStringList texts = svgContent(bench.world.files.contents.at("/data/pulse.svg")).texts;
  QVERIFY2(texts.contains("Ref: 25.00 dBm"), qPrintable(texts.join('|')));
}

/// While it runs the items work, and tell the meter nothing.
void PictureMenuTest::acquisitionGoesOn() {
  PictureBench bench;
  bench.world.fileDialogs.saveAnswer = "/data/pulse.png";
  bench.item("menuStart").trigger();
  const auto received = bench.world.meter.received.size();
  answerPictureDialog(0, "cmdSave");
  bench.item("menuSavePicture").trigger();
  bench.item("menuCopyPicture").trigger();
  bench.item("menuCopyData").trigger();
  QVERIFY(AcquisitionRunning != False16);
  QCOMPARE(bench.world.meter.received.size(), received);
  QVERIFY(!imageOf(bench.world.files.contents.at("/data/pulse.png")).isNull());
  bench.item("menuStop").trigger();
}

void PictureMenuTest::curveIsSavedCopiedAndPrinted() {
  CCDFBench bench;
  LastPictureChoice = {};
  for (std::size_t point = 0; point < 200; ++point) {
    CCDFData[point] = 100.0F / static_cast<float>(point + 1);
  }
  bench.showWithCursor();
  bench.world.fileDialogs.saveAnswer = "/data/curve.png";
  answerPictureDialog(2, "cmdSave");
  bench.item("menuSavePicture").trigger();
  const QImage image = imageOf(bench.world.files.contents.at("/data/curve.png"));
  QCOMPARE(image.size(), QSize(1600, 1200));
  QVERIFY(pixelsOf(image, onWhite(look::cursorLine)) > 900);
  const QColor curve(liveCurveColour.red, liveCurveColour.green, liveCurveColour.blue);
  QVERIFY(pixelsOf(image, onWhite(curve)) > 1000);

  bench.item("menuCopyPicture").trigger();
  QVERIFY(!QGuiApplication::clipboard()->image().isNull());
  bench.world.fileDialogs.saveAnswer = "/data/curve.txt";
  bench.item("menuSave").trigger();
  bench.item("menuCopyData").trigger();
  QCOMPARE(clipboardText().toStdString(), bench.world.files.contents.at("/data/curve.txt"));
  QVERIFY(clipboardText().startsWith("2\r\nDate\t"));

  whenModalIsShown<QPrintDialog>("printDialog", [](QPrintDialog& dialog) { dialog.reject(); });
  bench.item("menuPrint").trigger();
  QVERIFY(bench.world.dialogs.messages.empty());
}

void PictureMenuTest::curveSheetHasItsLabels() {
  CCDFBench bench;
  CCDFData.fill(10);
  SecondCCDFData.fill(1);
  bench.showWithCursor();
  CCDF.MeasurementSource = "GATE";
  ShowMeasurementSource();
  bench.window.showSecondCurve();
  DrawCCDFGraph();
  auto& panel = dynamic_cast<CCDFPanel&>(*bench.window.centralWidget());
  const std::string bytes =
      pictureBytes(ccdfSheet(panel), sizedForm({1024, 768}, Ground::white), "a.svg");
  QCOMPARE(svgContent(bytes).texts,
           (QStringList{"CCDF", "Channel 1", "2026-11-21 10:30:00", "Live curve", "Second curve",
                        "SOURCE:GATE", "Cursor: -20.1dBm, 5%", "-30dBm", "0dBm", "100%", "10%",
                        "1%", ".1%", ".01%", ".001%"}));
  bench.item("menuOFF").trigger();
  bench.item("menuSecondProfile").trigger();
  DrawCCDFGraph();
  const GraphSheet sheet = ccdfSheet(panel);
  QCOMPARE(sheet.topRight, "");
  QVERIFY(sheet.foot.empty());
  QVERIFY(sheet.lines.empty());
}

QTEST_MAIN(PictureMenuTest)
#include "PictureMenuTest.moc"
