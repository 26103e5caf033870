#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QTimer>
#include <deque>
#include <functional>

namespace pulsemod::test {

/// Plays the user of modal boxes. Each step waits until a box of its kind is the topmost one, and
/// then does something to it.
class ModalScript {
 public:
  ~ModalScript() { EXPECT_TRUE(steps_.empty()) << steps_.size() << " boxes did not come"; }

  template <typename Box>
  void then(const std::function<void(Box&)>& act) {
    steps_.push_back([act](QWidget* topmost) {
      auto* box = qobject_cast<Box*>(topmost);
      if (box == nullptr || !box->isVisible()) return std::function<void()>();
      return std::function<void()>([act, box] { act(*box); });
    });
    if (steps_.size() == 1) poll();
  }

 private:
  using Step = std::function<std::function<void()>(QWidget*)>;

  void poll() {
    // One timer for each try: a step may open another box, which the next step is to answer.
    QTimer::singleShot(5, &context_, [this] {
      if (steps_.empty()) return;
      const std::function<void()> action = steps_.front()(QApplication::activeModalWidget());
      if (action) steps_.pop_front();
      poll();
      if (action) action();
    });
  }

  std::deque<Step> steps_;
  QObject context_;
};

}  // namespace pulsemod::test
