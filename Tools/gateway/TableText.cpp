// SPDX-License-Identifier: MIT
#include "gateway/Table.hpp"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <charconv>
#include <cstdio>
#include <limits>
#include <net/if.h>

namespace dorn::gateway {
namespace {

constexpr std::array columnNames{"NODE", "HOST", "PORT", "KEY"};
constexpr const char* blanks = " \t";
constexpr std::size_t maxQuotedLength = 64;
constexpr std::size_t maxLabelLength = 63; // of a host's name
constexpr std::size_t maxComplaints = 50;
constexpr std::uint32_t greatest16Bits = std::numeric_limits<std::uint16_t>::max();

using Columns = std::vector<std::string_view>;

/// What is wrong with a line; ends its reading.
struct BadLine {
    std::string text;
};

/// What stood in the file, with nothing in it that speaks to a terminal.
std::string quoted(std::string_view text)
{
    std::string shown(text.substr(0, maxQuotedLength));
    std::replace_if(
        shown.begin(), shown.end(), [](char character) { return character < ' ' || character > '~'; }, '?');
    return "'" + shown + (text.size() > maxQuotedLength ? "..." : "") + "'";
}

std::string nodeText(TAaSysComNid node)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%04X", static_cast<unsigned>(node));
    return text.data();
}

/// A number from 1 to 65535; hexadecimal behind "0x" where that is usual.
std::optional<std::uint16_t> numberIn(std::string_view text, bool mayBeHex)
{
    const bool isHex = mayBeHex && (text.starts_with("0x") || text.starts_with("0X"));
    const std::string_view digits = text.substr(isHex ? 2 : 0);
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, isHex ? 16 : 10);
    if (error != std::errc() || end != digits.data() + digits.size() || value == 0 || value > greatest16Bits) {
        return std::nullopt;
    }
    return static_cast<std::uint16_t>(value);
}

bool isOf(std::string_view text, std::string_view characters)
{
    return text.find_first_not_of(characters) == std::string_view::npos;
}

bool isAddress(int family, const std::string& text)
{
    in6_addr address{}; // the greater one
    return inet_pton(family, text.c_str(), &address) == 1;
}

bool isNameLabel(std::string_view label)
{
    return !label.empty() && label.size() <= maxLabelLength && label.front() != '-' && label.back() != '-' &&
           isOf(label, "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_");
}

/// What the kernel may call an interface: "eth0", "eth0.100".
bool isInterface(std::string_view text)
{
    return !text.empty() && text.size() < IF_NAMESIZE &&
           isOf(text, "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_.");
}

bool isName(std::string_view text)
{
    for (;;) {
        const std::size_t end = text.find('.');
        if (!isNameLabel(text.substr(0, end))) {
            return false;
        }
        if (end == std::string_view::npos) {
            return true;
        }
        text.remove_prefix(end + 1);
    }
}

bool isHost(std::string_view text)
{
    if (text.size() > maxHostLength) {
        return false;
    }
    if (text.find(':') != std::string_view::npos) { // IPv6, perhaps with the interface that a local one is of
        const std::size_t zone = text.find('%');
        return isAddress(AF_INET6, std::string(text.substr(0, zone))) &&
               (zone == std::string_view::npos || isInterface(text.substr(zone + 1)));
    }
    return isOf(text, "0123456789.") ? isAddress(AF_INET, std::string(text)) : isName(text);
}

Columns columnsOf(std::string_view line)
{
    Columns columns;
    for (std::size_t begin = line.find_first_not_of(blanks); begin != std::string_view::npos;) {
        const std::size_t end = std::min(line.find_first_of(blanks, begin), line.size());
        columns.push_back(line.substr(begin, end - begin));
        begin = line.find_first_not_of(blanks, end);
    }
    return columns;
}

void requireNumberOfColumns(const Columns& columns)
{
    if (columns.size() < columnNames.size()) {
        throw BadLine{std::to_string(columns.size()) + (columns.size() == 1 ? " column" : " columns") + ", and no " +
                      columnNames[columns.size()] + ": 'NODE HOST PORT KEY' is expected"};
    }
    if (columns.size() > columnNames.size() && !columns[columnNames.size()].starts_with('#')) {
        throw BadLine{"column " + quoted(columns[columnNames.size()]) +
                      " is unknown: behind the key nothing but a comment is expected"};
    }
}

TableRow rowOf(const Columns& columns)
{
    requireNumberOfColumns(columns);
    const std::optional<std::uint16_t> node = numberIn(columns[0], true);
    if (!node) {
        throw BadLine{"node " + quoted(columns[0]) + " is none: a number from 1 to 65535 or 0xFFFF is expected"};
    }
    if (!isHost(columns[1])) {
        throw BadLine{"host " + quoted(columns[1]) + " is none: a name or an IPv4 or IPv6 address is expected"};
    }
    const std::optional<std::uint16_t> port = numberIn(columns[2], false);
    if (!port) {
        throw BadLine{"port " + quoted(columns[2]) + " is none: a number from 1 to 65535 is expected"};
    }
    const std::optional<PublicKey> key = PublicKey::fromText(columns[3]);
    if (!key) { // not quoted: somebody may have taken the secret one
        throw BadLine{"key is none: the 40 characters that 'dorn gateway keys' has printed are expected"};
    }
    return {*node, std::string(columns[1]), *port, *key};
}

/// Reads line after line.
class TableParser {
public:
    void take(std::string_view line)
    {
        ++m_line;
        try {
            read(line.ends_with('\r') ? line.substr(0, line.size() - 1) : line);
        } catch (const BadLine& bad) {
            complain(m_line, bad.text);
        }
    }

    TableReading finish(std::optional<TAaSysComNid> ownNode)
    {
        if (m_complaintCount > m_complaints.size()) {
            m_complaints.push_back({0, std::to_string(m_complaintCount - m_complaints.size()) + " more lines are bad"});
        }
        Table table(std::move(m_rows));
        if (ownNode && !table.find(*ownNode)) {
            m_complaints.push_back({0, "node " + nodeText(*ownNode) + ", this one, has no row: one is expected"});
        }
        return {std::move(table), std::move(m_complaints)};
    }

private:
    void read(std::string_view line)
    {
        if (line.size() > maxTableLineLength) {
            throw BadLine{"line of " + std::to_string(line.size()) + " bytes: at most " +
                          std::to_string(maxTableLineLength) + " are expected"};
        }
        const Columns columns = columnsOf(line);
        if (columns.empty() || columns.front().starts_with('#')) {
            return;
        }
        TableRow row = rowOf(columns);
        for (std::size_t index = 0; index < m_rows.size(); ++index) {
            requireAccord(row, m_rows[index], m_lines[index]);
        }
        if (m_rows.size() == maxTableRows) {
            throw BadLine{"row beyond the " + std::to_string(maxTableRows) + "th: so many nodes are expected at most"};
        }
        m_rows.push_back(std::move(row));
        m_lines.push_back(m_line);
    }

    static void requireAccord(const TableRow& row, const TableRow& other, std::size_t line)
    {
        const std::string where = " (line " + std::to_string(line) + ")";
        if (row.node == other.node) {
            throw BadLine{"node " + nodeText(row.node) + " has a row already" + where +
                          ", which holds: one row for each node is expected"};
        }
        if (row.key == other.key) {
            throw BadLine{"key is that of node " + nodeText(other.node) + where +
                          ": for each node a key of its own is expected"};
        }
        if (isSamePlace(row, other)) {
            throw BadLine{"host and port are those of node " + nodeText(other.node) + where +
                          ": for each node a place of its own is expected"};
        }
    }

    void complain(std::size_t line, std::string text)
    {
        ++m_complaintCount;
        if (m_complaints.size() < maxComplaints) {
            m_complaints.push_back({line, std::move(text)});
        }
    }

    std::vector<TableRow> m_rows;
    std::vector<std::size_t> m_lines; ///< of the rows
    std::vector<TableComplaint> m_complaints;
    std::size_t m_complaintCount = 0;
    std::size_t m_line = 0;
};

} // namespace

TableReading parseTable(std::string_view text, std::optional<TAaSysComNid> ownNode)
{
    TableParser parser;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        parser.take(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return parser.finish(ownNode);
}

} // namespace dorn::gateway
