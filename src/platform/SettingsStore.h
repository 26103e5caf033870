#pragma once

#include <optional>
#include <string>

namespace pulsemod {

/// The per-user settings store under the application name "Pelmora PulseMod". Holds nothing but the
/// communications settings; every value is text.
class SettingsStore {
 public:
  virtual ~SettingsStore() = default;

  /// Nothing when the key is missing.
  virtual std::optional<std::string> read(const std::string& section,
                                          const std::string& key) const = 0;
  virtual void write(const std::string& section, const std::string& key,
                     const std::string& value) = 0;
  /// Puts what was written on the disk, since the program may end at any moment after. False when
  /// it could not; `failureReason` then says why.
  virtual bool flush() = 0;
  /// In words for the user; empty when the last `flush` did its work, or none was made yet.
  virtual std::string failureReason() const = 0;
};

}  // namespace pulsemod
