#include "ui/GraphFace.h"

#include <QFontMetrics>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>
#include <QScreen>
#include <QTimer>
#include <QWidget>

#include "link/Fault.h"
#include "profile/GraphFault.h"
#include "ui/Look.h"
#include "ui/ParameterLabel.h"

namespace pulsemod {

void setSmallestFace(QMainWindow& window, const QSize& face) {
  const QSize needed = face + QSize(0, window.menuBar()->sizeHint().height());
  window.setMinimumSize(needed.boundedTo(window.screen()->availableSize()).expandedTo({480, 360}));
}

void takeFirstSize(QMainWindow& window) {
  window.resize(
      QSize(800, 600).boundedTo(window.screen()->availableSize()).expandedTo(window.minimumSize()));
}

void setUpFace(QWidget& panel, const QString& meaning) {
  // It has the focus at the start.
  panel.setAccessibleName(meaning);
  QPalette colours = panel.palette();
  colours.setColor(QPalette::Window, look::surround);
  colours.setColor(QPalette::WindowText, look::label);
  panel.setPalette(colours);
  panel.setAutoFillBackground(true);
  // Else the first label had the focus at the start, and Enter would open its box.
  panel.setFocusPolicy(Qt::ClickFocus);
  panel.setFocus();
}

void setUpRule(QWidget& rule) {
  rule.setObjectName(QStringLiteral("menuLine"));
  QPalette colours = rule.palette();
  colours.setColor(QPalette::Window, look::rule);
  rule.setPalette(colours);
  rule.setAutoFillBackground(true);
}

void setUpLabel(QLabel& label, const char* name, const QString& toolTip) {
  label.setObjectName(QLatin1String(name));
  label.setTextFormat(Qt::PlainText);
  label.setContentsMargins(8, 4, 8, 4);
  label.setToolTip(toolTip);
}

void setUpRateLabel(QLabel& label, const char* name) {
  setUpLabel(label, name, QString());
  QPalette quiet = label.palette();
  quiet.setColor(QPalette::WindowText, look::quietLabel);
  label.setPalette(quiet);
  resetRate(label);
}

void resetRate(QLabel& label) { label.setText(QStringLiteral("Profile/Second: 0.00")); }

void setUpParameter(ParameterLabel& label, const char* name, const QString& meaning,
                    const QString& toolTip, void (*onClick)()) {
  setUpLabel(label, name, toolTip);
  label.setMeaning(meaning);
  label.setOnClick([onClick] { reportFaults(onClick); });
}

QSize widerThan(const QLabel& label, const QString& sample) {
  // Measured as the label measures its own text: the advance alone is a pixel less.
  constexpr QRect room(0, 0, 2000, 2000);
  const QMargins margins = label.contentsMargins();
  const int textWidth = label.fontMetrics().boundingRect(room, 0, sample).width();
  return label.sizeHint().expandedTo({textWidth + margins.left() + margins.right(), 0});
}

QString widestRate() { return QStringLiteral("Profile/Second: 888.88"); }

bool showNumber(QLabel& label, const QString& caption, const QString& sample) {
  if (label.text() == caption) return false;
  label.setText(caption);
  // Measuring a text takes longer than drawing it. No part of a number is wider than an 8 but for
  // the letter of an exponent.
  if (caption.size() <= sample.size() && !caption.contains(QLatin1Char('E'))) return false;
  return label.sizeHint().width() > label.width();
}

bool showRate(QLabel& label, const QString& caption, const QString& toolTip) {
  if (label.toolTip() != toolTip) label.setToolTip(toolTip);
  return showNumber(label, caption, widestRate());
}

void drawWithoutBox(QObject* context, const std::function<void()>& drawing) {
  if (GraphFaultReported) {
    drawOrReportOnce(drawing);
    return;
  }
  try {
    drawing();
  } catch (const Fault&) {
    QTimer::singleShot(0, context, [drawing] { drawOrReportOnce(drawing); });
  }
}

}  // namespace pulsemod
