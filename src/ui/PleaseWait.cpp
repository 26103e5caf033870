#include "ui/PleaseWait.h"

#include <QCoreApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QFontMetrics>
#include <QLabel>
#include <QProgressBar>
#include <QThread>
#include <QVBoxLayout>
#include <QWindow>

namespace pulsemod {

namespace {

// The whole of which the bar shows a part, while no number is known.
constexpr int unknown = 0;
constexpr int justBegun = 1;

}  // namespace

/// One line of text and a bar. Closing it by any means but `hide` sets `dismissed`.
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
    layout->setSpacing(12);
    layout->addWidget(&message_);
    bar_.setObjectName(QStringLiteral("barDone"));
    bar_.setAccessibleName(QStringLiteral("Progress"));
    bar_.setTextVisible(false);
    layout->addWidget(&bar_);
  }

  /// A text on screen is painted at once, since no event may run before the meter answers.
  void setText(const std::string& text) {
    const QString shown = QString::fromStdString(text);
    if (shown == message_.text()) return;
    message_.setText(shown);
    if (isVisible()) message_.repaint();
  }

  /// Painted at once as well. A whole of 0 is one that nobody knows: the bar runs without end.
  void setDone(int done, int whole) {
    const bool sameWhole = bar_.maximum() == whole;
    bar_.setRange(0, whole);
    // Paints by itself what it changes on the screen.
    bar_.setValue(done);
    if (!sameWhole && isVisible()) bar_.repaint();
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
  QProgressBar bar_{this};
};

PleaseWait::PleaseWait() {
  delay_.setSingleShot(true);
  QObject::connect(&delay_, &QTimer::timeout, &delay_, [this] { showWith(delayedText_, unknown); });
}

PleaseWait::~PleaseWait() = default;

PleaseWaitWindow& PleaseWait::window() {
  if (!window_) window_ = std::make_unique<PleaseWaitWindow>(dismissed_);
  return *window_;
}

void PleaseWait::show(const std::string& text) { showWith(text, justBegun); }

void PleaseWait::showWith(const std::string& text, int whole) {
  delay_.stop();
  dismissed_ = false;
  window().setText(text);
  window().setDone(0, whole);
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

void PleaseWait::setDone(int done, int whole) {
  if (window_) window_->setDone(done, whole);
}

void PleaseWait::hide() {
  delay_.stop();
  if (window_) window_->hide();
}

}  // namespace pulsemod
