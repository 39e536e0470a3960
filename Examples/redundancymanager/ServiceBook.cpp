// SPDX-License-Identifier: MIT
#include "ServiceBook.hpp"

#include "AaConfigTag.h"
#include "AaMem.h"
#include "AaSysLog.h"

#include <cstring>

namespace dorn::examples {
namespace {

using namespace vel::hwapi::common;

bool isRegistration(std::uint32_t mode)
{
    return mode == ERedundancyMode_RealTime || mode == ERedundancyMode_Switchover || mode == ERedundancyMode_All;
}

} // namespace

void ServiceBook::load(std::uint32_t feature)
{
    void* value = nullptr;
    std::uint32_t length = 0;
    if (AaConfigTagGet(registrationsTag, &value, &length) != EAaConfigTagStatus_Ok) {
        return;
    }
    const auto* const bytes = static_cast<const char*>(value);
    bool isWhole = length % sizeof(SRedundancyRegistration) == 0;
    for (std::size_t at = 0; at + sizeof(SRedundancyRegistration) <= length; at += sizeof(SRedundancyRegistration)) {
        SRedundancyRegistration registration{};
        std::memcpy(&registration, bytes + at, sizeof registration);
        const bool isTaken = isRegistration(registration.mode) && m_services.size() < maxRedundantServices;
        if (isTaken) {
            m_services[registration.address] = {registration.address, registration.mode, 0, 0};
        }
        isWhole = isWhole && isTaken;
    }
    AaMemUnRef(value);
    if (!isWhole) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, feature, "Tag %s is damaged: %zu services taken from it",
                       registrationsTag, m_services.size());
    }
}

void ServiceBook::save() const
{
    const std::vector<SRedundancyRegistration> entries = registrations();
    AaConfigTagSet(registrationsTag, entries.empty() ? static_cast<const void*>("") : entries.data(),
                   static_cast<std::uint32_t>(entries.size() * sizeof(SRedundancyRegistration)));
}

ERedundancyRegisterStatus ServiceBook::add(std::uint32_t address, std::uint32_t mode)
{
    if (!isRegistration(mode)) {
        return ERedundancyRegisterStatus_UnknownMode;
    }
    if (!m_services.contains(address) && m_services.size() == maxRedundantServices) {
        return ERedundancyRegisterStatus_TooManyServices;
    }
    m_services[address] = {address, mode, 0, 0};
    save();
    return ERedundancyRegisterStatus_Ok;
}

bool ServiceBook::remove(std::uint32_t address)
{
    if (m_services.erase(address) == 0) {
        return false;
    }
    save();
    return true;
}

SRedundantService* ServiceBook::find(std::uint32_t address)
{
    const auto found = m_services.find(address);
    return found == m_services.end() ? nullptr : &found->second;
}

std::vector<SRedundantService> ServiceBook::list() const
{
    std::vector<SRedundantService> services;
    for (const auto& [address, service] : m_services) {
        services.push_back(service);
    }
    return services;
}

std::vector<SRedundancyRegistration> ServiceBook::registrations() const
{
    std::vector<SRedundancyRegistration> entries;
    for (const auto& [address, service] : m_services) {
        entries.push_back({address, service.mode});
    }
    return entries;
}

} // namespace dorn::examples
