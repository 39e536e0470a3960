// SPDX-License-Identifier: MIT
#include "answers/BoardView.hpp"

#include "device/BootLoader.hpp"
#include "device/FileSystem.hpp"
#include "device/Fpga.hpp"
#include "device/Resets.hpp"
#include "device/RioPort.hpp"

#include <algorithm>
#include <iterator>

namespace dorn::tool {
namespace {

using board::BoardNode;

/// What @p look makes of each node of a group.
template <class View>
std::vector<View> viewsOf(const board::DescribedBoard& board, const char* group, View (*look)(const BoardNode&))
{
    const std::vector<BoardNode> nodes = board.parts(group);
    std::vector<View> views;
    std::transform(nodes.begin(), nodes.end(), std::back_inserter(views), look);
    return views;
}

/// What @p look makes of a node that the board may have.
template <class View>
std::optional<View> viewIfAny(const board::DescribedBoard& board, const char* part, View (*look)(const BoardNode&))
{
    const auto node = board.findPart(part);
    return node ? std::optional(look(*node)) : std::nullopt;
}

IdentityView moduleView(const BoardNode& node)
{
    return {node.number(), node.text("dorn,unit-id"), std::nullopt, node.text("dorn,production-code"),
            node.text("dorn,serial-number")};
}

IdentityView unitView(const BoardNode& node)
{
    IdentityView unit = moduleView(node);
    unit.hwSwId = node.cell("dorn,hw-sw-id");
    return unit;
}

ProcessorView processorView(const BoardNode& node)
{
    return {node.text("dorn,die-id"), node.text("dorn,die-id-quality")};
}

std::vector<std::uint32_t> capabilityView(const BoardNode& node)
{
    return node.cells("dorn,hw-capability", 3);
}

BootLoaderView bootLoaderView(const BoardNode& node)
{
    const board::BootLoader loader(node);
    const board::FlashArea flash = loader.flash();
    return {loader.startLocation(), loader.version(), {0, flash.size(), flash.flashed()}};
}

FpgaView fpgaView(const BoardNode& node)
{
    const board::Fpga fpga(node);
    FpgaView view{fpga.id(), fpga.label(), fpga.version(), {}};
    for (const board::Fpga::Slot& slot : fpga.slots()) {
        view.slots.push_back({slot.number, slot.area.size(), slot.area.flashed()});
    }
    return view;
}

RioDeviceView deviceView(const board::RioDevice& device)
{
    RioDeviceView view{device.id(), device.label(), {}};
    for (const board::RioMemory& memory : device.memories()) {
        view.memories.push_back({memory.address, memory.size, memory.label, memory.bytesOnDisk()});
    }
    return view;
}

RioPortView portView(const BoardNode& node)
{
    const board::RioPort port(node);
    RioPortView view{port.number(), port.ownId(), {}};
    for (const board::RioDevice& device : port.devices()) {
        view.devices.push_back(deviceView(device));
    }
    return view;
}

FileSystemView fileSystemView(const BoardNode& node)
{
    const board::FileSystem fileSystem(node);
    return {fileSystem.id(), fileSystem.label(), fileSystem.mountPoint(), fileSystem.mode()};
}

CageView cageView(const BoardNode& node)
{
    const board::SfpCage cage(node);
    return {cage.port(), cage.label(), cage.module()};
}

} // namespace

BoardView viewOf(const board::DescribedBoard& board)
{
    return {board.path(),
            board.model(),
            board.board().cell("dorn,board-code"),
            board::resetCount(),
            board::lastReset(),
            board.findPart("watchdog").has_value(),
            viewIfAny(board, "processor", processorView),
            viewIfAny(board, "transceivers", capabilityView).value_or(std::vector<std::uint32_t>()),
            viewsOf(board, "units", unitView),
            viewsOf(board, "modules", moduleView),
            viewIfAny(board, "boot-loader", bootLoaderView),
            viewsOf(board, "fpgas", fpgaView),
            viewsOf(board, "rapidio", portView),
            viewsOf(board, "file-systems", fileSystemView),
            viewsOf(board, "sfp-cages", cageView)};
}

} // namespace dorn::tool
