// SPDX-License-Identifier: MIT
/// @file AxcMapBif.hpp
/// Where the samples of an antenna carrier lie in a link's frames: the place of its container (AxC). Each value is
/// optional: it counts once it has been set.
#pragma once

#include "boundaryIf/baseband/router/OptionalField.hpp"
#include "boundaryIf/baseband/router/RouterTypes.hpp"

namespace vel::hwapi::common::bif::baseband::router {

/// Place of an antenna carrier's container; a field counts once it is set.
class AxcMapBif {
public:
    /// @{
    /// The air interface that the carrier's samples are for.
    void SetAirStandard(EAirStandard value) { setField(m_airStandard, m_airStandard_set, value); }
    EAirStandard GetAirStandard() const { return m_airStandard; }
    bool IsSetAirStandard() const { return m_airStandard_set; }
    /// @}

    /// @{
    /// The time stamp that the carrier's first message bears.
    void SetInitialTimestamp(std::uint32_t value) { setField(m_initialTimestamp, m_initialTimestamp_set, value); }
    std::uint32_t GetInitialTimestamp() const { return m_initialTimestamp; }
    bool IsSetInitialTimestamp() const { return m_initialTimestamp_set; }
    /// @}

    /// @{
    /// The basic frame that an air frame begins in.
    void SetAirframeStartBasicFrameNumber(std::uint32_t value) { setField(m_frameNumber, m_frameNumber_set, value); }
    std::uint32_t GetAirframeStartBasicFrameNumber() const { return m_frameNumber; }
    bool IsSetAirframeStartBasicFrameNumber() const { return m_frameNumber_set; }
    /// @}

    /// @{
    /// The hyperframe that an air frame begins in.
    void SetAirframeStartHyperFrameNumber(std::uint32_t value)
    {
        setField(m_hyperFrameNumber, m_hyperFrameNumber_set, value);
    }
    std::uint32_t GetAirframeStartHyperFrameNumber() const { return m_hyperFrameNumber; }
    bool IsSetAirframeStartHyperFrameNumber() const { return m_hyperFrameNumber_set; }
    /// @}

    /// @{
    /// How the samples lie in the container.
    void SetIqSampleFormat(EIqSampleFormat value) { setField(m_iqSampleFormat, m_iqSampleFormat_set, value); }
    EIqSampleFormat GetIqSampleFormat() const { return m_iqSampleFormat; }
    bool IsSetIqSampleFormat() const { return m_iqSampleFormat_set; }
    /// @}

    /// @{
    /// The bit, in its word, at which the container begins.
    void SetAxcContainerStartBit(std::uint32_t value)
    {
        setField(m_axcContainerStartBit, m_axcContainerStartBit_set, value);
    }
    std::uint32_t GetAxcContainerStartBit() const { return m_axcContainerStartBit; }
    bool IsSetAxcContainerStartBit() const { return m_axcContainerStartBit_set; }
    /// @}

    /// @{
    /// The word, in the basic frame, at which the container begins.
    void SetAxcContainerStartWord(std::uint32_t value)
    {
        setField(m_axcContainerStartWord, m_axcContainerStartWord_set, value);
    }
    std::uint32_t GetAxcContainerStartWord() const { return m_axcContainerStartWord; }
    bool IsSetAxcContainerStartWord() const { return m_axcContainerStartWord_set; }
    /// @}

    /// Makes it as new: every value is cleared and none is set, the carrier priority included.
    void resetData() { *this = AxcMapBif(); }

private:
    EAirStandard m_airStandard = EAirStandard_Wcdma;
    std::uint32_t m_initialTimestamp = 0;
    [[maybe_unused]] std::uint32_t m_carrierPriority = 0;
    std::uint32_t m_frameNumber = 0;
    std::uint32_t m_hyperFrameNumber = 0;
    EIqSampleFormat m_iqSampleFormat = EIqSampleFormat_4x7_1;
    std::uint32_t m_axcContainerStartBit = 0;
    std::uint32_t m_axcContainerStartWord = 0;
    bool m_airStandard_set = false;
    bool m_initialTimestamp_set = false;
    [[maybe_unused]] bool m_carrierPriority_set = false;
    bool m_frameNumber_set = false;
    bool m_hyperFrameNumber_set = false;
    bool m_iqSampleFormat_set = false;
    bool m_axcContainerStartBit_set = false;
    bool m_axcContainerStartWord_set = false;
};

} // namespace vel::hwapi::common::bif::baseband::router
