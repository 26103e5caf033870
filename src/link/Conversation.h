#pragma once

#include <deque>
#include <functional>

namespace pulsemod {

/// One conversation with the meter at a time.
///
/// While the program waits for the meter it lets the user interface run, so a click can arrive
/// between a query and its reply. What a handler then wants to tell the meter must not get between
/// the two. A conversation is opened only at an edge: by a pass of a loop, by start-up, and by
/// `whenLinkIsFree`. The link's operations themselves open nothing and call each other freely.
///
/// When the outermost conversation has ended, the exchanges that were kept meanwhile run in their
/// order, each as a conversation of its own, before `converse` returns. Then a serial port that was
/// lost is told to the user, unless that was done already.
struct ConversationState {
  bool open = false;
  /// The user knows that the serial port is lost. A start of the acquisition forgets it, so that it
  /// says why it cannot run.
  bool lossTold = false;
  /// Exchanges that wait for the end of the open conversation, oldest first.
  std::deque<std::function<void()>> kept;
};
extern ConversationState Conversation;

/// Runs `exchange` as a conversation, or as part of the one that is open. A fault of `exchange`
/// leaves here after the kept exchanges have run.
void converse(const std::function<void()>& exchange);

/// For event handlers: the part of their work that talks to the meter, and what depends on its
/// outcome. Runs at once when no conversation is open and none is waiting, else in its turn; bind
/// arguments by value. A fault leaves here when the exchange runs at once; one in a kept exchange
/// is reported to the user and drops no other.
void whenLinkIsFree(std::function<void()> exchange);

/// The program ends: what is kept never reaches the meter.
void forgetKeptExchanges();

}  // namespace pulsemod
