#include "host/HostSerialPort.h"

#include <QSerialPort>
#include <charconv>

#include "host/SerialPortFailure.h"
#include "host/SerialPortNames.h"

namespace pulsemod {

namespace {

/// Errors after which an open port is of no use any more.
bool endsConnection(QSerialPort::SerialPortError error) {
  switch (error) {
    case QSerialPort::ReadError:
    case QSerialPort::WriteError:
    case QSerialPort::ResourceError:
    case QSerialPort::DeviceNotFoundError:
    case QSerialPort::PermissionError:
    case QSerialPort::UnknownError:
      return true;
    default:
      return false;
  }
}

PortProblem problemOf(QSerialPort::SerialPortError error) {
  switch (error) {
    case QSerialPort::DeviceNotFoundError:
      return PortProblem::notFound;
    case QSerialPort::PermissionError:
      return PortProblem::refused;
    default:
      return PortProblem::unusable;
  }
}

}  // namespace

std::optional<std::int32_t> baudOfSettings(std::string_view settings) {
  std::int32_t baud = 0;
  const char* end = settings.data() + settings.size();
  const auto [rest, error] = std::from_chars(settings.data(), end, baud);
  if (error != std::errc() || baud <= 0) return std::nullopt;
  if (std::string_view(rest, static_cast<std::size_t>(end - rest)) != ",N,8,1") return std::nullopt;
  return baud;
}

HostSerialPort::HostSerialPort() = default;
HostSerialPort::~HostSerialPort() = default;

bool HostSerialPort::isOpen() const { return port_ && port_->isOpen() && !lost_; }

bool HostSerialPort::open() {
  close();
  failureReason_.clear();
  const std::optional<std::int32_t> baud = baudOfSettings(settings_);
  if (!baud) {
    failureReason_ = "The serial port has no settings \"" + settings_ + "\".";
    return false;
  }
  const std::optional<std::string> device = devicePath(portNumber_);
  if (!device) {
    failureReason_ = missingPortReason(portNumber_, systemSerialPortPlaces());
    return false;
  }
  return openDevice(*device, *baud);
}

bool HostSerialPort::openDevice(const std::string& device, std::int32_t baud) {
  device_ = device;
  port_ = std::make_unique<QSerialPort>();
  port_->setPortName(QString::fromStdString(device));
  port_->setDataBits(QSerialPort::Data8);
  port_->setParity(QSerialPort::NoParity);
  port_->setStopBits(QSerialPort::OneStop);
  port_->setFlowControl(QSerialPort::NoFlowControl);
  if (!port_->open(QIODevice::ReadWrite) || !port_->setBaudRate(baud)) {
    failureReason_ = openFailureReason(portNumber_, device, problemOf(port_->error()),
                                       deviceAccess(device), port_->errorString().toStdString());
    port_.reset();
    return false;
  }
  // A port without these lines, as a pseudo-terminal, refuses; it works all the same.
  port_->setDataTerminalReady(true);
  port_->setRequestToSend(true);
  QObject::connect(port_.get(), &QSerialPort::errorOccurred, port_.get(),
                   [this](QSerialPort::SerialPortError error) {
                     if (endsConnection(error)) noteLoss();
                   });
  // The port is at work on its stack while it reports, and would report the same error without end:
  // it is closed as soon as it has returned.
  QObject::connect(
      port_.get(), &QSerialPort::errorOccurred, port_.get(), [this] { finishLoss(); },
      Qt::QueuedConnection);
  return true;
}

void HostSerialPort::noteLoss() {
  if (lost_) return;
  lost_ = true;
  failureReason_ = lossReason(portNumber_, device_, port_->errorString().toStdString());
}

void HostSerialPort::finishLoss() {
  if (!lost_ || !port_->isOpen()) return;
  keepArrived();
  port_->close();
}

void HostSerialPort::close() {
  // A loss that is still to be finished goes with the object that was to finish it.
  port_.reset();
  lost_ = false;
  arrived_.clear();
  nextArrived_ = 0;
}

void HostSerialPort::write(std::string_view bytes) {
  if (isOpen()) port_->write(bytes.data(), static_cast<qint64>(bytes.size()));
}

std::size_t HostSerialPort::outputCount() const {
  return isOpen() ? static_cast<std::size_t>(port_->bytesToWrite()) : 0;
}

void HostSerialPort::keepArrived() {
  arrived_.erase(0, nextArrived_);
  nextArrived_ = 0;
  if (port_ && port_->isOpen()) arrived_ += port_->readAll().toStdString();
}

std::optional<char> HostSerialPort::input() {
  if (nextArrived_ == arrived_.size()) keepArrived();
  if (nextArrived_ == arrived_.size()) return std::nullopt;
  return arrived_[nextArrived_++];
}

}  // namespace pulsemod
