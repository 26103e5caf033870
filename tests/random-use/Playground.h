#pragma once

#include <string>

#include "Chance.h"

namespace randomuse {

/// A folder of files, good and bad, which is the working folder while this lives: names are
/// relative, so that none depends on where it is.
class Playground {
 public:
  Playground();
  ~Playground();
  Playground(const Playground&) = delete;
  Playground& operator=(const Playground&) = delete;

  /// As it is at the start of each life. The model must have its defaults.
  static void fill();
  /// What a user may enter as a file: whole ones of each kind, spoilt ones, some that are not there
  /// or are no files, names without a suffix, nothing.
  static std::string anyName(Chance& chance);

 private:
  std::string folder_;
};

}  // namespace randomuse
