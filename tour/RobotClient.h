#pragma once

#include <chrono>
#include <stdexcept>
#include <string>

#include "Wire.h"

namespace robot {

/// What the mouse works on: the graph of each main window.
inline constexpr auto profileGraph = "frmMain/GraphPic";
inline constexpr auto ccdfGraph = "frmCCDF/CCDFGraphPic";

/// The robot could not do what it was asked for: the reason and the windows on the screen.
class RobotError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The robot answered that it could not; the program itself is well.
class RobotRefusal : public RobotError {
 public:
  using RobotError::RobotError;
};

/// A script's hands and eyes: works the windows of a program through the robot inside it.
///
/// A control is named by its object name, `frmMain/menuStart` where two windows have one of that
/// name, or by its class (`QFontDialog`). Whatever is asked for is waited for, up to `limit`: a
/// click until the control is visible, enabled and not behind a modal window. Everything throws
/// `RobotError` when the limit passes or the program ends.
class RobotClient {
 public:
  /// Takes over a connected socket.
  explicit RobotClient(int socket);
  ~RobotClient();
  RobotClient(const RobotClient&) = delete;
  RobotClient& operator=(const RobotClient&) = delete;

  void setLimit(std::chrono::milliseconds limit) { limit_ = limit; }

  /// Whatever has to wait is refused as soon as a window of this name is on the screen, unless it
  /// names that window itself. No name: nothing is refused.
  void giveUpAt(const std::string& window);

  /// Any property of Qt's; also `place` ("x y width height" within the window) and `exists`. A
  /// control that does not exist is not visible; asking for anything else of it waits for it.
  std::string get(const std::string& name, const std::string& property);
  bool is(const std::string& name, const std::string& property);
  void waitUntil(const std::string& name, const std::string& property, const std::string& value);
  void waitWhile(const std::string& name, const std::string& property, const std::string& value);
  void waitVisible(const std::string& name) { waitUntil(name, "visible", "true"); }
  void waitGone(const std::string& name) { waitUntil(name, "visible", "false"); }
  /// `name|title` of each visible window, the one in front first; joined by line feeds.
  std::string windows();
  /// Waits until one of several windows is there and says which.
  std::string waitAny(const Fields& names);

  /// The left button, down and up.
  void click(const std::string& name);
  /// One mouse step for drags: `step` is press, move or release; the point counts from the
  /// control's top left corner.
  void mouse(const std::string& step, const std::string& name, int x, int y);
  /// Chooses an item as the user does, from the menu bar down.
  void trigger(const std::string& action);
  /// Opens the menu that holds the item and leaves it open.
  void openMenuOf(const std::string& action);
  /// Escapes from an open menu, if there is one.
  void closeMenu();
  /// Replaces the text of an edit by typing.
  void type(const std::string& name, const std::string& text);
  /// Presses a key in a window, written as in `Ctrl+S` or `Escape`.
  void key(const std::string& window, const std::string& keys);
  /// Types the path into a file dialog and accepts it; returns when the dialog is gone.
  void chooseFile(const std::string& dialog, const std::string& path);
  /// Brings a window to the front, as a window manager would, and waits until it is the active one.
  void activate(const std::string& window);
  /// The window's close button.
  void close(const std::string& window);
  void resize(const std::string& window, int width, int height);

  /// One control or window as PNG or PPM, by the file's suffix.
  void grab(const std::string& name, const std::string& file);
  /// The same at the first moment at which another control's property has that value.
  void grabWhen(const std::string& name, const std::string& file, const std::string& control,
                const std::string& property, const std::string& value);
  /// All visible windows where they stand on the screen. With a name, at the first moment at which
  /// that control is visible.
  void picture(const std::string& file, const std::string& name = {});

 private:
  std::string ask(const Fields& request);
  /// The fields of the next line; false when the limit passed.
  bool receive(Fields& fields, std::chrono::milliseconds limit);

  int socket_;
  std::string received_;
  std::chrono::milliseconds limit_{60000};
};

}  // namespace robot
