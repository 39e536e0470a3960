// SPDX-License-Identifier: MIT
/// @file Msg.hpp
/// A platform message together with its typed payload.
///
/// To send: construct with the receiver's address, test GetPayload(), fill the fields through `->`, Send().
/// To receive: construct with the handle that a delegate was given, test GetPayload(), read.
///
/// A `Msg` owns nothing: the message ends with Send(), with Destroy() or, when it was received, by the message loop.
/// Objects may be copied freely; one thread at a time uses a message.
#pragma once

#include "AaSysCom.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace vel::hwapi::common {

/// @tparam Tpayload record at the beginning of the payload
/// @tparam mid message id
template <class Tpayload, unsigned int mid>
class Msg {
    static_assert(std::is_trivially_copyable_v<Tpayload>, "a payload is bytes");

public:
    /// The message id.
    static constexpr unsigned int ID = mid;

    /// Creates a message whose record is all zero. When the platform cannot, there is no payload.
    /// @param receiver the receiver's address
    /// @param size payload bytes, of which the low 16 bits are used; more than the record makes room for a tail, which
    ///   is not initialised. 0: exactly the record.
    Msg(unsigned int receiver, int size) : payload(nullptr), msg(AaSysComMsgCreate(mid, payloadSize(size), receiver))
    {
        if (msg) {
            payload = static_cast<Tpayload*>(AaSysComMsgGetPayload(msg));
            ClearPayload();
        }
    }

    /// Takes hold of a message that was received. Its id and its size are not checked. Null is a message without
    /// payload.
    explicit Msg(void* received)
        : payload(received ? static_cast<Tpayload*>(AaSysComMsgGetPayload(received)) : nullptr), msg(received)
    {
    }

    /// Returns the payload; null when there is none. Test this before using `->`.
    Tpayload* GetPayload() { return payload; }
    /// The payload; only to be used after GetPayload() has been seen not to be null.
    Tpayload* operator->() { return payload; }

    /// Returns the size of the payload in bytes, a tail behind the record included; 0 when there is no message.
    unsigned int GetPayloadSize() { return AaSysComMsgGetPayloadSize(msg); }

    /// Sets the record to zero; a tail behind it is left as it is.
    void ClearPayload()
    {
        if (payload) {
            // A sender may have asked for less than the record.
            std::memset(static_cast<void*>(payload), 0,
                        std::min<std::size_t>(sizeof(Tpayload), AaSysComMsgGetPayloadSize(msg)));
        }
    }

    /// Has the message bear another sender than the EU that made it; answers go there.
    void SetSender(unsigned int sicad) { AaSysComMsgSetSender(msg, sicad); }
    /// Address that the message comes from.
    unsigned int GetSender() { return AaSysComMsgGetSender(msg); }
    /// Address that the message is for.
    unsigned int GetReceiver() { return AaSysComMsgGetReceiver(msg); }
    /// The message id; the platform's, also where it differs from the type's.
    unsigned int GetId() { return AaSysComMsgGetId(msg); }

    /// Gives the message to the platform, which takes it whatever becomes of it. There is no payload afterwards.
    void Send()
    {
        payload = nullptr;
        AaSysComMsgSend(&msg);
    }

    /// Frees a message that is not to be sent; not for one that a delegate was given. There is no payload afterwards.
    void Destroy()
    {
        payload = nullptr;
        AaSysComMsgDestroy(&msg);
    }

private:
    static std::uint16_t payloadSize(int size)
    {
        static_assert(sizeof(Tpayload) <= AA_SYS_COM_MAX_PAYLOAD);
        return static_cast<std::uint16_t>(size != 0 ? static_cast<unsigned int>(size) : sizeof(Tpayload));
    }

    Tpayload* payload;
    void* msg;
};

} // namespace vel::hwapi::common
