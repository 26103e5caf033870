#include "CCDFBench.h"

namespace endtoend {

namespace {

constexpr auto restart = "PPACQRT 1";

}  // namespace

Texts ccdfPass(bool cursorOn) {
  Texts pass = {restart, "TTFRO 1"};
  if (cursorOn) pass.emplace_back("TTMKRO 1");
  return pass;
}

Texts ccdfMark() { return {restart, restart}; }

void CCDFBench::runCurves(std::size_t count) {
  const std::size_t before = curvesSoFar();
  choose("menuStart");
  awaitMessages("TTFRO 1", before + count + 1);
}

Texts CCDFBench::stopCurves() {
  choose("menuStop");
  hands().waitUntil("frmCCDF/menuStart", "enabled", "true");
  return awaitMark();
}

void CCDFBench::awaitMoreCurves(std::size_t count) {
  awaitMessages("TTFRO 1", curvesSoFar() + count);
}

Texts CCDFBench::awaitMark() {
  const std::size_t before = told().size();
  for (std::size_t i = 0; i < ccdfMark().size(); ++i) hands().key("frmCCDF", "F6");
  const std::size_t length = ccdfMark().size();
  Texts texts = messages(awaitTranscript("a mark", [&](const Events& events) {
    const Texts all = messages(events);
    return all.size() >= before + length && part(all, all.size() - length) == ccdfMark();
  }));
  texts.resize(texts.size() - length);
  return texts;
}

void CCDFBench::giveItTime() {
  for (int look = 0; look < 50; ++look) hands().get("frmCCDF", "visible");
}

void CCDFBench::openBoxOf(const std::string& label) {
  hands().click("frmCCDF/" + label);
  hands().waitVisible("inputBox");
}

void CCDFBench::answer(const std::string& text) {
  hands().type("inputBox/QLineEdit", text);
  hands().key("inputBox", "Return");
  hands().waitGone("inputBox");
}

std::string CCDFBench::readMessage(const std::string& title) {
  const Box box = shownBox(hands());
  EXPECT_EQ(box.title, title);
  EXPECT_EQ(box.icon, "NoIcon");
  EXPECT_EQ(box.details, "");
  hands().key("messageBox", "Return");
  return box.text;
}

void CCDFBench::expectProgramEndsByClose() {
  hands().close("frmCCDF");
  expectProgramEnd();
}

Pixels CCDFBench::grabGraph() {
  const std::filesystem::path file = folder() / "graph.ppm";
  hands().grab(robot::ccdfGraph, file);
  return readPixels(file);
}

}  // namespace endtoend
