#pragma once

#include <QButtonGroup>
#include <QString>

class QRadioButton;

namespace pulsemod {

/// An option of a group, with the object name "name_index".
QRadioButton* addOption(QButtonGroup& group, const char* name, int index, const QString& caption);

/// Ticks one option, or none for an index that the group does not have. The Tab key comes to the
/// ticked one, as it does after a click; when that is none or hidden, to the first that is shown.
void tick(QButtonGroup& group, int index);

}  // namespace pulsemod
