// SPDX-License-Identifier: MIT
/// @file RadDirectory.hpp
/// Finding R&D parameters by what people call them.
#pragma once

#include "config/RadStore.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace dorn::tool {

/// One domain and its parameters as they were at one moment.
struct RadDomainView {
    std::uint16_t number;
    std::string name;
    std::size_t size;                           ///< indices that it has, declared or not
    std::vector<host::RadParameter> parameters; ///< the declared ones
};

/// A parameter with its domain's name. The name of one that is not declared is empty.
struct RadEntry {
    host::RadParameter parameter;
    std::string domain;

    bool isChanged() const { return parameter.value != parameter.defaultValue; }
    /// "HWA/FIRM"; the number where there is no name.
    std::string address() const;
};

/// All domains of a node.
class RadDirectory {
public:
    explicit RadDirectory(std::vector<RadDomainView> domains) : m_domains(std::move(domains)) {}
    /// The node's, as it is now.
    explicit RadDirectory(host::RadStore& store);

    /// The identifier that is meant by a number (131156, 0x20054), DOMAIN/NAME (HWA/FIRM, 2/FIRM), or NAME where only
    /// one parameter is called so. @throws Failure when none or several are meant; the text says which.
    TAaConfigRadId find(const std::string& address) const;

    /// A domain by name or number. @throws Failure
    const RadDomainView& findDomain(const std::string& nameOrNumber) const;

    /// The declared parameters, of one domain only if @p domain is not empty. @throws Failure
    std::vector<RadEntry> entries(const std::string& domain = {}) const;

private:
    TAaConfigRadId findByNumber(std::uint64_t number) const;
    std::string domainNames() const;
    std::string similarTo(const std::string& name) const;

    std::vector<RadDomainView> m_domains;
};

} // namespace dorn::tool
