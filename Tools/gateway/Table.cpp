// SPDX-License-Identifier: MIT
#include "gateway/Table.hpp"

#include "port/Descriptor.hpp"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace dorn::gateway {
namespace {

bool isBefore(const TableRow& left, const TableRow& right)
{
    return left.node < right.node;
}

/// A host in the form that all ways of writing it have in common: names know no case, IPv6 addresses many forms.
std::string plainHost(const std::string& host)
{
    const std::size_t zone = std::min(host.find('%'), host.size());
    in6_addr address{};
    if (inet_pton(AF_INET6, host.substr(0, zone).c_str(), &address) == 1) {
        std::array<char, INET6_ADDRSTRLEN> text{};
        inet_ntop(AF_INET6, &address, text.data(), text.size());
        return text.data() + host.substr(zone); // interfaces have a case
    }
    std::string name = host;
    std::transform(name.begin(), name.end(), name.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return name;
}

bool areAtOdds(const TableRow& left, const TableRow& right)
{
    return left.node == right.node || left.key == right.key || isSamePlace(left, right);
}

[[noreturn]] void fail(const std::string& path, const std::string& what)
{
    throw TableError("table '" + path + "' " + what);
}

std::string wholeFile(const std::string& path)
{
    const host::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!file || fstat(file.get(), &status) != 0) {
        fail(path, std::string("cannot be read: ") + std::strerror(errno));
    }
    if (!S_ISREG(status.st_mode)) {
        fail(path, "is no regular file");
    }
    std::string text(maxTableFileSize + 1, '\0');
    std::size_t size = 0;
    while (size < text.size()) {
        const ssize_t count = read(file.get(), text.data() + size, text.size() - size);
        if (count < 0 && errno != EINTR) {
            fail(path, std::string("cannot be read: ") + std::strerror(errno));
        }
        if (count == 0) {
            text.resize(size);
            return text;
        }
        size += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    fail(path, "is greater than " + std::to_string(maxTableFileSize) + " bytes");
}

} // namespace

bool isSamePlace(const TableRow& left, const TableRow& right)
{
    return left.port == right.port && plainHost(left.host) == plainHost(right.host);
}

Table::Table(std::vector<TableRow> rows) : m_rows(std::move(rows))
{
    if (m_rows.size() > maxTableRows) {
        throw std::invalid_argument("too many rows for a table of nodes");
    }
    std::sort(m_rows.begin(), m_rows.end(), isBefore);
    for (auto row = m_rows.begin(); row != m_rows.end(); ++row) {
        if (std::any_of(m_rows.begin(), row, [row](const TableRow& other) { return areAtOdds(*row, other); })) {
            throw std::invalid_argument("two rows of a table of nodes are at odds");
        }
    }
}

const TableRow* Table::find(TAaSysComNid node) const
{
    const auto found = std::lower_bound(m_rows.begin(), m_rows.end(), node,
                                        [](const TableRow& row, TAaSysComNid wanted) { return row.node < wanted; });
    return found != m_rows.end() && found->node == node ? &*found : nullptr;
}

const TableRow* Table::find(const PublicKey& key) const
{
    const auto found =
        std::find_if(m_rows.begin(), m_rows.end(), [&key](const TableRow& row) { return row.key == key; });
    return found == m_rows.end() ? nullptr : &*found;
}

std::string complaintText(const std::string& file, const TableComplaint& complaint)
{
    const std::string line = complaint.line == 0 ? "" : std::to_string(complaint.line) + ":";
    return file + ":" + line + " " + complaint.text;
}

TableReading readTable(const std::string& path, std::optional<TAaSysComNid> ownNode)
{
    return parseTable(wholeFile(path), ownNode);
}

} // namespace dorn::gateway
