#pragma once

#include "platform/Files.h"

namespace pulsemod {

/// The files of the system.
class QtFiles : public Files {
 public:
  std::string read(const std::string& path, std::string& content) override;
  std::string replace(const std::string& path, std::string_view content) override;
};

}  // namespace pulsemod
