#include "ConformanceCases.h"

#include <initializer_list>
#include <utility>

namespace simmeter {
namespace {

using Kind = Step::Kind;
using enum Links;

Step tell(std::string text) { return {Kind::kTell, std::move(text), {}, 0, End::kNone}; }
Step send(std::string bytes, End end = End::kNone) {
  return {Kind::kSend, std::move(bytes), {}, 0, end};
}
Step ask(std::string text, std::string reply) {
  return {Kind::kAsk, std::move(text), std::move(reply), 0, End::kNone};
}
Step read(std::string reply) { return {Kind::kRead, {}, std::move(reply), 0, End::kNone}; }
Step readPart(int count, std::string bytes) {
  return {Kind::kReadPart, {}, std::move(bytes), count, End::kNone};
}
Step askBlock(std::string text, int bytes) {
  return {Kind::kReadBlock, std::move(text), {}, bytes, End::kNone};
}
Step nothing() { return {Kind::kNothing, {}, {}, 0, End::kNone}; }
Step poll(int status) { return {Kind::kPoll, {}, {}, status, End::kNone}; }
Step service(bool requested) { return {Kind::kService, {}, {}, requested ? 1 : 0, End::kNone}; }
Step deviceClear(int address = 0) { return {Kind::kDeviceClear, {}, {}, address, End::kNone}; }
Step interfaceClear() { return {Kind::kInterfaceClear, {}, {}, 0, End::kNone}; }

using Steps = std::vector<Step>;

Steps join(Steps first, Steps second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

std::string repeat(std::string_view text, int times) {
  std::string result;
  for (int i = 0; i < times; ++i) result += text;
  return result;
}

// Each of the texts must set exactly these events and answer nothing.
Steps eachIs(int events, std::initializer_list<const char*> texts) {
  Steps steps{tell("*CLS")};
  for (const char* text : texts) {
    steps.push_back(tell(text));
    steps.push_back(ask("*ESR?", std::to_string(events)));
  }
  return steps;
}

// Each of the texts must be taken as this event mask.
Steps eachMaskIs(std::initializer_list<std::pair<const char*, int>> rows) {
  Steps steps{tell("*CLS")};
  for (const auto& [text, mask] : rows) {
    steps.push_back(tell("*ESE 99"));
    steps.push_back(tell("*ESE " + std::string(text)));
    steps.push_back(ask("*ESE?", std::to_string(mask)));
  }
  steps.push_back(ask("*ESR?", "0"));
  return steps;
}

constexpr const char* kIdentity = "PELMORA,QX7205A,SN001234,V1.05";

// Answers of more than 65,536 bytes.
std::string endless() { return repeat("PMPO 1;", 40); }

// 4096 bytes, the longest message, when `length` is that.
std::string padded(std::string text, std::size_t length) {
  text.resize(length, ' ');
  return text;
}

// Status reporting.
std::vector<ConformanceCase> statusCases() {
  return {
      {"PowerOnIsReportedOnce",
       "power on sets event bit 128, which the first `*ESR?` clears",
       kBoth,
       {ask("*ESR?", "128"), ask("*ESR?", "0")}},
      {"EnableMasksAreClearAtPowerOn",
       "`*ESE?` and `*SRE?` are 0 after power on",
       kBoth,
       {ask("*ESE?", "0"), ask("*SRE?", "0")}},
      {"CommandErrorSetsItsBit",
       "an unknown command sets event bit 32",
       kBoth,
       {tell("*CLS;BOGUS"), ask("*ESR?", "32")}},
      {"ExecutionErrorSetsItsBit",
       "a value out of range sets event bit 16",
       kBoth,
       {tell("*CLS;PMMEAS 1,9"), ask("*ESR?", "16")}},
      {"DeviceErrorSetsItsBit",
       "a message too long for the meter sets event bit 8",
       kBoth,
       {tell("*CLS"), tell(padded("*ESE 5", 4097)), ask("*ESR?", "8")}},
      {"OperationCompleteSetsItsBit",
       "`*OPC` sets event bit 1 and answers nothing",
       kBoth,
       {tell("*CLS"), ask("*OPC;*ESR?", "1")}},
      {"EventsAddUp",
       "events add up until they are read",
       kBoth,
       {tell("*CLS;*OPC;PMMEAS 1,9"), tell("BOGUS"), ask("*ESR?", "49")}},
      {"EventStatusIsClearedByItsQuery",
       "`*ESR?` clears what it has read",
       kBoth,
       {tell("*CLS;BOGUS"), ask("*ESR?", "32"), ask("*ESR?", "0")}},
      {"PollLeavesTheEvents",
       "a serial poll clears no event",
       kGpib,
       {tell("*CLS;*ESE 32;BOGUS"), poll(32), poll(32), ask("*ESR?", "32"), poll(0)}},
      {"ClearStatusClearsTheEvents",
       "`*CLS` clears the events",
       kBoth,
       {tell("BOGUS;PMMEAS 1,9"), tell("*CLS"), ask("*ESR?", "0")}},
      {"ClearStatusKeepsTheMasks",
       "`*CLS` leaves both masks alone",
       kBoth,
       {tell("*ESE 56;*SRE 48"), tell("*CLS"), ask("*ESE?;*SRE?", "56;48")}},
      {"ClearStatusKeepsTheAnswersOfItsMessage",
       "`*CLS` does not drop what its own message has answered",
       kBoth,
       {ask("*TST?;*CLS;*OPC?", "0;1"), ask("*TST?;*CLS", "0")}},
      {"MaskSelectsTheEvents",
       "bit 32 of the status byte is set by enabled events only",
       kGpib,
       {tell("*CLS;*ESE 32"), tell("PMMEAS 1,9"), poll(0), tell("BOGUS"), poll(32)}},
      {"NewMaskMeetsOldEvents",
       "a change of the mask shows at once, for events that are there",
       kGpib,
       {tell("*CLS;BOGUS"), poll(0), tell("*ESE 32"), poll(32), tell("*ESE 0"), poll(0)}},
      {"EventMaskComesBack",
       "`*ESE?` is what `*ESE` said",
       kBoth,
       {tell("*ESE 189"), ask("*ESE?", "189"), tell("*ESE 0"), ask("*ESE?", "0")}},
      {"ServiceMaskComesBackWithoutItsOwnBit",
       "`*SRE?` is what `*SRE` said, without bit 64",
       kBoth,
       {tell("*SRE 255"), ask("*SRE?", "191"), tell("*SRE 48"), ask("*SRE?", "48")}},
      {"StatusQueryShowsTheSummary",
       "`*STB?` has bit 64 as the summary of the enabled bits",
       kBoth,
       {tell("*CLS;*ESE 32;*SRE 32"), ask("*STB?", "0"), tell("BOGUS"), ask("*STB?", "96")}},
      {"StatusQueryClearsNothing",
       "`*STB?` clears nothing, nor the request for service",
       kGpib,
       {tell("*CLS;*ESE 32;*SRE 32;BOGUS"), ask("*STB?", "96"), ask("*STB?", "96"), poll(96)}},
      {"StatusQuerySeesEarlierAnswers",
       "`*STB?` has bit 16 when its message has answered before",
       kBoth,
       {tell("*CLS"), ask("*STB?", "0"), ask("*OPC?;*STB?", "1;16")}},
      {"MessageAvailableFollowsTheReply",
       "bit 16 stands while a reply or a part of it is there",
       kGpib,
       {tell("*CLS"), poll(0), tell("*IDN?"), poll(16), readPart(10, "PELMORA,QX"), poll(16),
        read("7205A,SN001234,V1.05"), poll(0)}},
      {"MessageAvailableWaitsForTheFirstByte",
       "bit 16 does not stand before a byte can be read",
       kGpib,
       {tell("*CLS;*IDN?"), poll(0), read(kIdentity), poll(0)},
       "board-timeout = 2000\nfault = any, 1, late 300\n"},
      {"PollLeavesTheReply",
       "a serial poll leaves the reply alone",
       kGpib,
       {tell("*CLS;*IDN?"), poll(16), poll(16), read(kIdentity), ask("*ESR?", "0")}},
      {"RequestComesWithItsReason",
       "an enabled bit requests service",
       kGpib,
       {tell("*CLS;*SRE 16"), service(false), tell("*IDN?"), service(true), poll(80)}},
      {"MaskedReasonRequestsNothing",
       "a bit that is not enabled requests nothing",
       kGpib,
       {tell("*CLS;*SRE 32"), tell("*IDN?"), service(false), poll(16)}},
      {"PollEndsTheRequest",
       "the poll that shows bit 64 ends the request",
       kGpib,
       {tell("*CLS;*SRE 16"), tell("*IDN?"), poll(80), service(false), poll(16)}},
      {"SummaryStaysAfterThePoll",
       "bit 64 of `*STB?` stays as long as its reason",
       kGpib,
       {tell("*CLS;*ESE 32;*SRE 32;BOGUS"), poll(96), ask("*STB?", "96"), poll(32)}},
      {"RequestEndsWithItsReason",
       "a request ends when its reason does",
       kGpib,
       {tell("*CLS;*SRE 16"), ask("*IDN?", kIdentity), service(false), poll(0), tell("*IDN?"),
        service(true), read(kIdentity), service(false), poll(0)}},
      {"EachReasonRequests",
       "a second enabled bit requests anew while the first one stands",
       kGpib,
       {tell("*CLS;*ESE 32;*SRE 48;BOGUS"), poll(96), poll(32), tell("*OPC?"), service(true),
        poll(112), poll(48)}},
      {"ReasonThatReturnsWithinAMessageRequests",
       "a reason that ends and returns within one message requests anew",
       kGpib,
       {tell("*CLS;*ESE 32;*SRE 32;BOGUS"), poll(96), tell("*CLS;BOGUS"), service(true), poll(96)}},
      {"ReplyInPlaceOfAnotherRequests",
       "a reply in the place of a discarded one requests anew",
       kGpib,
       {tell("*CLS;*SRE 16"), tell("*IDN?"), poll(80), send("*OPC?\n"), service(true), poll(80)}},
  };
}

// Where messages and replies end.
std::vector<ConformanceCase> framingCases() {
  return {
      {"NewLineEndsAMessage",
       "NL ends a message",
       kGpib,
       {tell("*CLS"), send("*OPC?\n"), read("1"), ask("*ESR?", "0")}},
      {"EoiEndsAMessage",
       "EOI with the last byte ends a message",
       kGpib,
       {tell("*CLS"), send("*OPC?", End::kEoi), read("1"), ask("*ESR?", "0")}},
      {"NewLineWithEoiEndsOneMessage",
       "NL with EOI ends one message, not two",
       kGpib,
       {tell("*CLS"), send("*OPC?", End::kNewLineEoi), read("1"), send("*OPC?\n", End::kEoi),
        read("1"), ask("*ESR?", "0")}},
      {"CarriageReturnBeforeNewLineIsBlank",
       "CR before NL is a blank",
       kGpib,
       {tell("*CLS"), send("*ESE 56\r\n"), send("*ESE?\r\n"), read("56"), ask("*ESR?", "0")}},
      {"MessageMayComeInPieces",
       "a message may come in pieces",
       kGpib,
       {tell("*CLS"), send("*E"), send("SE"), send(" 5"), tell("6"), ask("*ESE?;*ESR?", "56;0")}},
      {"MessagesAreSeparate",
       "two messages in one transfer are two messages",
       kBoth,
       {send("*ESE 5\n*SRE 6\n"), ask("*ESE?;*SRE?;*ESR?", "5;6;128")}},
      {"ReplyEndsWithNewLineAndEoi",
       "the end of a reply is NL with EOI, and there is none before",
       kGpib,
       {tell("*IDN?"), readPart(31, std::string(kIdentity) + "\r"), read(""), ask("*OPC?", "1")}},
      {"CarriageReturnEndsALine",
       "RS232: CR ends a message",
       kLine,
       {tell("*CLS"), send("*OPC?\r"), read("1"), ask("*ESR?", "0")}},
      {"LineFeedEndsALine",
       "RS232: LF ends a message",
       kLine,
       {tell("*CLS"), send("*OPC?\n"), read("1"), ask("*ESR?", "0")}},
      {"BothLineCharactersEndOneMessage",
       "RS232: CR LF ends one message, not two",
       kLine,
       {tell("*CLS"), send("*OPC?\r\n"), read("1"), ask("*ESR?", "0")}},
      {"ReplyIsFramedOnTheLine",
       "RS232: a reply is `R`, the text, CR LF",
       kLine,
       {ask("*OPC?", "1"), ask("*IDN?", kIdentity)}},
  };
}

// The exchange.
std::vector<ConformanceCase> exchangeCases() {
  return {
      {"NewMessageInterruptsTheReply",
       "a message over an unread reply is a query error (4)",
       kBoth,
       {tell("*CLS"), send("*IDN?\n*OPC?\n"), read("1"), ask("*ESR?", "4")}},
      {"InterruptedReplyIsDiscarded",
       "what is left of an interrupted reply is discarded",
       kBoth,
       {send("*IDN?\n*OPC?\n"), read("1"), ask("*TST?", "0")}},
      {"PartlyReadReplyIsInterrupted",
       "a partly read reply is interrupted too",
       kGpib,
       {tell("*CLS;*IDN?"), readPart(10, "PELMORA,QX"), ask("*OPC?", "1"), ask("*ESR?", "4")}},
      {"FirstByteInterrupts",
       "the first byte of a message interrupts, before its end comes",
       kGpib,
       {tell("*CLS;*IDN?"), poll(16), send("*"), poll(0), tell("ESR?"), read("4")}},
      {"ReadingInVainIsAnError",
       "a read with nothing to say is a query error (4)",
       kGpib,
       {tell("*CLS"), nothing(), ask("*ESR?", "4")}},
      {"UnfinishedMessageHasNoReply",
       "a query without its end has no reply: a query error (4)",
       kGpib,
       {tell("*CLS"), send("*OPC?"), nothing(), tell(""), read("1"), ask("*ESR?", "4")}},
      {"RefusedQueryLeavesNothingToRead",
       "reading after a refused query is a query error too",
       kGpib,
       {tell("*CLS"), tell("BOGUS?"), nothing(), ask("*ESR?", "36")}},
      {"AnswersBeyondTheQueueAreADeadlock",
       "answers beyond the output queue are a deadlock, a query error (4)",
       kBoth,
       {tell("*CLS"), tell(endless()), ask("*ESR?", "4")}},
      {"NothingIsAnsweredAfterADeadlock",
       "a deadlock discards all answers of its message",
       kBoth,
       {tell("*CLS"), tell(endless() + "*CLS;*OPC?"), ask("*ESR?", "0")}},
      {"CommandsAfterADeadlockAreCarriedOut",
       "the commands after a deadlock are carried out",
       kBoth,
       {tell(endless() + "*ESE 5"), ask("*ESE?", "5")}},
      {"ReplyIsReadOnce",
       "a reply is there once",
       kBoth,
       {ask("*IDN?", kIdentity), nothing(), ask("*OPC?", "1")}},
      {"EmptyMessagesAreNoError",
       "an empty message is no error",
       kBoth,
       {tell("*CLS"), tell(""), tell("   "), ask("*ESR?", "0")}},
      {"EmptyUnitsAreNoError",
       "an empty place between two `;` is no error",
       kBoth,
       {tell("*CLS"), ask(";*OPC?;; *TST?;", "1;0"), ask("*ESR?", "0")}},
      {"AnswersAreJoinedInOrder",
       "the answers of one message are joined by `;`, in order",
       kBoth,
       {ask("*OPC?;*TST?;PMPREF? 1,DB;*ESE?", "1;0;PMPREF 1,DB,10;0")}},
      {"CommandsAndQueriesMix",
       "commands and queries of one message take their turns",
       kBoth,
       {ask("*ESE 5;*ESE?;*ESE 6;*ESE?;*ESE 7", "5;6"), ask("*ESE?", "7")}},
      {"UnitsAfterACommandErrorAreCarriedOut",
       "what follows a command error is carried out",
       kBoth,
       {ask("*CLS;*ESE 5;BOGUS;*ESE 6;*ESE?", "6"), ask("*ESR?", "32")}},
      {"UnitsAfterAnExecutionErrorAreCarriedOut",
       "what follows an execution error is carried out",
       kBoth,
       {ask("*CLS;*ESE 5;*ESE 256;*ESE?;*SRE 3;*SRE?", "5;3"), ask("*ESR?", "16")}},
      {"RefusedQueryLeavesNoTrace",
       "a refused query leaves nothing among the answers",
       kBoth,
       {ask("*OPC?;PMPREF? 9,DB;BOGUS?;*TST?;GPNMO 1,9", "1;0")}},
      {"RefusedCommandChangesNothing",
       "a refused command changes nothing",
       kBoth,
       {tell("*CLS"), tell("PMPREF 1&2,DB,200"), tell("PMPREF 3,DB,5"), ask("*ESR?", "16"),
        ask("PMPREF? 1,DB;PMPREF? 2,DB", "PMPREF 1,DB,10;PMPREF 2,DB,10")}},
      {"CompletionAnswersLast",
       "`*OPC?` at the end answers 1 after all others",
       kBoth,
       {ask("PMPREF 1,DB,3;PMPREF? 1,DB;*OPC?", "PMPREF 1,DB,3;1"), ask("TR3;*OPC?", "1")}},
      {"WaitChangesNothing",
       "`*WAI` lets the next command go on and reports nothing",
       kBoth,
       {ask("*CLS;TR3;*WAI;*OPC?", "1"), ask("*ESR?", "0")}},
  };
}

// Device clear and interface clear.
std::vector<ConformanceCase> clearCases() {
  return {
      {"DeviceClearDropsTheReply",
       "device clear drops a reply, and that is no error",
       kGpib,
       {tell("*CLS;*IDN?"), poll(16), deviceClear(), poll(0), ask("*OPC?", "1"),
        ask("*ESR?", "0")}},
      {"DeviceClearEndsAStartedReply",
       "device clear ends a reply that is half read",
       kGpib,
       {tell("*CLS;*IDN?"), readPart(3, "PEL"), deviceClear(), poll(0), ask("*TST?", "0"),
        ask("*ESR?", "0")}},
      {"DeviceClearDropsTheInput",
       "device clear drops an unfinished message",
       kGpib,
       {tell("*CLS"), send("*ESE 5"), deviceClear(), ask("*ESE?", "0"), ask("*ESR?", "0")}},
      {"DeviceClearEndsAnOverlongMessage",
       "device clear drops an overlong unfinished message",
       kGpib,
       {tell("*CLS"), send(padded("*ESE 5", 5000)), deviceClear(), ask("*OPC?", "1"),
        ask("*ESR?", "0")}},
      {"DeviceClearKeepsTheSettings",
       "device clear leaves the settings alone",
       kGpib,
       {tell("PMPREF 1,DB,3"), deviceClear(), ask("PMPREF? 1,DB", "PMPREF 1,DB,3")}},
      {"DeviceClearKeepsTheStatus",
       "device clear leaves events and masks alone",
       kGpib,
       {tell("*CLS;*ESE 33;*SRE 16;BOGUS"), deviceClear(), poll(32),
        ask("*ESE?;*SRE?;*ESR?", "33;16;32")}},
      {"DeviceClearIsForItsAddress",
       "device clear of another address does nothing",
       kGpib,
       {tell("*IDN?"), deviceClear(5), read(kIdentity)}},
      {"InterfaceClearKeepsTheReply",
       "interface clear leaves the reply alone",
       kGpib,
       {tell("*CLS;*IDN?"), interfaceClear(), poll(16), read(kIdentity), ask("*ESR?", "0")}},
  };
}

// How messages are written.
std::vector<ConformanceCase> writingCases() {
  return {
      {"HeadersMayBeInEitherCase",
       "headers and words may be in upper or lower case",
       kBoth,
       {ask("*opc?;*Tst?", "1;0"),
        ask("pmPref? 1,db;pmavgs 1,on;PMAVGS? 1", "PMPREF 1,DB,10;PMAVGS 1,ON")}},
      {"BlanksMayStandAroundUnits",
       "blanks may stand around `;` and at both ends",
       kBoth,
       {tell("*CLS"), ask("  *OPC?  ; \t*TST? ", "1;0"), ask("*ESR?", "0")}},
      {"BlanksMayStandAroundCommas",
       "blanks may stand before the data and around commas",
       kBoth,
       {tell("*CLS"), tell("PMPREF   1 , DB ,\t4 "), ask("PMPREF? 1 ,DB", "PMPREF 1,DB,4"),
        ask("*ESR?", "0")}},
      {"ControlCharactersAreBlank",
       "control characters other than NL are blanks",
       kBoth,
       {tell("*CLS"),
        tell("\x01*ESE\x0b\x1f"
             "56\x02"),
        tell("PMPREF\x07"
             "1,\x08"
             "DB,4"),
        ask("*ESE?;PMPREF? 1,DB", "56;PMPREF 1,DB,4"), ask("*ESR?", "0")}},
      {"HeaderHoldsNoBlank", "a blank within a header is a command error", kBoth,
       eachIs(32, {"*OPC ?", "* OPC?", "PMPREF ? 1,DB", "* ESE 5"})},
      {"NumberNeedsABlankBefore", "data that touch their header are a command error", kBoth,
       eachIs(32, {"*ESE5", "PMPREF1,DB,4", "PMPREF?1,DB"})},
      {"NumbersHaveManyForms", "numbers in NR1, NR2 and NR3, with signs and blanks about the E",
       kBoth,
       eachMaskIs({{"5", 5},
                   {"+5", 5},
                   {"005", 5},
                   {"5.", 5},
                   {"5.00", 5},
                   {".5E1", 5},
                   {"50e-1", 5},
                   {"+0.05E+2", 5},
                   {"5 E0", 5},
                   {"5E 0", 5},
                   {"5 e +0", 5},
                   {"-0", 0},
                   {"0E30000", 0}})},
      {"NumbersAreRounded", "masks are rounded to whole numbers", kBoth,
       eachMaskIs({{"5.4", 5}, {"5.5", 6}, {"5.9", 6}, {"-0.4", 0}, {"255.4", 255}})},
      {"RoundedNumberMustFit", "a mask beyond 0 to 255 is an execution error", kBoth,
       join(eachIs(16, {"*ESE -0.5", "*ESE -1", "*ESE 255.5", "*ESE 256", "*SRE -0.5", "*SRE 1E9"}),
            {ask("*ESE?;*SRE?", "0;0")})},
      {"MalformedNumbersAreRefused", "what is no number is a command error", kBoth,
       join(eachIs(32, {"*ESE E5", "*ESE --5", "*ESE +-5", "*ESE ++5", "*ESE 5E", "*ESE 5E1.0",
                        "*ESE 0x5", "*ESE #H5", "*ESE 5 5", "*ESE 5..5", "*ESE .", "*ESE +",
                        "*ESE nan", "*ESE inf", "*ESE 5E+-1", "*ESE 1E-32001", "*ESE 1E+32001",
                        "*ESE 1E99999999999999999999", "PMPREF 1,DB,4DB"}),
            {ask("*ESE?;PMPREF? 1,DB", "0;PMPREF 1,DB,10")})},
      {"TooSmallANumberIsZero",
       "a number too small for the meter is zero",
       kBoth,
       {tell("*CLS"), tell("PMPREF 1,DB,1E-400"), ask("PMPREF? 1,DB", "PMPREF 1,DB,0"),
        tell("PMPREF 1,DB,-0.000001E-31990"), ask("PMPREF? 1,DB;*ESR?", "PMPREF 1,DB,0;0")}},
      {"TooLargeANumberIsAnExecutionError",
       "a number too large for the meter is an execution error", kBoth,
       join(eachIs(16, {"PMPREF 1,DB,1E400", "PMPREF 1,DB,-1E32000", "*ESE 1E400", "PMAVGN 1,1E400",
                        "GPTIMST 1,1E400,0"}),
            {ask("PMPREF? 1,DB", "PMPREF 1,DB,10")})},
      {"ZeroHasNoSign",
       "zero is answered without a sign",
       kBoth,
       {tell("PMPREF 1,DB,-0"), ask("PMPREF? 1,DB", "PMPREF 1,DB,0")}},
      {"WholeSettingsAreRounded",
       "settings that count are rounded",
       kBoth,
       {tell("PMAVGN 1,16.5"), ask("PMAVGN? 1", "PMAVGN 1,17"), tell("PMAVGN 1,1.6E1"),
        ask("PMAVGN? 1", "PMAVGN 1,16")}},
      {"GateNumbersHaveManyForms",
       "gate and marker numbers may be written as any number",
       kBoth,
       {tell("*CLS"), ask("GPTIMST? 1,+2.0;MKPOS? 1,2E0", "GPTIMST 1,2,0.00125;MKPOS 1,2,0.0005"),
        ask("*ESR?", "0")}},
      {"NumbersAmongWordsHaveManyForms",
       "so may numbers that are one of a few",
       kBoth,
       {tell("*CLS"), tell("SYDRES 2E2"), ask("SYDRES?", "SYDRES 200"), tell("SYDRES +400.0"),
        ask("SYDRES?;*ESR?", "SYDRES 400;0")}},
      {"MissingParametersAreRefused", "a missing parameter is a command error", kBoth,
       eachIs(32, {"*ESE", "*SRE", "PMPREF", "PMPREF 1,DB", "PMPREF 1,DB,", "PMPREF ,DB,3",
                   "PMPREF? 1", "PMPREF?", "PMPO", "GPNMO 1", "GPNMO 1,", "GPNMO ,1"})},
      {"SpareParametersAreRefused", "a spare parameter is a command error, and nothing is done",
       kBoth,
       join(eachIs(32, {"*ESE 5,6", "*CLS 1", "*OPC? 1", "*IDN? 1", "PMPREF 1,DB,3,4",
                        "PMPREF? 1,DB,3", "PMPO 1,2", "TR3 1", "CHDISPN? 1"}),
            {ask("*ESE?;PMPREF? 1,DB", "0;PMPREF 1,DB,10")})},
      {"UnknownHeadersAreRefused", "an unknown header is a command error", kBoth,
       eachIs(32, {"BOGUS", "BOGUS?", "*FOO", "*FOO?", "*IDN", "*TST", "*STB", "*CLS?", "*WAI?",
                   "*RST?", "PMPO? 1", "?", "*", "*?", ":PMPREF? 1,DB", "#13abc", "\"a\"",
                   "\xff\xfe", "PMPREFPMPREFPMPREF 1,DB,3"})},
      {"LongestMessageIsCarriedOut",
       "a message of 4096 bytes is carried out",
       kBoth,
       {tell("*CLS"), tell(padded("*ESE 5", 4096)), ask("*ESE?;*ESR?", "5;0")}},
      {"OverlongMessageIsDropped",
       "a longer one is dropped whole",
       kBoth,
       {tell("*CLS"), tell(padded("*ESE 5", 4097)), ask("*ESE?;*ESR?", "0;8")}},
      {"OverlongMessageEndsAtItsEnd",
       "the message after it is a message again",
       kBoth,
       {tell(padded("*ESE 5", 9000)), tell("*CLS;*ESE 6"), ask("*ESE?;*ESR?", "6;0")}},
  };
}

// What replies and common commands do.
std::vector<ConformanceCase> commandCases() {
  return {
      {"BlockSaysItsLength",
       "a block is `#`, the count of digits, the length and as many bytes",
       kBoth,
       {askBlock("PMPBO 1", 1600), tell("SYDRES 200"), askBlock("PMPBO 1", 800),
        ask("*OPC?", "1")}},
      {"BlockHoldsAnyByte",
       "NL within a block does not end the reply",
       kGpib,
       {askBlock("PMPBO 1", 1600), askBlock("PMPBO 2", 1600), ask("*OPC?", "1")}},
      {"MandatoryCommandsAreThere",
       "all 13 mandatory common commands are understood",
       kBoth,
       {tell("*CLS"),
        ask("*ESE 0;*ESE?;*ESR?;*SRE 0;*SRE?;*STB?;*OPC?;*TST?;*WAI;*RST", "0;0;0;16;1;0"),
        ask("*OPC;*IDN?", kIdentity), ask("*ESR?", "1")}},
      {"IdentityHasFourFields",
       "`*IDN?` answers four fields, at most 72 characters",
       kBoth,
       {ask("*IDN?", kIdentity)}},
      {"SelfTestAnswersZero", "`*TST?` answers 0", kBoth, {ask("*TST?", "0")}},
      {"ResetBringsTheSettingsBack",
       "`*RST` brings the settings of power on back",
       kBoth,
       {tell("PMPREF 1,DB,3"), tell("*RST"), ask("PMPREF? 1,DB", "PMPREF 1,DB,10")}},
      {"ResetKeepsTheStatus",
       "`*RST` leaves events and masks alone",
       kBoth,
       {tell("*CLS;*ESE 33;*SRE 16;BOGUS;*RST"), ask("*ESE?;*SRE?;*ESR?", "33;16;32")}},
      {"ResetKeepsTheAnswersOfItsMessage",
       "`*RST` does not drop what its message has answered",
       kBoth,
       {ask("*TST?;*RST", "0")}},
  };
}

std::vector<ConformanceCase> allCases() {
  std::vector<ConformanceCase> all;
  for (const auto section :
       {statusCases, framingCases, exchangeCases, clearCases, writingCases, commandCases}) {
    for (ConformanceCase& one : section()) all.push_back(std::move(one));
  }
  return all;
}

}  // namespace

std::span<const ConformanceCase> conformanceCases() {
  static const std::vector<ConformanceCase> cases = allCases();
  return cases;
}

}  // namespace simmeter
