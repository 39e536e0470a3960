// SPDX-License-Identifier: MIT
#include "device/SfpCage.hpp"

namespace dorn::board {

std::optional<SfpModule> SfpCage::module() const
{
    const auto node = m_node.findChild("module");
    if (!node) {
        return std::nullopt;
    }
    return SfpModule{node->text("dorn,vendor-name"), node->text("dorn,part-number"), node->text("dorn,serial-number"),
                     node->cell("dorn,wavelength-nanometers"), node->cell("dorn,bit-rate-mbd")};
}

} // namespace dorn::board
