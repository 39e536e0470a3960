// SPDX-License-Identifier: MIT
/// @file Letter.hpp
/// Messages as rules send and take them.
#pragma once

#include "AaSysCom.h"
#include "Check.hpp"

#include <string>
#include <utility>

namespace dorn::conformance {

/// A message that is destroyed with this object.
class Letter {
public:
    explicit Letter(void* handle = nullptr) : m_handle(handle) {}
    ~Letter() { AaSysComMsgDestroy(&m_handle); }
    Letter(Letter&& other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}
    Letter& operator=(Letter&& other) noexcept
    {
        std::swap(m_handle, other.m_handle);
        return *this;
    }

    explicit operator bool() const { return m_handle != nullptr; }
    void*& handle() { return m_handle; }
    TAaSysComMsgId id() const { return AaSysComMsgGetId(m_handle); }
    std::string text() const;

private:
    void* m_handle;
};

/// A cpid of the calling EU, given up with this object.
class Address {
public:
    /// Ends the rule as broken when no cpid is granted.
    explicit Address(TAaSysComCpid wanted = 0);
    ~Address() { AaSysComUserDeregister(m_cpid); }
    Address(const Address&) = delete;
    Address& operator=(const Address&) = delete;

    TAaSysComCpid cpid() const { return m_cpid; }
    TAaSysComSicad sicad() const { return AaSysComSicadGet(m_cpid, AaSysComGetOwnNid()); }

private:
    TAaSysComCpid m_cpid;
};

/// A message with a text as its payload. Ends the rule as broken when there is none.
Letter write(TAaSysComMsgId id, TAaSysComSicad receiver, const std::string& text = "");
/// Sends one. Ends the rule as broken when it is not delivered.
void post(TAaSysComMsgId id, TAaSysComSicad receiver, const std::string& text = "");
/// Takes the next message. Ends the rule as broken when none comes within the bound.
Letter take();
/// Takes the next message, which is to have this id and text.
void expectLetter(TAaSysComMsgId id, const std::string& text);
/// Ends the rule as broken when a message is there.
void expectNoLetter(const std::string& why);

} // namespace dorn::conformance
