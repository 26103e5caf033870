#pragma once

class QMainWindow;

namespace pulsemod {

/// The Help menu of a window: `menuUserGuide` and `menuAbout`. Neither of their windows is modal,
/// so that the acquisition goes on behind them; each is built when it is first shown.
void addHelpMenu(QMainWindow* window);

}  // namespace pulsemod
