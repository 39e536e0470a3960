// SPDX-License-Identifier: MIT
#include "TestBoard.hpp"

#include "description/TreeBlob.hpp"
#include "fault/FaultStore.hpp"
#include "node/PerNode.hpp"

#include <array>
#include <filesystem>
#include <span>
#include <stdexcept>
#include <string_view>

namespace dorn::testkit {
namespace {

constexpr const char* treePath = "/proc/device-tree";
constexpr const char* boardPath = "/proc/device-tree/board";

struct TextRow {
    std::string_view node;
    std::string_view property;
    std::string_view value;
};

constexpr std::array<TextRow, 16> textRows{{
    {"", "compatible", "dorn,board"},
    {"processor", "dorn,die-id", "0123456789abcdef"},
    {"processor", "dorn,die-id-quality", "A1"},
    {"units/unit@0", "dorn,unit-id", "NAXE"},
    {"units/unit@0", "dorn,production-code", "DRN-0815-01"},
    {"units/unit@0", "dorn,serial-number", "DN264700001"},
    {"modules/module@0", "dorn,unit-id", "TARN"},
    {"modules/module@0", "dorn,production-code", "DRN-0900-01"},
    {"modules/module@0", "dorn,serial-number", "DN264600017"},
    {"modules/module@1", "dorn,unit-id", "VESP"},
    {"modules/module@1", "dorn,production-code", "DRN-4400-02"},
    {"modules/module@1", "dorn,serial-number", "DN264500230"},
    {"boot-loader", "dorn,version", "20480"},
    {"fpgas/fpga@1", "label", "BMU"},
    {"file-systems/file-system@1", "dorn,mount-point", "/ffs/run"},
    {"file-systems/file-system@2", "dorn,mount-point", "/ffs/backup"},
}};

struct CellsRow {
    std::string_view node;
    std::string_view property;
    std::array<std::uint32_t, 4> values;
    std::size_t count = 1;
};

constexpr std::array<CellsRow, 29> cellsRows{{
    {"", "dorn,board-code", {1}},
    {"transceivers", "dorn,hw-capability", {0, 0, 0}, 3},
    {"units/unit@0", "reg", {0}},
    {"units/unit@0", "dorn,hw-sw-id", {0x00A00100}},
    {"modules/module@0", "reg", {0}},
    {"modules/module@1", "reg", {1}},
    {"boot-loader", "dorn,start-location", {0}},
    {"boot-loader", "dorn,size", {0x10000}},
    {"boot-loader", "dorn,version-offset", {0}},
    {"fpgas/fpga@1", "reg", {1}},
    {"fpgas/fpga@1", "dorn,version", {0x107}},
    {"fpgas/fpga@1", "dorn,version-offset", {0}},
    {"fpgas/fpga@1/slot@1", "reg", {1}},
    {"fpgas/fpga@1/slot@1", "dorn,size", {0x10000}},
    {"fpgas/fpga@10002", "reg", {0x10002}},
    {"fpgas/fpga@10002", "dorn,version", {0x20010}},
    {"fpgas/fpga@10002", "dorn,version-offset", {0}},
    {"fpgas/fpga@10002/slot@1", "reg", {1}},
    {"fpgas/fpga@10002/slot@1", "dorn,size", {0x10000}},
    {"fpgas/fpga@10002/slot@2", "reg", {2}},
    {"fpgas/fpga@10002/slot@2", "dorn,size", {0x10000}},
    {"rapidio/port@0", "reg", {0}},
    {"rapidio/port@0", "dorn,own-id", {1}},
    {"rapidio/port@0/device@10", "reg", {0x10}},
    {"rapidio/port@0/device@10/memory@80000000", "reg", {0, 0x80000000, 0, 0x100000}, 4},
    {"file-systems/file-system@1", "reg", {1}},
    {"file-systems/file-system@1", "dorn,mode", {1}},
    {"file-systems/file-system@2", "reg", {2}},
    {"file-systems/file-system@2", "dorn,mode", {1}},
}};

std::string bytesOf(const board::TreeBytes& value)
{
    return {reinterpret_cast<const char*>(value.data()), value.size()};
}

/// Most significant byte first.
std::string cellBytes(std::span<const std::uint32_t> cells)
{
    std::string bytes;
    for (const std::uint32_t cell : cells) {
        for (const unsigned shift : {24U, 16U, 8U, 0U}) {
            bytes += static_cast<char>(cell >> shift & 0xFFU);
        }
    }
    return bytes;
}

std::string below(const std::string& node, const std::string& name)
{
    return node.empty() ? name : node + "/" + name;
}

void unpack(TestBoard& board, const board::TreeNode& node, const std::string& path)
{
    for (const board::TreeProperty& property : node.properties) {
        board.bytes(path, property.name, bytesOf(property.value));
    }
    for (const board::TreeNode& child : node.children) {
        unpack(board, child, below(path, child.name));
    }
}

} // namespace

TestBoard::TestBoard(const TestNode& node) : m_node(node)
{
    for (const TextRow& row : textRows) {
        text(std::string(row.node), std::string(row.property), std::string(row.value));
    }
    for (const CellsRow& row : cellsRows) {
        bytes(std::string(row.node), std::string(row.property), cellBytes(std::span(row.values).first(row.count)));
    }
    std::filesystem::create_directories(m_node.boardPath(boardPath + std::string("/watchdog")));
}

TestBoard::TestBoard(const TestNode& node, const std::string& blobPath) : m_node(node)
{
    const board::TreeNode root = board::readTreeBlob(blobPath, "board");
    unpack(*this, root.children.at(0), "");
}

TestBoard& TestBoard::text(const std::string& node, const std::string& property, const std::string& value)
{
    return bytes(node, property, value + '\0');
}

TestBoard& TestBoard::cells(const std::string& node, const std::string& property,
                            std::initializer_list<std::uint32_t> values)
{
    return bytes(node, property, cellBytes(std::span(values.begin(), values.size())));
}

TestBoard& TestBoard::bytes(const std::string& node, const std::string& property, const std::string& value)
{
    m_node.writeBoardFile(below(below(boardPath, node), property), value);
    return *this;
}

TestBoard& TestBoard::remove(const std::string& path)
{
    std::filesystem::remove_all(m_node.boardPath(below(boardPath, path)));
    return *this;
}

void TestBoard::fail(const std::string& function, std::int32_t code, std::uint32_t times) const
{
    const auto known = board::DriverFunction::named(function);
    if (!known) {
        throw std::invalid_argument("there is no driver function '" + function + "'");
    }
    host::PerNode<board::FaultStore>::get().set(*known, code, times);
}

std::string TestBoard::treeDirectory() const
{
    return m_node.boardPath(treePath);
}

} // namespace dorn::testkit
