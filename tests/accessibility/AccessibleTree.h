#pragma once

#include <QDBusConnection>
#include <string>
#include <vector>

namespace endtoend {

/// One object as a screen reader sees it.
struct Accessible {
  std::string role;
  std::string name;
  std::string description;
  /// It stands directly under its program.
  bool isWindow = false;
  bool showing = false;
  bool focusable = false;
  bool focused = false;
  /// The roles and names from the program down to it.
  std::string path;
  std::string bus;
  std::string object;
};

/// A screen reader's view of the programs on a session bus.
class AccessibleTree {
 public:
  explicit AccessibleTree(const std::string& sessionBus);

  /// All objects of all programs, from the windows down; what is not showing has no descendants but
  /// in menus, which need not be open to be read.
  std::vector<Accessible> objects();
  /// The showing object of that role and name; throws when there is none within the patience.
  Accessible find(const std::string& role, const std::string& name);
  /// Carries out the action of that name, as a user of a switch or of speech does.
  void act(const Accessible& object, const std::string& action);

 private:
  struct Reference;
  std::vector<Reference> childrenOf(const Reference& parent);
  void walk(const Reference& object, const std::string& above, std::vector<Accessible>& found);
  QVariant property(const Reference& object, const char* name);
  QVariant ask(const Reference& object, const char* interface, const char* method,
               const QVariantList& arguments = {});

  QDBusConnection bus_;
};

}  // namespace endtoend
