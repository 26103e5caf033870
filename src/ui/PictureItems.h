#pragma once

#include <QString>
#include <functional>
#include <string>

#include "ui/GraphSheet.h"

class QMenu;
class QWidget;

namespace pulsemod {

/// What a graph window has for others.
struct GraphOutput {
  /// The graph as it is shown now.
  std::function<GraphSheet()> sheet;
  /// The text that a file of it would have now.
  std::function<std::string()> data;
  /// "profile" or "curve".
  QString name;
};

/// The items of a File menu that give the graph away: `menuSavePicture`, `menuCopyPicture`,
/// `menuCopyData`, `menuPrint`. Each takes what is shown when the user has answered its dialogs;
/// none talks to the meter.
void addPictureItems(QMenu* menu, QWidget* window, const GraphOutput& output);

}  // namespace pulsemod
