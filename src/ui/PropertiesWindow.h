#pragma once

#include <QDialog>
#include <functional>

#include "settings/PropertiesView.h"

class QLayout;
class QPushButton;
class QTabWidget;

namespace pulsemod {

class ChannelPage;
class DisplayPage;
class GatesPage;
class MarkersPage;
class MeasurementPage;

/// `frmProperties`: the settings on the pages of a tab control, and the buttons that read, write,
/// load and save them all. Modeless, so that it can stand beside the graph and follow it. Must be
/// the `propertiesView()` when it is shown. Closing it hides it.
class PropertiesWindow : public QDialog, public PropertiesView {
 public:
  /// `openMarkers` shows `frmMarkers`.
  PropertiesWindow(QWidget* owner, std::function<void()> openMarkers);

  /// Takes everything from the model and comes to the front.
  void present();

  void refresh() override;
  void refreshGatePage() override;
  void refreshMarkerPage() override;
  void refreshChannelPage() override;
  void showRepeatCount() override;
  void showChannelSentence(const std::string& sentence) override;
  void LoadFileSettings(std::int16_t version) override;

 private:
  QTabWidget* buildPages(std::function<void()> openMarkers);
  QLayout* buildButtons();
  QPushButton* addButton(const char* name, const QString& caption, const QString& toolTip,
                         void (*act)());
  /// After a fault the controls show the model again.
  void run(const std::function<void()>& edit);

  ChannelPage* channel_ = nullptr;
  GatesPage* gates_ = nullptr;
  MarkersPage* markers_ = nullptr;
  MeasurementPage* measurement_ = nullptr;
  DisplayPage* display_ = nullptr;
};

}  // namespace pulsemod
