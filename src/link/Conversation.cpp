#include "link/Conversation.h"

#include <exception>
#include <utility>

#include "link/Fault.h"
#include "link/MeterLink.h"

namespace pulsemod {

ConversationState Conversation;

namespace {

class OpenConversation {
 public:
  OpenConversation() { Conversation.open = true; }
  ~OpenConversation() { Conversation.open = false; }
  OpenConversation(const OpenConversation&) = delete;
  OpenConversation& operator=(const OpenConversation&) = delete;
};

void runKeptExchanges() {
  while (!Conversation.kept.empty()) {
    const std::function<void()> exchange = std::move(Conversation.kept.front());
    Conversation.kept.pop_front();
    reportFaults([&exchange] {
      const OpenConversation conversation;
      exchange();
    });
  }
}

/// A box and not a fault: who has spoken brings its windows in line all the same.
void tellLossOnce() {
  if (!linkIsLost() || Conversation.lossTold) return;
  // First, since handlers run while the box is open.
  Conversation.lossTold = true;
  reportFault(linkFailureReason());
}

}  // namespace

void converse(const std::function<void()>& exchange) {
  if (Conversation.open) {
    exchange();
    return;
  }
  std::exception_ptr fault;
  try {
    const OpenConversation conversation;
    exchange();
  } catch (const Fault&) {
    fault = std::current_exception();
  }
  runKeptExchanges();
  tellLossOnce();
  if (fault) std::rethrow_exception(fault);
}

void whenLinkIsFree(std::function<void()> exchange) {
  if (Conversation.open || !Conversation.kept.empty()) {
    Conversation.kept.push_back(std::move(exchange));
  } else {
    converse(exchange);
  }
}

void forgetKeptExchanges() { Conversation.kept.clear(); }

}  // namespace pulsemod
