// SPDX-License-Identifier: MIT
#include "AaConfigRad.h"

#include "AaSysLog.h"
#include "config/RadStore.hpp"
#include "node/EeTable.hpp"
#include "port/CancellationOff.hpp"

#include <cstring>
#include <exception>

namespace {

using dorn::host::CancellationOff;
using dorn::host::EeTable;
using dorn::host::PerNode;
using dorn::host::RadDeclaration;
using dorn::host::RadDomain;
using dorn::host::RadStore;

enum Registration : int32_t { registered = 0, badArgument = 1, storeFailed = 2, differs = 3 };

/// The domain that the calling thread is just registering.
thread_local RadDeclaration* currentDeclaration = nullptr;

/// Collects what an initialise function says; the one around it goes on afterwards, even when this one is unwound.
class DeclarationScope {
public:
    explicit DeclarationScope(RadDeclaration& declaration) : m_outer(currentDeclaration)
    {
        currentDeclaration = &declaration;
    }
    ~DeclarationScope() { currentDeclaration = m_outer; }
    DeclarationScope(const DeclarationScope&) = delete;
    DeclarationScope& operator=(const DeclarationScope&) = delete;

private:
    RadDeclaration* m_outer;
};

bool fits(const char* text, std::size_t sizeWithTerminator)
{
    return text && *text && std::strlen(text) < sizeWithTerminator;
}

int32_t registerDeclared(const RadDeclaration& declaration)
{
    const CancellationOff untilDone;
    try {
        const std::string difference = PerNode<RadStore>::get().registerDomain(declaration);
        if (difference.empty()) {
            return registered;
        }
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning, "R&D domain %u \"%s\" is not registered: %s",
                      static_cast<unsigned>(declaration.number), declaration.name.c_str(), difference.c_str());
        return differs;
    } catch (const std::exception& error) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Error, "R&D domain %u \"%s\" is not registered: %s",
                      static_cast<unsigned>(declaration.number), declaration.name.c_str(), error.what());
        return storeFailed;
    }
}

} // namespace

int32_t AaConfigRadRegisterDomain(uint16_t domain, const char* name, TAaConfigRadInitialise initialise)
{
    if (domain == 0 || !fits(name, RadDomain::domainNameSize) || !initialise) {
        return badArgument;
    }
    RadDeclaration declaration{domain, name, {}};
    {
        const DeclarationScope scope(declaration);
        initialise();
    }
    return registerDeclared(declaration);
}

int32_t AaConfigRadSetMaxTagCount(uint16_t domain, TAaConfigRadId last)
{
    // Modulo 2^32, so that the identifier after domain 65535's last possible one, which is 0, counts as well.
    const std::uint32_t size = last - (static_cast<std::uint32_t>(domain) << 16);
    if (!currentDeclaration || currentDeclaration->number != domain || size > RadDomain::maximumSize) {
        return 1;
    }
    currentDeclaration->parameters.resize(size);
    return 0;
}

int32_t AaConfigRadSetDefault(TAaConfigRadId id, const char* name, uint32_t defaultValue)
{
    const std::size_t index = id & 0xFFFFU;
    if (!currentDeclaration || currentDeclaration->number != id >> 16 ||
        index >= currentDeclaration->parameters.size() || !fits(name, RadDomain::nameSize)) {
        return 1;
    }
    currentDeclaration->parameters[index] = {name, defaultValue};
    return 0;
}

int32_t AaConfigRadSetValue(TAaConfigRadId id, uint32_t value)
{
    RadStore* const store = PerNode<RadStore>::ifOpen();
    const RadDomain* const domain = store ? store->registered(id >> 16) : nullptr;
    const std::size_t index = id & 0xFFFFU;
    if (!domain || index >= domain->size()) {
        return 1;
    }
    // First the list of EEs, then the store: who has learnt of a value finds it in the list, even if this process is
    // killed in between.
    if (EeTable* const ees = PerNode<EeTable>::ifOpen()) {
        ees->notePublished(id, value);
    }
    store->set(*domain, index, value);
    return 0;
}

uint32_t AaConfigRadReadValue(TAaConfigRadId id)
{
    const RadStore* const store = PerNode<RadStore>::ifOpen();
    const RadDomain* const domain = store ? store->registered(id >> 16) : nullptr;
    const std::size_t index = id & 0xFFFFU;
    return domain && index < domain->size() ? domain->value(index).load(std::memory_order_relaxed) : 0;
}
