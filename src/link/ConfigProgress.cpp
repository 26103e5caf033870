#include "link/ConfigProgress.h"

#include "platform/Services.h"

namespace pulsemod {

namespace {
constexpr auto prefix = "Please Wait... ";
}

ConfigProgress::ConfigProgress(const std::string& firstStep) {
  services().progress.show(prefix + firstStep);
}

ConfigProgress::~ConfigProgress() {
  if (hideAtEnd_) services().progress.hide();
}

void ConfigProgress::step(const std::string& text) const {
  services().progress.setText(prefix + text);
}

}  // namespace pulsemod
