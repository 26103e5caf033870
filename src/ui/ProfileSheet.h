#pragma once

#include "ui/GraphSheet.h"

namespace pulsemod {

class ProfilePanel;

/// The pulse profile as it is shown, with the readings of gates and markers.
GraphSheet profileSheet(const ProfilePanel& panel);

}  // namespace pulsemod
