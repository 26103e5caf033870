#pragma once

#include <QPointer>
#include <QWidget>
#include <map>
#include <string>
#include <vector>

#include "Chance.h"
#include "Record.h"

class QAction;
class QMenu;

namespace pulsemod {
class GraphWidget;
}

namespace randomuse {

/// The user's hand. It knows no list of controls: whatever window and control is on the screen at
/// the moment it acts on, by mouse or by key, as the window system would deliver it.
class Hand {
 public:
  Hand(Chance& chance, Record& record) : chance_(chance), record_(record) {}

  /// In most cases the answer to a window is one of these controls; each is named as often as it is
  /// likely.
  void prefer(const std::string& window, std::vector<std::string> controls);
  /// These end the program, and are acted on less often than others.
  void spare(std::vector<std::string> controls) { spared_ = std::move(controls); }

  void act();
  /// Closes the popup or dialog in front by one of its buttons or by Escape; false when there is
  /// none.
  bool answer(bool asPreferred = true);
  /// Lets go of what the mouse or a key holds.
  void letGo();
  /// Closes a window as its title bar does; false when a dialog is in the way.
  bool close(QWidget* window);

  static std::vector<QWidget*> windowsInReach();
  static std::string nameOf(const QWidget& widget);

 private:
  struct Target {
    QWidget* widget = nullptr;
    QAction* action = nullptr;
    std::string name;
  };
  std::vector<Target> targetsIn(QWidget* window);
  std::vector<Target> targetsIn(const std::vector<QWidget*>& windows);
  void collectActions(const QList<QAction*>& actions, QWidget* bar, std::vector<Target>& targets);
  const Target& choose(const std::vector<Target>& targets);
  bool shies(const std::string& name);
  void note(const Target& target);
  void actWithMouseDown(const std::vector<QWidget*>& windows);
  void actOn(const Target& target);
  void pressShortcut(const Target& target);
  void actOnAction(const Target& target);
  void actOnWidget(QWidget* widget);
  void actOnWindow(QWidget* window);
  void actOnGraph(pulsemod::GraphWidget* graph);
  void moveHeld();
  void actInMenu(QMenu* menu);
  void type(QWidget* field);
  void drop(QWidget* window);
  void rightClick(QWidget* widget);
  void keys(QWidget* widget, const char* sequence);
  bool answerAsPreferred(QWidget* window);
  QString anyText();
  QPoint anyPoint(const QWidget& widget);

  Chance& chance_;
  Record& record_;
  std::map<std::string, std::vector<std::string>> preferred_;
  std::vector<std::string> spared_;
  /// In this life alone, so that it is the same whatever lives were before it.
  std::map<std::string, int> touches_;
  /// The mouse is down on it.
  QPointer<QWidget> held_;
  /// A key is down on it.
  QPointer<QWidget> keyHeld_;
};

}  // namespace randomuse
