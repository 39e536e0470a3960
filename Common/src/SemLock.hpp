// SPDX-License-Identifier: MIT
/// @file SemLock.hpp
/// Holding a semaphore for as long as a scope lasts.
#pragma once

#include "AaSem.h"

namespace vel::hwapi::common {

/// Takes a count of a semaphore when it is made, waiting for it, and gives it back when it ends, however that comes
/// about. A null semaphore is passed over.
class [[nodiscard]] SemLock {
public:
    /// @param sem null to take nothing
    explicit SemLock(AaSem* sem) : m_sem(sem) { AaSemTake(m_sem, AA_WAIT_FOREVER); }
    ~SemLock() { AaSemGive(m_sem); }
    SemLock(const SemLock&) = delete;
    SemLock& operator=(const SemLock&) = delete;

private:
    AaSem* m_sem;
};

} // namespace vel::hwapi::common
