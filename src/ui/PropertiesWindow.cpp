#include "ui/PropertiesWindow.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>
#include <utility>

#include "link/Fault.h"
#include "settings/ConfigExchange.h"
#include "settings/PropertyEdits.h"
#include "settings/SettingsFile.h"
#include "ui/ChannelPage.h"
#include "ui/FileDrop.h"
#include "ui/GatesPage.h"
#include "ui/MarkersPage.h"
#include "ui/MeasurementPages.h"

namespace pulsemod {

PropertiesWindow::PropertiesWindow(QWidget* owner, std::function<void()> openMarkers)
    : QDialog(owner) {
  setObjectName(QStringLiteral("frmProperties"));
  setWindowTitle(QStringLiteral("Properties"));
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(buildPages(std::move(openMarkers)));
  layout->addLayout(buildButtons());
  new FileDrop(this, LoadSettingsFileFrom);
}

QTabWidget* PropertiesWindow::buildPages(std::function<void()> openMarkers) {
  const RunEdit runEdit = [this](const std::function<void()>& edit) { run(edit); };
  auto* tabs = new QTabWidget;
  tabs->setObjectName(QStringLiteral("sstab"));
  tabs->setAccessibleName(QStringLiteral("Pages of settings"));
  channel_ = new ChannelPage(runEdit);
  gates_ = new GatesPage(runEdit);
  markers_ = new MarkersPage(runEdit, std::move(openMarkers));
  measurement_ = new MeasurementPage(runEdit);
  display_ = new DisplayPage(runEdit);
  tabs->addTab(channel_, QStringLiteral("&Channel"));
  tabs->addTab(gates_, QStringLiteral("&Gates"));
  tabs->addTab(markers_, QStringLiteral("&Markers"));
  tabs->addTab(measurement_, QStringLiteral("M&easurement"));
  tabs->addTab(display_, QStringLiteral("&Display"));
  return tabs;
}

QLayout* PropertiesWindow::buildButtons() {
  auto* layout = new QHBoxLayout;
  layout->addWidget(addButton("cmdLoadPM", QStringLiteral("&Load from Power meter"),
                              QStringLiteral("Take over the settings that the meter has now"),
                              LoadFromMeter));
  layout->addWidget(addButton("cmdSavePM", QStringLiteral("&Send to Power meter"),
                              QStringLiteral("Send the settings to the meter"), SaveToMeter));
  layout->addStretch();
  layout->addWidget(addButton("cmdSaveFile", QStringLiteral("Sa&ve Settings..."),
                              QStringLiteral("Save the settings in a file"), SaveSettingsFile));
  layout->addWidget(
      addButton("cmdLoadFile", QStringLiteral("L&oad Settings..."),
                QStringLiteral("Load the settings from a file and send them to the meter"),
                LoadSettingsFile));
  return layout;
}

QPushButton* PropertiesWindow::addButton(const char* name, const QString& caption,
                                         const QString& toolTip, void (*act)()) {
  auto* button = new QPushButton(caption);
  button->setObjectName(QLatin1String(name));
  button->setToolTip(toolTip);
  // Enter belongs to the boxes of the pages.
  button->setAutoDefault(false);
  connect(button, &QPushButton::clicked, this, [this, act] { run(act); });
  return button;
}

void PropertiesWindow::run(const std::function<void()>& edit) {
  if (!reportFaults(edit)) refresh();
}

void PropertiesWindow::present() {
  refresh();
  showChannelSentence(channelSentence());
  show();
  raise();
  activateWindow();
}

void PropertiesWindow::refresh() {
  refreshChannelPage();
  refreshGatePage();
  showRepeatCount();
  refreshMarkerPage();
  measurement_->refresh();
  display_->refresh();
}

void PropertiesWindow::refreshGatePage() { gates_->refresh(); }

void PropertiesWindow::refreshMarkerPage() { markers_->refresh(); }

void PropertiesWindow::refreshChannelPage() { channel_->refresh(); }

void PropertiesWindow::showRepeatCount() { gates_->showRepeatCount(); }

void PropertiesWindow::showChannelSentence(const std::string& sentence) {
  channel_->showSentence(QString::fromStdString(sentence));
}

void PropertiesWindow::LoadFileSettings(std::int16_t /*version*/) {}

}  // namespace pulsemod
