#include "AccessibleTree.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <chrono>
#include <stdexcept>
#include <thread>

#include "Bench.h"

namespace endtoend {

namespace {

constexpr const char* accessible = "org.a11y.atspi.Accessible";
constexpr const char* root = "/org/a11y/atspi/accessible/root";

// Bits of a state set.
constexpr unsigned focusableBit = 11;
constexpr unsigned focusedBit = 12;
constexpr unsigned showingBit = 25;

/// The bus needs an application object, and GoogleTest's main has none.
void needApplication() {
  static int count = 1;
  static char name[] = "accessibility_tests";
  static char* arguments[] = {name, nullptr};
  static const QCoreApplication application(count, arguments);
}

/// The address of the bus of accessibility, which the session bus starts when it is asked for.
QString addressOnSession(const std::string& sessionBus) {
  needApplication();
  const auto address = QString::fromStdString(sessionBus);
  const QDBusConnection session = QDBusConnection::connectToBus(address, address);
  const QDBusMessage reply = session.call(QDBusMessage::createMethodCall(
      "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress"));
  QDBusConnection::disconnectFromBus(address);
  if (reply.type() != QDBusMessage::ReplyMessage) {
    throw std::runtime_error("no bus of accessibility: " + reply.errorMessage().toStdString());
  }
  return reply.arguments().first().toString();
}

QDBusConnection connectionTo(const QString& address) {
  return QDBusConnection::connectToBus(address, address);
}

bool isMenuPart(const std::string& role) { return role.find("menu") != std::string::npos; }

}  // namespace

struct AccessibleTree::Reference {
  QString bus;
  QString object;
};

AccessibleTree::AccessibleTree(const std::string& sessionBus)
    : bus_(connectionTo(addressOnSession(sessionBus))) {
  if (!bus_.isConnected()) throw std::runtime_error("the bus of accessibility cannot be reached");
}

QVariant AccessibleTree::ask(const Reference& object, const char* interface, const char* method,
                             const QVariantList& arguments) {
  QDBusMessage call = QDBusMessage::createMethodCall(object.bus, object.object, interface, method);
  call.setArguments(arguments);
  const QDBusMessage reply = bus_.call(call);
  // An object may have gone since it was named.
  return reply.arguments().isEmpty() || reply.type() != QDBusMessage::ReplyMessage
             ? QVariant()
             : reply.arguments().first();
}

QVariant AccessibleTree::property(const Reference& object, const char* name) {
  const QVariant value =
      ask(object, "org.freedesktop.DBus.Properties", "Get", {QString(accessible), QString(name)});
  return value.value<QDBusVariant>().variant();
}

std::vector<AccessibleTree::Reference> AccessibleTree::childrenOf(const Reference& parent) {
  std::vector<Reference> children;
  const QVariant reply = ask(parent, accessible, "GetChildren");
  if (!reply.canConvert<QDBusArgument>()) return children;
  const auto list = reply.value<QDBusArgument>();
  list.beginArray();
  while (!list.atEnd()) {
    Reference child;
    QDBusObjectPath path;
    list.beginStructure();
    list >> child.bus >> path;
    list.endStructure();
    child.object = path.path();
    children.push_back(child);
  }
  list.endArray();
  return children;
}

void AccessibleTree::walk(const Reference& reference, const std::string& above,
                          std::vector<Accessible>& found) {
  Accessible object;
  object.role = ask(reference, accessible, "GetRoleName").toString().toStdString();
  object.name = property(reference, "Name").toString().toStdString();
  object.description = property(reference, "Description").toString().toStdString();
  object.bus = reference.bus.toStdString();
  object.object = reference.object.toStdString();
  object.isWindow =
      above.starts_with(" > application") && above.find(" > ", 1) == std::string::npos;
  object.path = above + " > " + object.role + " '" + object.name + "'";
  QList<uint> states;
  if (const QVariant reply = ask(reference, accessible, "GetState");
      reply.canConvert<QDBusArgument>()) {
    reply.value<QDBusArgument>() >> states;
  }
  const auto has = [&states](unsigned bit) {
    return !states.isEmpty() && (states.first() >> bit & 1U) != 0;
  };
  object.showing = has(showingBit);
  object.focusable = has(focusableBit);
  object.focused = has(focusedBit);
  found.push_back(object);
  if (!object.showing && !isMenuPart(object.role) && object.role != "application") return;
  for (const Reference& child : childrenOf(reference)) walk(child, object.path, found);
}

std::vector<Accessible> AccessibleTree::objects() {
  std::vector<Accessible> found;
  for (const Reference& program : childrenOf({"org.a11y.atspi.Registry", root})) {
    walk(program, "", found);
  }
  return found;
}

Accessible AccessibleTree::find(const std::string& role, const std::string& name) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (true) {
    for (const Accessible& object : objects()) {
      if (object.showing && object.role == role && object.name == name) return object;
    }
    if (std::chrono::steady_clock::now() > deadline) {
      throw std::runtime_error("a screen reader finds no " + role + " '" + name + "'");
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
}

void AccessibleTree::act(const Accessible& object, const std::string& action) {
  const Reference reference{QString::fromStdString(object.bus),
                            QString::fromStdString(object.object)};
  constexpr const char* interface = "org.a11y.atspi.Action";
  const QVariant count = ask(reference, "org.freedesktop.DBus.Properties", "Get",
                             {QString(interface), QString("NActions")})
                             .value<QDBusVariant>()
                             .variant();
  for (int index = 0; index < count.toInt(); ++index) {
    if (ask(reference, interface, "GetName", {index}).toString().toStdString() != action) continue;
    ask(reference, interface, "DoAction", {index});
    return;
  }
  throw std::runtime_error(object.path + " has no action " + action);
}

}  // namespace endtoend
