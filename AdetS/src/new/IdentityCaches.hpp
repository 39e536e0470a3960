// SPDX-License-Identifier: MIT
/// @file IdentityCaches.hpp
/// What this process has learnt of the board and does not ask again.
#pragma once

#include "new/ApiAutodetInfo.h"
#include "new/IdentityText.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <string_view>

namespace vel::hwapi::adet {

/// A text that is kept once, by whichever thread is first, and read by any number of threads without waiting.
template <std::uint32_t Size>
class CachedText {
public:
    /// The text that is kept, at most @p Size characters; empty when none is.
    std::string_view get() const noexcept
    {
        return m_state.load(std::memory_order_acquire) == State::Kept ? textIn(m_text.data(), Size)
                                                                      : std::string_view();
    }

    /// Keeps a text in a buffer of @p Size bytes, unless it is empty or another thread has kept one or is about to.
    void keep(const char* text) noexcept
    {
        State state = State::Empty;
        if (text[0] != '\0' && m_state.compare_exchange_strong(state, State::BeingWritten, std::memory_order_relaxed)) {
            std::copy_n(text, Size, m_text.data());
            m_state.store(State::Kept, std::memory_order_release);
        }
    }

private:
    enum class State : std::uint8_t { Empty, BeingWritten, Kept };
    std::atomic<State> m_state = State::Empty;
    std::array<char, Size> m_text{};
};

/// A value that is asked for again as long as it is @p Unknown.
template <typename Value, Value Unknown>
class CachedValue {
public:
    /// The value that is kept; when none is, that of @p query, which is kept unless it is unknown.
    template <typename Query>
    Value getOr(Query query) noexcept
    {
        Value value = m_value.load(std::memory_order_relaxed);
        if (value == Unknown) {
            value = query();
            keep(value);
        }
        return value;
    }

    /// Keeps a value that is not unknown.
    void keep(Value value) noexcept
    {
        if (value != Unknown) {
            m_value.store(value, std::memory_order_relaxed);
        }
    }

    Value get() const noexcept { return m_value.load(std::memory_order_relaxed); }

private:
    std::atomic<Value> m_value = Unknown;
};

/// All that is kept. Each is independent of the others: threads that ask at once all ask the driver.
struct IdentityCaches {
    CachedText<8> unitId;
    CachedValue<EUnitType, EUnitType_Unknown> unitType;
    CachedValue<EUnitVersion, EUnitVersion_Unknown> unitVersion;
    CachedValue<std::uint32_t, 0> hwSwId;
    CachedValue<std::uint32_t, 0> hwId;
    CachedText<13> productionCode;
    CachedText<17> serialNumber;
    CachedValue<ETarnRatType, ETarnRatType_Unknown> ratType;
    CachedText<8> moduleId;
    CachedValue<EModuleVersion, EModuleVersion_Unknown> moduleVersion;
    CachedText<13> moduleProductionCode;
    CachedText<17> moduleSerialNumber;
    CachedValue<std::uint8_t, 0> currentBoard;
    CachedValue<std::uint8_t, 0> currentCpu;
};

/// The caches of this process.
IdentityCaches& identityCaches() noexcept;

} // namespace vel::hwapi::adet
