// SPDX-License-Identifier: MIT
#include "config/TagDatabase.hpp"

#include "port/FilePort.hpp"
#include "port/StandardStreams.hpp"

#include <algorithm>
#include <array>

#include <cstring>
#include <fcntl.h>
#include <lmdb.h>
#include <optional>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace dorn::host {
namespace {

/// Address space of the environment; the file grows with what is in it. A 32-bit process has little to give.
constexpr std::size_t mapBytes = sizeof(void*) >= 8 ? std::size_t{1} << 30 : std::size_t{1} << 26;
constexpr std::size_t journalBytesLimit = mapBytes / 4;
/// Room for about 1,000 readers at a time on the node.
constexpr off_t lockFileBytes = 65'536;

constexpr std::size_t journalPartEntries = 64;  ///< copied at a time
constexpr std::size_t journalPartVisits = 4096; ///< looked at at a time
constexpr std::size_t trimStep = 32;            ///< entries that one set removes, as long as the bounds are kept

constexpr std::string_view sequenceName = "sequence"; ///< of the next set's number in the table "state"

/// A sequence number as a key: in the order of the numbers.
using SequenceKey = std::array<unsigned char, 8>;

SequenceKey toKey(std::uint64_t sequence)
{
    SequenceKey key{};
    for (std::size_t index = 0; index < key.size(); ++index) {
        key[index] = static_cast<unsigned char>(sequence >> (56 - 8 * index));
    }
    return key;
}

std::uint64_t fromKey(const MDB_val& value)
{
    SequenceKey key{};
    std::memcpy(key.data(), value.mv_data, std::min(key.size(), value.mv_size));
    std::uint64_t sequence = 0;
    for (const unsigned char byte : key) {
        sequence = sequence << 8 | byte;
    }
    return sequence;
}

MDB_val toValue(const void* data, std::size_t size)
{
    return {size, const_cast<void*>(data)};
}

MDB_val toValue(std::string_view text)
{
    return toValue(text.data(), text.size());
}

TagView toView(const MDB_val& value)
{
    return {static_cast<const std::byte*>(value.mv_data), value.mv_size};
}

std::string reasonOf(int result)
{
    if (result == MDB_MAP_FULL) {
        return "the node's tag store is full (" + std::to_string(mapBytes >> 20) + " MiB)";
    }
    return mdb_strerror(result);
}

void require(int result)
{
    if (result != MDB_SUCCESS) {
        throw TagError(reasonOf(result));
    }
}

/// A cursor that is closed with its scope, before its transaction ends.
class Cursor {
public:
    Cursor(MDB_txn* transaction, unsigned int table) { require(mdb_cursor_open(transaction, table, &m_cursor)); }
    ~Cursor() { mdb_cursor_close(m_cursor); }
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;

    /// Moves to an entry. @return whether there is one.
    bool move(MDB_cursor_op operation)
    {
        const int result = mdb_cursor_get(m_cursor, &key, &value, operation);
        if (result == MDB_NOTFOUND) {
            return false;
        }
        require(result);
        return true;
    }
    void remove() { require(mdb_cursor_del(m_cursor, 0)); }

    MDB_val key{};
    MDB_val value{};

private:
    MDB_cursor* m_cursor = nullptr;
};

/// A journal entry's tag; nothing when the bytes cannot be one.
std::optional<std::pair<std::string, TagView>> readEntry(const MDB_val& bytes)
{
    const TagView view = toView(bytes);
    if (view.empty() || view.size() <= static_cast<std::size_t>(view[0])) {
        return std::nullopt;
    }
    const auto nameLength = static_cast<std::size_t>(view[0]);
    return std::pair(std::string(reinterpret_cast<const char*>(view.data()) + 1, nameLength),
                     view.subspan(1 + nameLength));
}

/// Makes sure that LMDB's lock file has room: LMDB maps it, so that a full disk would end the process.
void reserveLockFile(const RunDirectory& directory)
{
    FilePort& files = FilePort::get();
    const int descriptor = files.open(directory.descriptor(), "tags/lock.mdb", O_RDWR | O_CREAT | O_NOFOLLOW, 0600);
    const int result = descriptor < 0 ? descriptor : files.reserve(descriptor, lockFileBytes);
    if (descriptor >= 0) {
        close(descriptor);
    }
    if (result < 0) {
        throw EnvironmentError("tag store '" + directory.path() + "/tags' cannot be made: " + std::strerror(-result));
    }
}

void setAside(const RunDirectory& directory)
{
    const std::string path = directory.path() + "/tags/data.mdb";
    writeToStandardError("dorn: tag store '" + path + "' is damaged or of another version; set aside as '" + path +
                         ".broken'\n");
    FilePort::get().rename(directory.descriptor(), "tags/data.mdb", directory.descriptor(), "tags/data.mdb.broken");
}

bool isDamage(int result)
{
    return result == MDB_INVALID || result == MDB_VERSION_MISMATCH || result == MDB_CORRUPTED ||
           result == MDB_PAGE_NOTFOUND || result == MDB_INCOMPATIBLE;
}

} // namespace

void TagDatabase::CloseEnvironment::operator()(MDB_env* environment) const
{
    mdb_env_close(environment);
}

TagDatabase::TagDatabase(const RunDirectory& directory)
{
    directory.makeSubdirectory("tags");
    reserveLockFile(directory);
    int result = open(directory.shortPath("tags"));
    if (isDamage(result)) {
        m_environment.reset();
        setAside(directory);
        result = open(directory.shortPath("tags"));
    }
    if (result != MDB_SUCCESS) {
        throw EnvironmentError("tag store '" + directory.path() + "/tags' cannot be opened: " + reasonOf(result));
    }
}

TagDatabase::~TagDatabase() = default;

int TagDatabase::open(const std::string& path)
{
    MDB_env* environment = nullptr;
    int result = mdb_env_create(&environment);
    if (result != MDB_SUCCESS) {
        return result;
    }
    m_environment.reset(environment);
    mdb_env_set_mapsize(environment, mapBytes);
    mdb_env_set_maxdbs(environment, 3);
    // The run directory does not outlive the board's power, so nothing is gained by waiting for a disk.
    result = mdb_env_open(environment, path.c_str(), MDB_NOSYNC | MDB_NOMETASYNC | MDB_NOTLS, 0600);
    if (result != MDB_SUCCESS) {
        return result;
    }
    int descriptor = -1;
    mdb_env_get_fd(environment, &descriptor);
    fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    int dead = 0;
    mdb_reader_check(environment, &dead);
    // Only who has to make the tables waits for the node's writer, which may be stopped in the middle of a set.
    result = openTables(true);
    return result == MDB_NOTFOUND ? openTables(false) : result;
}

int TagDatabase::openTables(bool areThere)
{
    MDB_txn* transaction = nullptr;
    int result = mdb_txn_begin(m_environment.get(), nullptr, areThere ? MDB_RDONLY : 0, &transaction);
    if (result != MDB_SUCCESS) {
        return result;
    }
    const std::array<std::pair<const char*, unsigned int*>, 3> tables{
        {{"tags", &m_tags}, {"journal", &m_journal}, {"state", &m_state}}};
    for (const auto& [name, table] : tables) {
        result = mdb_dbi_open(transaction, name, areThere ? 0 : MDB_CREATE, table);
        if (result != MDB_SUCCESS) {
            mdb_txn_abort(transaction);
            return result;
        }
    }
    return mdb_txn_commit(transaction);
}

/// A view of the database as it is at one moment.
class TagDatabase::ReadTransaction {
public:
    explicit ReadTransaction(const TagDatabase& database)
    {
        MDB_env* const environment = database.m_environment.get();
        int result = mdb_txn_begin(environment, nullptr, MDB_RDONLY, &m_transaction);
        if (result == MDB_READERS_FULL) {
            int dead = 0;
            mdb_reader_check(environment, &dead);
            result = mdb_txn_begin(environment, nullptr, MDB_RDONLY, &m_transaction);
        }
        require(result);
    }
    ~ReadTransaction() { mdb_txn_abort(m_transaction); }
    ReadTransaction(const ReadTransaction&) = delete;
    ReadTransaction& operator=(const ReadTransaction&) = delete;
    MDB_txn* get() const { return m_transaction; }

private:
    CancellationOff m_untilDone;
    MDB_txn* m_transaction = nullptr;
};

bool TagDatabase::read(const std::string& name, const std::function<void(TagView)>& take) const
{
    const ReadTransaction transaction(*this);
    MDB_val key = toValue(name);
    MDB_val value{};
    const int result = mdb_get(transaction.get(), m_tags, &key, &value);
    if (result == MDB_NOTFOUND) {
        return false;
    }
    require(result);
    take(toView(value));
    return true;
}

std::vector<Tag> TagDatabase::list() const
{
    const ReadTransaction transaction(*this);
    Cursor cursor(transaction.get(), m_tags);
    std::vector<Tag> tags;
    while (cursor.move(MDB_NEXT)) {
        const TagView value = toView(cursor.value);
        tags.push_back({std::string(static_cast<const char*>(cursor.key.mv_data), cursor.key.mv_size),
                        TagBytes(value.begin(), value.end())});
    }
    return tags;
}

TagJournalPart TagDatabase::readJournal(std::uint64_t from,
                                        const std::function<bool(const std::string&)>& isWanted) const
{
    const ReadTransaction transaction(*this);
    TagJournalPart part;
    part.next = from;
    Cursor cursor(transaction.get(), m_journal);
    const SequenceKey begin = toKey(from);
    cursor.key = toValue(begin.data(), begin.size());
    std::size_t visits = 0;
    for (bool isThere = cursor.move(MDB_SET_RANGE); isThere; isThere = cursor.move(MDB_NEXT)) {
        const std::uint64_t sequence = fromKey(cursor.key);
        part.lost += sequence - part.next;
        part.next = sequence + 1;
        const auto entry = readEntry(cursor.value);
        if (entry && isWanted(entry->first)) {
            part.entries.push_back({sequence, {entry->first, TagBytes(entry->second.begin(), entry->second.end())}});
        }
        if (part.entries.size() == journalPartEntries || ++visits == journalPartVisits) {
            break;
        }
    }
    return part;
}

TagWrite::TagWrite(TagDatabase& database) : m_database(database)
{
    require(mdb_txn_begin(database.m_environment.get(), nullptr, 0, &m_transaction));
    MDB_val key = toValue(sequenceName);
    MDB_val value{};
    const int result = mdb_get(m_transaction, database.m_state, &key, &value);
    if (result != MDB_SUCCESS && result != MDB_NOTFOUND) {
        mdb_txn_abort(m_transaction);
        require(result);
    }
    m_sequence = result == MDB_SUCCESS ? fromKey(value) : 0;
}

TagWrite::~TagWrite()
{
    if (m_transaction) {
        mdb_txn_abort(m_transaction);
    }
}

void TagWrite::put(const std::string& name, TagView value)
{
    MDB_val key = toValue(name);
    MDB_val data = toValue(value.data(), value.size());
    require(mdb_put(m_transaction, m_database.m_tags, &key, &data, 0));
}

void TagWrite::appendToJournal(const std::string& name, TagView value)
{
    const SequenceKey number = toKey(m_sequence);
    MDB_val key = toValue(number.data(), number.size());
    MDB_val data = toValue(nullptr, 1 + name.size() + value.size());
    require(mdb_put(m_transaction, m_database.m_journal, &key, &data, MDB_RESERVE | MDB_APPEND));
    auto* to = static_cast<std::byte*>(data.mv_data);
    *to++ = static_cast<std::byte>(name.size());
    to = std::copy_n(reinterpret_cast<const std::byte*>(name.data()), name.size(), to);
    std::copy(value.begin(), value.end(), to);
    const SequenceKey next = toKey(++m_sequence);
    MDB_val stateKey = toValue(sequenceName);
    MDB_val stateData = toValue(next.data(), next.size());
    require(mdb_put(m_transaction, m_database.m_state, &stateKey, &stateData, 0));
}

void TagWrite::trimJournal(std::uint64_t oldestNeeded)
{
    MDB_stat size{};
    require(mdb_stat(m_transaction, m_database.m_journal, &size));
    const std::size_t bytes = (size.ms_leaf_pages + size.ms_overflow_pages) * size.ms_psize;
    std::size_t beyond = size.ms_entries > tagJournalCapacity ? size.ms_entries - tagJournalCapacity : 0;
    if (bytes > journalBytesLimit) {
        beyond = std::max(beyond, trimStep);
    }
    Cursor cursor(m_transaction, m_database.m_journal);
    for (std::size_t count = 0; count < std::max(beyond, trimStep) && cursor.move(MDB_FIRST); ++count) {
        if (count >= beyond && fromKey(cursor.key) >= oldestNeeded) {
            return;
        }
        cursor.remove();
    }
}

void TagWrite::emptyJournal()
{
    MDB_stat size{};
    require(mdb_stat(m_transaction, m_database.m_journal, &size));
    if (size.ms_entries != 0) {
        require(mdb_drop(m_transaction, m_database.m_journal, 0));
    }
}

void TagWrite::commit()
{
    MDB_txn* const transaction = m_transaction;
    m_transaction = nullptr;
    require(mdb_txn_commit(transaction));
}

} // namespace dorn::host
