#pragma once

#include <QWidget>
#include <string>

#include "MeterRecord.h"
#include "Record.h"
#include "World.h"
#include "soak/MeterLine.h"

namespace randomuse {

/// What must hold, whatever the user does. A finding ends the life.
class Watch {
 public:
  Watch(Record& record, World& world, soak::MeterLine& gpib, soak::MeterLine& serial);

  /// One more act or fault, which may bring up a box.
  void act();
  void box(const Box& box);
  /// After each act.
  void look();
  /// The hands have been off for a while. True when the acquisition has stopped and all is said.
  bool isQuiet();
  /// While the acquisition has stopped.
  void atRest();
  /// Some time after a start.
  void expectLabels();
  /// The program ends.
  void end();

  /// The one that is the program's window; nullptr before it is shown.
  static QWidget* mainWindow();
  static QAction* menu(const char* name);

  std::uint64_t traces();
  std::uint64_t messages();

 private:
  static constexpr int mostBoxes = 4;

  void lookAtMenus();
  void lookAtWindows();
  void lookAtLabels(const QWidget& window);
  void lookAtMeter();
  MeterRecord& meter();
  void expectDrawing(const QWidget& window);

  Record& record_;
  World& world_;
  soak::MeterLine& gpib_;
  soak::MeterLine& serial_;
  MeterRecord gpibRecord_;
  MeterRecord serialRecord_;
  int boxesAllowed_ = mostBoxes;
  std::uint64_t faultsSeen_ = 0;
  bool mayEnd_ = false;
  unsigned looks_ = 0;
};

}  // namespace randomuse
