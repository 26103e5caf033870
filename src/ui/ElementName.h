#pragma once

#include <QString>

namespace pulsemod {

/// The object name of an element of a control array: "name_index".
template <typename Index>
QString elementName(const char* name, Index index) {
  return QStringLiteral("%1_%2").arg(QLatin1String(name)).arg(index);
}

}  // namespace pulsemod
