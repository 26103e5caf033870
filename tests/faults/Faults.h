#pragma once

#include <cstddef>
#include <string>

namespace pulsemod::test {

/// One reply of a workflow and what becomes of it on its way.
struct Spoil {
  enum class Kind {
    none,
    cut,        ///< only the first `place` bytes come
    shortened,  ///< only the first `place` characters come, properly ended
    flipped,    ///< bit `bit` of the byte at `place`
    pieces,     ///< comes in pieces of `place` bytes
    replaced    ///< says `text` instead
  };
  Kind kind = Kind::none;
  /// Which of the workflow's replies, from 0 on.
  int reply = -1;
  std::size_t place = 0;
  unsigned bit = 0;
  std::string text = {};
};

/// Calls of the GPIB library that fail, counted from 0.
struct GpibPlan {
  int first = -1;
  bool forEver = false;
  int code = 0;

  bool strikes(int call) const {
    return first >= 0 && (call == first || (forEver && call > first));
  }
};

/// The moment at which the device of a serial port is pulled.
struct LossPlan {
  enum class Moment {
    before,   ///< its message never gets into the port
    leaving,  ///< its message is in the port and never leaves
    left,     ///< the meter has the message, the reply is not on its way
    midReply,
    afterReply
  };
  /// Which of the workflow's messages, from 0 on.
  int message = -1;
  Moment moment = Moment::before;
};
inline constexpr std::size_t pieceBeforeLoss = 3;

struct Faults {
  Spoil spoil;
  GpibPlan gpib;
  LossPlan loss;
};

/// The reply as it comes in the end. `head` is the length of what the link puts before its text.
inline void spoilWire(const Spoil& spoil, std::string& wire, std::size_t head) {
  const std::size_t lineEnd = wire.ends_with("\r\n") ? 2 : 1;
  switch (spoil.kind) {
    case Spoil::Kind::cut:
      wire.resize(spoil.place);
      return;
    case Spoil::Kind::shortened:
      wire = wire.substr(0, head + spoil.place) + wire.substr(wire.size() - lineEnd);
      return;
    case Spoil::Kind::replaced:
      wire = wire.substr(0, head) + spoil.text + wire.substr(wire.size() - lineEnd);
      return;
    case Spoil::Kind::flipped:
      wire[spoil.place] =
          static_cast<char>(static_cast<unsigned char>(wire[spoil.place]) ^ (1U << spoil.bit));
      return;
    case Spoil::Kind::pieces:
    case Spoil::Kind::none:
      return;
  }
}

}  // namespace pulsemod::test
