// SPDX-License-Identifier: MIT
/// @file GatewayTableFuzz.cpp
/// Any bytes as a table of nodes: the rows that are taken make a table, and read again are the same; every complaint
/// can be printed.
#include "FuzzBoard.hpp"
#include "gateway/Table.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

using namespace dorn::gateway;
using dorn::fuzz::require;

constexpr TAaSysComNid ownNode = 0x0F01;
constexpr std::size_t greatestNumberOfComplaints = 52;

void requireRow(const TableRow& row)
{
    require(row.node >= 1 && row.node <= 0xFFFF);
    require(!row.host.empty() && row.host.size() <= maxHostLength);
    require(row.port != 0);
    require(PublicKey::fromText(row.key.text()) == row.key);
}

std::string textOf(const Table& table)
{
    std::string text;
    for (const TableRow& row : table.rows()) {
        text +=
            std::to_string(row.node) + " " + row.host + " " + std::to_string(row.port) + " " + row.key.text() + "\n";
    }
    return text;
}

void requirePrintable(const TableComplaint& complaint)
{
    require(!complaint.text.empty());
    require(std::all_of(complaint.text.begin(), complaint.text.end(),
                        [](char character) { return character >= ' ' && character <= '~'; }));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);

    const TableReading reading = parseTable(text);
    const TableReading own = parseTable(text, ownNode);
    const TableReading again = parseTable(textOf(reading.table));

    require(reading.table.rows().size() <= maxTableRows);
    std::for_each(reading.table.rows().begin(), reading.table.rows().end(), requireRow);
    require(reading.complaints.size() <= greatestNumberOfComplaints);
    std::for_each(reading.complaints.begin(), reading.complaints.end(), requirePrintable);
    require(again.table.rows() == reading.table.rows() && again.complaints.empty());
    require(own.complaints.size() - reading.complaints.size() == (own.table.find(ownNode) ? 0 : 1));
    return 0;
}
