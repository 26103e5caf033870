#include "GraphHand.h"

#include <sstream>

namespace tour {

void moveOnGraph(robot::RobotClient& hands, const std::string& graph, const std::string& step,
                 double share) {
  std::istringstream place(hands.get(graph, "place"));
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  place >> x >> y >> width >> height;
  hands.mouse(step, graph, static_cast<int>(share * width), height / 2);
}

}  // namespace tour
