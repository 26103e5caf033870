#pragma once

#include <QButtonGroup>
#include <QWidget>

#include "ui/PropertyControls.h"

class QCheckBox;
class QLabel;
class QSlider;

namespace pulsemod {

/// The channel, and the averaging and input configuration of the active one.
class ChannelPage : public QWidget {
 public:
  explicit ChannelPage(RunEdit run);

  void refresh();
  void showSentence(const QString& sentence);

 private:
  QGroupBox* buildAveraging();
  void connectControls();

  RunEdit run_;
  QLabel* sentence_;
  QButtonGroup channels_;
  QButtonGroup inputs_;
  QGroupBox* averagingFrame_;
  QGroupBox* inputFrame_;
  QCheckBox* averaging_ = nullptr;
  QSlider* count_ = nullptr;
};

}  // namespace pulsemod
