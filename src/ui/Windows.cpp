#include "ui/Windows.h"

#include <utility>

#include "ui/CCDFWindow.h"
#include "ui/CommsDialog.h"
#include "ui/ConfigureQuestion.h"
#include "ui/MainWindow.h"

namespace pulsemod {

Windows::Windows(std::function<std::string(int)> portDevice) : portDevice_(std::move(portDevice)) {}

Windows::~Windows() = default;

void Windows::showCommsOptions() {
  if (!comms_) comms_ = std::make_unique<CommsDialog>(portDevice_);
  // A child of the window that it belongs to, so that it stays in front of it.
  if (comms_->parentWidget() != main_.get()) comms_->setParent(main_.get(), comms_->windowFlags());
  comms_->edit();
}

StartChoice Windows::askHowToBegin() {
  if (!question_) question_ = std::make_unique<ConfigureQuestion>();
  return question_->ask();
}

MainWindow& Windows::mainWindow() {
  if (!main_) {
    main_ = std::make_unique<MainWindow>([this] { showCommsOptions(); });
    mainIsTheView_ = std::make_unique<ProfileViewGuard>(*main_);
  }
  return *main_;
}

void Windows::showMainWindow(const std::string& title) {
  MainWindow& window = mainWindow();
  if (!title.empty()) window.setWindowTitle(QString::fromStdString(title));
  window.show();
}

void Windows::prepareCCDFWindow() {
  mainWindow();
  ccdf_ = std::make_unique<CCDFWindow>();
  ccdfIsTheView_ = std::make_unique<CCDFViewGuard>(*ccdf_);
}

void Windows::showCCDFWindow(const std::string& title) {
  ccdf_->setWindowTitle(QString::fromStdString(title));
  ccdf_->show();
}

}  // namespace pulsemod
