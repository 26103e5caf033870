#include "ui/Windows.h"

#include <utility>

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

void Windows::showMainWindow(const std::string& title) {
  if (!main_) {
    main_ = std::make_unique<MainWindow>([this] { showCommsOptions(); });
    mainIsTheView_ = std::make_unique<ProfileViewGuard>(*main_);
  }
  if (!title.empty()) main_->setWindowTitle(QString::fromStdString(title));
  main_->show();
}

}  // namespace pulsemod
