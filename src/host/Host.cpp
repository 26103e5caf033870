#include "host/Host.h"

namespace pulsemod {

Host::Host(Progress& progress, Clock* clock)
    : services_{clock != nullptr ? *clock : clock_,
                events_,
                gpib_,
                serial_,
                settings_,
                dialogs_,
                fileDialogs_,
                files_,
                progress,
                programEnd_} {}

}  // namespace pulsemod
