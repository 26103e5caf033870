#include <random>

#include "Expected.h"

namespace endtoend {
namespace {

/// How long the random user works. A minute or more finds more; ten seconds is for every day.
constexpr std::chrono::seconds workingTime{10};

class LongRun : public BenchOnEachLink {
 protected:
  void doSomething(std::mt19937& random) {
    switch (random() % 8) {
      case 0:
      case 1:
        toggleAcquisition();
        break;
      case 2:
        hands().trigger("frmMain/menudisplayupdate");
        break;
      case 3:
        if (hands().is("frmMain/menuFreeRun", "enabled")) hands().trigger("frmMain/menuFreeRun");
        break;
      case 4:
        hands().openMenuOf(random() % 2 == 0 ? "frmMain/menuStop" : "frmMain/menuGraphFont");
        hands().closeMenu();
        break;
      case 5:
        hands().resize("frmMain", 480 + static_cast<int>(random() % 400),
                       360 + static_cast<int>(random() % 300));
        break;
      case 6:
        lookAtOptions(random() % 2 == 0);
        break;
      default:
        hands().trigger("frmMain/menuGraphFont");
        hands().key("QFontDialog", random() % 2 == 0 ? "Escape" : "Return");
        hands().waitGone("QFontDialog");
    }
  }

  void toggleAcquisition() {
    const bool running = hands().is("frmMain/menuStop", "enabled");
    hands().trigger(running ? "frmMain/menuStop" : "frmMain/menuStart");
    hands().waitUntil(running ? "frmMain/menuStart" : "frmMain/menuStop", "enabled", "true");
  }

  void lookAtOptions(bool change) {
    if (!hands().is("frmMain/menuComs", "enabled")) return;
    hands().trigger("frmMain/menuComs");
    if (change) hands().click("frmComms/optBuad_2");
    hands().close("frmComms");
    if (hands().waitAny({"questionBox", "frmMain"}) == "questionBox") {
      hands().key("questionBox", "Escape");
    }
    hands().waitGone("frmComms");
  }
};
ON_BOTH_LINKS(LongRun);

TEST_P(LongRun, AUserAtRandomNeverDisturbsAnExchange) {
  const std::random_device::result_type seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  RecordProperty("seed", std::to_string(seed));
  std::mt19937 random(seed);
  startLoaded(GetParam());
  const auto end = std::chrono::steady_clock::now() + workingTime;
  int actions = 0;
  for (; std::chrono::steady_clock::now() < end; ++actions) doSomething(random);
  RecordProperty("actions", actions);

  if (hands().is("frmMain/menuStop", "enabled")) toggleAcquisition();
  hands().trigger("frmMain/menuFreeRun");
  const std::size_t profiles = countMessages(transcript(), "TR1 1");
  clickStart();
  const Events events = awaitMessages("TR1 1", profiles + 2);
  EXPECT_EQ(offences(events), "");
  EXPECT_EQ(countKind(events, "INTERRUPTED-AFTER-TIMEOUT"), 0U);
  EXPECT_EQ(windows(), "frmMain|Pelmora v" PULSEMOD_VERSION);
  closeMainWindowAndExpectEnd();
}

}  // namespace
}  // namespace endtoend
