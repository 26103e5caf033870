#pragma once

#include <QFrame>
#include <QLabel>
#include <QWidget>
#include <array>
#include <vector>

#include "ui/CCDFLayout.h"
#include "ui/GraphWidget.h"
#include "ui/ParameterLabel.h"
#include "ui/RateLabel.h"

namespace pulsemod {

/// The face of `frmCCDF` under the menu bar: the graph and what stands around it. Resizing it lays
/// it out and draws the graph anew.
class CCDFPanel : public QWidget {
 public:
  explicit CCDFPanel(QWidget* parent = nullptr);

  Picture& graph() { return graph_.picture(); }
  const GraphWidget& graphWidget() const { return graph_; }
  void setStartPower(const QString& caption) { setCaption(startPower_, caption); }
  void setStopPower(const QString& caption) { setCaption(stopPower_, caption); }
  void setSource(const QString& caption) { setCaption(source_, caption); }
  void showRate(const QString& caption, const QString& toolTip);
  void showCursor(const QString& power, const QString& percentage, double x);
  void hideCursor();
  bool cursorFrameIsShown() const { return !cursor_.isHidden(); }
  QString source() const { return source_.text(); }
  QString startPower() const { return startPower_.text(); }
  QString stopPower() const { return stopPower_.text(); }
  QString cursorPower() const { return cursorPower_.text(); }
  QString cursorPercentage() const { return cursorPercentage_.text(); }
  /// From 100 % down.
  std::vector<QString> decadeTexts() const;
  void setSizingPointer(bool sizing) { graph_.setSizingPointer(sizing); }

  /// The smallest area that holds the usual captions.
  QSize smallestArea() const;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  CCDFPartSizes partSizes() const;
  void setCaption(QLabel& label, const QString& caption);
  void place();

  QWidget rule_{this};
  QLabel source_{this};
  RateLabel rate_{this};
  QFrame cursor_{this};
  QLabel cursorPower_{&cursor_};
  QLabel cursorPercentage_{&cursor_};
  std::array<QLabel, decadeLabels> decades_;
  GraphWidget graph_{this};
  ParameterLabel startPower_{this};
  ParameterLabel stopPower_{this};
};

}  // namespace pulsemod
