// SPDX-License-Identifier: MIT
/// @file RadDomain.hpp
/// One domain of R&D parameters: what a process declares of it, and its store that all processes of the node map.
#pragma once

#include "AaConfigRad.h"
#include "node/SharedStore.hpp"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dorn::host {

/// What an initialise function has said of its domain.
struct RadDeclaration {
    struct Parameter {
        std::string name; ///< empty: not declared
        std::uint32_t defaultValue = 0;
    };
    std::uint16_t number = 0;
    std::string name;
    std::vector<Parameter> parameters; ///< by index
};

/// The store of one domain: `rad/<number>` in the run directory.
///
/// It holds the values, defaults and names of every index from 0 to size() - 1. Values are read and written by anybody
/// at any time; the rest is written once, before the store is complete, by who holds the domain's lock (RadStore).
class RadDomain {
public:
    static constexpr std::size_t maximumSize = 0x10000;
    static constexpr std::size_t nameSize = 64;       ///< of a parameter, with its terminator
    static constexpr std::size_t domainNameSize = 32; ///< with its terminator

    /// What a look at a domain's file tells.
    struct Sight {
        std::size_t size;
        bool isComplete;
    };
    /// Looks at a domain's file without mapping it. @return nothing when there is none that can be used.
    static std::optional<Sight> look(const RunDirectory& directory, std::uint16_t number);
    /// Removes a domain's file; for one that nobody uses.
    static void remove(const RunDirectory& directory, std::uint16_t number);

    /// Opens the store of a domain with @p size parameters, or creates it, not complete. @throws EnvironmentError
    RadDomain(const RunDirectory& directory, std::uint16_t number, std::size_t size);

    /// Whether this is still the node's store of the domain, and not one that has been removed.
    bool isCurrent(const RunDirectory& directory) const;
    bool isComplete() const { return header().isComplete.load(std::memory_order_acquire) != 0; }
    /// Writes names, defaults and, as values, the defaults; then the store is complete.
    void complete(const RadDeclaration& declaration);
    /// How @p declaration differs from what is there, for a person; empty when it does not.
    std::string differenceTo(const RadDeclaration& declaration) const;

    std::uint16_t number() const { return m_number; }
    std::string name() const;
    std::size_t size() const { return m_size; }

    /// A parameter's name, "" for an index that is not declared. Valid as long as the store is mapped.
    const char* parameterName(std::size_t index) const { return m_names[index].data(); }
    bool isDeclared(std::size_t index) const { return *parameterName(index) != '\0'; }
    std::uint32_t defaultValue(std::size_t index) const { return m_defaults[index]; }
    std::atomic<std::uint32_t>& value(std::size_t index) const { return m_values[index]; }

    /// Maps the values for reading at @p address, which lies in a reservation of the caller's.
    /// @return whether the kernel did it.
    bool mapValuesAt(void* address) const;

private:
    struct Header {
        SharedStoreHeader store;
        std::atomic<std::uint32_t> isComplete;
        std::uint32_t number;
        std::uint32_t size;
        std::array<char, domainNameSize> name;
    };
    /// Where things lie in a store, in bytes from its begin. The values have pages of their own.
    struct Layout {
        explicit Layout(std::size_t size);
        std::size_t valuesBegin;
        std::size_t valuesEnd;
        std::size_t namesBegin;
        std::size_t end;
    };
    static constexpr std::uint32_t magic = 0x444E5244;
    static constexpr std::uint32_t version = 1;

    static std::string fileName(std::uint16_t number);
    Header& header() const { return *reinterpret_cast<Header*>(m_store.data()); }

    std::uint16_t m_number;
    std::size_t m_size;
    Layout m_layout;
    SharedStore m_store;
    std::atomic<std::uint32_t>* m_values;
    std::uint32_t* m_defaults;
    std::array<char, nameSize>* m_names;
};

} // namespace dorn::host
