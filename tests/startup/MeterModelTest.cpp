#include <gtest/gtest.h>

#include "startup/MeterModel.h"

namespace pulsemod::test {
namespace {

TEST(MeterModel, IsFoundByItsNameInTheIdentity) {
  struct Row {
    const char* identity;
    std::int32_t code;
  };
  const Row rows[] = {
      {"QX7104", 2},
      {"QX7104A", 2},
      {"QX7105", 1},
      {"QX7105A", 1},
      {"QX7204", 3},
      {"QX7204A", 3},
      {"QX7205", 4},
      {"QX7205A", 5},
      {"PELMORA,QX7205A,1234,1.00\r", 5},
      {"PELMORA,QX7205,A1234\r", 4},
      {"xQX7104x", 2},
      {"QX7204 and QX7104", 3},
      {"QX7105 and QX7104", 1},
      {"QX7205A and QX7104", 5},
      {"", 0},
      {"QX7103", 0},
      {"QX7206", 0},
      {"qx7104", 0},
      {"Qx7205A", 0},
      {"QX 7205A", 0},
      {"7205A", 0},
      {"QX7205a", 4},
  };
  for (const Row& row : rows) EXPECT_EQ(modelOfIdentity(row.identity), row.code) << row.identity;
}

TEST(MeterModel, ShownIdentityIsOneShortLineOfPrintableCharacters) {
  EXPECT_EQ(shownIdentity("PELMORA,QX7205A,1234,1.00\r\n"), "PELMORA,QX7205A,1234,1.00");
  EXPECT_EQ(shownIdentity(" QX7105\tA\x01\xff "), "QX7105 A");
  EXPECT_EQ(shownIdentity(std::string(200, 'x')), std::string(80, 'x'));
  EXPECT_EQ(shownIdentity(""), "");
}

}  // namespace
}  // namespace pulsemod::test
