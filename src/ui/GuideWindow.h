#pragma once

#include <QString>
#include <QTextBrowser>
#include <QUrl>
#include <QWidget>

namespace pulsemod {

/// Where the user guide of a program in that folder is: beside an installed program, or in the
/// source tree that it was built in. Empty when it is in neither place.
QString userGuideOf(const QString& programFolder);

/// How a link names a heading: "Gates & fences" is "gates--fences".
QString headingAnchor(const QString& heading);

/// Shows a page whose links may lead to its headings, and whose pictures are never wider than the
/// page.
class GuideBrowser : public QTextBrowser {
 public:
  explicit GuideBrowser(QWidget* parent = nullptr);

 protected:
  void doSetSource(const QUrl& link, QTextDocument::ResourceType type) override;
  /// The colour of a link is part of the page.
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  /// Gives each its name, and room above it.
  void prepareHeadings();
  void fitPictures();
};

/// `frmUserGuide`: the user guide, with `txtUserGuide`.
class GuideWindow : public QWidget {
 public:
  explicit GuideWindow(QWidget* owner);

  /// Shows it; a guide that is not there is told in a box.
  void open();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  GuideBrowser* browser_;
};

}  // namespace pulsemod
