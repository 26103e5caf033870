#include <limits>

#include "ProfileTest.h"
#include "profile/ProfileReader.h"

namespace pulsemod::test {
namespace {

std::vector<float> valuesOf(const DecodedProfile& profile) {
  return {profile.values.begin(), profile.values.begin() + static_cast<long>(profile.count)};
}

/// A head that states `length` in its own words, before `data`.
std::string headed(const std::string& length, const std::string& data) {
  return "#" + std::to_string(length.size()) + length + data;
}

TEST(BlockProfile, SecondByteIsTheMostSignificant) {
  const std::string bytes = {'\x0a', '\xc2', '\x44', '\x9c'};
  ASSERT_EQ(blockBytes(-34.567F), bytes);
  std::string data;
  for (int value = 0; value < 200; ++value) data += bytes;
  const auto profile = decodeBlockProfile("#3800" + data);
  ASSERT_TRUE(profile.has_value());
  EXPECT_EQ(valuesOf(*profile), std::vector<float>(200, -34.567F));
}

TEST(BlockProfile, KnownBytes) {
  const std::string data = {'\x20', '\x41', '\x00', '\x00', '\xb4', '\xc2', '\x00', '\x00'};
  const auto profile = decodeBlockProfile(block(data + blockData(levels(22))));
  ASSERT_TRUE(profile.has_value());
  EXPECT_EQ(profile->values[0], 10.0F);
  EXPECT_EQ(profile->values[1], -90.0F);
  EXPECT_EQ(profile->count, 24U);
}

TEST(BlockProfile, AnyNumberOfPointsFrom24To400) {
  for (const std::size_t points : {24U, 25U, 199U, 200U, 249U, 250U, 399U, 400U}) {
    const auto profile = decodeBlockProfile(block(blockData(levels(points))));
    ASSERT_TRUE(profile.has_value()) << points << " points";
    EXPECT_EQ(valuesOf(*profile), levels(points));
    EXPECT_EQ(profile->statedPoints, 0);
  }
}

TEST(BlockProfile, RepliesHaveTheKnownLengths) {
  EXPECT_EQ(block(blockData(levels(200))).size(), 805U);
  EXPECT_EQ(block(blockData(levels(400))).size(), 1606U);
  EXPECT_EQ(block(blockData(levels(24))).size(), 100U);
}

TEST(BlockProfile, EveryByteValueIsData) {
  // Bytes that are line ends, "#", NUL or above 127 are none of these in a block.
  std::string data = {'\r', '\n', '#', '\0'};
  for (int byte = 0; byte < 256; ++byte) {
    data += {static_cast<char>(byte), '\x41', static_cast<char>(byte), static_cast<char>(byte)};
  }
  const auto profile = decodeBlockProfile(block(data));
  ASSERT_TRUE(profile.has_value());
  EXPECT_EQ(profile->values[0], std::bit_cast<float>(0x0A0D2300U));
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    const std::uint32_t bits = 0x41000000U | byte << 16U | byte << 8U | byte;
    EXPECT_EQ(profile->values[byte + 1], std::bit_cast<float>(bits)) << "byte " << byte;
  }
}

TEST(BlockProfile, LengthMayBeStatedInUpToNineDigits) {
  const std::string data = blockData(levels(100));
  for (const char* length :
       {"400", "0400", "00400", "000400", "0000400", "00000400", "000000400"}) {
    const auto profile = decodeBlockProfile(headed(length, data));
    ASSERT_TRUE(profile.has_value()) << length;
    EXPECT_EQ(valuesOf(*profile), levels(100)) << length;
  }
}

TEST(BlockProfile, RepliesUnder100CharactersAreRefused) {
  const std::string data = blockData(levels(23));
  EXPECT_FALSE(decodeBlockProfile(block(data)).has_value());
  const std::string of99 = headed("00092", data);
  ASSERT_EQ(of99.size(), 99U);
  EXPECT_FALSE(decodeBlockProfile(of99).has_value());
  const std::string of100 = headed("000092", data);
  ASSERT_EQ(of100.size(), 100U);
  const auto profile = decodeBlockProfile(of100);
  ASSERT_TRUE(profile.has_value());
  EXPECT_EQ(valuesOf(*profile), levels(23));
}

TEST(BlockProfile, LineEndLeftByTheLinkIsIgnored) {
  for (const char* rest : {"", "\r", "\n"}) {
    const auto profile = decodeBlockProfile(block(blockData(levels(200))) + rest);
    ASSERT_TRUE(profile.has_value());
    EXPECT_EQ(valuesOf(*profile), levels(200));
  }
}

TEST(BlockProfile, DataIsAddressedFromTheStartOfTheReply) {
  // Four characters before the block: the four digits of its head become the first value, and the
  // last value of the block is never reached.
  const auto profile = decodeBlockProfile("ABCD" + block(blockData(levels(200))));
  ASSERT_TRUE(profile.has_value());
  std::vector<float> shifted = levels(199);
  shifted.insert(shifted.begin(), std::bit_cast<float>(0x38333030U));  // "3800" as 8 3 0 0
  EXPECT_EQ(valuesOf(*profile), shifted);
}

struct Rejected {
  const char* name;
  std::string reply;
};

void PrintTo(const Rejected& tested, std::ostream* out) { *out << tested.name; }

/// 400 levels of which one, in the middle, is `bad`.
std::string withBadValue(float bad) {
  std::vector<float> values = levels(400);
  values[200] = bad;
  return block(blockData(values));
}

class RejectedBlockProfile : public ::testing::TestWithParam<Rejected> {};

TEST_P(RejectedBlockProfile, IsNoProfile) {
  EXPECT_FALSE(decodeBlockProfile(GetParam().reply).has_value());
}

TEST_P(RejectedBlockProfile, LeavesTraceAndPointsAsTheyWere) {
  FakeWorld world;
  world.gpib.terminator = "\n";
  world.meter.replies["TR1 1"] = "TR1 1";
  world.meter.replies["PMPBO 1"] = GetParam().reply;
  ProfileTrace.fill(-77);
  const Trace before = ProfileTrace;

  EXPECT_FALSE(ReadProfile());

  EXPECT_EQ(ProfileTrace, before);
  EXPECT_EQ(Settings.DisplayPoints, 200);
  EXPECT_TRUE(world.dialogs.messages.empty());
  EXPECT_EQ(world.programEnd.ends, 0);
}

const std::string data200 = blockData(levels(200));

INSTANTIATE_TEST_SUITE_P(
    Replies, RejectedBlockProfile,
    ::testing::Values(Rejected{"Empty", ""}, Rejected{"NoHash", std::string(805, 'x')},
                      Rejected{"HashAtTheVeryEnd", std::string(804, 'x') + "#"},
                      Rejected{"DigitCountAtTheVeryEnd", std::string(803, 'x') + "#3"},
                      Rejected{"LengthCutOff", std::string(800, 'x') + "#980"},
                      Rejected{"IndefiniteLength", "#0" + data200 + "\n"},
                      Rejected{"DigitCountThatIsNoDigit", "#A800" + data200},
                      Rejected{"LengthThatIsNoNumber", "#38x0" + data200},
                      Rejected{"LengthWithABlank", "#4 800" + data200},
                      Rejected{"LengthWithASign", "#4+800" + data200},
                      Rejected{"NegativeLength", "#4-800" + data200},
                      Rejected{"LengthOfZero", "#3000" + data200},
                      Rejected{"LengthThatIsNoMultipleOf4", "#3801" + data200 + "x"},
                      Rejected{"ShortByOneByte", "#3800" + data200.substr(1)},
                      Rejected{"ShortByOneValue", "#3800" + data200.substr(4)},
                      Rejected{"LongByOneByte", "#3800" + data200 + "x"},
                      Rejected{"LongByTwoLineEnds", "#3800" + data200 + "\r\n"},
                      Rejected{"LengthFarBeyondTheReply", "#9999999996" + data200},
                      Rejected{"Value401", block(blockData(levels(401)))},
                      Rejected{"NotANumber", withBadValue(std::numeric_limits<float>::quiet_NaN())},
                      Rejected{"Infinite", withBadValue(std::numeric_limits<float>::infinity())},
                      Rejected{"InfiniteBelow",
                               withBadValue(-std::numeric_limits<float>::infinity())}),
    [](const auto& tested) { return tested.param.name; });

}  // namespace
}  // namespace pulsemod::test
