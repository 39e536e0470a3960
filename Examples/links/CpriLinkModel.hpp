// SPDX-License-Identifier: MIT
/// @file CpriLinkModel.hpp
/// A CPRI link: both ends and the two fibres between them.
#pragma once

#include "CpriReceiver.hpp"
#include "LinkMessages.hpp"
#include "boundaryIf/baseband/cpri/VsbControlWords.hpp"

#include <array>
#include <cstdint>

namespace dorn::examples {

/// The signals of control byte Z.130.0; bits.
enum ECpriSignal : std::uint32_t {
    ECpriSignal_Reset = 1,
    ECpriSignal_Lof = 2,
    ECpriSignal_Los = 4,
    ECpriSignal_Rai = 8,
    ECpriSignal_Sdi = 16
};

/// The bytes of a hyperframe's control words.
class CpriControlBytes {
public:
    using Index = vel::hwapi::common::bif::baseband::cpri::VsbControlWords::ControlByteIndex;

    std::uint8_t& at(const Index& index) { return m_bytes[index.x * bytesOfWord + index.y]; }
    std::uint8_t at(const Index& index) const { return m_bytes[index.x * bytesOfWord + index.y]; }
    bool operator==(const CpriControlBytes&) const = default;

private:
    static constexpr std::size_t words = 256;
    static constexpr std::size_t bytesOfWord = 10; ///< at the highest rate
    std::array<std::uint8_t, words * bytesOfWord> m_bytes{};
};

/// The near end is the board's; the far end is a radio unit that always sends, says in Z.130.0 what it receives,
/// acknowledges a reset and is not to be used meanwhile (SDI), and gives back the vendor specific bytes that it gets.
///
/// A step stands for as many hyperframes as a receiver needs for a change of its state. It takes what the other end
/// sent in the step before. Nothing moves any more when a step has changed nothing and nobody touches the link.
class CpriLinkModel {
public:
    /// What the far end says of itself in every hyperframe.
    static constexpr std::uint32_t farProtocolVersion = 1;
    static constexpr std::uint32_t farEthernetSubchannelPointer = 20;
    static constexpr std::uint32_t farHdlcBitRate = 1; ///< as in Z.66.0: 240 kbit/s

    /// @param metres length of each fibre
    explicit CpriLinkModel(double metres) : m_metres(metres) {}

    /// Lets a step pass. @return whether anything has changed
    bool step();

    // What the board does.
    void setEnabled(bool isEnabled) { m_isEnabled = isEnabled; }
    bool isEnabled() const { return m_isEnabled; }
    /// Sends signals of ECpriSignal, or ceases to.
    void setSending(std::uint32_t signals, bool isSending);
    bool isSending(std::uint32_t signal) const { return (m_sending & signal) != 0; }
    /// The control bytes that are sent.
    CpriControlBytes& sentBytes() { return m_sentBytes; }

    // What happens to the fibres.
    void setBrokenParts(std::uint32_t parts) { m_brokenParts = parts; }
    std::uint32_t brokenParts() const { return m_brokenParts; } ///< ELinkPart

    // What the board sees.
    const CpriReceiver& receiver() const { return m_near; }
    /// The far end's ECpriSignal; none while the receiver is not synchronised.
    std::uint32_t heardSignals() const { return m_heard; }
    /// Whether the far end's control bytes have been read, now or before.
    bool hasHeard() const { return m_hasHeard; }
    const CpriControlBytes& receivedBytes() const { return m_receivedBytes; }
    /// From the master frame's way out to its way in, in periods of 307.2 MHz.
    std::int32_t roundTrip() const;

private:
    bool isWhole(ELinkPart part) const { return (m_brokenParts & part) == 0; }
    std::uint32_t farSignals() const;

    double m_metres;
    bool m_isEnabled = false;
    std::uint32_t m_brokenParts = 0;
    std::uint32_t m_sending = 0;
    CpriReceiver m_near;
    CpriReceiver m_far;
    std::uint32_t m_heard = 0;
    bool m_hasHeard = false;
    CpriControlBytes m_sentBytes;
    CpriControlBytes m_farBytes; ///< what the far end has got and gives back
    CpriControlBytes m_receivedBytes;
};

} // namespace dorn::examples
