#pragma once

namespace pulsemod {

/// Lets the user interface run. Everything that waits, waits here, so that windows stay alive while
/// the meter is busy. Handlers of menus, mouse and windows run inside these calls.
class EventQueue {
 public:
  virtual ~EventQueue() = default;

  /// Handles what is pending and returns at once.
  virtual void processPending() = 0;

  /// Blocks until at least one event was handled. An arriving serial byte and the end of a link are
  /// events. For waits that only an event can end: a stopped program costs no processor time.
  virtual void processUntilEvent() = 0;

  /// As `processUntilEvent`, but returns after `milliseconds` at the latest. 0 or less: as
  /// `processPending`.
  virtual void processUntilEventOr(int milliseconds) = 0;
};

}  // namespace pulsemod
