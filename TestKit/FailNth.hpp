// SPDX-License-Identifier: MIT
/// @file FailNth.hpp
/// Makes a platform or driver function fail when a test wants it, and counts its calls.
///
///     FailNth<AaSemCreateC> noSemaphore(1);   // the next call fails
///
/// The linker sends every call of an `Aa*` or `ddal_*` function through a wrapper (`--wrap`), so the product carries no
/// hooks. Calls of the library, the service and the test count; those of the TestKit, and those that the platform makes
/// of its own functions, do not. It works for every function of the seams' C headers except the inline ones, the
/// printing ones (AaSysLogPrint(), AaSysLogPrintE()) and AaErrorAssertionFailed(); naming one of those is an error of
/// the linker.
#pragma once

#include "seam/SeamCall.hpp"

namespace dorn::testkit {

/// Counts the calls of a function, from all threads.
template <auto Function>
class CountCalls {
public:
    /// Calls since this object was made.
    unsigned count() const { return seamCall<Function>().calls() - m_before; }

protected:
    /// Calls before this object was made.
    unsigned m_before = seamCall<Function>().calls();
};

/// Has one call of a function fail. The call is not carried out, except that it releases what the function takes in any
/// case: AaSysComMsgSend() takes the message, AaFileClose() and ddal_rio_copy_close_fd() close.
///
/// Calls are counted from the moment this object is made, from all threads. One at a time lives for a function.
template <auto Function>
class FailNth : public CountCalls<Function> {
public:
    /// Has call number @p nth (from 1) fail in the function's usual way: null, or the status of the failure that a user
    /// is most likely to meet.
    explicit FailNth(unsigned nth) { seamCall<Function>().fail(this->m_before + (nth - 1), 0); }
    /// Has call number @p nth (from 1) return @p result instead of being carried out.
    FailNth(unsigned nth, SeamResult<Function> result)
    {
        seamCall<Function>().fail(this->m_before + (nth - 1), 0, result);
    }
    ~FailNth() { seamCall<Function>().stopFailing(); }
    FailNth(const FailNth&) = delete;
    FailNth& operator=(const FailNth&) = delete;

    /// Whether the call has come.
    bool hasFailed() const { return seamCall<Function>().hasFailed(); }
};

/// Has every call of a function fail while this object lives; otherwise as FailNth.
template <auto Function>
class FailEvery : public CountCalls<Function> {
public:
    FailEvery() { seamCall<Function>().fail(this->m_before, ~0U); }
    /// @param result what the calls return
    explicit FailEvery(SeamResult<Function> result) { seamCall<Function>().fail(this->m_before, ~0U, result); }
    ~FailEvery() { seamCall<Function>().stopFailing(); }
    FailEvery(const FailEvery&) = delete;
    FailEvery& operator=(const FailEvery&) = delete;

    /// Whether a call has failed so far.
    bool hasFailed() const { return seamCall<Function>().hasFailed(); }
};

} // namespace dorn::testkit
