// SPDX-License-Identifier: MIT
#include "config/RadView.hpp"

#include <array>
#include <cstdint>
#include <mutex>
#include <sys/mman.h>

const std::uint32_t* AaConfigRadViews[AA_CONFIG_RAD_VIEWS] = {};

namespace dorn::host {
namespace {

constexpr std::size_t viewBytes = RadDomain::maximumSize * sizeof(std::uint32_t);

/// Address space for the views; kept once it is there, because a reader may be under way in it at any time.
struct Reservations {
    std::mutex mutex;
    std::array<void*, AA_CONFIG_RAD_VIEWS> addresses{};
};

Reservations& reservations()
{
    static Reservations instance;
    return instance;
}

/// Maps zeros for a whole view: at @p address, or where there is room.
void* mapZeros(void* address)
{
    const int flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | (address ? MAP_FIXED : 0);
    void* const mapped = mmap(address, viewBytes, PROT_READ, flags, -1, 0);
    return mapped == MAP_FAILED ? nullptr : mapped;
}

} // namespace

void showRadView(const RadDomain& domain)
{
    if (domain.number() >= AA_CONFIG_RAD_VIEWS) {
        return;
    }
    const std::lock_guard lock(reservations().mutex);
    if (AaConfigRadViews[domain.number()]) {
        return;
    }
    void*& address = reservations().addresses[domain.number()];
    if (!address) {
        address = mapZeros(nullptr);
    }
    if (address && domain.mapValuesAt(address)) {
        __atomic_store_n(&AaConfigRadViews[domain.number()], static_cast<const std::uint32_t*>(address),
                         __ATOMIC_RELEASE);
    }
}

void hideRadView(std::uint16_t number)
{
    if (number >= AA_CONFIG_RAD_VIEWS) {
        return;
    }
    const std::lock_guard lock(reservations().mutex);
    __atomic_store_n(&AaConfigRadViews[number], nullptr, __ATOMIC_RELEASE);
    if (void* const address = reservations().addresses[number]) {
        mapZeros(address);
    }
}

} // namespace dorn::host
