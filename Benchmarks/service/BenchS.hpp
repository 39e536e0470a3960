// SPDX-License-Identifier: MIT
/// @file BenchS.hpp
/// A whole service that answers what the message benchmarks send.
#pragma once

#include "Service.hpp"
#include "messages/EuEnd.hpp"

namespace dorn::benchmarks {

class BenchS : public vel::hwapi::common::Service {
public:
    using ParcelMsg = vel::hwapi::common::Msg<Parcel, parcelId>;

    /// @param client the address that is told when the service waits for messages
    explicit BenchS(TAaSysComSicad client)
        : Service("Bench", 0x5101, ERadHwapi_HwCtrlS, ERadHwapiState_HwCtrlSState), m_client(client)
    {
    }

    void Init() override
    {
        AddMsgHandler(&BenchS::HandleParcel);
        answer(m_client);
    }

    void HandleParcel(ParcelMsg parcel)
    {
        if (parcel->ask == Ask::Answer) {
            answer(parcel.GetSender());
        } else if (parcel->ask == Ask::Stop) {
            Terminate();
        }
    }

private:
    static void answer(TAaSysComSicad to)
    {
        ParcelMsg reply(to, 64);
        writeParcel(reply.GetPayload(), 64, {Ask::Answer});
        reply.Send();
    }

    TAaSysComSicad m_client;
};

} // namespace dorn::benchmarks
