// SPDX-License-Identifier: MIT
/// @file BoardFuzz.cpp
/// Any bytes as a board's description: it is read without harm, and every query gives an answer that has its form or a
/// failure that names itself.
#include "Require.hpp"
#include "description/DescribedBoard.hpp"
#include "description/TreeBlob.hpp"
#include "device/BootLoader.hpp"
#include "device/Fpga.hpp"
#include "device/RioPort.hpp"
#include "device/SfpCage.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace {

using namespace dorn::board;
using dorn::fuzz::require;

bool isLine(const std::string& text)
{
    return !text.empty() && text.size() < 2000 && text.find_first_of("\n\r\x1b") == std::string::npos;
}

/// Does @p work, which may fail as a driver does.
template <class Work>
void attempt(const Work& work)
{
    try {
        work();
    } catch (const BoardFailure& failure) {
        require(failure.code() != DDAL_OK && isLine(failure.what()));
    }
}

std::optional<TreeNode> parse(std::span<const std::byte> blob)
{
    try {
        return parseTreeBlob(blob, "board");
    } catch (const TreeError& error) {
        require(isLine(error.what()));
        return std::nullopt;
    }
}

/// What all queries of identities ask of a node.
void readNode(const BoardNode& node)
{
    for (const char* const property : {"compatible", "dorn,unit-id", "dorn,serial-number", "dorn,die-id", "label"}) {
        attempt([&] { require(node.text(property).find('\0') == std::string::npos); });
        attempt([&] { node.lists(property, "dorn,board"); });
    }
    for (const char* const property : {"reg", "dorn,board-code", "dorn,hw-sw-id", "dorn,mode", "dorn,size"}) {
        attempt([&] { node.cell(property); });
        attempt([&] { require(node.cells(property, 3).size() == 3); });
    }
}

void readDevices(const DescribedBoard& board)
{
    attempt([&] { BootLoader(board.part("boot-loader")).flash(); });
    attempt([&] {
        for (const BoardNode& fpga : board.parts("fpgas")) {
            attempt([&] { Fpga(fpga).slots(); });
        }
    });
    attempt([&] {
        for (const BoardNode& port : board.parts("rapidio")) {
            attempt([&] { RioPort(port).ownId(); });
            attempt([&] { RioPort(port).devices(); });
        }
    });
    attempt([&] {
        for (const BoardNode& cage : board.parts("sfp-cages")) {
            attempt([&] { SfpCage(cage).module(); });
        }
    });
}

void readBoard(const DescribedBoard& board)
{
    attempt([&] { board.model(); });
    readNode(board.board());
    for (const char* const part : {"processor", "transceivers", "boot-loader", "watchdog"}) {
        attempt([&] { readNode(board.part(part)); });
    }
    for (const char* const group : {"units", "modules", "fpgas", "rapidio", "file-systems", "sfp-cages"}) {
        attempt([&] { readNode(board.part(group, 0)); });
        attempt([&] { readNode(board.part(group, 1)); });
    }
    readDevices(board);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto* const begin = reinterpret_cast<const std::byte*>(data);
    const TreeBytes blob(begin, begin + size); // so that its bounds are exact
    if (auto tree = parse(blob)) {
        attempt([&] { readBoard(DescribedBoard(std::move(*tree), "board description 'fuzz'")); });
    }
    return 0;
}
