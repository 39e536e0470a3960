// SPDX-License-Identifier: MIT
#include "log/LogOrigin.hpp"

#include "config/RadStore.hpp"
#include "eu/Eu.hpp"
#include "log/LogText.hpp"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <mutex>
#include <unistd.h>

namespace dorn::host {
namespace {

/// Guarded by a lock of its own; what is made of it carries the generation, so that it is read seldom.
struct Identity {
    std::mutex mutex;
    std::string eeName;
    std::atomic<std::int32_t> pid{getpid()};
    std::atomic<std::uint32_t> generation{1};

    std::string_view name() const { return eeName.empty() ? std::string_view(program_invocation_short_name) : eeName; }
    void change() { generation.fetch_add(1, std::memory_order_release); }
};

Identity& identity()
{
    static auto* const instance = new Identity; // outlives every static object that may still print
    return *instance;
}

/// Few features print in one thread; two that share a place only cost time.
constexpr std::size_t cacheSize = 8;
constinit thread_local std::array<LogOrigin, cacheSize> cache{};

/// The feature's name; null when it has none.
const char* registeredName(std::uint32_t featureId)
{
    const char* const name = radParameterName(featureId);
    return name && *name ? name : nullptr;
}

bool holds(const LogOrigin& origin, std::uint32_t generation, std::uint32_t featureId, std::string_view euName)
{
    return origin.generation == generation && origin.featureId == featureId &&
           std::string_view(origin.euName.data(), origin.euLength) == euName &&
           (origin.isRegistered || !registeredName(featureId));
}

/// Writes "0x20066".
std::size_t writeHexId(std::array<char, 64>& to, std::uint32_t featureId)
{
    to[0] = '0';
    to[1] = 'x';
    const std::to_chars_result result = std::to_chars(to.data() + 2, to.data() + to.size(), featureId, 16);
    return static_cast<std::size_t>(result.ptr - to.data());
}

void nameFeature(LogOrigin& origin, std::uint32_t featureId)
{
    const char* const name = featureId == 0 ? "" : registeredName(featureId);
    origin.featureId = featureId;
    origin.isRegistered = name != nullptr;
    origin.featureName.fill('\0');
    if (name) {
        std::memcpy(origin.featureName.data(), name, strnlen(name, origin.featureName.size() - 1));
    } else {
        writeHexId(origin.featureName, featureId);
    }
}

void make(LogOrigin& origin, std::uint32_t generation, std::uint32_t featureId, std::string_view euName)
{
    origin.generation = generation;
    origin.euLength = static_cast<std::uint8_t>(euName.size());
    std::copy(euName.begin(), euName.end(), origin.euName.begin());
    nameFeature(origin, featureId);
    char* to = origin.text.data();
    {
        Identity& process = identity();
        const std::lock_guard lock(process.mutex);
        to = writeLogName(to, LogOrigin::maxNameField, process.name());
        *to++ = '[';
        to = std::to_chars(to, origin.text.end(), process.pid.load(std::memory_order_relaxed)).ptr;
    }
    *to++ = ']';
    *to++ = ' ';
    to = writeLogName(to, LogOrigin::maxNameField, euName);
    *to++ = ' ';
    to = writeLogName(to, LogOrigin::maxNameField, origin.featureName.data());
    origin.length = static_cast<std::uint16_t>(to - origin.text.data());
}

} // namespace

const LogOrigin& currentLogOrigin(std::uint32_t featureId) noexcept
{
    const std::uint32_t generation = identity().generation.load(std::memory_order_acquire);
    LogOrigin& origin = cache[(featureId ^ featureId >> 16U) % cacheSize];
    const std::string_view euName = currentEuName().substr(0, origin.euName.size());
    if (!holds(origin, generation, featureId, euName)) {
        make(origin, generation, featureId, euName);
    }
    return origin;
}

LogIdentity logIdentity()
{
    Identity& process = identity();
    const std::lock_guard lock(process.mutex);
    return {std::string(process.name()), process.pid.load()};
}

void setLogIdentity(const std::string& eeName)
{
    Identity& process = identity();
    const std::lock_guard lock(process.mutex);
    process.eeName = eeName;
    process.change();
}

void refreshLogIdentity() noexcept
{
    Identity& process = identity();
    process.pid.store(getpid());
    process.change();
}

void lockLogIdentity()
{
    identity().mutex.lock();
}

void unlockLogIdentity()
{
    identity().mutex.unlock();
}

} // namespace dorn::host
