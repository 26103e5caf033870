#include <gtest/gtest.h>

#include <string>

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

}  // namespace
}  // namespace pulsemod::test
