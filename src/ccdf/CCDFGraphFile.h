#pragma once

#include <string>

/// CCDF curves in text files: the live one is saved, a saved one is opened as the second curve
/// beside it.
///
/// Lines, all ended by CR LF, with one tab between name and value and between the two numbers of a
/// point:
///
///     2               the kind of file: a CCDF
///     Date            2026-11-21
///     Time            09:30:00
///     (empty)
///     Graph Points    400
///     -30             start power, dBm
///     20              stop power, dBm
///     -29.875         99.98          one line a point: its power in dBm, its share in percent
///
/// The two powers are written with as many digits as it takes to read the same singles back, since
/// opening compares them exactly.

namespace pulsemod {

/// The content of a file with the live curve. Display points outside 1 to 400 are a `Fault`.
std::string ccdfGraphText();

/// `menuSave`: asks for a file and writes the live curve as it is when the user has answered. A
/// file that cannot be written is a `Fault`; the old one then stays.
void SaveCCDFGraph();

/// `OpenMenu`: asks for a file and opens it.
void OpenCCDFGraph();

/// Opens a saved curve as the second one and ticks `menuSecondProfile`. A file with another power
/// axis asks whether the meter shall take the axis over: yes sends both powers, at once or between
/// two curves; no ticks the menu but loads no point.
///
/// A file of another kind, or without a number of points, is refused with a message. One that
/// cannot be read, ends early, has a line without two numbers or more than 400 points is a `Fault`.
/// `SecondCCDFData` is then as it was.
void OpenCCDFGraphFile(const std::string& path);

}  // namespace pulsemod
