// SPDX-License-Identifier: MIT
#include "TestBoard.hpp"

#include "TreeBlobWriter.hpp"
#include "description/TreeBlob.hpp"
#include "fault/FaultStore.hpp"
#include "fault/RioFaultStore.hpp"
#include "node/BoardRoot.hpp"
#include "node/PerNode.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <span>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

namespace dorn::testkit {
namespace {

constexpr const char* blobPath = "/boot/board.dtb"; // on the target, though the drivers are told where it lies here
constexpr const char* boardNode = "board";

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

board::TreeBytes bytesOf(const std::string& value)
{
    const auto* const data = reinterpret_cast<const std::byte*>(value.data());
    return {data, data + value.size()};
}

/// The part of a path in front of its last slash, and the part behind it.
std::pair<std::string, std::string> split(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::pair(std::string(), path)
                                      : std::pair(path.substr(0, slash), path.substr(slash + 1));
}

template <class Entries>
auto findNamed(Entries& entries, const std::string& name)
{
    return std::find_if(entries.begin(), entries.end(), [&name](const auto& entry) { return entry.name == name; });
}

} // namespace

TestBoard::TestBoard() : m_path(host::boardPath(blobPath)), m_tree{"", {}, {{boardNode, {}, {}}}}
{
    for (const TextRow& row : textRows) {
        setProperty(std::string(row.node), std::string(row.property), std::string(row.value) + '\0');
    }
    for (const CellsRow& row : cellsRows) {
        setProperty(std::string(row.node), std::string(row.property),
                    cellBytes(std::span(row.values).first(row.count)));
    }
    node("watchdog");
    write();
}

TestBoard::TestBoard(const std::string& otherBlob)
    : m_path(host::boardPath(blobPath)), m_tree(board::readTreeBlob(otherBlob, boardNode))
{
    write();
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
    setProperty(node, property, value);
    write();
    return *this;
}

TestBoard& TestBoard::remove(const std::string& path)
{
    const auto [parentPath, name] = split(path);
    board::TreeNode& parent = path.empty() ? m_tree : node(parentPath);
    std::erase_if(parent.children, [&, wanted = path.empty() ? boardNode : name](const board::TreeNode& child) {
        return child.name == wanted;
    });
    std::erase_if(parent.properties, [&, wanted = name](const board::TreeProperty& one) { return one.name == wanted; });
    write();
    return *this;
}

void TestBoard::fail(const std::string& function, std::int32_t code, std::uint32_t times, std::uint32_t after) const
{
    const auto known = board::DriverFunction::named(function);
    if (!known) {
        throw std::invalid_argument("there is no driver function '" + function + "'");
    }
    host::PerNode<board::FaultStore>::get().set(*known, code, times, after);
}

void TestBoard::corruptRio(std::uint16_t device, std::uint32_t copies) const
{
    host::PerNode<board::RioFaultStore>::get().corrupt({0, device}, copies);
}

void TestBoard::slowRio(std::uint16_t device, std::chrono::milliseconds delay) const
{
    host::PerNode<board::RioFaultStore>::get().slow({0, device}, delay);
}

void TestBoard::write() const
{
    std::filesystem::create_directories(std::filesystem::path(m_path).parent_path());
    std::ofstream file(m_path, std::ios::binary | std::ios::trunc);
    file << treeBlob(m_tree) << std::flush;
    if (!file || setenv("DORN_BOARD", m_path.c_str(), 1) != 0) {
        throw std::system_error(errno, std::generic_category(), m_path);
    }
}

/// The node at @p path, made if it is missing.
board::TreeNode& TestBoard::node(const std::string& path)
{
    if (path.empty()) {
        return m_tree.children.empty() ? m_tree.children.emplace_back(board::TreeNode{boardNode, {}, {}})
                                       : m_tree.children.front();
    }
    const auto [parentPath, name] = split(path);
    board::TreeNode& parent = node(parentPath);
    const auto found = findNamed(parent.children, name);
    return found != parent.children.end() ? *found : parent.children.emplace_back(board::TreeNode{name, {}, {}});
}

void TestBoard::setProperty(const std::string& path, const std::string& property, const std::string& value)
{
    board::TreeNode& owner = node(path);
    const auto found = findNamed(owner.properties, property);
    if (found != owner.properties.end()) {
        found->value = bytesOf(value);
    } else {
        owner.properties.push_back({property, bytesOf(value)});
    }
}

} // namespace dorn::testkit
