// SPDX-License-Identifier: MIT
/// @file DriverFunction.hpp
/// The functions of the driver seam, by name and number.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace dorn::board {

/// All of them, in the order of their names. A place in this table stands in a store that processes share: who changes
/// the table gives that store a new version.
constexpr std::array<std::string_view, 27> driverFunctionNames{
    "ddal_boot_get_uboot_id",
    "ddal_boot_get_uboot_version",
    "ddal_boot_update_uboot",
    "ddal_devicetree_get_die_id",
    "ddal_devicetree_get_die_id_quality",
    "ddal_devicetree_get_ext_module_production_code",
    "ddal_devicetree_get_ext_module_serial_number",
    "ddal_devicetree_get_ext_module_unit_id",
    "ddal_devicetree_get_hw_sw_id",
    "ddal_devicetree_get_module_production_code",
    "ddal_devicetree_get_module_serial_number",
    "ddal_devicetree_get_module_unit_id",
    "ddal_devicetree_get_production_code",
    "ddal_devicetree_get_serial_number",
    "ddal_devicetree_get_unit_id",
    "ddal_devicetree_get_xcvr_hw_capability",
    "ddal_ffs_is_mounted",
    "ddal_fpga_get_active_version",
    "ddal_fpga_update_mod",
    "ddal_rio_copy_close_fd",
    "ddal_rio_copy_from_fd",
    "ddal_rio_copy_open_fd",
    "ddal_rio_copy_to_fd",
    "ddal_rio_get_own_id",
    "ddal_strerror",
    "ddal_unit_get_board",
    "ddal_watchdog_reboot",
};
static_assert(std::is_sorted(driverFunctionNames.begin(), driverFunctionNames.end()));

/// One of them.
class DriverFunction {
public:
    /// A name that is not in the table does not compile.
    consteval explicit DriverFunction(std::string_view name) : m_number(find(name).value()) {}

    /// The function that a person names; nothing when there is none.
    static constexpr std::optional<DriverFunction> named(std::string_view name)
    {
        const auto number = find(name);
        return number ? std::optional(DriverFunction(*number)) : std::nullopt;
    }
    /// The function at a place in the table.
    static constexpr DriverFunction at(std::size_t number) { return DriverFunction(number); }

    constexpr std::size_t number() const { return m_number; }
    constexpr std::string_view name() const { return driverFunctionNames[m_number]; }

private:
    constexpr explicit DriverFunction(std::size_t number) : m_number(number) {}

    static constexpr std::optional<std::size_t> find(std::string_view name)
    {
        const auto* const found = std::find(driverFunctionNames.begin(), driverFunctionNames.end(), name);
        return found == driverFunctionNames.end()
                   ? std::nullopt
                   : std::optional(static_cast<std::size_t>(found - driverFunctionNames.begin()));
    }

    std::size_t m_number;
};

} // namespace dorn::board
