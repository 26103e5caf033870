#pragma once

#include <QRect>
#include <QSize>

namespace pulsemod {

/// What each label of `frmMain` needs for its caption, in pixels.
struct ProfileLabelSizes {
  QSize reference;
  QSize rate;
  QSize scale;
  QSize start;
  QSize capture;
  QSize stop;
};

/// Where everything in `frmMain` stands, in pixels of the area under the menu bar.
struct ProfileLayout {
  QRect rule;
  QRect reference;
  QRect rate;
  QRect scale;
  QRect graph;
  QRect start;
  QRect capture;
  QRect stop;
};

/// The reference at the left, the rate in the middle and the scale at the right of the top row; the
/// graph under it over the full width; start, capture and stop times in the row under the graph. A
/// rate that would touch one of its neighbours gets a row of its own above them, and labels that do
/// not fit side by side stand under each other.
ProfileLayout layOutProfile(const QSize& area, const ProfileLabelSizes& wanted);

/// The smallest area, not wider than `widest`, in which no label touches another and the graph can
/// still be read.
QSize smallestProfileArea(const ProfileLabelSizes& labels, int widest);

}  // namespace pulsemod
