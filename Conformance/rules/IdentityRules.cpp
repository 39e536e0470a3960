// SPDX-License-Identifier: MIT
// Identities of units, modules and processor: one set of checks for the functions that read a text.
#include "Check.hpp"
#include "Guarded.hpp"
#include "Rules.hpp"
#include "ddal_devicetree.h"
#include "ddal_unit.h"

#include <array>
#include <cctype>
#include <string>

namespace dorn::conformance {
namespace {

/// How a function counts the length that it is given.
enum class Length { WithoutTerminator, WithTerminator };

/// A function that reads a text.
struct TextFunction {
    const char* name;
    Length length;
    std::size_t longest; ///< characters; 0: no limit is stated
    int32_t (*read)(uint32_t length, char* buffer);
};

constexpr uint32_t missingUnit = 4'000'000'000U;
constexpr uint32_t missingPort = 4'000'000'000U;
constexpr uint32_t externalPort = 1;

constexpr TextFunction unitId{
    "ddal_devicetree_get_unit_id", Length::WithoutTerminator, 0,
    [](uint32_t length, char* buffer) { return ddal_devicetree_get_unit_id(0, length, buffer); }};
constexpr TextFunction productionCode{
    "ddal_devicetree_get_production_code", Length::WithTerminator, 12,
    [](uint32_t length, char* buffer) { return ddal_devicetree_get_production_code(0, length, buffer); }};
constexpr TextFunction serialNumber{
    "ddal_devicetree_get_serial_number", Length::WithTerminator, 16,
    [](uint32_t length, char* buffer) { return ddal_devicetree_get_serial_number(0, length, buffer); }};
constexpr TextFunction moduleId{"ddal_devicetree_get_module_unit_id", Length::WithoutTerminator, 7,
                                ddal_devicetree_get_module_unit_id};
constexpr TextFunction moduleProductionCode{"ddal_devicetree_get_module_production_code", Length::WithTerminator, 12,
                                            ddal_devicetree_get_module_production_code};
constexpr TextFunction moduleSerialNumber{"ddal_devicetree_get_module_serial_number", Length::WithTerminator, 16,
                                          ddal_devicetree_get_module_serial_number};
constexpr TextFunction extModuleId{
    "ddal_devicetree_get_ext_module_unit_id", Length::WithoutTerminator, 7,
    [](uint32_t length, char* buffer) { return ddal_devicetree_get_ext_module_unit_id(externalPort, length, buffer); }};
constexpr TextFunction extModuleProductionCode{
    "ddal_devicetree_get_ext_module_production_code", Length::WithTerminator, 12, [](uint32_t length, char* buffer) {
        return ddal_devicetree_get_ext_module_production_code(externalPort, length, buffer);
    }};
constexpr TextFunction extModuleSerialNumber{
    "ddal_devicetree_get_ext_module_serial_number", Length::WithTerminator, 16, [](uint32_t length, char* buffer) {
        return ddal_devicetree_get_ext_module_serial_number(externalPort, length, buffer);
    }};
constexpr TextFunction dieId{"ddal_devicetree_get_die_id", Length::WithTerminator, 128, ddal_devicetree_get_die_id};
constexpr TextFunction dieIdQuality{"ddal_devicetree_get_die_id_quality", Length::WithTerminator, 8,
                                    ddal_devicetree_get_die_id_quality};

constexpr uint32_t roomy = 256;

/// The length to be given for a buffer of @p size bytes.
uint32_t lengthOf(const TextFunction& function, std::size_t size)
{
    return static_cast<uint32_t>(function.length == Length::WithTerminator ? size : size - 1);
}

std::string call(const TextFunction& function, std::size_t size)
{
    return std::string(function.name) + "() into a buffer of " + std::to_string(size) + " bytes";
}

/// The text, read with a buffer of @p size bytes.
std::string readText(const TextFunction& function, std::size_t size)
{
    Guarded buffer(size);
    const int32_t result = function.read(lengthOf(function, size), buffer.data());
    if (result == DDAL_ERROR_NOT_FOUND) {
        buffer.expectUntouched(call(function, size));
        skip(std::string("the board has nothing for ") + function.name + "(): result 5, not found");
    }
    expectEqual(result, DDAL_OK, call(function, size));
    return buffer.text(call(function, size));
}

void expectRefused(const TextFunction& function, uint32_t length)
{
    Guarded buffer(roomy);
    const std::string what = std::string(function.name) + "() with the length " + std::to_string(length);
    expectEqual(function.read(length, buffer.data()), DDAL_ERROR_INVALID_ARGUMENT, what);
    buffer.expectUntouched(what);
}

template <const TextFunction& function>
void textIsRead()
{
    const std::string whole = readText(function, roomy);
    expect(!whole.empty(), std::string(function.name) + "() returned 0 and an empty text");
    expect(function.longest == 0 || whole.size() <= function.longest, std::string(function.name) + "() gave '" + whole +
                                                                          "', and " + std::to_string(function.longest) +
                                                                          " characters are the most");
    expectEqual(readText(function, roomy), whole, std::string(function.name) + "() asked again");
    for (std::size_t size = 1; size <= whole.size() + 2; ++size) {
        expectEqual(readText(function, size), whole.substr(0, size - 1), call(function, size));
    }
    expectEqual(function.read(roomy, nullptr), DDAL_ERROR_INVALID_ARGUMENT,
                std::string(function.name) + "() into null");
    expectRefused(function, 0x80000000U);
    expectRefused(function, 0xFFFFFFFFU);
    if (function.length == Length::WithTerminator) {
        expectRefused(function, 0);
    }
}

void expectMissing(int32_t result, const Guarded& buffer, const std::string& what)
{
    expectEqual(result, DDAL_ERROR_NOT_FOUND, what);
    buffer.expectUntouched(what);
}

void missingUnitIsNotFound()
{
    Guarded buffer(roomy);
    expectMissing(ddal_devicetree_get_unit_id(missingUnit, roomy - 1, buffer.data()), buffer,
                  "ddal_devicetree_get_unit_id() of a unit that is not there");
    expectMissing(ddal_devicetree_get_production_code(missingUnit, roomy, buffer.data()), buffer,
                  "ddal_devicetree_get_production_code() of a unit that is not there");
    expectMissing(ddal_devicetree_get_serial_number(missingUnit, roomy, buffer.data()), buffer,
                  "ddal_devicetree_get_serial_number() of a unit that is not there");
    uint32_t hwSwId = 77;
    expectEqual(ddal_devicetree_get_hw_sw_id(missingUnit, &hwSwId), DDAL_ERROR_NOT_FOUND,
                "ddal_devicetree_get_hw_sw_id() of a unit that is not there");
    expectEqual(hwSwId, 77U, "what it was to store into");
}

void missingModuleIsNotFound()
{
    Guarded buffer(roomy);
    expectMissing(ddal_devicetree_get_ext_module_unit_id(missingPort, roomy - 1, buffer.data()), buffer,
                  "ddal_devicetree_get_ext_module_unit_id() of a port without module");
    expectMissing(ddal_devicetree_get_ext_module_production_code(missingPort, roomy, buffer.data()), buffer,
                  "ddal_devicetree_get_ext_module_production_code() of a port without module");
    expectMissing(ddal_devicetree_get_ext_module_serial_number(missingPort, roomy, buffer.data()), buffer,
                  "ddal_devicetree_get_ext_module_serial_number() of a port without module");
}

void portZeroLeadsToTheLocalModule()
{
    const std::string local = readText(moduleId, roomy);
    Guarded buffer(roomy);
    expectEqual(ddal_devicetree_get_ext_module_unit_id(0, roomy - 1, buffer.data()), DDAL_OK,
                "ddal_devicetree_get_ext_module_unit_id(0)");
    expectEqual(buffer.text("ddal_devicetree_get_ext_module_unit_id(0)"), local, "the id of the module at port 0");
}

void hwSwIdIsRead()
{
    uint32_t hwSwId = 0;
    const int32_t result = ddal_devicetree_get_hw_sw_id(0, &hwSwId);
    if (result == DDAL_ERROR_NOT_FOUND) {
        skip("the unit has no HW/SW id: result 5, not found");
    }
    expectEqual(result, DDAL_OK, "ddal_devicetree_get_hw_sw_id(0)");
    expect((hwSwId & 0xFFF000U) != 0, "the unit's type and version are 0, as if nothing had been read");
    expectEqual(ddal_devicetree_get_hw_sw_id(0, nullptr), DDAL_ERROR_INVALID_ARGUMENT,
                "ddal_devicetree_get_hw_sw_id() into null");
}

void capabilityIsRead()
{
    ddal_xcvr_hw_capability capability{{1, 2, 3}};
    ddal_xcvr_hw_capability again{{4, 5, 6}};
    const int32_t result = ddal_devicetree_get_xcvr_hw_capability(&capability);
    expectEqual(ddal_devicetree_get_xcvr_hw_capability(nullptr), DDAL_ERROR_INVALID_ARGUMENT,
                "ddal_devicetree_get_xcvr_hw_capability() into null");
    if (result == DDAL_ERROR_NOT_FOUND) {
        expectEqual(capability.words[2], 3U, "a word that a call that failed was to leave alone");
        skip("the board has no transceivers: result 5, not found");
    }
    expectEqual(result, DDAL_OK, "ddal_devicetree_get_xcvr_hw_capability()");
    expectEqual(ddal_devicetree_get_xcvr_hw_capability(&again), DDAL_OK, "the same asked again");
    for (int word = 0; word < 3; ++word) {
        expectEqual(again.words[word], capability.words[word], "word " + std::to_string(word) + " asked again");
    }
}

void boardCodeIsStable()
{
    const uint32_t code = ddal_unit_get_board();
    expectEqual(ddal_unit_get_board(), code, "ddal_unit_get_board() asked again");
    if (code == 0) {
        skip("ddal_unit_get_board() gives 0: the board has no code, or it cannot be read");
    }
}

constexpr const char* textRule =
    "The text is terminated and has no more characters than are stated; a short buffer gets as much as fits; null, and "
    "a length that cannot be, are invalid arguments; nothing is written outside of the buffer or by a call that fails";

constexpr std::array rules{
    Rule{"identity.unit-id", "ddal_devicetree.h", "ddal_devicetree_get_unit_id", textRule, textIsRead<unitId>},
    Rule{"identity.production-code", "ddal_devicetree.h", "ddal_devicetree_get_production_code", textRule,
         textIsRead<productionCode>},
    Rule{"identity.serial-number", "ddal_devicetree.h", "ddal_devicetree_get_serial_number", textRule,
         textIsRead<serialNumber>},
    Rule{"identity.module-id", "ddal_devicetree.h", "ddal_devicetree_get_module_unit_id", textRule,
         textIsRead<moduleId>},
    Rule{"identity.module-production-code", "ddal_devicetree.h", "ddal_devicetree_get_module_production_code", textRule,
         textIsRead<moduleProductionCode>},
    Rule{"identity.module-serial-number", "ddal_devicetree.h", "ddal_devicetree_get_module_serial_number", textRule,
         textIsRead<moduleSerialNumber>},
    Rule{"identity.external-module-id", "ddal_devicetree.h", "ddal_devicetree_get_ext_module_unit_id", textRule,
         textIsRead<extModuleId>},
    Rule{"identity.external-module-production-code", "ddal_devicetree.h",
         "ddal_devicetree_get_ext_module_production_code", textRule, textIsRead<extModuleProductionCode>},
    Rule{"identity.external-module-serial-number", "ddal_devicetree.h", "ddal_devicetree_get_ext_module_serial_number",
         textRule, textIsRead<extModuleSerialNumber>},
    Rule{"identity.die-id", "ddal_devicetree.h", "ddal_devicetree_get_die_id", textRule, textIsRead<dieId>},
    Rule{"identity.die-id-quality", "ddal_devicetree.h", "ddal_devicetree_get_die_id_quality", textRule,
         textIsRead<dieIdQuality>},
    Rule{"identity.missing-unit-is-not-found", "ddal_devicetree.h",
         "ddal_devicetree_get_unit_id ddal_devicetree_get_production_code ddal_devicetree_get_serial_number "
         "ddal_devicetree_get_hw_sw_id",
         "A unit that is not there is DDAL_ERROR_NOT_FOUND, and nothing is written", missingUnitIsNotFound},
    Rule{"identity.missing-module-is-not-found", "ddal_devicetree.h",
         "ddal_devicetree_get_ext_module_unit_id ddal_devicetree_get_ext_module_production_code "
         "ddal_devicetree_get_ext_module_serial_number",
         "A port without module is DDAL_ERROR_NOT_FOUND, and nothing is written", missingModuleIsNotFound},
    Rule{"identity.port-zero-leads-to-the-local-module", "ddal_devicetree.h",
         "ddal_devicetree_get_ext_module_unit_id ddal_devicetree_get_module_unit_id",
         "Port 0 leads to the local module", portZeroLeadsToTheLocalModule},
    Rule{"identity.hw-sw-id", "ddal_devicetree.h", "ddal_devicetree_get_hw_sw_id",
         "The HW/SW id has type and version of the unit", hwSwIdIsRead},
    Rule{"identity.transceiver-capability", "ddal_devicetree.h", "ddal_devicetree_get_xcvr_hw_capability",
         "Three words, always the same, or DDAL_ERROR_NOT_FOUND without transceivers", capabilityIsRead},
    Rule{"identity.board-code", "ddal_unit.h", "ddal_unit_get_board",
         "The board code counts from 1, is always the same, and is 0 when there is none", boardCodeIsStable},
};

} // namespace

Rules identityRules()
{
    return rules;
}

} // namespace dorn::conformance
