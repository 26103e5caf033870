#pragma once

#include <QButtonGroup>
#include <QString>
#include <QStringList>
#include <functional>

class QCheckBox;
class QGroupBox;
class QLineEdit;

namespace pulsemod {

class ClickableEdit;

/// Runs what a control of `frmProperties` does. After a fault the controls are set back from the
/// model.
using RunEdit = std::function<void(const std::function<void()>& edit)>;

QCheckBox* addCheckBox(const QString& name, const QString& caption);

/// A box for a time, which a click asks for. `meaning` is what tools for the disabled speak.
ClickableEdit* addTimeBox(const QString& name, const QString& meaning,
                          std::function<void()> onClick);

/// The tool tip of a time box that can be clicked.
QString clickHint(const QLineEdit& box);

void showTime(QLineEdit& box, float seconds);

/// The options of a group below each other, in a frame with their title.
QGroupBox* addOptions(QButtonGroup& group, const char* name, const QString& title,
                      const QStringList& captions);

}  // namespace pulsemod
