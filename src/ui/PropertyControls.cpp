#include "ui/PropertyControls.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QRadioButton>
#include <QVBoxLayout>
#include <utility>

#include "link/TimeText.h"
#include "ui/ClickableEdit.h"
#include "ui/Options.h"

namespace pulsemod {

QCheckBox* addCheckBox(const QString& name, const QString& caption) {
  auto* box = new QCheckBox(caption);
  box->setObjectName(name);
  return box;
}

ClickableEdit* addTimeBox(const QString& name, const QString& meaning,
                          std::function<void()> onClick) {
  constexpr int padding = 24;
  auto* box = new ClickableEdit;
  box->setObjectName(name);
  box->setAccessibleName(meaning);
  box->setToolTip(clickHint(*box));
  box->setFixedWidth(box->fontMetrics().horizontalAdvance(QStringLiteral("-999.999us")) + padding);
  box->setOnClick(std::move(onClick));
  return box;
}

QString clickHint(const QLineEdit& box) {
  return box.accessibleName() + QStringLiteral(": click to change");
}

void showTime(QLineEdit& box, float seconds) {
  box.setText(QString::fromStdString(FormatTime(seconds)));
}

QGroupBox* addOptions(QButtonGroup& group, const char* name, const QString& title,
                      const QStringList& captions) {
  auto* frame = new QGroupBox(title);
  auto* layout = new QVBoxLayout(frame);
  for (int index = 0; index < captions.size(); ++index) {
    layout->addWidget(addOption(group, name, index, captions[index]));
  }
  layout->addStretch();
  return frame;
}

}  // namespace pulsemod
