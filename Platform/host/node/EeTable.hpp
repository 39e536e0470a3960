// SPDX-License-Identifier: MIT
/// @file EeTable.hpp
/// The node's list of execution environments: which processes there are and what they last said of themselves.
#pragma once

#include "node/SharedStore.hpp"

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dorn::host {

/// What one process tells the others of itself. Lies in shared memory; zero means empty.
struct EeRecord {
    /// A value that the process wrote to an R&D parameter.
    struct Published {
        std::atomic<std::uint32_t> id;
        std::atomic<std::uint32_t> value;
        std::atomic<std::uint32_t> before; ///< the last other value that the process wrote
        std::atomic<std::int64_t> when;    ///< wall clock, ns
    };
    /// A cpid that an EU of the process holds.
    struct Cpid {
        std::atomic<std::uint32_t> cpid;
        std::array<char, 20> euName;
    };

    std::atomic<std::int32_t> pid;
    std::atomic<std::uint32_t> cpid;      ///< the one the process named itself by
    std::atomic<std::uint32_t> isGranted; ///< 1 once an EU of the process has got it
    std::atomic<std::int64_t> since;      ///< wall clock, ns
    std::array<char, 40> name;
    std::array<Published, 16> published;
    std::array<Cpid, 32> cpids;
};
static_assert(std::atomic<std::int64_t>::is_always_lock_free, "shared between processes");

/// A copy of an EeRecord with what the kernel says of its process.
struct EeInfo {
    struct Published {
        std::uint32_t id;
        std::uint32_t value;
        std::int64_t when;
        std::uint32_t before = 0; ///< the last other value that the process wrote; 0 also when there was none
    };
    struct Cpid {
        std::uint16_t cpid;
        std::string euName;
    };
    std::string name;
    std::int32_t pid;
    bool alive;
    std::uint16_t cpid; ///< the one the process named itself by, whether or not it got it
    std::int64_t since;
    std::vector<Published> published;
    std::vector<Cpid> cpids;
    bool isGranted = true; ///< whether the process has, or had, got the cpid that it named itself by
};

/// The shared table. A record stays after its process has ended, until its place is needed: first by a process of the
/// same name, then by any. Of what a process publishes and of the cpids that it holds there is a limited number in the
/// list; the first one beyond is logged.
class EeTable {
public:
    static constexpr std::size_t capacity = 1024; ///< the store's room is reserved at once: 1.2 MB

    /// Opens the table of this process's node. @throws EnvironmentError. Use it through `PerNode<EeTable>`.
    EeTable();
    explicit EeTable(const RunDirectory& directory);

    /// Gives this process a record, or its record a new name. Called once the EE has a name. A process for which there
    /// is no place is not listed; it is logged and runs on.
    void enter(const std::string& name, std::uint16_t cpid);
    /// Notes that this process wrote @p value to the R&D parameter @p id. Costs a few stores; without enter() nothing.
    void notePublished(std::uint32_t id, std::uint32_t value);
    void noteCpid(std::uint16_t cpid, const std::string& euName);
    void forgetCpid(std::uint16_t cpid);

    /// All records, in the order of their places.
    std::vector<EeInfo> list() const;
    /// The live EE that holds @p cpid.
    std::optional<EeInfo> holderOf(std::uint16_t cpid) const;

private:
    EeRecord* records() const;
    std::size_t placesInUse() const;
    std::size_t choosePlace(const std::string& name) const;
    bool isAlive(std::size_t place) const;

    SharedStore m_store;
    std::atomic<EeRecord*> m_own{nullptr};
    std::size_t m_ownPlace = capacity;
    std::atomic<bool> m_isPublishedFullSaid{false};
    std::atomic<bool> m_isCpidsFullSaid{false};
};

} // namespace dorn::host
