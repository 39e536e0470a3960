// SPDX-License-Identifier: MIT
#include "firmware.h"

#include "firmware/UnitIdentity.hpp"

#include <algorithm>

using namespace vel::hwapi::firmware;

namespace {

/// Sets an output, if the caller wants it.
template <class Value>
void give(Value* output, Value value)
{
    if (output) {
        *output = value;
    }
}

} // namespace

std::int32_t get_fpga(const char** chip, const char** prefix, std::uint32_t* id)
{
    const auto* const row = std::find_if(fpgaRows.begin(), fpgaRows.end(),
                                         [](const FpgaRow& one) { return isThisUnit(one.key, one.unit); });
    const bool isKnown = row != fpgaRows.end();
    give(chip, isKnown ? row->name : "unknown");
    give(prefix, isKnown ? row->chipIdentifier : "unknown");
    give(id, isKnown ? row->id : 0);
    return isKnown ? 0 : -1;
}
