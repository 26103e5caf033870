#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace randomuse {

struct Figures {
  std::uint64_t acts = 0;
  std::uint64_t onGpib = 0;  ///< acts while GPIB was the link
  std::uint64_t onSerial = 0;
  std::uint64_t inModal = 0;     ///< acts while a dialog's own event loop ran
  std::uint64_t inExchange = 0;  ///< acts in the middle of a conversation with the meter
  std::uint64_t boxes = 0;
  std::uint64_t files = 0;   ///< file questions
  std::uint64_t faults = 0;  ///< that struck
  std::uint64_t rests = 0;
  std::uint64_t live = 0;  ///< rests after which a start brought traces
  std::uint64_t told = 0;  ///< rests after which a box said why it cannot
  std::uint64_t simulatedMs = 0;
};

/// The journal and the figures of all lives, in memory that outlives the process of a life.
class Record {
 public:
  Record();

  /// The journal is empty, and `now` is where the time of a line comes from.
  void beginLife();
  void endLife() { common_->figures.simulatedMs += common_->now; }
  void setTime(std::uint64_t milliseconds) { common_->now = milliseconds; }
  void line(std::string_view text);
  /// Ends the process of the life.
  [[noreturn]] void fail(std::string_view why);
  void expect(bool holds, std::string_view why) {
    if (!holds) fail(why);
  }

  /// A control is on the screen.
  void saw(const std::string& name, bool enabled);
  /// It has been acted on.
  void touched(const std::string& name);

  Figures& figures() { return common_->figures; }
  /// Of the journal of this life.
  std::uint64_t digest() const { return common_->digest; }
  std::string failure() const { return common_->failure.data(); }
  std::string lastLines(std::size_t most) const;
  /// Controls seen, seen enabled, acted on, and the names of those that were enabled and are
  /// untouched.
  std::string coverage() const;

 private:
  static constexpr std::size_t journalSize = std::size_t{1} << 20U;
  static constexpr std::size_t mostControls = 4096;

  struct Control {
    std::array<char, 112> name{};
    bool enabled = false;
    std::uint32_t touches = 0;
  };
  struct Common {
    Figures figures;
    std::uint64_t digest = 0;
    std::uint64_t now = 0;
    std::array<char, 2048> failure{};
    std::size_t controlCount = 0;
    std::array<Control, mostControls> controls{};
    /// The last bytes of the journal: byte n stands at n modulo the size.
    std::size_t written = 0;
    std::array<char, journalSize> journal{};
  };
  Control& control(const std::string& name);

  Common* common_;
  /// Of each name among the controls.
  std::unordered_map<std::string, std::size_t> places_;
};

}  // namespace randomuse
