#include "ui/MainWindow.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <utility>

#include "link/Fault.h"
#include "link/Session.h"
#include "profile/AcquisitionLoop.h"
#include "profile/ProfileGraph.h"
#include "profile/Readouts.h"
#include "tracefiles/ProfileTraceFile.h"
#include "ui/FileDrop.h"
#include "ui/FontChoice.h"
#include "ui/GraphFace.h"
#include "ui/HelpMenu.h"
#include "ui/InfoBox.h"
#include "ui/MarkersWindow.h"
#include "ui/Menus.h"
#include "ui/PictureItems.h"
#include "ui/ProfileSheet.h"
#include "ui/PropertiesWindow.h"

namespace pulsemod {

MainWindow::MainWindow(std::function<void()> showComms)
    : showComms_(std::move(showComms)), panel_(new ProfilePanel(this)) {
  setObjectName(QStringLiteral("frmMain"));
  setWindowTitle(QStringLiteral("Pelmora PulseMod"));
  setCentralWidget(panel_);
  buildFileMenu();
  buildPulseModMenu();
  buildSettingsMenu();
  buildViewMenu();
  addHelpMenu(this);
  connectMenus();
  new FileDrop(this, OpenProfileTraceFile);
  setAcquisitionMenus(false);
  setSmallestFace(*this, panel_->smallestArea());
  takeFirstSize(*this);
}

void MainWindow::buildFileMenu() {
  QMenu* menu = addMenu(menuBar(), QStringLiteral("&File"));
  menuOpen_ =
      addItem(menu, "menuOpen", QStringLiteral("&Open..."),
              QStringLiteral("Open a saved profile as the second profile"), QKeySequence::Open);
  menuSave_ = addItem(menu, "menuSave", QStringLiteral("&Save..."),
                      QStringLiteral("Save the live profile"), QKeySequence::Save);
  menu->addSeparator();
  addPictureItems(
      menu, this,
      {[this] { return profileSheet(*panel_); }, profileTraceText, QStringLiteral("profile")});
  menu->addSeparator();
  menuExit_ = addItem(menu, "menuExit", QStringLiteral("E&xit"), QStringLiteral("End the program"),
                      QKeySequence(Qt::CTRL | Qt::Key_Q));
}

void MainWindow::buildPulseModMenu() {
  QMenu* menu = addMenu(menuBar(), QStringLiteral("&PulseMod"));
  menuStart_ = addItem(menu, "menuStart", QStringLiteral("St&art"),
                       QStringLiteral("Read profiles from the meter until stopped"),
                       QKeySequence(Qt::Key_F5));
  menuStop_ = addItem(menu, "menuStop", QStringLiteral("S&top"),
                      QStringLiteral("Finish the profile in progress and read no more"),
                      QKeySequence(Qt::SHIFT | Qt::Key_F5));
  menuFreeRun_ =
      addItem(menu, "menuFreeRun", QStringLiteral("&Free Run"),
              QStringLiteral("Return the meter's trigger to free run"), QKeySequence(Qt::Key_F6));
  menu->addSeparator();
  menuSecondProfile_ =
      addItem(menu, "menuSecondProfile", QStringLiteral("&Second Profile"),
              QStringLiteral("Draw the second profile under the live one, from the next drawing"),
              QKeySequence(Qt::Key_F7));
  menuSecondProfile_->setCheckable(true);
  menuDisplayUpdate_ =
      addItem(menu, "menudisplayupdate", QStringLiteral("Stop Meter &Display Update"),
              QStringLiteral("While ticked, the meter does not update its own display"),
              QKeySequence(Qt::Key_F8));
  menuDisplayUpdate_->setCheckable(true);
}

void MainWindow::buildSettingsMenu() {
  QMenu* menu = addMenu(menuBar(), QStringLiteral("&Settings"));
  menuProperties_ = addItem(menu, "menuProperties", QStringLiteral("&Properties..."),
                            QStringLiteral("Gates, markers, channels and averaging"),
                            QKeySequence(Qt::ALT | Qt::Key_Return));
  menuComs_ = addItem(menu, "menuComs", QStringLiteral("&GPIB/RS232 Comms..."),
                      QStringLiteral("How the meter is reached, from the next start"),
                      QKeySequence(Qt::CTRL | Qt::Key_G));
  menuGraphFont_ = addItem(menu, "menuGraphFont", QStringLiteral("Graph &Font..."),
                           QStringLiteral("The font of the graph and of the labels around it"),
                           QKeySequence(Qt::CTRL | Qt::Key_T));
}

void MainWindow::buildViewMenu() {
  QMenu* menu = addMenu(menuBar(), QStringLiteral("&View"));
  menuInfoBox_ =
      addItem(menu, "menuInfoBox", QStringLiteral("&Info Box"),
              QStringLiteral("The measurements of the gates"), QKeySequence(Qt::CTRL | Qt::Key_I));
  menuMarkers_ =
      addItem(menu, "menuMarkers", QStringLiteral("&Markers"),
              QStringLiteral("The readings of the markers"), QKeySequence(Qt::CTRL | Qt::Key_M));
  menuInfoBox_->setCheckable(true);
  menuMarkers_->setCheckable(true);
}

void MainWindow::connectMenus() {
  connectItem(menuOpen_, OpenProfileTrace);
  connectItem(menuSave_, SaveProfileTrace);
  connect(menuExit_, &QAction::triggered, this, &MainWindow::unload);
  connectItem(menuStart_, StartAcquisition);
  connectItem(menuStop_, StopAcquisition);
  connectItem(menuFreeRun_, SetTriggerFreeRun);
  connect(menuDisplayUpdate_, &QAction::triggered, this,
          [](bool checked) { reportFaults([checked] { SetMeterDisplayStopped(checked); }); });
  connectItem(menuProperties_, [this] { openProperties(); });
  connectItem(menuComs_, showComms_);
  connectItem(menuGraphFont_, [this] { chooseGraphFont(); });
  connect(menuInfoBox_, &QAction::triggered, this,
          [this] { toggle(infoBox_, *menuInfoBox_, UpdateInfoBox); });
  connect(menuMarkers_, &QAction::triggered, this,
          [this] { toggle(markersWindow_, *menuMarkers_, UpdateMarkersWindow); });
}

void MainWindow::chooseGraphFont() {
  const auto chosen = chooseFont(panel_->graphFont(), QStringLiteral("Graph Font"), this);
  if (chosen) applyGraphFont(*chosen);
}

void MainWindow::applyGraphFont(const QFont& chosen) {
  panel_->setGraphFont(chosen);
  setSmallestFace(*this, panel_->smallestArea());
  panel_->layOutAndDraw();
}

Picture& MainWindow::graph() { return panel_->graph(); }

void MainWindow::setGraphLabel(GraphLabel label, const std::string& caption) {
  panel_->setGraphLabel(label, QString::fromStdString(caption));
}

std::string MainWindow::graphLabel(GraphLabel label) const {
  return panel_->graphLabel(label).toStdString();
}

void MainWindow::placeGateLines(const GateLineArray& lines) { panel_->placeGateLines(lines); }

void MainWindow::setEdgeLabelCaption(const std::string& caption) {
  panel_->setEdgeLabelCaption(QString::fromStdString(caption));
}

std::string MainWindow::edgeLabelCaption() const {
  return panel_->edgeLabelCaption().toStdString();
}

PictureSize MainWindow::edgeLabelSize() const { return panel_->edgeLabelSize(); }

void MainWindow::showEdgeLabel(PicturePoint topLeft) { panel_->showEdgeLabel(topLeft); }

void MainWindow::hideEdgeLabel() { panel_->hideEdgeLabel(); }

void MainWindow::setSizingPointer(bool sizing) { panel_->setSizingPointer(sizing); }

void MainWindow::showRate(const std::string& caption, const std::string& toolTip) {
  panel_->showRate(QString::fromStdString(caption), QString::fromStdString(toolTip));
}

void MainWindow::showAcquisitionStarted() {
  setAcquisitionMenus(true);
  if (properties_ != nullptr) properties_->hide();
}

void MainWindow::showAcquisitionStopped() { setAcquisitionMenus(false); }

void MainWindow::setAcquisitionMenus(bool running) {
  menuStart_->setEnabled(!running);
  menuStop_->setEnabled(running);
  menuFreeRun_->setEnabled(!running);
  menuProperties_->setEnabled(!running);
  menuComs_->setEnabled(!running);
}

bool MainWindow::secondProfileIsShown() const { return menuSecondProfile_->isChecked(); }

void MainWindow::showSecondProfile() { menuSecondProfile_->setChecked(true); }

void MainWindow::refreshGatePage() {
  if (properties_ != nullptr && properties_->isVisible()) properties_->refreshGatePage();
}

InfoBoxView* MainWindow::infoBox() {
  return infoBox_ != nullptr && infoBox_->isOpen() ? infoBox_ : nullptr;
}

MarkersView* MainWindow::markersWindow() {
  return markersWindow_ != nullptr && markersWindow_->isOpen() ? markersWindow_ : nullptr;
}

template <typename Window>
Window& MainWindow::readout(Window*& window, QAction& item, void (*fill)()) {
  if (window == nullptr) {
    window = new Window(this, {fill, [&item](bool shown) { item.setChecked(shown); }});
  }
  return *window;
}

template <typename Window>
void MainWindow::toggle(Window*& window, QAction& item, void (*fill)()) {
  reportFaults([&] {
    Window& shown = readout(window, item, fill);
    if (shown.isVisible()) {
      shown.close();
    } else {
      shown.open();
    }
  });
  // A click has changed the tick whatever came of it.
  item.setChecked(window->isVisible());
}

void MainWindow::openMarkers() {
  MarkersWindow& markers = readout(markersWindow_, *menuMarkers_, UpdateMarkersWindow);
  if (!markers.isVisible()) markers.open();
  markers.raise();
}

void MainWindow::openProperties() {
  RefreshGraph();
  UpdateMarkersWindow();
  if (properties_ == nullptr) {
    properties_ = new PropertiesWindow(this, [this] { openMarkers(); });
    propertiesIsTheView_.emplace(*properties_);
  }
  properties_->present();
}

void MainWindow::unload() { EndSession(); }

void MainWindow::closeEvent(QCloseEvent* /*event*/) { unload(); }

}  // namespace pulsemod
