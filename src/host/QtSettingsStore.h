#pragma once

#include <utility>
#include <vector>

#include "platform/SettingsStore.h"

namespace pulsemod {

/// The file `Pelmora PulseMod.ini` in the user's configuration folder. Nothing of it is touched
/// before the first use, and what was written stays in memory until `flush`. A flush that fails
/// leaves the old file as it was, and what was written is still there for the next one.
class QtSettingsStore : public SettingsStore {
 public:
  std::optional<std::string> read(const std::string& section,
                                  const std::string& key) const override;
  void write(const std::string& section, const std::string& key, const std::string& value) override;
  bool flush() override;
  std::string failureReason() const override { return failureReason_; }

 private:
  /// Names of the form section/key with their values, in the order of writing.
  std::vector<std::pair<std::string, std::string>> unwritten_;
  std::string failureReason_;
};

}  // namespace pulsemod
