#include "ui/PleaseWait.h"

#include <QCoreApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QFontMetrics>
#include <QLabel>
#include <QThread>
#include <QVBoxLayout>
#include <QWindow>

namespace pulsemod {

/// One line of text. Closing it by any means but `hide` sets `dismissed`.
class PleaseWaitWindow : public QDialog {
 public:
  explicit PleaseWaitWindow(bool& dismissed) : dismissed_(dismissed) {
    setObjectName(QStringLiteral("frmPleaseWait"));
    setWindowTitle(QStringLiteral("Please Wait"));
    message_.setObjectName(QStringLiteral("lblMessage"));
    message_.setTextFormat(Qt::PlainText);
    // Wide enough for the longest text, so that the window keeps its size while texts change.
    const QString longest = QStringLiteral("Please Wait... Reading Power Meter Identity...");
    message_.setFixedWidth(message_.fontMetrics().horizontalAdvance(longest + longest.left(8)));
    message_.setWordWrap(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 24, 24, 24);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(&message_);
  }

  /// A text on screen is painted at once, since no event may run before the meter answers.
  void setText(const std::string& text) {
    const QString shown = QString::fromStdString(text);
    if (shown == message_.text()) return;
    message_.setText(shown);
    if (isVisible()) message_.repaint();
  }

  /// What is drawn before the window system has exposed the window is lost, so its expose is waited
  /// for. Meanwhile the user's input, closing included, stays queued, so that no handler of the
  /// user's runs here; what the program itself has posted, and bytes that a port takes into its
  /// buffer, may be handled.
  void appear() {
    if (isVisible()) return;
    show();
    constexpr int patienceMs = 100;
    QElapsedTimer waited;
    waited.start();
    // At least once: of a window that was shown before, the expose may still be that of then.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    while (!windowHandle()->isExposed() && waited.elapsed() < patienceMs) {
      QThread::msleep(1);
      QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    }
    repaint();
  }

  void reject() override {
    dismissed_ = true;
    QDialog::reject();
  }

 private:
  bool& dismissed_;
  QLabel message_{this};
};

PleaseWait::PleaseWait() {
  delay_.setSingleShot(true);
  QObject::connect(&delay_, &QTimer::timeout, &delay_, [this] { show(delayedText_); });
}

PleaseWait::~PleaseWait() = default;

PleaseWaitWindow& PleaseWait::window() {
  if (!window_) window_ = std::make_unique<PleaseWaitWindow>(dismissed_);
  return *window_;
}

void PleaseWait::show(const std::string& text) {
  delay_.stop();
  dismissed_ = false;
  window().setText(text);
  window().appear();
}

void PleaseWait::showAfter(int milliseconds, const std::string& text) {
  dismissed_ = false;
  delayedText_ = text;
  delay_.start(milliseconds);
}

void PleaseWait::setText(const std::string& text) {
  delayedText_ = text;
  if (window_) window_->setText(text);
}

void PleaseWait::hide() {
  delay_.stop();
  if (window_) window_->hide();
}

}  // namespace pulsemod
