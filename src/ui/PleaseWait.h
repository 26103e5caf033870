#pragma once

#include <QTimer>
#include <memory>
#include <string>

#include "platform/Progress.h"

namespace pulsemod {

class PleaseWaitWindow;

/// `frmPleaseWait`. The window is built when it is first shown, so that this can be made before
/// anything else at little cost; an application must exist.
class PleaseWait : public Progress {
 public:
  PleaseWait();
  ~PleaseWait() override;
  PleaseWait(const PleaseWait&) = delete;
  PleaseWait& operator=(const PleaseWait&) = delete;

  void show(const std::string& text) override;
  void showAfter(int milliseconds, const std::string& text) override;
  void setText(const std::string& text) override;
  void setDone(int done, int whole) override;
  void hide() override;
  bool dismissed() const override { return dismissed_; }

 private:
  PleaseWaitWindow& window();
  void showWith(const std::string& text, int whole);

  std::unique_ptr<PleaseWaitWindow> window_;
  QTimer delay_;
  std::string delayedText_;
  bool dismissed_ = false;
};

}  // namespace pulsemod
