#pragma once

#include <cstdint>
#include <string_view>

namespace pulsemod {

/// Code of the meter's model, held for the whole run; 0 until a supported meter was identified.
extern std::int32_t MeterModel;

/// The code of the model that an identity reply names, 0 for none. The models are looked for in
/// their order, in any place of the text and in capitals only, and a later find overrules an
/// earlier one, so that "QX7205A" is not taken for a "QX7205". QX7104 = 2, QX7105 = 1, QX7204 = 3,
/// QX7205 = 4, QX7205A = 5.
std::int32_t modelOfIdentity(std::string_view identity);

}  // namespace pulsemod
