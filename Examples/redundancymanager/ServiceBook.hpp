// SPDX-License-Identifier: MIT
/// @file ServiceBook.hpp
/// Who is registered with the redundancy manager.
#pragma once

#include "RedundancyMessages.hpp"

#include <cstdint>
#include <map>
#include <vector>

namespace dorn::examples {

/// The registered services by address, never more than #maxRedundantServices. Kept in the tag #registrationsTag, so
/// that a manager that comes back knows them; what they said is not kept.
class ServiceBook {
public:
    /// Reads the tag. What is not a registration in it is passed over and logged.
    /// @param feature feature id of the log lines
    void load(std::uint32_t feature);

    /// Registers a service; one that is registered already begins anew.
    ERedundancyRegisterStatus add(std::uint32_t address, std::uint32_t mode);
    /// @return false when it was not registered.
    bool remove(std::uint32_t address);

    /// The service with this address; null when it is not registered.
    SRedundantService* find(std::uint32_t address);
    std::map<std::uint32_t, SRedundantService>& all() { return m_services; }

    /// Copies of all, by address.
    std::vector<SRedundantService> list() const;
    /// Who is registered for what, by address.
    std::vector<SRedundancyRegistration> registrations() const;

private:
    void save() const;

    std::map<std::uint32_t, SRedundantService> m_services;
};

} // namespace dorn::examples
