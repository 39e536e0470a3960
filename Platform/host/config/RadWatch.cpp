// SPDX-License-Identifier: MIT
#include "config/RadWatch.hpp"

namespace dorn::host {

RadWatch::RadWatch(RadStore& store) : m_store(store), m_seen(store.changes().count())
{
    takeChanges();
}

std::vector<RadParameter> RadWatch::waitForChanges(Deadline until)
{
    while (m_store.changes().waitBeyond(m_seen, until)) {
        m_seen = m_store.changes().count();
        std::vector<RadParameter> changes = takeChanges();
        if (!changes.empty()) {
            return changes;
        }
    }
    return {};
}

std::vector<RadParameter> RadWatch::takeChanges()
{
    std::vector<RadParameter> changes;
    for (const RadDomain* const domain : m_store.domains()) {
        for (RadParameter& parameter : RadStore::parametersOf(*domain)) {
            const auto [known, isNew] = m_known.try_emplace(parameter.id, parameter.value);
            if (isNew || known->second != parameter.value) {
                known->second = parameter.value;
                changes.push_back(std::move(parameter));
            }
        }
    }
    return changes;
}

} // namespace dorn::host
