// SPDX-License-Identifier: MIT
#include "config/RadStore.hpp"

#include "AaSysLog.h"
#include "config/RadView.hpp"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <system_error>

namespace dorn::host {

/// Content of `rad/control`. Byte <number> is the lock of the domain of that number; the processes that have registered
/// the domain share another one, userLock(<number>).
struct RadStore::Control {
    SharedStoreHeader store;
    SharedSignal changes;
};

namespace {

constexpr std::uint32_t controlMagic = 0x444E5243; // "DNRC"
constexpr std::uint32_t controlLayoutVersion = 1;

std::size_t userLock(std::uint16_t number)
{
    return std::size_t{0x10000} + number;
}

/// A domain's lock among the processes of the node.
class DomainLock {
public:
    DomainLock(const SharedStore& control, std::uint16_t number) : m_control(control), m_number(number)
    {
        m_control.lock(m_number);
    }
    ~DomainLock() { m_control.unlock(m_number); }
    DomainLock(const DomainLock&) = delete;
    DomainLock& operator=(const DomainLock&) = delete;

private:
    const SharedStore& m_control;
    std::uint16_t m_number;
};

const RunDirectory& directoryWithRad()
{
    const RunDirectory& directory = PerNode<RunDirectory>::get();
    directory.makeSubdirectory("rad");
    return directory;
}

TAaConfigRadId idOfIndex(const RadDomain& domain, std::size_t index)
{
    return static_cast<TAaConfigRadId>(domain.number()) << 16 | static_cast<TAaConfigRadId>(index);
}

std::optional<std::uint16_t> numberOfFile(const std::string& name)
{
    std::uint16_t number = 0;
    const char* const end = name.data() + name.size();
    const auto [rest, error] = std::from_chars(name.data(), end, number);
    return error == std::errc{} && rest == end && number != 0 ? std::optional(number) : std::nullopt;
}

std::string listOf(const std::vector<TAaConfigRadId>& ids)
{
    std::string text;
    for (const TAaConfigRadId id : ids) {
        std::array<char, 16> number{};
        std::snprintf(number.data(), number.size(), "0x%X", static_cast<unsigned>(id));
        text += (text.empty() ? "" : id == ids.back() ? " and " : ", ") + std::string(number.data());
    }
    return text;
}

} // namespace

RadStore::RadStore()
    : m_directory(directoryWithRad()),
      m_control(m_directory, "rad/control", SharedStoreFormat{controlMagic, controlLayoutVersion, sizeof(Control)})
{
}

RadStore::~RadStore()
{
    for (const auto& [number, domain] : m_domains) {
        if (registered(number)) {
            hideRadView(number);
        }
    }
}

RadStore::Control& RadStore::control() const
{
    return *reinterpret_cast<Control*>(m_control.data());
}

SharedSignal& RadStore::changes() const
{
    return control().changes;
}

/// The domain if it is open, and still the node's.
RadDomain* RadStore::openAlready(std::uint16_t number) const
{
    const auto open = m_domains.find(number);
    const bool isThere = open != m_domains.end() && (registered(number) || open->second->isCurrent(m_directory));
    return isThere ? open->second.get() : nullptr;
}

/// Called with the domain's lock.
RadDomain* RadStore::openExisting(std::uint16_t number)
{
    if (RadDomain* const open = openAlready(number)) {
        return open;
    }
    retire(number);
    const std::optional<RadDomain::Sight> sight = RadDomain::look(m_directory, number);
    if (!sight || !sight->isComplete) {
        return nullptr;
    }
    auto domain = std::make_unique<RadDomain>(m_directory, number, sight->size);
    return m_domains.emplace(number, std::move(domain)).first->second.get();
}

RadDomain* RadStore::find(std::uint16_t number)
{
    if (RadDomain* const open = openAlready(number)) {
        return open;
    }
    const DomainLock domainLock(m_control, number); // it may just be made anew
    return openExisting(number);
}

void RadStore::retire(std::uint16_t number)
{
    const auto open = m_domains.find(number);
    if (open != m_domains.end()) {
        m_retired.push_back(std::move(open->second));
        m_domains.erase(open);
    }
}

RadDomain* RadStore::make(const RadDeclaration& declaration)
{
    retire(declaration.number);
    if (RadDomain::look(m_directory, declaration.number)) {
        RadDomain::remove(m_directory, declaration.number);
    }
    auto made = std::make_unique<RadDomain>(m_directory, declaration.number, declaration.parameters.size());
    made->complete(declaration);
    RadDomain* const domain = m_domains.emplace(declaration.number, std::move(made)).first->second.get();
    changes().notify();
    return domain;
}

RadDomain* RadStore::openOrMake(const RadDeclaration& declaration, std::string& difference)
{
    RadDomain* const there = openExisting(declaration.number);
    difference = there ? there->differenceTo(declaration) : std::string();
    if (there && difference.empty()) {
        return there;
    }
    if (registered(declaration.number)) {
        return nullptr;
    }
    if (const int user = m_control.lockHolder(userLock(declaration.number)); user != 0) {
        difference = (there ? difference : "its store is damaged or of another version") + "; process " +
                     std::to_string(user) + " uses the node's: end the services of the other version, then start this";
        return nullptr;
    }
    return make(declaration); // the old one is another version's, damaged, or its maker was killed: nobody uses it
}

std::string RadStore::registerDomain(const RadDeclaration& declaration)
{
    std::string difference;
    {
        const std::lock_guard lock(m_mutex);
        const DomainLock domainLock(m_control, declaration.number);
        RadDomain* const domain = openOrMake(declaration, difference);
        if (!domain) {
            return difference;
        }
        m_control.tryShare(userLock(declaration.number)); // nobody ever has it alone
        publish(*domain);
    }
    if (!difference.empty()) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning,
                      "R&D domain %u \"%s\" is made anew with its defaults, for nobody uses the node's: %s",
                      static_cast<unsigned>(declaration.number), declaration.name.c_str(), difference.c_str());
    }
    return {};
}

void RadStore::publish(RadDomain& domain)
{
    std::atomic<Leaf*>& branch = m_registered[domain.number() >> 8];
    if (!branch.load(std::memory_order_relaxed)) {
        m_leaves.push_back(std::make_unique<Leaf>());
        branch.store(m_leaves.back().get(), std::memory_order_release);
    }
    (*branch.load(std::memory_order_relaxed))[domain.number() & 0xFFU].store(&domain, std::memory_order_release);
    showRadView(domain);
}

RadDomain* RadStore::registered(std::uint32_t number) const
{
    const Leaf* const leaf = m_registered[number >> 8 & 0xFFU].load(std::memory_order_acquire);
    return leaf ? (*leaf)[number & 0xFFU].load(std::memory_order_acquire) : nullptr;
}

std::vector<RadDomain*> RadStore::domains()
{
    const std::lock_guard lock(m_mutex);
    std::error_code error;
    std::vector<RadDomain*> found;
    for (const auto& entry : std::filesystem::directory_iterator(m_directory.shortPath("rad"), error)) {
        const std::optional<std::uint16_t> number = numberOfFile(entry.path().filename().string());
        RadDomain* const domain = number ? find(*number) : nullptr;
        if (domain) {
            found.push_back(domain);
        }
    }
    if (error) {
        throw EnvironmentError("directory '" + m_directory.path() + "/rad' cannot be read: " + error.message());
    }
    std::sort(found.begin(), found.end(),
              [](const RadDomain* left, const RadDomain* right) { return left->number() < right->number(); });
    return found;
}

RadDomain* RadStore::domain(std::uint16_t number)
{
    const std::lock_guard lock(m_mutex);
    return find(number);
}

std::vector<RadParameter> RadStore::parametersOf(const RadDomain& domain)
{
    std::vector<RadParameter> parameters;
    for (std::size_t index = 0; index < domain.size(); ++index) {
        if (domain.isDeclared(index)) {
            parameters.push_back({idOfIndex(domain, index), domain.parameterName(index), domain.defaultValue(index),
                                  domain.value(index).load(std::memory_order_relaxed)});
        }
    }
    return parameters;
}

TAaConfigRadId RadStore::idOf(const std::string& domainName, const std::string& parameterName)
{
    bool hasDomain = false;
    std::vector<TAaConfigRadId> ids;
    for (const RadDomain* const domain : domains()) {
        if (domain->name() != domainName) {
            continue;
        }
        hasDomain = true;
        for (const RadParameter& parameter : parametersOf(*domain)) {
            if (parameter.name == parameterName) {
                ids.push_back(parameter.id);
            }
        }
    }
    if (!hasDomain) {
        throw RadLookupError("no domain '" + domainName + "' on this node");
    }
    if (ids.empty()) {
        throw RadLookupError("domain '" + domainName + "' has no parameter '" + parameterName + "'");
    }
    if (ids.size() > 1) {
        throw RadLookupError("'" + parameterName + "' in domain '" + domainName + "' is the name of " + listOf(ids) +
                             "; give the identifier");
    }
    return ids.front();
}

bool RadStore::set(TAaConfigRadId id, std::uint32_t value)
{
    const RadDomain* const target = domain(static_cast<std::uint16_t>(id >> 16));
    const std::size_t index = id & 0xFFFFU;
    if (!target || index >= target->size()) {
        return false;
    }
    set(*target, index, value);
    return true;
}

void RadStore::set(const RadDomain& domain, std::size_t index, std::uint32_t value)
{
    domain.value(index).store(value, std::memory_order_release); // with what the caller has published before
    changes().notify();
}

const char* radParameterName(TAaConfigRadId id)
{
    const RadStore* const store = PerNode<RadStore>::ifOpen();
    const RadDomain* const domain = store ? store->registered(id >> 16) : nullptr;
    const std::size_t index = id & 0xFFFFU;
    return domain && index < domain->size() ? domain->parameterName(index) : "";
}

} // namespace dorn::host
