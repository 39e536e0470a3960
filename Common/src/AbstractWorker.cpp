// SPDX-License-Identifier: MIT
#include "AbstractWorker.hpp"

namespace vel::hwapi::common {

AbstractWorker::Task::~Task() = default;

AbstractWorker* AbstractWorker::Task::getExecutingWorker() const
{
    return m_excecutingWorker;
}

bool AbstractWorker::Task::isOwnedByWorker() const
{
    return m_ownedByWorker;
}

void AbstractWorker::Task::setExecutingWorker(AbstractWorker* worker)
{
    m_excecutingWorker = worker;
}

void AbstractWorker::Task::setOwnedByWorker(bool owned)
{
    m_ownedByWorker = owned;
}

} // namespace vel::hwapi::common
