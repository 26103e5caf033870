#pragma once

#include <QImage>
#include <QSize>
#include <string>
#include <vector>

#include "platform/FileDialogs.h"
#include "ui/GraphSheet.h"

class QPrinter;

namespace pulsemod {

/// How a picture is made: its size in pixels (of vectors 96 make an inch), how many of them are one
/// pixel of a font, and its ground.
struct PictureForm {
  QSize size;
  double ratio = 1;
  Ground ground = Ground::white;
};

/// The size that the sheet has on the screen, and its pixels.
PictureForm screenForm(const GraphSheet& sheet, Ground ground);
/// A size of the user's choice. Texts and lines grow with it, so that a larger picture is a finer
/// one and shows the same.
PictureForm sizedForm(const QSize& size, Ground ground);

/// PNG, SVG and PDF, in the order in which they are offered.
const std::vector<FileKind>& pictureKinds();

/// A picture that does not fit into the memory is a `Fault`.
QImage sheetImage(const GraphSheet& sheet, const PictureForm& form);

/// The content of a picture file of the kind that the suffix of `path` tells, PNG for any other.
std::string pictureBytes(const GraphSheet& sheet, const PictureForm& form, const std::string& path);

/// One page, filled to its margins. A printer that does not take it is a `Fault`.
void printSheet(const GraphSheet& sheet, QPrinter& printer);

}  // namespace pulsemod
