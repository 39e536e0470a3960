// SPDX-License-Identifier: MIT
/// @file RadStore.hpp
/// The R&D parameters of the node: the domains that this process has registered, and those of all others.
///
/// A service registers its domains and reads and sets its own parameters (AaConfigRad.h). A tool registers nothing:
/// 1. domains() gives what there is on the node.
/// 2. idOf() finds a parameter by its names; value() and set() read and set it.
/// 3. RadWatch (RadWatch.hpp) tells what others set.
#pragma once

#include "config/RadDomain.hpp"
#include "config/SharedSignal.hpp"
#include "node/PerNode.hpp"

#include <array>
#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

namespace dorn::host {

/// Why a parameter cannot be told by its names; the text is for the person who gave them.
class RadLookupError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// One declared parameter as it is now.
struct RadParameter {
    TAaConfigRadId id;
    std::string name;
    std::uint32_t defaultValue;
    std::uint32_t value;
};

/// Opens the domains of this process's node. Use it through `PerNode<RadStore>`; a process has only one. Every function
/// may be called from any thread.
class RadStore {
public:
    /// @throws EnvironmentError
    RadStore();
    ~RadStore();
    RadStore(const RadStore&) = delete;
    RadStore& operator=(const RadStore&) = delete;

    /// Registers a domain for this process, making its store when the node has none, or has another one that no living
    /// process has registered; that is logged.
    /// @return empty; else how the declaration differs from what the node has, and nothing has changed.
    /// @throws EnvironmentError when the store cannot be opened or made.
    std::string registerDomain(const RadDeclaration& declaration);

    /// The domain if this process has registered it, else null. Takes no lock.
    RadDomain* registered(std::uint32_t number) const;

    /// All domains of the node, in the order of their numbers, whoever registered them. Valid as long as the store.
    /// @throws EnvironmentError
    std::vector<RadDomain*> domains();
    /// The node's domain with this number, or null. @throws EnvironmentError
    RadDomain* domain(std::uint16_t number);
    /// The declared parameters of a domain, in the order of their identifiers.
    static std::vector<RadParameter> parametersOf(const RadDomain& domain);

    /// The identifier of the parameter with these names.
    /// @throws RadLookupError when there is none, or more than one: then the text names their identifiers.
    TAaConfigRadId idOf(const std::string& domainName, const std::string& parameterName);

    /// Sets a parameter of any domain of the node. @return false when there is no such identifier.
    bool set(TAaConfigRadId id, std::uint32_t value);
    /// Sets a parameter of a domain that is at hand. A store, an atomic addition, and a wake-up if somebody waits.
    void set(const RadDomain& domain, std::size_t index, std::uint32_t value);

    /// Counts sets and registrations on the node; wait on it for the next one.
    SharedSignal& changes() const;

private:
    struct Control;
    using Leaf = std::array<std::atomic<RadDomain*>, 256>;

    Control& control() const;
    RadDomain* openAlready(std::uint16_t number) const;
    RadDomain* find(std::uint16_t number);
    RadDomain* openExisting(std::uint16_t number);
    void retire(std::uint16_t number);
    RadDomain* make(const RadDeclaration& declaration);
    RadDomain* openOrMake(const RadDeclaration& declaration, std::string& difference);
    void publish(RadDomain& domain);

    const RunDirectory& m_directory;
    SharedStore m_control;
    std::mutex m_mutex;
    std::map<std::uint16_t, std::unique_ptr<RadDomain>> m_domains; ///< complete ones, never closed before the end
    std::vector<std::unique_ptr<RadDomain>> m_retired;             ///< those that others have made anew meanwhile
    std::vector<std::unique_ptr<Leaf>> m_leaves;
    std::array<std::atomic<Leaf*>, 256> m_registered{}; ///< by high and low byte of the number
};

/// The name of a parameter of a domain that this process has registered, "" when there is none; takes no lock. Valid
/// until closeNode().
const char* radParameterName(TAaConfigRadId id);

} // namespace dorn::host
