
#include "ProfileTest.h"
#include "profile/ProfileReader.h"

namespace pulsemod::test {
namespace {

std::vector<float> valuesOf(const DecodedProfile& profile) {
  return {profile.values.begin(), profile.values.begin() + static_cast<long>(profile.count)};
}

/// "PMPO 1,<stated>," and `count` values "-1".
std::string readoutOf(std::size_t count, const std::string& stated) {
  std::string text = "PMPO 1," + stated + ",";
  for (std::size_t index = 0; index < count; ++index) text += index == 0 ? "-1" : ",-1";
  return text + "\r";
}

struct Accepted {
  const char* name;
  std::string reply;
  std::int16_t points;
  std::vector<float> values;
};

void PrintTo(const Accepted& tested, std::ostream* out) { *out << tested.name; }

class AcceptedTextProfile : public ::testing::TestWithParam<Accepted> {};

TEST_P(AcceptedTextProfile, IsDecodedWhole) {
  const auto profile = decodeTextProfile(GetParam().reply);
  ASSERT_TRUE(profile.has_value());
  EXPECT_EQ(profile->statedPoints, GetParam().points);
  EXPECT_EQ(valuesOf(*profile), GetParam().values);
}

INSTANTIATE_TEST_SUITE_P(
    Replies, AcceptedTextProfile,
    ::testing::Values(
        Accepted{"Ordinary", "PMPO 1,3,-30.1,-30.2,-30.3\r", 3, {-30.1F, -30.2F, -30.3F}},
        Accepted{"LastCharacterIsDroppedWhateverItIs",
                 "PMPO 1,3,-30.1,-30.2,-30.3",
                 3,
                 {-30.1F, -30.2F, -30.0F}},
        Accepted{"LastDigitAloneIsDroppedToo", "PMPO 1,2,-30,5", 2, {-30.0F, 0.0F}},
        Accepted{"CommaAtTheEndClosesTheLastField", "PMPO 1,2,-30,-31,", 2, {-30.0F, -31.0F}},
        Accepted{"CommaBeforeTheReturnOpensAnotherField",
                 "PMPO 1,2,-30,-31,\r",
                 2,
                 {-30.0F, -31.0F, 0.0F}},
        Accepted{"BothChannels", "PMPO 1&2,200,-30,-31\r", 2, {200.0F, -30.0F, -31.0F}},
        Accepted{"ChannelTwo", "PMPO 2,2,-30,-31\r", 2, {-30.0F, -31.0F}},
        Accepted{"SevenCharactersAreDroppedUnseen", "????\?\?\?2,-30,PMPO\r", 2, {-30.0F, 0.0F}},
        Accepted{"FieldsThatAreNoNumbersAreZero", "PMPO 1,4,abc,-5,,nan\r", 4, {0, -5.0F, 0, 0}},
        Accepted{"TextAfterANumberIsIgnored", "PMPO 1,2, -30 dBm,-3.1E+01x\r", 2, {-30, -31}},
        Accepted{"FewerValuesThanStated", "PMPO 1,200,-30,-31\r", 200, {-30.0F, -31.0F}},
        Accepted{"MoreValuesThanStated", "PMPO 1,1,-30,-31\r", 1, {-30.0F, -31.0F}},
        Accepted{"NoValuesAtAll", "PMPO 1,200,", 200, {}},
        Accepted{"OnlyTheReturnIsAnEmptyField", "PMPO 1,200,\r", 200, {0.0F}},
        Accepted{"CountIsRounded", "PMPO 1,1.6,-30,-31\r", 2, {-30.0F, -31.0F}},
        Accepted{"HalfOfACountGoesToEven", "PMPO 1,2.5,-30,-31\r", 2, {-30.0F, -31.0F}},
        Accepted{"LargestSingle", "PMPO 1,1,3.4E+38\r", 1, {3.4E+38F}},
        Accepted{"TooSmallForASingle", "PMPO 1,1,1E-60\r", 1, {0.0F}}),
    [](const auto& tested) { return tested.param.name; });

struct Rejected {
  const char* name;
  std::string reply;
};

void PrintTo(const Rejected& tested, std::ostream* out) { *out << tested.name; }

class RejectedTextProfile : public ::testing::TestWithParam<Rejected> {};

TEST_P(RejectedTextProfile, IsNoProfile) {
  EXPECT_FALSE(decodeTextProfile(GetParam().reply).has_value());
}

/// Over the link: nothing of the trace or of the number of points is touched.
TEST_P(RejectedTextProfile, LeavesTraceAndPointsAsTheyWere) {
  FakeWorld world;
  world.useSerial();
  world.meter.replies["TR1 1"] = "TR1 1";
  // The link takes the line feed only; all else of the reply is the decoder's.
  world.meter.onMessage = [&world](const std::string& message) {
    if (message == "PMPO 1") world.serial.incoming.push_back("R" + GetParam().reply + "\n");
  };
  ProfileTrace.fill(-77);
  const Trace before = ProfileTrace;
  Settings.DisplayPoints = 123;

  EXPECT_FALSE(ReadProfile());

  EXPECT_EQ(ProfileTrace, before);
  EXPECT_EQ(Settings.DisplayPoints, 123);
  EXPECT_TRUE(world.dialogs.messages.empty());
  EXPECT_EQ(world.programEnd.ends, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Replies, RejectedTextProfile,
    ::testing::Values(Rejected{"Empty", ""}, Rejected{"MnemonicAlone", "PMPO"},
                      Rejected{"HeadWithoutComma", "PMPO 1\r"}, Rejected{"HeadAlone", "PMPO 1,"},
                      Rejected{"OtherMnemonic", "PMPX 1,2,-30,-31\r"},
                      Rejected{"LowerCaseMnemonic", "pmpo 1,2,-30,-31\r"},
                      Rejected{"NoCommaAfterTheCount", "PMPO 1,200"},
                      Rejected{"NoCommaAndReturn", "PMPO 1,200\r"},
                      Rejected{"CountOfZero", readoutOf(1, "0")},
                      Rejected{"CountBelowZero", readoutOf(1, "-1")},
                      Rejected{"CountThatIsRoundedToZero", readoutOf(1, "0.5")},
                      Rejected{"CountThatIsNoNumber", readoutOf(1, "abc")},
                      Rejected{"CountThatIsEmpty", readoutOf(1, "")},
                      Rejected{"Count401", readoutOf(400, "401")},
                      Rejected{"Count500", readoutOf(400, "500")},
                      Rejected{"CountThatWouldWrapTo200", readoutOf(200, "65736")},
                      Rejected{"Count70000", readoutOf(200, "70000")},
                      Rejected{"CountBeyondADouble", readoutOf(200, "1E+400")},
                      Rejected{"ValueNumber401", readoutOf(401, "400")},
                      Rejected{"EmptyValueNumber401", readoutOf(400, "400").insert(11, ",")},
                      Rejected{"ValueBeyondASingle", "PMPO 1,2,-30,1E39\r"},
                      Rejected{"ValueBelowASingle", "PMPO 1,2,-3.5E+38,-30\r"},
                      Rejected{"ValueBeyondADouble", "PMPO 1,2,-30,1E+400\r"}),
    [](const auto& tested) { return tested.param.name; });

TEST(TextProfile, Holds400Values) {
  const auto profile = decodeTextProfile(readoutOf(400, "400"));
  ASSERT_TRUE(profile.has_value());
  EXPECT_EQ(profile->count, 400U);
  EXPECT_EQ(profile->statedPoints, 400);
  EXPECT_EQ(profile->values[0], -1.0F);
  EXPECT_EQ(profile->values[399], -1.0F);
}

}  // namespace
}  // namespace pulsemod::test
