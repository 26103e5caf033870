#include "link/ConfigProgress.h"

#include <algorithm>

#include "link/ExchangeCount.h"
#include "platform/Services.h"

namespace pulsemod {

namespace {
constexpr auto prefix = "Please Wait... ";
}

ConfigProgress::ConfigProgress(const std::string& firstStep) {
  services().progress.show(prefix + firstStep);
}

ConfigProgress::~ConfigProgress() {
  ExchangeCount.afterEach = nullptr;
  if (hideAtEnd_) services().progress.hide();
}

void ConfigProgress::step(const std::string& text) const {
  if (!ExchangeCount.onlyCounting) services().progress.setText(prefix + text);
}

void ConfigProgress::expect(int exchanges) {
  expected_ = exchanges;
  showDone();
  ExchangeCount.afterEach = [this] {
    done_ = std::min(done_ + 1, expected_);
    showDone();
  };
}

void ConfigProgress::showDone() const { services().progress.setDone(done_, expected_); }

}  // namespace pulsemod
