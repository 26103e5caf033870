#include "ui/CCDFWindow.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>

#include "ccdf/CCDFCursor.h"
#include "ccdf/CCDFGraphFile.h"
#include "ccdf/CCDFLoop.h"
#include "ccdf/MeasurementSource.h"
#include "link/Session.h"
#include "ui/CCDFSheet.h"
#include "ui/FileDrop.h"
#include "ui/GraphFace.h"
#include "ui/HelpMenu.h"
#include "ui/Menus.h"
#include "ui/PictureItems.h"

namespace pulsemod {

CCDFWindow::CCDFWindow() : panel_(new CCDFPanel(this)) {
  setObjectName(QStringLiteral("frmCCDF"));
  setWindowTitle(QStringLiteral("Pelmora PulseMod"));
  setCentralWidget(panel_);
  buildFileMenu();
  buildCCDFMenu();
  buildCursorMenu();
  buildSourceMenu();
  addHelpMenu(this);
  new FileDrop(this, OpenCCDFGraphFile);
  setAcquisitionMenus(false);
  CCDFWindow::setCursorMenus(false);
  setSmallestFace(*this, panel_->smallestArea());
  takeFirstSize(*this);
}

void CCDFWindow::buildFileMenu() {
  QMenu* const menu = addMenu(menuBar(), QStringLiteral("&File"));
  QAction* const open =
      addItem(menu, "OpenMenu", QStringLiteral("&Open..."),
              QStringLiteral("Open a saved curve as the second curve"), QKeySequence::Open);
  QAction* const save = addItem(menu, "menuSave", QStringLiteral("&Save..."),
                                QStringLiteral("Save the live curve"), QKeySequence::Save);
  connectItem(open, OpenCCDFGraph);
  connectItem(save, SaveCCDFGraph);
  menu->addSeparator();
  addPictureItems(menu, this,
                  {[this] { return ccdfSheet(*panel_); }, ccdfGraphText, QStringLiteral("curve")});
}

void CCDFWindow::buildCCDFMenu() {
  QMenu* const menu = addMenu(menuBar(), QStringLiteral("&CCDF"));
  menuStart_ =
      addItem(menu, "menuStart", QStringLiteral("St&art"),
              QStringLiteral("Read curves from the meter until stopped"), QKeySequence(Qt::Key_F5));
  menuStop_ = addItem(menu, "menuStop", QStringLiteral("S&top"),
                      QStringLiteral("Finish the curve in progress and read no more"),
                      QKeySequence(Qt::SHIFT | Qt::Key_F5));
  QAction* const restart =
      addItem(menu, "MenuRestart", QStringLiteral("&Restart Statistics"),
              QStringLiteral("Count anew. While curves are read each one counts anew by itself."),
              QKeySequence(Qt::Key_F6));
  menu->addSeparator();
  menuSecondProfile_ =
      addItem(menu, "menuSecondProfile", QStringLiteral("&Second Profile"),
              QStringLiteral("Draw the second curve under the live one, from the next drawing"),
              QKeySequence(Qt::Key_F7));
  menuSecondProfile_->setCheckable(true);
  connectItem(menuStart_, StartCCDF);
  connectItem(menuStop_, StopCCDF);
  connectItem(restart, RestartStatistics);
}

void CCDFWindow::buildCursorMenu() {
  QMenu* const menu = addMenu(menuBar(), QStringLiteral("C&ursor"));
  menuOn_ = addItem(menu, "menuOn", QStringLiteral("&On"),
                    QStringLiteral("Show the meter's cursor"), QKeySequence(Qt::Key_F8));
  menuOff_ = addItem(menu, "menuOFF", QStringLiteral("O&ff"),
                     QStringLiteral("Switch the meter's cursor off"),
                     QKeySequence(Qt::SHIFT | Qt::Key_F8));
  menuSetCursorPosition_ =
      addItem(menu, "menuSetCursorPosition", QStringLiteral("&Position..."),
              QStringLiteral("Place the cursor at a power"), QKeySequence(Qt::Key_F9));
  connectItem(menuOn_, SwitchCursorOn);
  connectItem(menuOff_, SwitchCursorOff);
  connectItem(menuSetCursorPosition_, EditCursorPosition);
}

void CCDFWindow::buildSourceMenu() {
  QMenu* const menu = addMenu(menuBar(), QStringLiteral("&Source"));
  menu->menuAction()->setObjectName(QStringLiteral("menuMeasSource"));
  connectItem(addItem(menu, "menuMeasSourceGate", QStringLiteral("&Gate"),
                      QStringLiteral("The active gate, without its fence")),
              [] { RequestMeasurementSource(CCDFSource::gate); });
  connectItem(addItem(menu, "menuMeasSourceActiveMarker", QStringLiteral("Active &Marker"),
                      QStringLiteral("The point of the active marker")),
              [] { RequestMeasurementSource(CCDFSource::marker); });
  connectItem(addItem(menu, "menuMeasSourceChannel", QStringLiteral("&Channel"),
                      QStringLiteral("All that the channel measures")),
              [] { RequestMeasurementSource(CCDFSource::channel); });
}

void CCDFWindow::setStartPowerLabel(const std::string& caption) {
  panel_->setStartPower(QString::fromStdString(caption));
}

void CCDFWindow::setStopPowerLabel(const std::string& caption) {
  panel_->setStopPower(QString::fromStdString(caption));
}

void CCDFWindow::setSourceLabel(const std::string& caption) {
  panel_->setSource(QString::fromStdString(caption));
}

void CCDFWindow::showRate(const std::string& caption, const std::string& toolTip) {
  panel_->showRate(QString::fromStdString(caption), QString::fromStdString(toolTip));
}

void CCDFWindow::showAcquisitionStarted() { setAcquisitionMenus(true); }

void CCDFWindow::showAcquisitionStopped() { setAcquisitionMenus(false); }

void CCDFWindow::setAcquisitionMenus(bool running) {
  menuStart_->setEnabled(!running);
  menuStop_->setEnabled(running);
}

void CCDFWindow::setCursorMenus(bool cursorOn) {
  menuOn_->setEnabled(!cursorOn);
  menuOff_->setEnabled(cursorOn);
  menuSetCursorPosition_->setEnabled(cursorOn);
}

void CCDFWindow::showCursor(const std::string& power, const std::string& percentage, double x) {
  panel_->showCursor(QString::fromStdString(power), QString::fromStdString(percentage), x);
}

bool CCDFWindow::secondCurveIsShown() const { return menuSecondProfile_->isChecked(); }

void CCDFWindow::showSecondCurve() { menuSecondProfile_->setChecked(true); }

void CCDFWindow::closeEvent(QCloseEvent* /*event*/) { EndSession(); }

}  // namespace pulsemod
