#pragma once

#include <QMainWindow>
#include <functional>
#include <string>
#include <vector>

#include "ui/ReadoutLayout.h"

class QGroupBox;
class QLabel;
class QScrollArea;

namespace pulsemod {

/// A small window of numbers in front of `frmMain`: frames with labels, which scroll where the
/// screen has no room for them, and a menu for the font of the labels. It has the size that they
/// need. Closing it hides it.
class ReadoutWindow : public QMainWindow {
 public:
  struct Hooks {
    /// Fills the window with the last readings.
    std::function<void()> fill;
    /// The window was shown or hidden, by whatever means.
    std::function<void(bool shown)> onVisible;
  };

  /// Lays the window out, fills it and shows it, for the first time beside its owner, later where
  /// it was last.
  void open();
  /// Already while `open` fills it.
  bool isOpen() const { return isVisible() || isOpening_; }

 protected:
  ReadoutWindow(QWidget* owner, const char* name, const QString& title, Side side, Hooks hooks);

  QGroupBox* addFrame(const QString& name, const QString& title);
  /// `description` tells it from the others of its kind. An accessible name would hide its text.
  QLabel* addLabel(QGroupBox* frame, const QString& name, const QString& description);

  /// Widens a column, and raises the height of its labels, to hold this one with its sample caption
  /// and, if it is not hidden, with its own.
  static void measure(QLabel& label, const QString& sample, int& columnWidth, int& labelHeight);
  /// Sets the text of a unit, which stands right after its number, a blank apart from it.
  static void indentUnit(QLabel& unit);
  /// Widens the column if the text needs it, and then returns true.
  static bool showText(QLabel& label, const std::string& text, int& columnWidth);
  /// 120/1440 inch, the distance of frames and of labels across.
  int gap() const;
  /// From one row of labels of this height to the next.
  int rowPitch(int labelHeight) const;

  /// Widths and heights of the labels from their sample captions.
  virtual void measureSamples() = 0;
  /// Places everything for the present sizes.
  virtual void layOut() = 0;
  /// From the frame's top to its first row.
  static int rowsTop(const QGroupBox& frame);
  /// From its last row to its bottom.
  static int rowsBottom(const QGroupBox& frame);
  /// Puts frames of one size into the first of the arrangements for which there is room, and takes
  /// the size that it needs.
  void arrange(const std::vector<QGroupBox*>& frames, const QSize& frame,
               const std::vector<FrameCells>& arrangements);

  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void buildMenu();
  void chooseLabelFont();
  void layOutAnew();
  QSize roomForArea() const;
  int titleWidth() const;
  void takeSize(const QSize& needed);
  QPoint firstPlace() const;

  Side side_;
  Hooks hooks_;
  QScrollArea* scroll_;
  QWidget* area_;
  std::vector<QLabel*> labels_;
  bool isPlaced_ = false;
  bool isOpening_ = false;
};

}  // namespace pulsemod
