// SPDX-License-Identifier: MIT
/// @file TagDatabase.hpp
/// The tags of the node and the journal of their sets, in one LMDB environment that all processes of the node open.
#pragma once

#include "node/RunDirectory.hpp"
#include "port/CancellationOff.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

struct MDB_env;
struct MDB_txn;

namespace dorn::host {

/// Why the tags cannot be read or written just now; the text is for a log line.
class TagError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

using TagBytes = std::vector<std::byte>;
using TagView = std::span<const std::byte>;

/// A tag and its value.
struct Tag {
    std::string name;
    TagBytes value;
};

/// One set in the journal.
struct TagJournalEntry {
    std::uint64_t sequence;
    Tag tag;
};

/// A piece of the journal.
struct TagJournalPart {
    std::vector<TagJournalEntry> entries; ///< those that the reader wants, oldest first
    std::uint64_t next = 0;               ///< sequence number with which the following piece begins
    std::uint64_t lost = 0;               ///< sets that were gone from the journal before the reader came
};

/// Opens the environment. A process opens it once and only where it is used: LMDB works neither with two openings in a
/// process nor across fork(). What it throws while open is TagError.
class TagDatabase {
public:
    /// Opens `tags/` in the run directory, or makes it; a damaged one is set aside. The caller keeps other processes
    /// from doing so at the same time. @throws EnvironmentError
    explicit TagDatabase(const RunDirectory& directory);
    ~TagDatabase();
    TagDatabase(const TagDatabase&) = delete;
    TagDatabase& operator=(const TagDatabase&) = delete;

    /// Calls @p take with the tag's value, which is valid during the call only. @return false when there is no such
    /// tag.
    bool read(const std::string& name, const std::function<void(TagView)>& take) const;

    /// All tags, by name.
    std::vector<Tag> list() const;

    /// Reads on in the journal from the set with the number @p from. Stops after a bounded number of entries.
    /// @param isWanted says by the tag's name whether an entry is to be copied
    TagJournalPart readJournal(std::uint64_t from, const std::function<bool(const std::string&)>& isWanted) const;

private:
    friend class TagWrite;
    class ReadTransaction;
    struct CloseEnvironment {
        void operator()(MDB_env* environment) const;
    };

    int open(const std::string& path);
    int openTables(bool areThere);

    std::unique_ptr<MDB_env, CloseEnvironment> m_environment;
    unsigned int m_tags = 0;    ///< name to value
    unsigned int m_journal = 0; ///< sequence number, 8 bytes big-endian, to length of name, name, value
    unsigned int m_state = 0;   ///< "sequence": the number that the next set gets in the journal
};

/// Writes to the database: the only writer on the node as long as it lives, unless that ends in a kill, which leaves
/// nothing behind. Made and ended by the same thread, which is not cancelled meanwhile. Without commit() nothing
/// happens.
class TagWrite {
public:
    explicit TagWrite(TagDatabase& database);
    ~TagWrite();
    TagWrite(const TagWrite&) = delete;
    TagWrite& operator=(const TagWrite&) = delete;

    void put(const std::string& name, TagView value);

    /// The number that the next set gets in the journal.
    std::uint64_t sequence() const { return m_sequence; }
    /// Appends a set to the journal.
    void appendToJournal(const std::string& name, TagView value);
    /// Removes what nobody waits for any more, a bounded number of entries before @p oldestNeeded, and what goes beyond
    /// the journal's bounds.
    void trimJournal(std::uint64_t oldestNeeded);
    /// Removes all entries.
    void emptyJournal();

    void commit();

private:
    CancellationOff m_untilDone;
    TagDatabase& m_database;
    MDB_txn* m_transaction = nullptr;
    std::uint64_t m_sequence = 0;
};

/// Sets in the journal at most; who is further behind loses the oldest.
constexpr std::size_t tagJournalCapacity = 65'536;

} // namespace dorn::host
