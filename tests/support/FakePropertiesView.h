#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "settings/PropertiesView.h"

namespace pulsemod::test {

/// `frmProperties`: how often each part was brought in line with the model, and what was last said.
class FakePropertiesView : public PropertiesView {
 public:
  void refresh() override {
    ++timesRefreshed;
    if (onRefresh) onRefresh();
  }
  void refreshGatePage() override { ++timesGatePageRefreshed; }
  void refreshMarkerPage() override { ++timesMarkerPageRefreshed; }
  void refreshChannelPage() override { ++timesChannelPageRefreshed; }
  void showRepeatCount() override { ++timesRepeatCountShown; }
  void showChannelSentence(const std::string& sentence) override {
    channelSentence = sentence;
    ++timesChannelSentenceShown;
  }
  void LoadFileSettings(std::int16_t version) override { versions.push_back(version); }

  int timesRefreshed = 0;
  int timesGatePageRefreshed = 0;
  int timesMarkerPageRefreshed = 0;
  int timesChannelPageRefreshed = 0;
  int timesRepeatCountShown = 0;
  std::string channelSentence;
  int timesChannelSentenceShown = 0;
  /// Those that files have stated, in order.
  std::vector<std::int16_t> versions;
  /// Runs at each `refresh`: what the controls would show is in the model then.
  std::function<void()> onRefresh;

 private:
  PropertiesViewGuard guard_{*this};
};

}  // namespace pulsemod::test
