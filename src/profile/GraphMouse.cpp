#include "profile/GraphMouse.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "link/Conversation.h"
#include "link/Fault.h"
#include "link/TimeText.h"
#include "profile/AcquisitionControl.h"
#include "profile/GraphFault.h"
#include "profile/GraphScale.h"
#include "profile/ProfileGraph.h"
#include "profile/ProfileView.h"
#include "startup/WriteMeterConfig.h"

namespace pulsemod {

GraphMouseState GraphMouse;

namespace {

GateSettings& gateOf(const GrabbedEdge& grabbed) {
  return Settings.Gates[static_cast<std::size_t>(grabbed.gate - 1)];
}

/// The time of an edge that is one.
float& timeOf(const GrabbedEdge& grabbed) { return gateOf(grabbed).*gateTimeField(grabbed.edge); }

bool isHit(double x, std::int32_t column) { return std::fabs(x - column) <= edgeHitTolerance; }

/// Gates 2 and up of a repeat follow gate 1 and cannot be moved themselves.
bool followsGateOne() { return Settings.RepeatEnabled != False16 && GraphMouse.Grabbed.gate != 1; }

/// Gates that were hidden since the last hover test cannot be grabbed.
void releaseHiddenEdge() {
  if (Settings.GatesVisible == False16) GraphMouse.Grabbed = {};
}

void moveGrabbedEdge(double x) {
  const float seconds = GraphXToTime(static_cast<float>(x));
  if (edgeMayMoveTo(GraphMouse.Grabbed, seconds)) timeOf(GraphMouse.Grabbed) = seconds;
  ExpandRepeatGates();
  profileView().refreshGatePage();
  PositionGateLines();
}

void showEdgeLabel(const GrabbedEdge& edge, PicturePoint pointer, const PictureScale& scale) {
  ProfileView& view = profileView();
  const bool dragging = GraphMouse.Dragging != False16;
  view.setEdgeLabelCaption((dragging ? "* " : "") + edgeCaption(edge));
  view.showEdgeLabel(edgeLabelPlace(pointer, view.edgeLabelSize(), scale));
}

void followPointer(PicturePoint pointer) {
  ProfileView& view = profileView();
  releaseHiddenEdge();
  if (GraphMouse.Dragging == False16 && Settings.GatesVisible != False16) {
    GraphMouse.Grabbed = edgeAt(pointer.x);
  }
  if (followsGateOne()) GraphMouse.Dragging = False16;
  const bool grabbed = GraphMouse.Grabbed.gate != 0;
  view.setSizingPointer(grabbed && !followsGateOne());
  if (!grabbed) {
    view.hideEdgeLabel();
    return;
  }
  // First, so that no edge moves on a graph that cannot be drawn.
  const PictureScale scale = profileGraphScale();
  if (GraphMouse.Dragging != False16) moveGrabbedEdge(pointer.x);
  showEdgeLabel(GraphMouse.Grabbed, pointer, scale);
}

/// A graph that cannot be computed shows no label.
template <typename Handler>
void orReportOnce(const Handler& handler) {
  try {
    handler();
  } catch (const Fault& fault) {
    profileView().hideEdgeLabel();
    reportGraphFaultOnce(fault);
  }
}

/// The edges whose lines are shown, by their times.
std::vector<GrabbedEdge> shownEdges() {
  std::vector<GrabbedEdge> edges;
  if (Settings.GatesVisible == False16) return edges;
  for (std::size_t index = 0; index < gateCount; ++index) {
    const GateSettings& gate = Settings.Gates[index];
    if (gate.Enabled == False16) continue;
    const auto number = static_cast<std::int16_t>(index + 1);
    edges.push_back({GateTime::start, number});
    if (gate.FenceEnabled != False16) {
      edges.push_back({GateTime::fenceStart, number});
      edges.push_back({GateTime::fenceStop, number});
    }
    edges.push_back({GateTime::stop, number});
  }
  std::stable_sort(edges.begin(), edges.end(), [](const GrabbedEdge& one, const GrabbedEdge& next) {
    return timeOf(one) < timeOf(next);
  });
  return edges;
}

bool chosenEdgeIsShown() {
  const std::vector<GrabbedEdge> edges = shownEdges();
  return std::find(edges.begin(), edges.end(), GraphMouse.Chosen) != edges.end();
}

/// Half way down the chosen edge's line.
PicturePoint placeOfChosenEdge(const PictureScale& scale) {
  const float x = TimeToGraphX(timeOf(GraphMouse.Chosen));
  return {static_cast<double>(x), scale.top + scale.height / 2};
}

void showChosenEdge() {
  if (!chosenEdgeIsShown()) return profileView().hideEdgeLabel();
  orReportOnce([] {
    const PictureScale scale = profileGraphScale();
    showEdgeLabel(GraphMouse.Chosen, placeOfChosenEdge(scale), scale);
  });
}

/// The end of a press; `endLabel` does to the label what remains to be done.
void endPress(void (*endLabel)()) {
  if (GraphMouse.ButtonDown == False16) return;
  const GrabbedEdge released = GraphMouse.Grabbed;
  const bool writes = GraphMouse.Dragging != False16 && released.gate != 0 && !followsGateOne();
  profileView().setSizingPointer(false);
  GraphMouse.ButtonDown = False16;
  GraphMouse.Dragging = False16;
  endLabel();
  ResumeAcquisition();
  if (!writes) return;
  whenLinkIsFree([released] {
    WriteGateConfig(released.gate, released.edge);
    profileView().refreshGatePage();
  });
}

}  // namespace

GrabbedEdge edgeAt(double x) {
  GrabbedEdge found;
  for (std::size_t index = 0; index < gateCount; ++index) {
    const GateSettings& gate = Settings.Gates[index];
    const auto number = static_cast<std::int16_t>(index + 1);
    if (gate.FenceEnabled != False16) {
      if (isHit(x, gate.FenceStartX)) found = {GateTime::fenceStart, number};
      if (isHit(x, gate.FenceStopX)) found = {GateTime::fenceStop, number};
    }
    if (gate.Enabled != False16) {
      if (isHit(x, gate.StartX)) found = {GateTime::start, number};
      if (isHit(x, gate.StopX)) found = {GateTime::stop, number};
    }
  }
  return found;
}

bool edgeMayMoveTo(const GrabbedEdge& grabbed, float seconds) {
  if (grabbed.gate == 0) return false;
  const GateSettings& gate = gateOf(grabbed);
  const bool fenced = gate.FenceEnabled != False16;
  switch (grabbed.edge) {
    case GateTime::start:
      return seconds > Settings.TriggerDelay && seconds < gate.StopTime &&
             (!fenced || seconds < gate.FenceStart);
    case GateTime::stop:
      return seconds > gate.StartTime && seconds < graphStopTime() &&
             (!fenced || seconds > gate.FenceStop);
    case GateTime::fenceStart:
      return seconds > gate.StartTime && seconds < gate.FenceStop;
    case GateTime::fenceStop:
      return seconds > gate.FenceStart && seconds < gate.StopTime;
    case GateTime::none:
      break;
  }
  return false;
}

std::string edgeCaption(const GrabbedEdge& grabbed) {
  const bool ofFence = grabbed.edge == GateTime::fenceStart || grabbed.edge == GateTime::fenceStop;
  const bool atStart = grabbed.edge == GateTime::start || grabbed.edge == GateTime::fenceStart;
  return (ofFence ? "Fence " : "Gate ") + std::to_string(grabbed.gate) +
         (atStart ? " Start " : " Stop ") + FormatTime(timeOf(grabbed));
}

PicturePoint edgeLabelPlace(PicturePoint pointer, const PictureSize& label,
                            const PictureScale& scale) {
  PicturePoint place{pointer.x, pointer.y - label.height};
  if (place.x + label.width > scale.width) place.x = scale.width - label.width;
  const bool passesBottom = place.y - label.height - scale.top < scale.height;
  if (passesBottom) place.y = pointer.y + 2 * label.height;
  return place;
}

void GraphButtonDown() {
  if (GraphMouse.ButtonDown != False16) return;
  GraphMouse.ButtonDown = True16;
  PauseAcquisition();
  GraphMouse.Dragging = True16;
  releaseHiddenEdge();
  ProfileView& view = profileView();
  view.setEdgeLabelCaption("* " + view.edgeLabelCaption());
}

void GraphMouseMove(PicturePoint pointer) {
  orReportOnce([pointer] { followPointer(pointer); });
}

void GraphMouseLeave() {
  if (GraphMouse.ButtonDown != False16) return;
  profileView().hideEdgeLabel();
  profileView().setSizingPointer(false);
}

void GraphButtonUp() {
  endPress([] { profileView().hideEdgeLabel(); });
}

void ChooseEdge(int step) {
  if (GraphMouse.ButtonDown != False16) return;
  const std::vector<GrabbedEdge> edges = shownEdges();
  if (edges.empty()) return LeaveEdges();
  const auto count = static_cast<int>(edges.size());
  const auto chosen = std::find(edges.begin(), edges.end(), GraphMouse.Chosen);
  const int before =
      chosen == edges.end() ? (step > 0 ? -1 : 0) : static_cast<int>(chosen - edges.begin());
  GraphMouse.Chosen = edges[static_cast<std::size_t>((before + step + count) % count)];
  showChosenEdge();
}

void MoveChosenEdge(double points) {
  if (!chosenEdgeIsShown()) return ChooseEdge(1);
  orReportOnce([points] {
    const PicturePoint place = placeOfChosenEdge(profileGraphScale());
    if (GraphMouse.ButtonDown == False16) {
      GraphMouse.UnderPointer = GraphMouse.Grabbed;
      GraphMouse.Grabbed = GraphMouse.Chosen;
      GraphButtonDown();
    }
    followPointer({place.x + points, place.y});
  });
  // At the edge, wherever the limits have left it.
  showChosenEdge();
}

void ReleaseChosenEdge() {
  if (GraphMouse.ButtonDown == False16) return;
  endPress(showChosenEdge);
  GraphMouse.Grabbed = GraphMouse.UnderPointer;
}

void LeaveEdges() {
  GraphMouse.Chosen = {};
  profileView().hideEdgeLabel();
}

}  // namespace pulsemod
