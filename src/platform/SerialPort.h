#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace pulsemod {

/// One RS232 port, read one character at a time. 8 data bits, no parity, 1 stop bit, no handshake,
/// DTR and RTS raised where the port has them.
class SerialPort {
 public:
  virtual ~SerialPort() = default;

  /// Port number 1 to 10 (COM1: to COM10:). Takes effect at the next `open`.
  virtual void setPortNumber(int number) = 0;
  /// Settings text: the baud rate in decimal followed by ",N,8,1". Takes effect at the next `open`.
  virtual void setSettings(std::string_view settings) = 0;

  virtual bool isOpen() const = 0;
  /// False when the port cannot be opened; `failureReason` then says why.
  virtual bool open() = 0;
  virtual void close() = 0;

  /// Queues bytes for sending. Nothing happens on a closed port.
  virtual void write(std::string_view bytes) = 0;
  /// Bytes still waiting to be sent; 0 on a closed port.
  virtual std::size_t outputCount() const = 0;
  /// The next character that has arrived, or nothing.
  virtual std::optional<char> input() = 0;

  /// Why the port could not be opened or was lost, in words for the user (no such port; no
  /// permission, with the group to join; in use); empty when nothing went wrong. A port that fails
  /// while it is open closes itself, so `isOpen` turns false.
  virtual std::string failureReason() const = 0;
};

}  // namespace pulsemod
