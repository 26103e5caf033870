#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace pulsemod {

/// Code of the meter's model, held for the whole run; 0 until a supported meter was identified.
extern std::int32_t MeterModel;

/// What the meter said that it is: maker, model, serial number, firmware. Held for the whole run;
/// empty until a supported meter was identified. Shortened to one line of printable characters.
extern std::string MeterIdentity;

/// An identity reply as `MeterIdentity` keeps it: anything else than the printable characters of
/// ASCII becomes a blank, and no more than the first 80 are kept.
std::string shownIdentity(std::string_view identity);

/// The code of the model that an identity reply names, 0 for none. The models are looked for in
/// their order, in any place of the text and in capitals only, and a later find overrules an
/// earlier one, so that "QX7205A" is not taken for a "QX7205". QX7104 = 2, QX7105 = 1, QX7204 = 3,
/// QX7205 = 4, QX7205A = 5.
std::int32_t modelOfIdentity(std::string_view identity);

}  // namespace pulsemod
