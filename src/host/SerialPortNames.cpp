#include "host/SerialPortNames.h"

#include <QFile>
#include <QFileInfo>
#include <QSerialPortInfo>
#include <QStandardPaths>

namespace pulsemod {

namespace {

std::string linkPath(int portNumber, const SerialPortPlaces& places) {
  return places.linkFolder + "/com" + std::to_string(portNumber);
}

std::string deviceOf(const char* kind, int portNumber) {
  return kind + std::to_string(portNumber - 1);
}

bool isThere(const std::string& path) { return QFileInfo::exists(QString::fromStdString(path)); }

bool isRealSerialPort(const std::string& name) {
  // The kernel's own statement comes first: to ask the port itself it must be opened, which needs
  // permission and raises the lines of whatever is connected to it.
  QFile type(QString::fromStdString("/sys/class/tty/" + name + "/type"));
  if (type.open(QIODevice::ReadOnly)) return type.readAll().trimmed() != "0";
  for (const QSerialPortInfo& port : QSerialPortInfo::availablePorts()) {
    if (port.portName() == QString::fromStdString(name)) return true;
  }
  return false;
}

}  // namespace

SerialPortPlaces systemSerialPortPlaces() {
  const QString configuration =
      QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  return {configuration.toStdString() + "/Pelmora PulseMod/ports", "/dev", isRealSerialPort};
}

std::optional<std::string> devicePath(int portNumber) {
#ifdef _WIN32
  return "COM" + std::to_string(portNumber);
#else
  return devicePath(portNumber, systemSerialPortPlaces());
#endif
}

std::optional<std::string> devicePath(int portNumber, const SerialPortPlaces& places) {
  const QFileInfo link(QString::fromStdString(linkPath(portNumber, places)));
  if (link.isSymLink()) {
    // The device's own name, so that a port opened by way of two links is still one port.
    const QString device = link.canonicalFilePath();
    return (device.isEmpty() ? link.symLinkTarget() : device).toStdString();
  }

  const std::string folder = places.deviceFolder + "/";
  const std::string builtIn = deviceOf("ttyS", portNumber);
  if (isThere(folder + builtIn) && places.isRealPort(builtIn)) return folder + builtIn;
  for (const char* adapter : {"ttyUSB", "ttyACM"}) {
    const std::string path = folder + deviceOf(adapter, portNumber);
    if (isThere(path)) return path;
  }
  return std::nullopt;
}

std::string portDeviceText(int portNumber) { return devicePath(portNumber).value_or(""); }

std::string missingPortReason(int portNumber, const SerialPortPlaces& places) {
  const std::string folder = places.deviceFolder + "/";
  return "There is no port COM" + std::to_string(portNumber) + ": on this computer. Looked for " +
         folder + deviceOf("ttyS", portNumber) + ", " + folder + deviceOf("ttyUSB", portNumber) +
         ", " + folder + deviceOf("ttyACM", portNumber) + " and the link " +
         linkPath(portNumber, places) + ".";
}

}  // namespace pulsemod
