// SPDX-License-Identifier: MIT
#include "firmware/UnitIdentity.hpp"

#include "ddal_devicetree.h"
#include "firmware.h"
#include "firmware/DriverFailure.hpp"

#include <algorithm>
#include <cctype>

namespace vel::hwapi::firmware {
namespace {

/// Kept for the life of the process.
struct UnitIdentity {
    UnitIdText version{};
    UnitIdText type{};
};

UnitIdentity& identity()
{
    static UnitIdentity only;
    return only;
}

} // namespace

bool readUnitId(UnitIdText& id, const char* function)
{
    const std::int32_t result = ddal_devicetree_get_unit_id(0, unitIdLength, id.data());
    if (result != DDAL_OK) {
        logDriverFailure(function, "ddal_devicetree_get_unit_id", result);
    }
    return result == DDAL_OK;
}

bool isThisUnit(UnitKey key, std::string_view unit)
{
    return unit == (key == UnitKey::Version ? unit_version() : unit_type());
}

std::string smallUnitType()
{
    std::string type = unit_type();
    std::transform(type.begin(), type.end(), type.begin(),
                   [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    return type;
}

} // namespace vel::hwapi::firmware

using vel::hwapi::firmware::identity;
using vel::hwapi::firmware::readUnitId;

std::int32_t unit_init()
{
    identity() = {};
    if (!readUnitId(identity().version, __func__)) {
        identity().version = {};
        return -1;
    }
    std::copy_n(identity().version.begin(), vel::hwapi::firmware::unitTypeLength, identity().type.begin());
    return 0;
}

const char* unit_version()
{
    if (identity().version.front() == '\0') {
        unit_init();
    }
    return identity().version.data();
}

const char* unit_type()
{
    if (identity().type.front() == '\0') {
        unit_init();
    }
    return identity().type.data();
}
