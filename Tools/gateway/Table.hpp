// SPDX-License-Identifier: MIT
/// @file Table.hpp
/// The table of nodes: where each node's gateway listens and by which key it is known.
///
/// The table is a text file, the same on every node. Every line is a row of four columns with blanks or tabs between
/// them:
///
///     # node   host          port  public key
///     0x0F01   192.168.10.1  5670  Yne@$w-vo<fVvi]a<NY6T1ed:M$fCG*[IaLV{hID
///     0x0F02   192.168.10.2  5670  rq:rM>}U?@Lns47E1%kR.o@n%FcmmsL/@{H8]yf7
///
/// A line whose first character but blanks is `#` is a comment, and so is what follows the key behind ` #`. A bad line
/// is complained about and passed over; the good ones hold.
#pragma once

#include "AaSysCom.h"
#include "gateway/Keys.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace dorn::gateway {

constexpr std::size_t maxTableRows = 256;             ///< nodes in a table
constexpr std::size_t maxTableLineLength = 512;       ///< bytes of a line, without its line feed
constexpr std::size_t maxTableFileSize = 1024 * 1024; ///< bytes of the file, comments and all
constexpr std::size_t maxHostLength = 253;            ///< characters of a host's name, as in the domain name system

/// Where a node's table lies unless a person says otherwise; a path of the target.
constexpr const char* defaultTableFile = "/opt/dorn/gateway.table";

/// A node.
struct TableRow {
    TAaSysComNid node; ///< 1 to 0xFFFF: the upper half of its addresses
    std::string host;  ///< name, IPv4 or IPv6 address (without brackets) at which the others reach it; not resolved yet
    std::uint16_t port; ///< TCP port on which its gateway listens, 1 to 65535
    PublicKey key;

    friend bool operator==(const TableRow& left, const TableRow& right) = default;
};

/// Whether both nodes are to be reached at one port of one host: in whatever case its name is written, and in whatever
/// form its IPv6 address. That a name has an address only its resolving tells.
bool isSamePlace(const TableRow& left, const TableRow& right);

/// The nodes, by node id. No two have the same id, the same host and port, or the same key.
class Table {
public:
    Table() = default;
    /// For who has rows of his own, tests before all.
    /// @throws std::invalid_argument when two rows are at odds or there are more than #maxTableRows.
    explicit Table(std::vector<TableRow> rows);

    const std::vector<TableRow>& rows() const { return m_rows; }

    /// The row of @p node; null when the table does not know it. Valid as long as the table.
    const TableRow* find(TAaSysComNid node) const;
    /// The row of the node that has @p key; null when none has.
    const TableRow* find(const PublicKey& key) const;

private:
    std::vector<TableRow> m_rows;
};

/// What is wrong with a line, and what is expected: "FILE:LINE: TEXT".
struct TableComplaint {
    std::size_t line; ///< from 1; 0 when it is about the whole file
    std::string text;
};

/// "gateway.table:3: port '99999' is none: a number from 1 to 65535 is expected"
std::string complaintText(const std::string& file, const TableComplaint& complaint);

/// A table as it was read, and what was wrong with the file.
struct TableReading {
    Table table;                            ///< the good lines
    std::vector<TableComplaint> complaints; ///< in the order of the lines, those about the whole file last
};

/// Reads a table from a text; any bytes will do.
/// @param ownNode complained about when it has no row; nothing: no node needs to be in it
TableReading parseTable(std::string_view text, std::optional<TAaSysComNid> ownNode = std::nullopt);

/// A table that cannot be read at all.
class TableError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads the table from the file @p path of this machine.
/// @throws TableError when it cannot be read, is no regular file, or is greater than #maxTableFileSize.
TableReading readTable(const std::string& path, std::optional<TAaSysComNid> ownNode = std::nullopt);

} // namespace dorn::gateway
