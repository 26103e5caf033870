#pragma once

#include <QButtonGroup>
#include <QDialog>
#include <QSize>

#include "ui/GraphSheet.h"

class QCheckBox;
class QSpinBox;

namespace pulsemod {

/// The sizes in which a picture is saved.
enum class PictureSizeChoice { screen = 0, small = 1, large = 2, free = 3 };

struct PictureChoice {
  PictureSizeChoice size = PictureSizeChoice::screen;
  /// The last free one.
  QSize freeSize{1920, 1080};
  Ground ground = Ground::white;

  /// In pixels; that of the screen is none of them.
  QSize chosenSize() const;
};

/// What was chosen last while the program runs. Written when `PictureDialog` is accepted.
extern PictureChoice LastPictureChoice;

inline constexpr QSize smallestPicture(320, 240);
inline constexpr QSize largestPicture(4096, 4096);

/// `frmPicture`: the size and the ground of a picture. Built for one question.
class PictureDialog : public QDialog {
 public:
  /// `screenSize`: what "as on the screen" is now.
  PictureDialog(QWidget* owner, const QSize& screenSize);

  /// Asks, and keeps the answer as the last choice; false when the user cancelled.
  bool ask();

 private:
  QWidget* buildSizes(const QSize& screenSize);
  QWidget* addFreeSize(QWidget* option);
  QSpinBox* addSide(const char* name, const QString& meaning, int smallest, int largest);
  void present(const PictureChoice& choice);
  PictureChoice choice() const;

  QButtonGroup sizes_;
  QSpinBox* width_ = nullptr;
  QSpinBox* height_ = nullptr;
  QCheckBox* white_ = nullptr;
};

}  // namespace pulsemod
