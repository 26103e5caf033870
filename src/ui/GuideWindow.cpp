#include "ui/GuideWindow.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QKeyEvent>
#include <QScreen>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QVBoxLayout>
#include <algorithm>
#include <vector>

#include "platform/Services.h"

namespace pulsemod {

namespace {

constexpr auto title = "User Guide";
constexpr double headingSpace = 18;

void tell(const std::string& text) {
  services().dialogs.showMessage(text, title, MessageIcon::information);
}

/// The pieces of a text that have a format of their own.
std::vector<QTextFragment> fragmentsOf(const QTextDocument& document) {
  std::vector<QTextFragment> fragments;
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
    for (auto piece = block.begin(); !piece.atEnd(); ++piece) fragments.push_back(piece.fragment());
  }
  return fragments;
}

QTextCursor cursorOver(QTextDocument* document, int position, int length) {
  QTextCursor cursor(document);
  cursor.setPosition(position);
  cursor.setPosition(position + length, QTextCursor::KeepAnchor);
  return cursor;
}

/// Of that many pixels, or of its own if these are less: a text leaves out pixels of a picture that
/// is too large for its place, and with them parts of letters.
QImage pictureOf(const QString& file, int natural, int pixels) {
  const QImage picture(file);
  return pixels < natural ? picture.scaledToWidth(pixels, Qt::SmoothTransformation) : picture;
}

}  // namespace

QString userGuideOf(const QString& programFolder) {
  for (const char* folder : {"../share/doc/pulsemod", "../docs"}) {
    const QFileInfo guide(QDir(programFolder), QLatin1String(folder) + "/user-guide.md");
    if (guide.isFile()) return guide.canonicalFilePath();
  }
  return {};
}

QString headingAnchor(const QString& heading) {
  QString anchor;
  for (const QChar letter : heading.trimmed().toLower()) {
    if (letter == ' ' || letter == '-') anchor += '-';
    if (letter.isLetterOrNumber() || letter == '_') anchor += letter;
  }
  return anchor;
}

GuideBrowser::GuideBrowser(QWidget* parent) : QTextBrowser(parent) {
  setObjectName(QStringLiteral("txtUserGuide"));
  setAccessibleName(QStringLiteral("User guide"));
  setOpenExternalLinks(true);
  document()->setDocumentMargin(16);
}

void GuideBrowser::doSetSource(const QUrl& link, QTextDocument::ResourceType type) {
  const QUrl url = source().resolved(link);
  if (url.isLocalFile() && !QFileInfo(url.toLocalFile()).isFile()) {
    tell(url.fileName().toStdString() + " is not installed with the user guide.");
    return;
  }
  QTextBrowser::doSetSource(url, type);
  prepareHeadings();
  fitPictures();
  // Only now its heading has a name.
  if (url.hasFragment()) scrollToAnchor(url.fragment(QUrl::FullyDecoded));
}

void GuideBrowser::prepareHeadings() {
  for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
    if (block.blockFormat().headingLevel() == 0) continue;
    QTextCharFormat name;
    name.setAnchor(true);
    name.setAnchorNames({headingAnchor(block.text())});
    QTextBlockFormat space;
    space.setTopMargin(headingSpace);
    QTextCursor heading = cursorOver(document(), block.position(), block.length() - 1);
    heading.mergeCharFormat(name);
    heading.mergeBlockFormat(space);
  }
}

void GuideBrowser::fitPictures() {
  // While the first page is being read its text has no place yet that pictures are named from.
  if (source().isEmpty()) return;
  const int room = viewport()->width() - 2 * static_cast<int>(document()->documentMargin());
  bool changed = false;
  for (const QTextFragment& fragment : fragmentsOf(*document())) {
    if (!fragment.charFormat().isImageFormat()) continue;
    QTextImageFormat picture = fragment.charFormat().toImageFormat();
    const QUrl file = source().resolved(QUrl(picture.name()));
    const int natural = QImageReader(file.toLocalFile()).size().width();
    if (natural <= 0) continue;
    const int width = std::clamp(room, 1, natural);
    if (picture.width() == width) continue;
    document()->addResource(
        QTextDocument::ImageResource, file,
        pictureOf(file.toLocalFile(), natural, qRound(width * devicePixelRatioF())));
    picture.setWidth(width);
    cursorOver(document(), fragment.position(), fragment.length()).setCharFormat(picture);
    changed = true;
  }
  // Else the layout, which is made in steps, leaves out most of what stands below a changed
  // picture.
  if (changed) document()->markContentsDirty(0, document()->characterCount());
}

void GuideBrowser::changeEvent(QEvent* event) {
  QTextBrowser::changeEvent(event);
  if (event->type() != QEvent::PaletteChange || source().isEmpty()) return;
  const int place = verticalScrollBar()->value();
  reload();
  verticalScrollBar()->setValue(place);
}

void GuideBrowser::resizeEvent(QResizeEvent* event) {
  QTextBrowser::resizeEvent(event);
  fitPictures();
}

GuideWindow::GuideWindow(QWidget* owner)
    : QWidget(owner, Qt::Window), browser_(new GuideBrowser(this)) {
  setObjectName(QStringLiteral("frmUserGuide"));
  setWindowTitle(QStringLiteral("Pelmora PulseMod User Guide"));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(browser_);
  resize(QSize(860, 760).boundedTo(screen()->availableSize()));
}

void GuideWindow::open() {
  const QString guide = userGuideOf(QCoreApplication::applicationDirPath());
  if (guide.isEmpty()) {
    tell(
        "The user guide is not installed: there is no file share/doc/pulsemod/user-guide.md beside "
        "the folder of the program.");
    return;
  }
  // Whoever left it in the middle finds it there.
  if (browser_->source().isEmpty()) browser_->setSource(QUrl::fromLocalFile(guide));
  show();
  raise();
  activateWindow();
}

void GuideWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    close();
    return;
  }
  QWidget::keyPressEvent(event);
}

}  // namespace pulsemod
