#include "CCDFTest.h"
#include "link/Fault.h"
#include "profile/GraphFault.h"

namespace pulsemod::test {
namespace {

class GraphFaultTest : public CCDFTest {};

void fail() { throw Fault("no points"); }

TEST_F(GraphFaultTest, IsToldOnce) {
  EXPECT_FALSE(drawOrReportOnce(fail));
  EXPECT_FALSE(drawOrReportOnce(fail));
  reportGraphFaultOnce(Fault("no points"));
  EXPECT_EQ(shownBoxes(), (Boxes{"Pelmora|no points|exclamation"}));
}

TEST_F(GraphFaultTest, IsToldAgainAfterADrawingThatSucceeded) {
  EXPECT_FALSE(drawOrReportOnce(fail));
  EXPECT_TRUE(drawOrReportOnce([] {}));
  EXPECT_FALSE(drawOrReportOnce(fail));
  EXPECT_EQ(shownBoxes().size(), 2U);
}

TEST_F(GraphFaultTest, DrawingUnderTheOpenBoxOpensNoOther) {
  world.dialogs.whileOpen = [] { EXPECT_FALSE(drawOrReportOnce(fail)); };
  EXPECT_FALSE(drawOrReportOnce(fail));
  EXPECT_EQ(shownBoxes().size(), 1U);
}

}  // namespace
}  // namespace pulsemod::test
