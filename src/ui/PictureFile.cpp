#include "ui/PictureFile.h"

#include <QBuffer>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>
#include <QSvgGenerator>
#include <algorithm>
#include <cmath>

#include "link/Fault.h"

namespace pulsemod {

namespace {

/// A picture of this size shows its texts as large as the screen does.
constexpr QSizeF usualSize(800, 600);

constexpr int dotsPerInch = 96;
constexpr double pointsPerInch = 72;
/// A PDF file keeps places as whole dots.
constexpr int fineDotsPerInch = 1200;

QString creator() { return QStringLiteral("Pelmora PulseMod"); }

QString titleOf(const GraphSheet& sheet) { return sheet.heading.front().text; }

std::string contentOf(const QBuffer& buffer) { return buffer.data().toStdString(); }

void paint(QPaintDevice& device, const GraphSheet& sheet, const PictureForm& form,
           Surface surface) {
  QPainter painter(&device);
  paintSheet(painter, sheet, {form.size, form.ratio, surface, form.ground});
}

std::string pngBytes(const GraphSheet& sheet, const PictureForm& form) {
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  sheetImage(sheet, form).save(&buffer, "PNG");
  return contentOf(buffer);
}

std::string svgBytes(const GraphSheet& sheet, const PictureForm& form) {
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  QSvgGenerator generator;
  generator.setOutputDevice(&buffer);
  generator.setResolution(dotsPerInch);
  generator.setSize(form.size);
  generator.setViewBox(QRect(QPoint(), form.size));
  generator.setTitle(titleOf(sheet));
  generator.setDescription(creator());
  paint(generator, sheet, form, Surface::vector);
  return contentOf(buffer);
}

std::string pdfBytes(const GraphSheet& sheet, const PictureForm& form) {
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  QPdfWriter writer(&buffer);
  writer.setTitle(titleOf(sheet));
  writer.setCreator(creator());
  writer.setResolution(fineDotsPerInch);
  writer.setPageSize(QPageSize(QSizeF(form.size) * pointsPerInch / dotsPerInch, QPageSize::Point,
                               QString(), QPageSize::ExactMatch));
  writer.setPageMargins(QMarginsF());
  QPainter painter(&writer);
  constexpr double fineDots = static_cast<double>(fineDotsPerInch) / dotsPerInch;
  painter.scale(fineDots, fineDots);
  paintSheet(painter, sheet, {form.size, form.ratio, Surface::vector, form.ground});
  painter.end();
  return contentOf(buffer);
}

}  // namespace

PictureForm screenForm(const GraphSheet& sheet, Ground ground) {
  return {sheet.screenSize, sheet.screenRatio, ground};
}

PictureForm sizedForm(const QSize& size, Ground ground) {
  const double ratio =
      std::min(size.width() / usualSize.width(), size.height() / usualSize.height());
  return {size, std::max(1.0, ratio), ground};
}

const std::vector<FileKind>& pictureKinds() {
  static const std::vector<FileKind> kinds{
      {"PNG picture", "png"}, {"SVG drawing", "svg"}, {"PDF document", "pdf"}};
  return kinds;
}

QImage sheetImage(const GraphSheet& sheet, const PictureForm& form) {
  QImage image(form.size, QImage::Format_RGB32);
  if (image.isNull()) throw Fault("There is not enough memory for a picture of that size");
  constexpr double inchesPerMetre = 1 / 0.0254;
  const int dotsPerMetre = static_cast<int>(std::lround(dotsPerInch * form.ratio * inchesPerMetre));
  paint(image, sheet, form, Surface::image);
  // For the programs that take it: the lengths of its fonts are those of the screen.
  image.setDotsPerMeterX(dotsPerMetre);
  image.setDotsPerMeterY(dotsPerMetre);
  image.setText(QStringLiteral("Title"), titleOf(sheet));
  image.setText(QStringLiteral("Software"), creator());
  return image;
}

std::string pictureBytes(const GraphSheet& sheet, const PictureForm& form,
                         const std::string& path) {
  const QString name = QString::fromStdString(path);
  if (name.endsWith(QLatin1String(".svg"), Qt::CaseInsensitive)) return svgBytes(sheet, form);
  if (name.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive)) return pdfBytes(sheet, form);
  return pngBytes(sheet, form);
}

void printSheet(const GraphSheet& sheet, QPrinter& printer) {
  printer.setDocName(titleOf(sheet));
  printer.setCreator(creator());
  QPainter painter;
  if (!painter.begin(&printer)) throw Fault("The printer did not take the page");
  constexpr double pageWidth = 1000;
  const QSize dots = painter.viewport().size();
  const double scale = dots.width() / pageWidth;
  const QSize page(static_cast<int>(pageWidth), static_cast<int>(dots.height() / scale));
  painter.scale(scale, scale);
  paintSheet(painter, sheet, {page, 1, Surface::vector, Ground::white});
  if (!painter.end()) throw Fault("The printer did not take the page");
}

}  // namespace pulsemod
