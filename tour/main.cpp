#include <sys/socket.h>

#include <QApplication>
#include <QCursor>
#include <QFont>
#include <QScreen>
#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "GuidePictures.h"
#include "Program.h"
#include "Robot.h"
#include "RobotClient.h"
#include "Tour.h"
#include "TourClock.h"

namespace {

/// Ends the process at once: the program's own loop is running in the other thread.
[[noreturn]] void giveUp(const std::string& reason) {
  std::cerr << "tour: " << reason << std::endl;
  std::_Exit(1);
}

struct Order {
  tour::MeterLink link = tour::MeterLink::gpib;
  bool throughCCDF = false;
  bool forGuide = false;
  std::string folder;
};

/// False when the arguments are none of those that `usage` names.
bool readOrder(const std::vector<std::string>& arguments, Order& order) {
  bool linkIsNamed = false;
  for (const std::string& argument : arguments) {
    if (argument == "--ccdf") {
      order.throughCCDF = true;
    } else if (argument == "--guide") {
      order.forGuide = true;
    } else if (argument == "--gpib" || argument == "--serial") {
      order.link = argument == "--gpib" ? tour::MeterLink::gpib : tour::MeterLink::serial;
      linkIsNamed = true;
    } else if (order.folder.empty() && !argument.starts_with("-")) {
      order.folder = argument;
    } else {
      return false;
    }
  }
  const bool linkIsRight = !order.forGuide || order.link == tour::MeterLink::gpib;
  return linkIsNamed && linkIsRight && !order.folder.empty();
}

void takeTour(robot::RobotClient& hands, const Order& order) {
  tour::Tour tour(hands, order.link, order.folder);
  if (order.throughCCDF) {
    tour.walkCCDF();
  } else {
    tour.walk();
  }
  std::cout << tour.pictures() << " pictures in " << order.folder << std::endl;
  tour.leave();
}

void takeGuidePictures(robot::RobotClient& hands, const Order& order) {
  tour::GuidePictures pictures(hands, order.folder);
  if (order.throughCCDF) {
    pictures.ofCCDF();
  } else {
    pictures.ofProfile();
  }
}

/// The script, in a thread of its own: it may simply wait, whatever event loop the program is in.
void goRound(int socket, const Order& order) {
  try {
    robot::RobotClient hands(socket);
    if (order.forGuide) {
      takeGuidePictures(hands, order);
    } else {
      takeTour(hands, order);
    }
    // The end of the program ends this thread too.
    std::this_thread::sleep_for(std::chrono::minutes(1));
    giveUp("the program goes on after its window was closed");
  } catch (const std::exception& error) {
    giveUp(error.what());
  }
}

/// Nothing on the screen depends on the desktop, blinks, moves or is under the pointer.
void keepStill() {
  QApplication::setStyle(QStringLiteral("Fusion"));
  QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 9));
  QApplication::setCursorFlashTime(0);
  for (const Qt::UIEffect effect :
       {Qt::UI_General, Qt::UI_AnimateMenu, Qt::UI_FadeMenu, Qt::UI_AnimateCombo,
        Qt::UI_AnimateTooltip, Qt::UI_FadeTooltip}) {
    QApplication::setEffectEnabled(effect, false);
  }
  QCursor::setPos(QApplication::primaryScreen()->geometry().bottomRight());
}

}  // namespace

int main(int argc, char** argv) {
  Order order;
  if (!readOrder({argv + 1, argv + argc}, order)) {
    std::cerr << "usage: tour --gpib|--serial [--ccdf] FOLDER\n"
                 "       tour --gpib --guide [--ccdf] FOLDER\n"
                 "Walks through the program with the meter that is there, and leaves numbered\n"
                 "pictures of what it shows in FOLDER: the pulse profile, or with --ccdf the CCDF\n"
                 "mode. A program without stored settings is told to use the link that is named.\n"
                 "With --guide: the pictures of the user guide, under their names there.\n";
    return 2;
  }
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::absolute(order.folder, error);
  std::filesystem::create_directories(folder, error);
  if (error) giveUp("cannot make " + folder.string() + ": " + error.message());
  order.folder = folder.string();
  // File dialogs begin here.
  std::filesystem::current_path(folder, error);

  // The system's own font and file dialogs cannot be reached from here.
  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  QApplication application(argc, argv);
  std::array<int, 2> sockets{};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets.data()) != 0) {
    giveUp("no socket for the robot");
  }
  const robot::Robot robot(sockets[0]);
  std::thread(goRound, sockets[1], order).detach();
  if (!order.forGuide) return pulsemod::runProgram(application);
  keepStill();
  static tour::TourClock clock;
  return pulsemod::runProgram(application, &clock);
}
