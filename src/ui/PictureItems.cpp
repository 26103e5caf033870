#include "ui/PictureItems.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QPrintDialog>
#include <QPrinter>

#include "files/TextFile.h"
#include "platform/Services.h"
#include "ui/Menus.h"
#include "ui/PictureDialog.h"
#include "ui/PictureFile.h"

namespace pulsemod {

namespace {

PictureForm chosenForm(const GraphSheet& sheet) {
  const PictureChoice& choice = LastPictureChoice;
  if (choice.size == PictureSizeChoice::screen) return screenForm(sheet, choice.ground);
  return sizedForm(choice.chosenSize(), choice.ground);
}

void savePicture(QWidget* window, const GraphOutput& output) {
  if (!PictureDialog(window, output.sheet().screenSize).ask()) return;
  const std::string path = services().fileDialogs.askSaveFileOfKind("Save Picture", pictureKinds());
  if (path.empty()) return;
  const GraphSheet sheet = output.sheet();
  writeFile(path, pictureBytes(sheet, chosenForm(sheet), path));
}

void copyPicture(const GraphOutput& output) {
  const GraphSheet sheet = output.sheet();
  QGuiApplication::clipboard()->setImage(
      sheetImage(sheet, screenForm(sheet, LastPictureChoice.ground)));
}

void copyData(const GraphOutput& output) {
  QGuiApplication::clipboard()->setText(QString::fromStdString(output.data()));
}

void print(QWidget* window, const GraphOutput& output) {
  QPrinter printer(QPrinter::HighResolution);
  printer.setPageOrientation(QPageLayout::Landscape);
  QPrintDialog dialog(&printer, window);
  dialog.setObjectName(QStringLiteral("printDialog"));
  // There is one page.
  dialog.setOptions(QAbstractPrintDialog::PrintToFile | QAbstractPrintDialog::PrintShowPageSize);
  if (dialog.exec() == QDialog::Accepted) printSheet(output.sheet(), printer);
}

}  // namespace

void addPictureItems(QMenu* menu, QWidget* window, const GraphOutput& output) {
  connectItem(addItem(menu, "menuSavePicture", QStringLiteral("Save P&icture..."),
                      QStringLiteral("Save the graph as PNG, SVG or PDF"),
                      QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S)),
              [window, output] { savePicture(window, output); });
  connectItem(addItem(menu, "menuCopyPicture", QStringLiteral("&Copy Picture"),
                      QStringLiteral("Copy the graph to the clipboard, as large as it is"),
                      QKeySequence::Copy),
              [output] { copyPicture(output); });
  connectItem(
      addItem(menu, "menuCopyData", QStringLiteral("Copy &Data"),
              QStringLiteral("Copy the live %1 to the clipboard as the text that Save writes")
                  .arg(output.name),
              QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C)),
      [output] { copyData(output); });
  connectItem(addItem(menu, "menuPrint", QStringLiteral("&Print..."),
                      QStringLiteral("Print the graph on one page"), QKeySequence::Print),
              [window, output] { print(window, output); });
}

}  // namespace pulsemod
