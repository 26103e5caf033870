#include <QAbstractTextDocumentLayout>
#include <QAction>
#include <QDir>
#include <QFile>
#include <QMap>
#include <QMenu>
#include <QMenuBar>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSet>
#include <QTextBlock>

#include "CCDFWindowBench.h"
#include "PictureBench.h"
#include "ui/GuideWindow.h"

using namespace pulsemod;
using namespace pulsemod::test;

namespace {

/// Keys and the caption of their item, without what a caption has for its menu alone.
using Shortcuts = QMap<QString, QString>;

constexpr auto sourceTree = PULSEMOD_SOURCE;

QString textOf(const QString& name) {
  QFile file(QDir(sourceTree).filePath(name));
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// The first group of each match.
QStringList allOf(const QString& text, const char* pattern) {
  QStringList found;
  auto matches = QRegularExpression(QLatin1String(pattern), QRegularExpression::MultilineOption)
                     .globalMatch(text);
  while (matches.hasNext()) found << matches.next().captured(1);
  return found;
}

bool holdsPicture(const QTextBlock& block, const QString& name) {
  for (auto piece = block.begin(); !piece.atEnd(); ++piece) {
    const QTextCharFormat format = piece.fragment().charFormat();
    if (format.isImageFormat() && format.toImageFormat().name() == name) return true;
  }
  return false;
}

Shortcuts shortcutsOf(const QMainWindow& window) {
  Shortcuts shortcuts;
  for (const QAction* entry : window.menuBar()->actions()) {
    for (const QAction* item : entry->menu()->actions()) {
      QString caption = item->text();
      caption.remove('&').remove("...");
      for (const QKeySequence& keys : item->shortcuts()) {
        shortcuts[keys.toString(QKeySequence::PortableText)] = caption;
      }
    }
  }
  return shortcuts;
}

/// A column of the guide's table of the menus' keys.
Shortcuts shortcutsInGuide(int column) {
  Shortcuts shortcuts;
  bool inTable = false;
  for (const QString& line : textOf("docs/user-guide.md").split('\n')) {
    if (!line.startsWith('|')) {
      inTable = false;
      continue;
    }
    const QStringList cells = line.split('|');
    if (cells.value(1).trimmed() == "Keys") {
      inTable = true;
      continue;
    }
    const QString caption = cells.value(column + 1).trimmed();
    if (inTable && !caption.isEmpty() && !caption.startsWith("---")) {
      shortcuts[cells.value(1).trimmed()] = caption;
    }
  }
  return shortcuts;
}

}  // namespace

/// The guide agrees with the program, with its pictures and with itself.
class GuideTest : public QObject {
  Q_OBJECT

 private slots:
  void init() { QTest::failOnWarning(QRegularExpression(".*")); }
  void tableHasTheKeysOfTheProfileView();
  void tableHasTheKeysOfTheCCDFView();
  void pictures();
  void linksLeadToHeadings();
  void narrowPicturesKeepTheirLines();
  void everyLineHasItsPlace();
  void linksFollowTheDesktop();
};

void GuideTest::tableHasTheKeysOfTheProfileView() {
  PictureBench bench;
  QVERIFY(shortcutsOf(bench.window).size() > 15);
  QCOMPARE(shortcutsInGuide(1), shortcutsOf(bench.window));
}

void GuideTest::tableHasTheKeysOfTheCCDFView() {
  CCDFBench bench;
  QVERIFY(shortcutsOf(bench.window).size() > 10);
  QCOMPARE(shortcutsInGuide(2), shortcutsOf(bench.window));
}

/// Each that is named is there, and each that is there is shown.
void GuideTest::pictures() {
  const QStringList named =
      allOf(textOf("docs/user-guide.md"), R"(^!\[[^\]]+\]\(pictures/(.*)\)$)");
  const QStringList stored =
      QDir(QDir(sourceTree).filePath("docs/pictures")).entryList(QDir::Files);
  QVERIFY(!stored.isEmpty());
  QCOMPARE(QSet<QString>(named.begin(), named.end()), QSet<QString>(stored.begin(), stored.end()));
}

void GuideTest::linksLeadToHeadings() {
  const QString guide = textOf("docs/user-guide.md");
  QSet<QString> anchors;
  for (const QString& heading : allOf(guide, "^#+ (.*)$")) {
    QVERIFY2(!anchors.contains(headingAnchor(heading)), qPrintable(heading));
    anchors << headingAnchor(heading);
  }
  const QStringList links = allOf(guide, R"(\]\(#([^)]*)\))");
  QVERIFY(!links.isEmpty());
  for (const QString& link : links) QVERIFY2(anchors.contains(link), qPrintable(link));
}

/// In a narrow window the fine lines of a graph are thinner and paler, but there.
void GuideTest::narrowPicturesKeepTheirLines() {
  const QUrl guide = QUrl::fromLocalFile(QDir(sourceTree).filePath("docs/user-guide.md"));
  const QString name = "pictures/dragging.png";
  GuideBrowser browser;
  browser.resize(500, 760);
  browser.show();
  browser.setSource(guide);
  QTextBlock block = browser.document()->begin();
  while (block.isValid() && !holdsPicture(block, name)) block = block.next();
  QVERIFY(block.isValid());
  const QRectF place = browser.document()->documentLayout()->blockBoundingRect(block);
  browser.verticalScrollBar()->setValue(static_cast<int>(place.top()));
  const QImage whole(guide.resolved(QUrl(name)).toLocalFile());
  const QImage shown = browser.viewport()->grab().toImage();
  const int margin = static_cast<int>(browser.document()->documentMargin());
  const int width = browser.viewport()->width() - 2 * margin;
  QVERIFY(width < whole.width());
  const QImage expected =
      whole.scaledToWidth(width, Qt::SmoothTransformation).convertToFormat(QImage::Format_RGB32);
  const int top = static_cast<int>(place.top()) - browser.verticalScrollBar()->value();
  QCOMPARE(
      shown.copy(QRect(QPoint(margin, top), expected.size())).convertToFormat(QImage::Format_RGB32),
      expected);
}

/// The whole guide is laid out, at any width.
void GuideTest::everyLineHasItsPlace() {
  GuideBrowser browser;
  browser.resize(860, 760);
  browser.show();
  browser.setSource(QUrl::fromLocalFile(QDir(sourceTree).filePath("docs/user-guide.md")));
  for (const int width : {860, 500, 1000}) {
    browser.resize(width, 760);
    for (QTextBlock line = browser.document()->begin(); line.isValid(); line = line.next()) {
      const QRectF place = browser.document()->documentLayout()->blockBoundingRect(line);
      QVERIFY2(line.text().isEmpty() || place.height() > 0, qPrintable(line.text()));
    }
  }
}

/// A desktop may turn dark while the guide is open, and the reader stays where they are.
void GuideTest::linksFollowTheDesktop() {
  GuideBrowser browser;
  browser.resize(860, 760);
  browser.show();
  browser.setSource(QUrl::fromLocalFile(QDir(sourceTree).filePath("docs/user-guide.md")));
  browser.verticalScrollBar()->setValue(1500);
  const auto colours = [&browser] {
    QSet<QRgb> found;
    for (QTextBlock line = browser.document()->begin(); line.isValid(); line = line.next()) {
      for (auto part = line.begin(); !part.atEnd(); ++part) {
        const QTextCharFormat format = part.fragment().charFormat();
        if (!format.anchorHref().isEmpty()) found.insert(format.foreground().color().rgb());
      }
    }
    return found;
  };
  QPalette palette = QGuiApplication::palette();
  const QColor light(120, 180, 255);
  QVERIFY(colours() == QSet<QRgb>{palette.color(QPalette::Link).rgb()});
  palette.setColor(QPalette::Link, light);
  QGuiApplication::setPalette(palette);
  QCoreApplication::processEvents();
  QVERIFY(colours() == QSet<QRgb>{light.rgb()});
  QCOMPARE(browser.verticalScrollBar()->value(), 1500);
}

QTEST_MAIN(GuideTest)
#include "GuideTest.moc"
