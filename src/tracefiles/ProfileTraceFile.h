#pragma once

#include <string>

/// Pulse profiles in text files: the live one is saved, a saved one is opened as the second profile
/// under it.
///
/// Lines, with one tab between name and value and between the two numbers of a point:
///
///     Date            2026-11-21
///     Time            09:30:00
///     (empty)
///     Graph Points    200
///     Capture Period  0.0046
///     2.3E-05         -34.567        one line a point: its time in seconds, its power in dBm
///
/// The file carries its own number of points and capture period, since the second profile is drawn
/// point for point on the time axis of the live one.

namespace pulsemod {

/// The content of a file with the live profile. Display points outside 1 to 400 are a `Fault`.
std::string profileTraceText();

/// `menuSave`: asks for a file and writes the live profile as it is when the user has answered. A
/// file that cannot be written is a `Fault`; the old one then stays.
void SaveProfileTrace();

/// `menuOpen`: asks for a file and opens it.
void OpenProfileTrace();

/// Opens a saved profile as the second one and ticks `menuSecondProfile`.
///
/// While the acquisition runs, a file with another number of points is refused with two messages,
/// and one with another capture period asks whether the meter shall take it over; either answer
/// loads the points. While it does not, the file's points and capture period become the program's,
/// without a command to the meter.
///
/// A file without a number of points is refused with a message. One whose points end early, or have
/// a line without two numbers, shows a message; one that cannot be read, ends before its capture
/// period, or has more than 400 points, is a `Fault`. `SecondProfileTrace` is then as it was; what
/// was agreed on before the points were read (number of points, capture period) stays.
void OpenProfileTraceFile(const std::string& path);

}  // namespace pulsemod
