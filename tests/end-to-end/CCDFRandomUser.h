#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "UserAtRandom.h"

namespace endtoend {

/// A user of the CCDF window who does whatever it offers, in no order and at any moment, and who
/// knows what the meter takes: the cursor stays where every axis that is typed has it inside.
/// Remembers what the meter must have been told in the end.
class CCDFRandomUser : public UserAtRandom {
 public:
  /// The same seed gives the same wishes; what comes of each depends on the program's speed as
  /// well. The axis goes from -30 to 20 dBm at the start.
  CCDFRandomUser(robot::RobotClient& hands, std::uint32_t seed);

  /// Lets go of the button, closes all boxes and menus and stops the acquisition. What waits for
  /// the meter may bring up another box.
  void comeToRest();

  /// By the head of its command, the text of each setting as it was entered last.
  const std::map<std::string, std::string>& lastEdits() const { return lastEdits_; }

  std::size_t cursorMoves() const { return cursorMoves_; }

 private:
  struct Point {
    int x = 0;
    int y = 0;
  };
  const std::vector<Wish>& wishes() const override { return wishes_; }
  void clearTheWay() override;

  void hover();
  void pressSomewhere();
  void dragTheCursor();
  void editTheAxis();
  void typeAPosition();
  void switchTheCursor();
  void chooseASource();
  void restart();
  void startOrStop();
  void openAMenu();
  void resizeTheWindow();

  bool axisIsKnown() const { return startIsKnown_ && stopIsKnown_; }
  bool cursorIsOn() { return hands_.is("frmCCDF/menuOFF", "enabled"); }
  std::string cursorText();
  void lookAtTheGraph();
  Point somewhere();
  Point at(double power);
  Point atTheCursor();
  void move(Point point);
  void press(Point point);
  void dragOn();
  void disturbThePress();
  void release();
  void answerTheInputBox();

  std::vector<Wish> wishes_;
  std::map<std::string, std::string> lastEdits_;
  std::size_t cursorMoves_ = 0;
  double startPower_ = -30;
  double stopPower_ = 20;
  /// False from a power that the meter refuses up to the next one of that end that it takes.
  bool startIsKnown_ = true;
  bool stopIsKnown_ = true;
  /// Of the graph, in pixels.
  int width_ = 1;
  int height_ = 1;
  Point pointer_;
  bool pressed_ = false;
  /// The cursor's label when the button went down.
  std::string cursorAtPress_;
};

}  // namespace endtoend
