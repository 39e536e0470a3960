// SPDX-License-Identifier: MIT
#include "ddal_devicetree.h"

#include "description/DescribedBoard.hpp"
#include "driver/DriverText.hpp"

#include <algorithm>

namespace {

using namespace dorn::board;

constexpr std::uint32_t localModule = 0;

std::string unitText(std::uint32_t unit, const char* property)
{
    return DescribedBoard::get().part("units", unit).text(property);
}

std::string moduleText(std::uint32_t port, const char* property)
{
    return DescribedBoard::get().part("modules", port).text(property);
}

std::string processorText(const char* property)
{
    return DescribedBoard::get().part("processor").text(property);
}

} // namespace

int32_t ddal_devicetree_get_unit_id(uint32_t unit, uint32_t maxLength, char* buffer)
{
    return driverCall(DriverFunction("ddal_devicetree_get_unit_id"),
                      [&] { TextBuffer::ofLength(maxLength, buffer).write(unitText(unit, "dorn,unit-id")); });
}

int32_t ddal_devicetree_get_hw_sw_id(uint32_t unit, uint32_t* hwSwId)
{
    return driverCall(DriverFunction("ddal_devicetree_get_hw_sw_id"),
                      [&] { require(hwSwId) = DescribedBoard::get().part("units", unit).cell("dorn,hw-sw-id"); });
}

int32_t ddal_devicetree_get_production_code(uint32_t unit, uint32_t bufferSize, char* buffer)
{
    return driverCall(DriverFunction("ddal_devicetree_get_production_code"),
                      [&] { TextBuffer::ofSize(bufferSize, buffer).write(unitText(unit, "dorn,production-code")); });
}

int32_t ddal_devicetree_get_serial_number(uint32_t unit, uint32_t bufferSize, char* buffer)
{
    return driverCall(DriverFunction("ddal_devicetree_get_serial_number"),
                      [&] { TextBuffer::ofSize(bufferSize, buffer).write(unitText(unit, "dorn,serial-number")); });
}

int32_t ddal_devicetree_get_module_unit_id(uint32_t maxLength, char* buffer)
{
    return driverCall(DriverFunction("ddal_devicetree_get_module_unit_id"),
                      [&] { TextBuffer::ofLength(maxLength, buffer).write(moduleText(localModule, "dorn,unit-id")); });
}

int32_t ddal_devicetree_get_ext_module_unit_id(uint32_t portId, uint32_t maxLength, char* buffer)
{
    return driverCall(DriverFunction("ddal_devicetree_get_ext_module_unit_id"),
                      [&] { TextBuffer::ofLength(maxLength, buffer).write(moduleText(portId, "dorn,unit-id")); });
}

int32_t ddal_devicetree_get_module_production_code(uint32_t bufferSize, char* buffer)
{
    return driverCall(DriverFunction("ddal_devicetree_get_module_production_code"), [&] {
        TextBuffer::ofSize(bufferSize, buffer).write(moduleText(localModule, "dorn,production-code"));
    });
}

int32_t ddal_devicetree_get_ext_module_production_code(uint32_t portId, uint32_t bufferSize, char* buffer)
{
    return driverCall(DriverFunction("ddal_devicetree_get_ext_module_production_code"), [&] {
        TextBuffer::ofSize(bufferSize, buffer).write(moduleText(portId, "dorn,production-code"));
    });
}

int32_t ddal_devicetree_get_module_serial_number(uint32_t bufferSize, char* buffer)
{
    return driverCall(DriverFunction("ddal_devicetree_get_module_serial_number"), [&] {
        TextBuffer::ofSize(bufferSize, buffer).write(moduleText(localModule, "dorn,serial-number"));
    });
}

int32_t ddal_devicetree_get_ext_module_serial_number(uint32_t portId, uint32_t bufferSize, char* buffer)
{
    return driverCall(DriverFunction("ddal_devicetree_get_ext_module_serial_number"),
                      [&] { TextBuffer::ofSize(bufferSize, buffer).write(moduleText(portId, "dorn,serial-number")); });
}

int32_t ddal_devicetree_get_die_id(uint32_t bufferSize, char* buffer)
{
    return driverCall(DriverFunction("ddal_devicetree_get_die_id"),
                      [&] { TextBuffer::ofSize(bufferSize, buffer).write(processorText("dorn,die-id")); });
}

int32_t ddal_devicetree_get_die_id_quality(uint32_t bufferSize, char* buffer)
{
    return driverCall(DriverFunction("ddal_devicetree_get_die_id_quality"),
                      [&] { TextBuffer::ofSize(bufferSize, buffer).write(processorText("dorn,die-id-quality")); });
}

int32_t ddal_devicetree_get_xcvr_hw_capability(ddal_xcvr_hw_capability* capability)
{
    return driverCall(DriverFunction("ddal_devicetree_get_xcvr_hw_capability"), [&] {
        ddal_xcvr_hw_capability& result = require(capability);
        const auto words = DescribedBoard::get().part("transceivers").cells("dorn,hw-capability", 3);
        std::copy(words.begin(), words.end(), result.words);
    });
}
