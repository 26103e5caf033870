#pragma once

#include <cstdint>
#include <string>

#include "platform/Installed.h"

/// What the settings subsystem asks of its window, `frmProperties`. The window takes what its
/// controls show from `Settings`.

namespace pulsemod {

class PropertiesView {
 public:
  virtual ~PropertiesView() = default;

  /// Brings every control in line with the model. None of these sends anything.
  virtual void refresh() = 0;
  /// The gates alone. The text of `txtRepeatCount`, which the user may be typing, stays.
  virtual void refreshGatePage() = 0;
  virtual void refreshMarkerPage() = 0;
  /// Averaging and input configuration of the active channel.
  virtual void refreshChannelPage() = 0;
  /// The model's repeat count into `txtRepeatCount`.
  virtual void showRepeatCount() = 0;
  /// `Label5`.
  virtual void showChannelSentence(const std::string& sentence) = 0;

  /// The version that a settings file states. Files of all versions are read the same way, so that
  /// this has no effect.
  virtual void LoadFileSettings(std::int16_t version) = 0;
};

using PropertiesViewGuard = Installed<PropertiesView>;
inline PropertiesView& propertiesView() { return PropertiesViewGuard::get(); }

}  // namespace pulsemod
