#pragma once

#include <cstdint>
#include <memory>

#include "platform/SerialPort.h"

class QSerialPort;

namespace pulsemod {

/// A serial port of the system; which device it is, `host/SerialPortNames.h` says. Bytes arrive and
/// leave while events are processed, and each wakes a wait for an event. What had arrived before a
/// port was lost can still be read. A port that cannot take the baud rate counts as not opened.
class HostSerialPort : public SerialPort {
 public:
  HostSerialPort();
  ~HostSerialPort() override;

  void setPortNumber(int number) override { portNumber_ = number; }
  void setSettings(std::string_view settings) override { settings_ = settings; }

  bool isOpen() const override;
  bool open() override;
  void close() override;

  void write(std::string_view bytes) override;
  std::size_t outputCount() const override;
  std::optional<char> input() override;

  std::string failureReason() const override { return failureReason_; }

 private:
  bool openDevice(const std::string& device, std::int32_t baud);
  void noteLoss();
  void finishLoss();
  void keepArrived();

  int portNumber_ = 1;
  std::string settings_ = "9600,N,8,1";
  std::string device_;
  std::string failureReason_;

  std::unique_ptr<QSerialPort> port_;
  bool lost_ = false;
  /// Characters taken over from the port, read up to `nextArrived_`.
  std::string arrived_;
  std::size_t nextArrived_ = 0;
};

/// The baud rate of a settings text "<baud>,N,8,1"; nothing when the text is not of this form.
std::optional<std::int32_t> baudOfSettings(std::string_view settings);

}  // namespace pulsemod
