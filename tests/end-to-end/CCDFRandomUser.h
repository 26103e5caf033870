#pragma once

#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "RobotClient.h"

namespace endtoend {

/// A user of the CCDF window who does whatever it offers, in no order and at any moment, and who
/// knows what the meter takes: the cursor stays where every axis that is typed has it inside.
/// Remembers what the meter must have been told in the end.
class CCDFRandomUser {
 public:
  /// The same seed gives the same wishes; what comes of each depends on the program's speed as
  /// well. The axis goes from -30 to 20 dBm at the start.
  CCDFRandomUser(robot::RobotClient& hands, std::uint32_t seed);

  void act();
  /// Lets go of the button, closes all boxes and menus and stops the acquisition. What waits for
  /// the meter may bring up another box.
  void comeToRest();

  /// By the head of its command, the text of each setting as it was entered last.
  const std::map<std::string, std::string>& lastEdits() const { return lastEdits_; }

  std::size_t actions() const { return index_; }
  std::size_t cursorMoves() const { return cursorMoves_; }
  /// What the user could not bring to its end, since a box came up or a menu item went grey.
  std::size_t givenUp() const { return givenUp_; }
  /// What came to no end for any other reason.
  const std::string& oddRefusals() const { return oddRefusals_; }
  /// "drags 120, edits 80" and so on.
  std::string summary() const;

 private:
  struct Point {
    int x = 0;
    int y = 0;
  };
  struct Wish {
    const char* name;
    unsigned weight;
    void (CCDFRandomUser::*carryOut)();
  };
  static const std::vector<Wish>& wishes();

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

  std::uint32_t number(std::uint32_t below) {
    return static_cast<std::uint32_t>(random_() % below);
  }
  bool oneIn(std::uint32_t times) { return number(times) == 0; }
  int between(int least, int most) {
    return least + static_cast<int>(number(static_cast<std::uint32_t>(most - least + 1)));
  }

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
  void trigger(const std::string& item);
  void clearTheWay();

  robot::RobotClient& hands_;
  std::uint32_t seed_;
  std::mt19937 random_;
  std::map<std::string, std::string> lastEdits_;
  std::map<std::string, std::size_t> counts_;
  std::size_t index_ = 0;
  std::size_t givenUp_ = 0;
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
  std::string oddRefusals_;
};

}  // namespace endtoend
