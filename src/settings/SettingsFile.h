#pragma once

#include <string>
#include <string_view>

/// The measurement settings in a text file: one value a line in a fixed order, without keys, ended
/// by "FILE END". Lines end with CR LF; readers take LF as well, and blanks around a value.
///
/// A number stands as its general text with a blank before it, unless it is negative, and one after
/// it; a truth value as True or False.
///
///     line    value
///     1       active gate
///     2 - 4   repeat of gate 1: on, offset, count
///     5 - 28  gates 1 to 4: on, start, stop, fence on, fence start, fence stop
///     29 - 40 markers 1 to 4: on, is the active one, position
///     41      number of the last active marker, or empty; nobody reads it
///     42      delta marker on
///     43 - 46 reference level, scale, capture time, trigger delay
///     47 - 52 channels 1 and 2: input configuration, averaging on, averaging count
///     53      FILE END
///
/// Other programs may put further lines before the end; they are skipped. One that contains VERSION
/// tells the version of the file by the number at its start.

namespace pulsemod {

/// The content of a file with the present settings.
std::string settingsText();

/// Reads the settings, each straight into its field of the model: what was read before a `Fault`
/// stays. A number's leading number counts, and text without one is 0; a truth value is True or
/// False in any case, or a number, and all else is a `Fault`, as are a number that does not fit and
/// the end of the text before "FILE END". While the repeat is on, its gates above the fourth, which
/// no file holds, follow gate 4.
void readSettings(std::string_view text);

/// `cmdSaveFile`: asks for a file and writes the settings. A file that cannot be written is a
/// `Fault`; the old one then stays.
void SaveSettingsFile();

/// `cmdLoadFile`: asks for a file and loads it. Ignored while the whole configuration is being read
/// from the meter or written to it.
void LoadSettingsFile();

/// Reads a settings file, shows the new settings in every window, and writes them to the meter when
/// the link is free. A `Fault` in the file ends it without a word to the meter; the windows then
/// show what was read before it.
void LoadSettingsFileFrom(const std::string& path);

}  // namespace pulsemod
