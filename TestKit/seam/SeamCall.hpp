// SPDX-License-Identifier: MIT
/// @file SeamCall.hpp
/// What the wrapper of one platform function knows: how often it was called, and which calls are to fail.
#pragma once

#include <atomic>
#include <optional>
#include <tuple>
#include <type_traits>

namespace dorn::testkit {

template <class Function>
struct SeamSignature;
/// What FailNth and the wrappers make of the type of a function: `decltype(&AaSemCreateC)`.
template <class ReturnType, class... ParameterTypes>
struct SeamSignature<ReturnType (*)(ParameterTypes...)> {
    using Return = ReturnType;                        ///< `void` for a function without result
    using Parameters = std::tuple<ParameterTypes...>; ///< in their order, references and all
};

/// Return type of a platform function.
template <auto Function>
using SeamReturn = typename SeamSignature<decltype(Function)>::Return;

/// Type of a platform function's result. One without result is counted and suppressed all the same; the word that
/// stands for its result then is not used.
template <auto Function>
using SeamResult = std::conditional_t<std::is_void_v<SeamReturn<Function>>, bool, SeamReturn<Function>>;

/// The calls of one function, of all threads, and which of them are to fail. FailNth is what a test uses.
///
/// Atomics only: the functions that signal handlers may call are wrapped too.
template <class Result>
class SeamCall {
public:
    /// @param usualFailure with which calls fail when a test names no result
    explicit constexpr SeamCall(Result usualFailure) : m_usualFailure(usualFailure), m_result(usualFailure) {}

    /// Calls since the process started, those that failed included.
    unsigned calls() const { return m_calls.load(std::memory_order_relaxed); }

    /// Counts a call. @return the result with which it fails, if it is to.
    std::optional<Result> count()
    {
        const unsigned number = m_calls.fetch_add(1, std::memory_order_relaxed);
        if (!m_isFailing.load(std::memory_order_acquire) || number - m_first.load() > m_more.load()) {
            return std::nullopt;
        }
        m_hasFailed.store(true);
        return m_result.load();
    }

    /// Has call number @p first (from 0) and the @p more after it fail.
    void fail(unsigned first, unsigned more) { fail(first, more, m_usualFailure); }
    /// The same with another result than the usual one. Replaces what was ordered before.
    void fail(unsigned first, unsigned more, Result result)
    {
        m_first.store(first);
        m_more.store(more);
        m_result.store(result);
        m_hasFailed.store(false);
        m_isFailing.store(true, std::memory_order_release);
    }
    /// From here on calls are carried out; they are counted on.
    void stopFailing() { m_isFailing.store(false); }
    /// Whether a call has failed since fail() was last called.
    bool hasFailed() const { return m_hasFailed.load(); }

private:
    const Result m_usualFailure;
    std::atomic<unsigned> m_calls{0};
    std::atomic<bool> m_isFailing{false};
    std::atomic<bool> m_hasFailed{false};
    std::atomic<unsigned> m_first{0};
    std::atomic<unsigned> m_more{0};
    std::atomic<Result> m_result;
};

/// The wrapper's part for @p Function; defined beside the wrapper, so that a function without wrapper does not link.
template <auto Function>
SeamCall<SeamResult<Function>>& seamCall();

} // namespace dorn::testkit
