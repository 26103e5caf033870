#include <QAbstractButton>
#include <QAction>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QLabel>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextDocument>

#include "CCDFWindowBench.h"
#include "PictureBench.h"
#include "link/MeterLink.h"
#include "startup/ProgramVersion.h"
#include "ui/GuideWindow.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

/// A folder tree with a guide of two headings, a picture wider than any page, and a second page.
struct GuideTree {
  QTemporaryDir root;

  GuideTree() {
    QDir(root.path()).mkpath("docs/pictures");
    write("docs/user-guide.md",
          "# First start\n\nSee [the gates](#gates--fences) and [more](more.md) and "
          "[none](none.md).\n\n![A picture](pictures/wide.png)\n\n" +
              QByteArray("Words.\n\n").repeated(200) + "## Gates & fences\n\nAt the end.\n");
    write("docs/more.md", "# More\n\nText.\n");
    QImage picture(3000, 300, QImage::Format_RGB32);
    picture.fill(Qt::red);
    picture.save(file("docs/pictures/wide.png"));
    QImage small(40, 30, QImage::Format_RGB32);
    small.fill(Qt::blue);
    small.save(file("docs/pictures/small.png"));
  }

  QString file(const QString& name) const { return root.filePath(name); }
  void write(const QString& name, const QByteArray& content) const {
    QFile written(file(name));
    written.open(QIODevice::WriteOnly);
    written.write(content);
  }
};

QTextImageFormat pictureOf(const QTextDocument& document) {
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
    for (auto piece = block.begin(); !piece.atEnd(); ++piece) {
      if (piece.fragment().charFormat().isImageFormat()) {
        return piece.fragment().charFormat().toImageFormat();
      }
    }
  }
  return {};
}

}  // namespace

class HelpTest : public QObject {
  Q_OBJECT

 private slots:
  void headingsHaveTheirAnchors_data();
  void headingsHaveTheirAnchors();
  void guideIsFoundBesideTheProgramAndInTheSourceTree();
  void linkLeadsToItsHeading();
  void pageThatIsNotThereIsTold();
  void picturesAreAsWideAsThePage();
  void missingGuideIsTold();
  void aboutTellsWhatIsKnown();
  void aboutIsCopied();
  void bothWindowsHaveTheMenu();
};

void HelpTest::headingsHaveTheirAnchors_data() {
  QTest::addColumn<QString>("heading");
  QTest::addColumn<QString>("anchor");
  QTest::newRow("words") << "First start"
                         << "first-start";
  QTest::newRow("signs") << "Gates & fences, by mouse"
                         << "gates--fences-by-mouse";
  QTest::newRow("hyphen") << "Set-up: `frmMain`"
                          << "set-up-frmmain";
  QTest::newRow("number") << " 2 channels "
                          << "2-channels";
}

void HelpTest::headingsHaveTheirAnchors() {
  QFETCH(QString, heading);
  QTEST(headingAnchor(heading), "anchor");
}

void HelpTest::guideIsFoundBesideTheProgramAndInTheSourceTree() {
  const GuideTree tree;
  QVERIFY(QDir(tree.root.path()).mkpath("build"));
  QVERIFY(QDir(tree.root.path()).mkpath("bin"));
  const auto inTree = [&tree](const char* name) {
    return QFileInfo(tree.file(name)).canonicalFilePath();
  };
  QCOMPARE(userGuideOf(tree.file("build")), inTree("docs/user-guide.md"));
  QDir(tree.root.path()).mkpath("share/doc/pulsemod");
  tree.write("share/doc/pulsemod/user-guide.md", "# Installed\n");
  QCOMPARE(userGuideOf(tree.file("bin")), inTree("share/doc/pulsemod/user-guide.md"));
  QCOMPARE(userGuideOf(tree.file("docs/pictures/none")), "");
}

void HelpTest::linkLeadsToItsHeading() {
  const GuideTree tree;
  FakeWorld world;
  GuideBrowser browser;
  browser.resize(500, 400);
  browser.show();
  browser.setSource(QUrl::fromLocalFile(tree.file("docs/user-guide.md")));
  QVERIFY(browser.toPlainText().startsWith("First start"));
  QCOMPARE(browser.verticalScrollBar()->value(), 0);
  browser.setSource(QUrl("#gates--fences"));
  QCOMPARE(browser.verticalScrollBar()->value(), browser.verticalScrollBar()->maximum());
  browser.setSource(QUrl("more.md"));
  QCOMPARE(browser.toPlainText(), "More\nText.");
  // From another page too.
  browser.setSource(QUrl("user-guide.md#gates--fences"));
  QVERIFY(browser.verticalScrollBar()->value() > 1000);
  QVERIFY(world.dialogs.messages.empty());
}

void HelpTest::pageThatIsNotThereIsTold() {
  const GuideTree tree;
  FakeWorld world;
  GuideBrowser browser;
  browser.setSource(QUrl::fromLocalFile(tree.file("docs/user-guide.md")));
  browser.setSource(QUrl("none.md"));
  QCOMPARE(world.dialogs.messages,
           (std::vector<ShownBox>{{"none.md is not installed with the user guide.", "User Guide",
                                   MessageIcon::information, ""}}));
  QVERIFY(browser.toPlainText().startsWith("First start"));
}

void HelpTest::picturesAreAsWideAsThePage() {
  const GuideTree tree;
  FakeWorld world;
  GuideBrowser browser;
  browser.resize(500, 400);
  browser.show();
  browser.setSource(QUrl::fromLocalFile(tree.file("docs/user-guide.md")));
  for (const int width : {500, 900, 400}) {
    browser.resize(width, 400);
    QCoreApplication::processEvents();
    const double shown = pictureOf(*browser.document()).width();
    QVERIFY2(shown > width - 80 && shown < width, qPrintable(QString::number(shown)));
    QCOMPARE(browser.horizontalScrollBar()->maximum(), 0);
  }
  // A small one is not blown up.
  tree.write("docs/more.md", "# More\n\n![A picture](pictures/small.png)\n");
  browser.setSource(QUrl("more.md"));
  QCOMPARE(pictureOf(*browser.document()).width(), 40.0);
}

void HelpTest::missingGuideIsTold() {
  // Neither place is beside this program.
  QCOMPARE(userGuideOf(QCoreApplication::applicationDirPath()), "");
  PictureBench bench;
  bench.item("menuUserGuide").trigger();
  QCOMPARE(
      bench.world.dialogs.messages,
      (std::vector<ShownBox>{{"The user guide is not installed: there is no file "
                              "share/doc/pulsemod/user-guide.md beside the folder of the program.",
                              "User Guide", MessageIcon::information, ""}}));
  QVERIFY(!bench.window.findChild<QWidget*>("frmUserGuide")->isVisible());
}

void HelpTest::aboutTellsWhatIsKnown() {
  PictureBench bench;
  LinkSettings = {};
  bench.item("menuAbout").trigger();
  auto* const about = bench.window.findChild<QDialog*>("frmAbout");
  QVERIFY(about->isVisible());
  QVERIFY(!about->isModal());
  auto* const facts = about->findChild<QLabel*>("lblAbout");
  const QString version =
      QStringLiteral("%1.%2.%3").arg(versionMajor).arg(versionMinor).arg(versionRevision);
  QCOMPARE(facts->text(), "Pelmora PulseMod\nVersion: " + version +
                              "\nMeter: PELMORA,QX7205A,123456,1.10\nLink: GPIB, address 13\nQt: " +
                              qVersion() + "\nLicence: MIT");
  QCOMPARE(facts->textFormat(), Qt::PlainText);
  about->close();
  MeterIdentity.clear();
  LinkSettings = {commsTypeRS232, 13, 3, 57600};
  bench.item("menuAbout").trigger();
  QCOMPARE(bench.window.findChildren<QDialog*>("frmAbout").size(), 1);
  QVERIFY(about->isVisible());
  QVERIFY(facts->text().contains("\nMeter: not known\nLink: RS232, COM3:, 57600 baud\n"));
}

void HelpTest::aboutIsCopied() {
  PictureBench bench;
  bench.item("menuAbout").trigger();
  auto* const about = bench.window.findChild<QDialog*>("frmAbout");
  about->findChild<QAbstractButton*>("cmdCopy")->click();
  QCOMPARE(QGuiApplication::clipboard()->text(), about->findChild<QLabel*>("lblAbout")->text());
  QVERIFY(about->isVisible());
  about->findChild<QAbstractButton*>("cmdClose")->click();
  QVERIFY(!about->isVisible());
}

void HelpTest::bothWindowsHaveTheMenu() {
  CCDFBench bench;
  bench.show();
  QCOMPARE(bench.item("menuUserGuide").shortcut(), QKeySequence("F1"));
  bench.key(Qt::Key_F1);
  QCOMPARE(bench.world.dialogs.messages.size(), std::size_t{1});
  bench.item("menuAbout").trigger();
  QVERIFY(bench.window.findChild<QDialog*>("frmAbout")->isVisible());
}

QTEST_MAIN(HelpTest)
#include "HelpTest.moc"
