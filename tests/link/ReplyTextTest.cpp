#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "link/ReplyText.h"

namespace pulsemod::test {
namespace {

TEST(ReplyText, SplitReplyTakesTheFieldAfterItsCommas) {
  struct Row {
    const char* reply;
    int field;
    const char* text;
  };
  const Row rows[] = {
      {"TRCAPT 1,PMOD,0.0046", 0, "1"},
      {"TRCAPT 1,PMOD,0.0046", 1, "PMOD"},
      {"TRCAPT 1,PMOD,0.0046", 2, "0.0046"},
      {"TRCAPT 1,PMOD,0.0046", 3, ""},
      {"TRCAPT 1,PMOD,0.0046", 9, ""},
      {"TRCAPT 1,PMOD,0.0046\r", 2, "0.0046"},
      {"GP1REPS 1,ON\r", 1, "ON"},
      {"GP1REPS 1,ON\r\n", 1, "ON"},
      {"MKSTATE 1, 2, OFF", 1, "2"},
      {"MKSTATE 1, 2, OFF", 2, "OFF"},
      {"MKSTATE 1,2 \r ,OFF", 1, "2"},
      {"MKSTATE 1,\t2 ,OFF", 1, "OFF"},
      {"A 1,,3", 1, ""},
      {"A 1,,3", 2, "3"},
      {"A 1,2,", 2, ""},
      {"whole", 0, "whole"},
      {"whole\r\n", 0, "whole"},
      {"whole", 1, ""},
      {"1,2,3", 0, "1"},
      {"1,2,3", 2, "3"},
      {"", 0, ""},
      {" ", 0, ""},
      {"\t", 0, ""},
      {" 5,6", 0, "5"},
      {"A two words,x", 0, "two words"},
      // A tab anywhere counts before any blank.
      {"Graph Points\t200", 0, "200"},
      {"Graph Points\t200", 1, ""},
      {"A 1,2\t3,4", 0, "3"},
      {"A 1,2\t3,4", 1, "4"},
      {"A\t1\t2,3", 0, "1\t2"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(SplitReply(row.reply, row.field), row.text)
        << '"' << row.reply << "\" field " << row.field;
  }
}

TEST(ReplyText, TrimmedTakesPaddingFromBothEndsOnly) {
  EXPECT_EQ(trimmed(" \t\r\nCHACTIV 2 \r\n\t "), "CHACTIV 2");
  EXPECT_EQ(trimmed("plain"), "plain");
  EXPECT_EQ(trimmed(" \t\r\n"), "");
  EXPECT_EQ(trimmed(""), "");
}

using Fields = std::vector<std::string>;

TEST(ReplyText, WalkClosedFieldsLeavesOutTheVeryLastCharacter) {
  struct Row {
    const char* text;
    Fields fields;
  };
  const Row rows[] = {
      {"", {}},
      {"\r", {""}},
      {",", {""}},
      {"7", {""}},
      {"7\r", {"7"}},
      {"7,", {"7"}},
      {"7,\r", {"7", ""}},
      {"7,8", {"7", ""}},
      {"50.5,10.25,1.5\r", {"50.5", "10.25", "1.5"}},
      {"50.5,10.25,1.5", {"50.5", "10.25", "1."}},
      {",,7\r", {"", "", "7"}},
      {" 7 , 8 \r", {" 7 ", " 8 "}},
  };
  for (const Row& row : rows) {
    Fields fields;
    EXPECT_TRUE(walkClosedFields(row.text, [&fields](std::string_view field) {
      fields.emplace_back(field);
      return true;
    }));
    EXPECT_EQ(fields, row.fields) << '"' << row.text << '"';
  }
}

TEST(ReplyText, WalkClosedFieldsEndsWhenAFieldIsRefused) {
  Fields fields;
  EXPECT_FALSE(walkClosedFields("1,2,3\r", [&fields](std::string_view field) {
    fields.emplace_back(field);
    return field != "2";
  }));
  EXPECT_EQ(fields, (Fields{"1", "2"}));
  EXPECT_FALSE(walkClosedFields("1,2\r", [](std::string_view field) { return field != "2"; }));
}

}  // namespace
}  // namespace pulsemod::test
