// SPDX-License-Identifier: MIT
#include "answers/RadDirectory.hpp"

#include "Outcome.hpp"
#include "text/Values.hpp"

#include <algorithm>
#include <strings.h>

namespace dorn::tool {
namespace {

std::string hexId(TAaConfigRadId id)
{
    return hexNumber(id, 5);
}

/// "0x20038 (HWA) and 0x200B0 (HWA)"
std::string listOf(const std::vector<RadEntry>& entries)
{
    std::string text;
    for (std::size_t index = 0; index < entries.size(); ++index) {
        text += index == 0 ? "" : index + 1 == entries.size() ? " and " : ", ";
        text += hexId(entries[index].parameter.id) + " (" + entries[index].domain + ")";
    }
    return text;
}

} // namespace

std::string RadEntry::address() const
{
    return parameter.name.empty() ? hexId(parameter.id) : domain + "/" + parameter.name;
}

RadDirectory::RadDirectory(host::RadStore& store)
{
    for (const host::RadDomain* const domain : store.domains()) {
        m_domains.push_back({domain->number(), domain->name(), domain->size(), host::RadStore::parametersOf(*domain)});
    }
}

std::string RadDirectory::domainNames() const
{
    std::string text;
    for (const RadDomainView& domain : m_domains) {
        text += (text.empty() ? "" : ", ") + domain.name + " (" + std::to_string(domain.number) + ")";
    }
    return text;
}

const RadDomainView& RadDirectory::findDomain(const std::string& nameOrNumber) const
{
    const std::optional<std::uint64_t> number = readNumber(nameOrNumber);
    const auto found = std::find_if(m_domains.begin(), m_domains.end(), [&](const RadDomainView& domain) {
        return domain.name == nameOrNumber || (number && domain.number == *number);
    });
    if (found == m_domains.end()) {
        throw Failure("no R&D domain '" + nameOrNumber + "' on this node; there are " + domainNames());
    }
    return *found;
}

TAaConfigRadId RadDirectory::findByNumber(std::uint64_t number) const
{
    const auto domain = std::find_if(m_domains.begin(), m_domains.end(),
                                     [number](const RadDomainView& one) { return one.number == number >> 16; });
    const std::string text = number <= 0xFFFFFFFF ? hexId(static_cast<TAaConfigRadId>(number)) : std::to_string(number);
    if (domain == m_domains.end()) {
        throw Failure("no R&D parameter " + text + " on this node: its number belongs to none of the domains " +
                      domainNames());
    }
    if ((number & 0xFFFFU) >= domain->size) {
        throw Failure("no R&D parameter " + text + " on this node: domain " + domain->name + " has " +
                      std::to_string(domain->size) + " identifiers");
    }
    return static_cast<TAaConfigRadId>(number);
}

/// "; did you mean HWA/FIRM?" where only the case differs.
std::string RadDirectory::similarTo(const std::string& name) const
{
    for (const RadEntry& entry : entries()) {
        if (strcasecmp(entry.parameter.name.c_str(), name.c_str()) == 0) {
            return "; did you mean " + entry.address() + "?";
        }
    }
    return "; 'dorn rad list' shows all that there are";
}

TAaConfigRadId RadDirectory::find(const std::string& address) const
{
    if (const std::optional<std::uint64_t> number = readNumber(address)) {
        return findByNumber(*number);
    }
    const std::size_t slash = address.find('/');
    const std::string domain = slash == std::string::npos ? "" : findDomain(address.substr(0, slash)).name;
    const std::string name = slash == std::string::npos ? address : address.substr(slash + 1);
    std::vector<RadEntry> found = entries(domain);
    std::erase_if(found, [&name](const RadEntry& entry) { return entry.parameter.name != name; });
    if (found.empty()) {
        throw Failure("no R&D parameter '" + address + "' on this node" + similarTo(name));
    }
    if (found.size() > 1) {
        throw Failure("'" + address + "' is the name of " + std::to_string(found.size()) +
                      " R&D parameters: " + listOf(found) + "; give the number of one");
    }
    return found.front().parameter.id;
}

std::vector<RadEntry> RadDirectory::entries(const std::string& domain) const
{
    const RadDomainView* const only = domain.empty() ? nullptr : &findDomain(domain);
    std::vector<RadEntry> all;
    for (const RadDomainView& view : m_domains) {
        for (const host::RadParameter& parameter : view.parameters) {
            if (!only || only == &view) {
                all.push_back({parameter, view.name});
            }
        }
    }
    return all;
}

} // namespace dorn::tool
