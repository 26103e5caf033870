#pragma once

#include <array>

#include "profile/ReadoutViews.h"
#include "profile/Readouts.h"
#include "ui/ReadoutWindow.h"

namespace pulsemod {

/// `frmInfo`: the results of the whole profile above those of the gates. Its columns are as wide as
/// their sample captions, or as the widest caption since they were laid out.
class InfoBox : public ReadoutWindow, public InfoBoxView {
 public:
  InfoBox(QWidget* owner, Hooks hooks);

  void setGroup(std::size_t group, bool inUse, bool enabled) override;
  void showResult(std::size_t element, const std::string& name, const std::string& value,
                  const std::string& unit) override;
  void hideResult(std::size_t element) override;

 protected:
  void measureSamples() override;
  void layOut() override;

 private:
  struct ResultLabels {
    QLabel* name;
    QLabel* value;
    QLabel* unit;
  };

  ResultLabels addResult(std::size_t element);
  void setResultVisible(std::size_t element, bool visible);
  int rowsInUse() const;
  QSize placeLabels();

  std::array<QGroupBox*, readingGroups> frames_{};
  std::array<ResultLabels, readingGroups * resultsPerGroup> results_{};
  int nameWidth_ = 0;
  int valueWidth_ = 0;
  int unitWidth_ = 0;
  int labelHeight_ = 0;
};

}  // namespace pulsemod
