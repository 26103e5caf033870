#include "ui/Options.h"

#include <QRadioButton>

#include "ui/ElementName.h"

namespace pulsemod {

namespace {

int tabStopOf(const QButtonGroup& group, int ticked) {
  const QAbstractButton* option = group.button(ticked);
  if (option != nullptr && !option->isHidden()) return ticked;
  const QList<QAbstractButton*> options = group.buttons();
  for (QAbstractButton* other : options) {
    if (!other->isHidden()) return group.id(other);
  }
  return ticked;
}

}  // namespace

QRadioButton* addOption(QButtonGroup& group, const char* name, int index, const QString& caption) {
  auto* option = new QRadioButton(caption);
  option->setObjectName(elementName(name, index));
  group.addButton(option, index);
  return option;
}

void tick(QButtonGroup& group, int index) {
  group.setExclusive(false);
  const QList<QAbstractButton*> options = group.buttons();
  const int tabStop = tabStopOf(group, index);
  for (QAbstractButton* option : options) {
    option->setChecked(group.id(option) == index);
    option->setFocusPolicy(group.id(option) == tabStop ? Qt::StrongFocus : Qt::ClickFocus);
  }
  group.setExclusive(true);
}

}  // namespace pulsemod
