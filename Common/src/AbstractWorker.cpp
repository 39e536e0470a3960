// SPDX-License-Identifier: MIT
#include "AbstractWorker.hpp"

namespace vel::hwapi::common {

AbstractWorker::Task::~Task() = default;

AbstractWorker* AbstractWorker::Task::getExecutingWorker() const
{
    return __atomic_load_n(&m_excecutingWorker, __ATOMIC_ACQUIRE); // std::atomic_ref takes no const object
}

bool AbstractWorker::Task::isOwnedByWorker() const
{
    return m_ownedByWorker;
}

void AbstractWorker::Task::setExecutingWorker(AbstractWorker* worker)
{
    __atomic_store_n(&m_excecutingWorker, worker, __ATOMIC_RELEASE);
}

void AbstractWorker::Task::setOwnedByWorker(bool owned)
{
    m_ownedByWorker = owned;
}

} // namespace vel::hwapi::common
