#pragma once

#include <QFont>
#include <optional>

class QString;
class QWidget;

namespace pulsemod {

/// Asks with the system's font dialog, `cmdialog`; none when the user cancels it.
std::optional<QFont> chooseFont(const QFont& present, const QString& title, QWidget* owner);

/// `present` with the name, the size and the weight of `chosen`.
QFont withNameSizeAndWeight(const QFont& present, const QFont& chosen);

}  // namespace pulsemod
