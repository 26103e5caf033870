#pragma once

#include <gtest/gtest.h>

#include <optional>

#include "support/CommaLocale.h"

namespace pulsemod::test {

enum class DecimalSign { point, comma };

/// Runs each of its tests twice: in the locale of a fresh program, and in one whose decimal sign is
/// a comma. No text of the program may differ between the two.
class LocaleTest : public testing::TestWithParam<DecimalSign> {
 protected:
  void SetUp() override {
    if (GetParam() == DecimalSign::point) return;
    comma_.emplace();
    if (!comma_->isActive()) GTEST_SKIP() << "no locale with a decimal comma on this system";
  }

 private:
  std::optional<CommaLocale> comma_;
};

inline auto bothDecimalSigns() { return testing::Values(DecimalSign::point, DecimalSign::comma); }

inline std::string decimalSignName(const testing::TestParamInfo<DecimalSign>& info) {
  return info.param == DecimalSign::point ? "Point" : "Comma";
}

}  // namespace pulsemod::test
