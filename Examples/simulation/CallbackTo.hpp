// SPDX-License-Identifier: MIT
/// @file CallbackTo.hpp
/// Callbacks for clients that take many events.
#pragma once

#include <functional>
#include <utility>

namespace dorn::examples {

/// A callback of a boundary interface that calls a function. A parameter does not say which event it belongs to: an
/// object for each event does.
/// @tparam Callback the interface's callback class
/// @tparam Param its parameter
template <class Callback, class Param>
class CallbackTo : public Callback {
public:
    explicit CallbackTo(std::function<void(const Param&)> function) : m_function(std::move(function)) {}
    void operator()(Param& event) override { m_function(event); }

private:
    std::function<void(const Param&)> m_function;
};

} // namespace dorn::examples
