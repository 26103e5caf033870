#pragma once

#include <QMainWindow>
#include <functional>
#include <optional>

#include "profile/ProfileView.h"
#include "settings/PropertiesView.h"
#include "ui/ProfilePanel.h"

class QAction;
class QFont;

namespace pulsemod {

class InfoBox;
class MarkersWindow;
class PropertiesWindow;

/// `frmMain`. Must be the `profileView()` when it is shown.
class MainWindow : public QMainWindow, public ProfileView {
 public:
  /// `showComms` shows `frmComms` until the user closes it.
  explicit MainWindow(std::function<void()> showComms);

  Picture& graph() override;
  void setGraphLabel(GraphLabel label, const std::string& caption) override;
  std::string graphLabel(GraphLabel label) const override;
  void placeGateLines(const GateLineArray& lines) override;
  void setEdgeLabelCaption(const std::string& caption) override;
  std::string edgeLabelCaption() const override;
  PictureSize edgeLabelSize() const override;
  void showEdgeLabel(PicturePoint topLeft) override;
  void hideEdgeLabel() override;
  void setSizingPointer(bool sizing) override;
  void showRate(const std::string& caption, const std::string& toolTip) override;
  void showAcquisitionStarted() override;
  void showAcquisitionStopped() override;
  bool secondProfileIsShown() const override;
  void showSecondProfile() override;
  void refreshGatePage() override;
  InfoBoxView* infoBox() override;
  MarkersView* markersWindow() override;

  /// Puts the graph and its labels into a font and lays the window out for it.
  void applyGraphFont(const QFont& chosen);

  /// Shows `frmMarkers`, which is built when it is first shown.
  void openMarkers();

  /// The end of the program: closing the window and Exit.
  [[noreturn]] static void unload();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void buildFileMenu();
  void buildPulseModMenu();
  void buildSettingsMenu();
  void buildViewMenu();
  void connectMenus();
  void chooseGraphFont();
  void openProperties();
  /// One of the two readout windows, which is built when it is first needed.
  template <typename Window>
  Window& readout(Window*& window, QAction& item, void (*fill)());
  /// Shows or hides it.
  template <typename Window>
  void toggle(Window*& window, QAction& item, void (*fill)());
  void setAcquisitionMenus(bool running);

  std::function<void()> showComms_;
  ProfilePanel* panel_;
  InfoBox* infoBox_ = nullptr;
  MarkersWindow* markersWindow_ = nullptr;
  PropertiesWindow* properties_ = nullptr;
  std::optional<PropertiesViewGuard> propertiesIsTheView_;
  QAction* menuOpen_ = nullptr;
  QAction* menuSave_ = nullptr;
  QAction* menuExit_ = nullptr;
  QAction* menuStart_ = nullptr;
  QAction* menuStop_ = nullptr;
  QAction* menuFreeRun_ = nullptr;
  QAction* menuSecondProfile_ = nullptr;
  QAction* menuDisplayUpdate_ = nullptr;
  QAction* menuProperties_ = nullptr;
  QAction* menuComs_ = nullptr;
  QAction* menuGraphFont_ = nullptr;
  QAction* menuInfoBox_ = nullptr;
  QAction* menuMarkers_ = nullptr;
};

}  // namespace pulsemod
