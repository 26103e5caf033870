#include <sys/socket.h>

#include <QApplication>
#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <thread>

#include "Program.h"
#include "Robot.h"
#include "RobotClient.h"
#include "Tour.h"

namespace {

/// Ends the process at once: the program's own loop is running in the other thread.
[[noreturn]] void giveUp(const std::string& reason) {
  std::cerr << "tour: " << reason << std::endl;
  std::_Exit(1);
}

/// The script, in a thread of its own: it may simply wait, whatever event loop the program is in.
void goRound(int socket, tour::MeterLink link, const std::string& folder) {
  try {
    robot::RobotClient hands(socket);
    tour::Tour tour(hands, link, folder);
    tour.walk();
    std::cout << tour.pictures() << " pictures in " << folder << std::endl;
    tour.leave();
    // The end of the program ends this thread too.
    std::this_thread::sleep_for(std::chrono::minutes(1));
    giveUp("the program goes on after its main window was closed");
  } catch (const std::exception& error) {
    giveUp(error.what());
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::string link = argc == 3 ? argv[1] : "";
  if (link != "--gpib" && link != "--serial") {
    std::cerr
        << "usage: tour --gpib|--serial FOLDER\n"
           "Walks through the program with the meter that is there, and leaves numbered\n"
           "pictures of what it shows in FOLDER. A program without stored settings is told to\n"
           "use the link that is named.\n";
    return 2;
  }
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::absolute(argv[2], error);
  std::filesystem::create_directories(folder, error);
  if (error) giveUp("cannot make " + folder.string() + ": " + error.message());

  // The system's own font and file dialogs cannot be reached from here.
  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  QApplication application(argc, argv);
  std::array<int, 2> sockets{};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets.data()) != 0) {
    giveUp("no socket for the robot");
  }
  const robot::Robot robot(sockets[0]);
  const auto meterLink = link == "--gpib" ? tour::MeterLink::gpib : tour::MeterLink::serial;
  std::thread(goRound, sockets[1], meterLink, folder.string()).detach();
  return pulsemod::runProgram(application);
}
