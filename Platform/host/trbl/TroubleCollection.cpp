// SPDX-License-Identifier: MIT
#include "trbl/TroubleCollection.hpp"

#include <algorithm>
#include <atomic>

namespace dorn::host {
namespace {

/// A process that dies gives no signal: how often it is looked for.
constexpr std::chrono::milliseconds lookOut{20};

} // namespace

TroubleCollection::TroubleCollection(const TroubleFiles& list, Deadline until) : m_list(list), m_until(until)
{
    begin();
    m_collection = m_list.newCollection();
    for (TroubleFile& file : m_list.list()) {
        const TroubleAnswer answer = file.hasSteps ? TroubleAnswer::Pending : TroubleAnswer::Done;
        m_files.push_back({std::move(file), answer});
    }
    orderAll(TroubleOrder::Store);
    awaitAll(TroubleOrder::Store, m_files);
}

TroubleCollection::~TroubleCollection()
{
    orderAll(TroubleOrder::Remove);
    std::vector<CollectedFile> stored;
    for (const CollectedFile& collected : m_files) {
        if (collected.file.hasSteps && collected.answer == TroubleAnswer::Done) {
            stored.push_back({collected.file, TroubleAnswer::Pending});
        }
    }
    awaitAll(TroubleOrder::Remove, stored);
    m_list.endCollection();
}

void TroubleCollection::begin()
{
    Clock& clock = Clock::get();
    while (!m_list.beginCollection()) {
        if (clock.monotonic() >= m_until) {
            throw CollectionError("another process is collecting the node's troubleshooting files");
        }
        std::atomic<std::uint32_t> nothing{0};
        clock.waitWhile(nothing, 0, std::min(m_until, clock.monotonic() + lookOut), false);
    }
}

void TroubleCollection::orderAll(TroubleOrder order)
{
    for (const CollectedFile& collected : m_files) {
        if (collected.file.hasSteps) {
            m_list.order(collected.file, m_collection, order);
        }
    }
    m_list.announceOrders();
}

void TroubleCollection::awaitAll(TroubleOrder order, std::vector<CollectedFile>& files) const
{
    const Clock& clock = Clock::get();
    for (;;) {
        const std::uint32_t seen = m_list.answers().count();
        bool isAnyPending = false;
        for (CollectedFile& collected : files) {
            if (collected.answer == TroubleAnswer::Pending) {
                collected.answer = m_list.answer(collected.file, m_collection, order);
                isAnyPending |= collected.answer == TroubleAnswer::Pending;
            }
        }
        if (!isAnyPending || clock.monotonic() >= m_until) {
            return;
        }
        m_list.answers().waitBeyond(seen, std::min(m_until, clock.monotonic() + lookOut));
    }
}

} // namespace dorn::host
