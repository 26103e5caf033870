#include "ui/ConfigureQuestion.h"

#include <QFontMetrics>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace pulsemod {

ConfigureQuestion::ConfigureQuestion() {
  setObjectName(QStringLiteral("frmConfigureQuestion"));
  setWindowTitle(QStringLiteral("Pelmora PulseMod"));

  auto* question = new QLabel(QStringLiteral("Do you wish to load settings from the power meter?"));
  question->setObjectName(QStringLiteral("Label1"));
  QFont heading = question->font();
  heading.setPointSizeF(heading.pointSizeF() * 1.2);
  question->setFont(heading);
  auto* advice =
      new QLabel(QStringLiteral("Please be sure you have the power meter connected to the PC"));
  advice->setObjectName(QStringLiteral("Label2"));

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(24, 20, 24, 20);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  layout->addWidget(question);
  layout->addWidget(advice);
  layout->addSpacing(12);
  QPushButton* load = addChoice("cmdLoadPM", "Load from Power Meter",
                                QStringLiteral("Take over the settings that the meter has now"),
                                StartChoice::loadFromMeter);
  layout->addWidget(load);
  layout->addWidget(addChoice("cmdConfig", "Configure Power Meter",
                              QStringLiteral("Send the program's own settings to the meter"),
                              StartChoice::configureMeter));
  layout->addWidget(addChoice("cmdCCDF", "CCDF Mode",
                              QStringLiteral("Statistics of the power in place of its profile"),
                              StartChoice::ccdfMode));
  layout->addWidget(addChoice("cmdjuststart", "Just Start Program",
                              QStringLiteral("Leave the meter's settings alone"),
                              StartChoice::justStart));
  layout->addSpacing(4);
  auto* rule = new QFrame;
  rule->setFrameShape(QFrame::HLine);
  rule->setFrameShadow(QFrame::Sunken);
  layout->addWidget(rule);
  layout->addSpacing(4);
  auto* last = new QHBoxLayout;
  last->addWidget(addChoice("cmdOpenConfig", "Open comms options",
                            QStringLiteral("Choose how the meter is reached, then answer again"),
                            StartChoice::openCommsOptions));
  last->addStretch();
  last->addWidget(addChoice("Command1", "Exit Program", QString(), StartChoice::exitProgram));
  layout->addLayout(last);
  load->setDefault(true);
}

QPushButton* ConfigureQuestion::addChoice(const char* name, const char* caption,
                                          const QString& toolTip, StartChoice choice) {
  auto* button = new QPushButton(QLatin1String(caption), this);
  button->setObjectName(QLatin1String(name));
  button->setToolTip(toolTip);
  const QFontMetrics text = button->fontMetrics();
  button->setMinimumSize(button->sizeHint().width() + 4 * text.averageCharWidth(),
                         2 * text.height());
  connect(button, &QPushButton::clicked, this, [this, choice] {
    choice_ = choice;
    accept();
  });
  return button;
}

StartChoice ConfigureQuestion::ask() {
  choice_ = StartChoice::exitProgram;
  findChild<QPushButton*>(QStringLiteral("cmdLoadPM"))->setFocus();
  exec();
  return choice_;
}

}  // namespace pulsemod
