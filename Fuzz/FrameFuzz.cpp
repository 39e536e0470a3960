// SPDX-License-Identifier: MIT
/// @file FrameFuzz.cpp
/// Any bytes as a frame from another process: what is no message is dropped, and what is one arrives as it was sent.
///
/// The first byte of an input says how the frame arrives (bit 0: the kernel has cut it, bit 1: its process has hung
/// up); the frame is what follows.
#include "AaSysCom.h"
#include "Require.hpp"
#include "eu/Eu.hpp"
#include "syscom/FrameInlet.hpp"
#include "syscom/Message.hpp"
#include "syscom/Pack.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace {

using dorn::fuzz::require;
using dorn::host::FrameHeader;

constexpr TAaSysComCpid receiver = 0x0300;
constexpr TAaSysComCpid ownCpid = 0x0042;

/// A node of this program's own: the receiving EU, and a cpid that no other process may send as.
class FuzzNode {
public:
    FuzzNode()
    {
        require(mkdtemp(m_directory.data()) != nullptr);
        setenv("DORN_RUN_DIR", m_directory.c_str(), 1);
        setenv("DORN_LOG", "none", 1);
        unsetenv("DORN_NID");
        require(AaSysComUserRegister(ownCpid, AaProEuCurrent()) == ownCpid);
    }
    ~FuzzNode()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_directory, ignored);
    }
    FuzzNode(const FuzzNode&) = delete;
    FuzzNode& operator=(const FuzzNode&) = delete;

private:
    std::string m_directory = std::filesystem::temp_directory_path().string() + "/frameXXXXXX";
};

struct Sender : dorn::host::Peer {
    explicit Sender(bool ended) : hasEnded(ended) {}
    pid_t pid() const override { return 1; }
    bool isGone() const override { return hasEnded; }
    bool hasEnded;
};

/// The header of a frame that is to arrive; nothing when it is to be dropped.
std::optional<FrameHeader> headerOfGood(std::span<const std::byte> frame, bool isCut, const Sender& sender)
{
    FrameHeader header{};
    if (isCut || frame.size() < sizeof header) {
        return std::nullopt;
    }
    std::memcpy(&header, frame.data(), sizeof header);
    const TAaSysComSicad node = AaSysComSicadGet(0, AaSysComGetOwnNid());
    const bool isForged = header.sender != 0 && ((header.sender & 0xFFFF0000U) != node ||
                                                 (header.sender == (node | ownCpid) && !sender.hasEnded));
    const bool isGood = header.magic == FrameHeader::magicNumber && header.version == FrameHeader::currentVersion &&
                        frame.size() == sizeof header + header.payloadSize && header.receiver == (node | receiver) &&
                        !isForged;
    return isGood ? std::optional(header) : std::nullopt;
}

/// Whether the next message is what a frame says, or a bad frame has brought none: the good ones behind it come next.
void expectArrival(std::span<const std::byte> frame, bool isCut, const Sender& sender)
{
    const std::optional<FrameHeader> header = headerOfGood(frame, isCut, sender);
    if (!header) {
        return;
    }
    void* message = AaSysComMsgReceive(AA_NO_WAIT);
    require(message != nullptr);
    require(AaSysComMsgGetId(message) == header->id && AaSysComMsgGetSender(message) == header->sender &&
            AaSysComMsgGetReceiver(message) == header->receiver &&
            AaSysComMsgGetPayloadSize(message) == header->payloadSize);
    require(header->payloadSize == 0 ||
            std::memcmp(AaSysComMsgGetPayload(message), frame.data() + sizeof *header, header->payloadSize) == 0);
    AaSysComMsgDestroy(&message);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzNode node;
    if (size == 0) {
        return 0;
    }
    const std::vector<std::byte> frame(reinterpret_cast<const std::byte*>(data + 1),
                                       reinterpret_cast<const std::byte*>(data + size)); // so that its bounds are exact
    const bool isCut = (data[0] & 1U) != 0;
    const Sender sender((data[0] & 2U) != 0);

    dorn::host::FrameInlet inlet(receiver, *dorn::host::eus::current());
    inlet.onFrame(frame, isCut, sender);

    std::span<const std::byte> frames(frame);
    if (!isCut && dorn::host::isPack(frames)) {
        for (frames = dorn::host::framesOf(frames); !frames.empty();) {
            expectArrival(dorn::host::takeFrame(frames), false, sender);
        }
    } else {
        expectArrival(frames, isCut, sender);
    }
    void* message = AaSysComMsgReceive(AA_NO_WAIT);
    require(message == nullptr);
    return 0;
}
