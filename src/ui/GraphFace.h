#pragma once

#include <QSize>
#include <QString>
#include <functional>

class QLabel;
class QMainWindow;
class QObject;
class QWidget;

namespace pulsemod {

class ParameterLabel;

/// What both graph windows and their faces have in common.

/// The window becomes no smaller than its menu bar over a face of that size, as far as its screen
/// has room, and never smaller than 480 by 360.
void setSmallestFace(QMainWindow& window, const QSize& face);
/// The size in which a window is first shown. Its smallest face is set by then.
void takeFirstSize(QMainWindow& window);

/// The dark ground and the text colour of labels on it. The panel has the focus at the start, and
/// `meaning` is spoken then.
void setUpFace(QWidget& panel, const QString& meaning);
/// `menuLine`, the line under the menu bar. Its parent has a face already.
void setUpRule(QWidget& rule);
/// An accessible name would hide the label's text.
void setUpLabel(QLabel& label, const char* name, const QString& toolTip);
/// Shows that nothing has been measured yet.
void setUpRateLabel(QLabel& label, const char* name);
void resetRate(QLabel& label);
/// A label whose click calls a handler of a subsystem.
void setUpParameter(ParameterLabel& label, const char* name, const QString& meaning,
                    const QString& toolTip, void (*onClick)());

/// What the label needs for its caption or for `sample`, whichever is wider.
QSize widerThan(const QLabel& label, const QString& sample);
/// The widest rate that is usual.
QString widestRate();

/// Shows a number that changes with each pass, in a label with room for `sample`. True when that is
/// too little: lay out anew.
bool showNumber(QLabel& label, const QString& caption, const QString& sample);
/// The same for a rate and its tool tip.
bool showRate(QLabel& label, const QString& caption, const QString& toolTip);

/// Draws a graph in the middle of a resize. The box of a fault must wait until the resize is over:
/// the window could be resized under it, and the layout of a main window does not survive a resize
/// within a resize. So a fault that was not reported yet calls `drawing` again, later, with a
/// report.
void drawWithoutBox(QObject* context, const std::function<void()>& drawing);

}  // namespace pulsemod
