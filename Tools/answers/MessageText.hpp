// SPDX-License-Identifier: MIT
/// @file MessageText.hpp
/// Messages as people and programs see them.
#pragma once

#include "AaSysCom.h"
#include "Console.hpp"
#include "text/Json.hpp"
#include "text/Values.hpp"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace dorn::tool {

/// One end of a message's way.
struct Party {
    std::string name;       ///< of the service; empty when it is not known
    TAaSysComSicad address; ///< cpid 0 when the sender has none
};

/// "LedS 0x0212"; what is not known is left out, the node is added where it is not @p ownNode.
std::string partyText(const Party& party, TAaSysComNid ownNode);

/// {"name": "LedS", "node": 3841, "cpid": 530}
Json partyJson(const Party& party);

/// What a watcher learns of a message.
struct SeenMessage {
    host::Nanoseconds wall; ///< when it was sent
    std::int32_t pid;       ///< process that sent it
    std::uint32_t missed;   ///< messages of that process that the watcher has not seen just before
    TAaSysComMsgId id;
    TAaSysComSicad sender;
    TAaSysComSicad receiver;
    std::uint16_t length; ///< of the payload
    Bytes payload;        ///< its begin, as far as it fitted
};

/// Takes apart what a watcher receives. @return nothing when it is no record of a message.
std::optional<SeenMessage> readTapRecord(BytesView record);

/// Which messages to show: those with this id, and from or to this cpid, where it is given.
struct MessageFilter {
    std::optional<TAaSysComMsgId> id;
    std::optional<TAaSysComCpid> cpid;

    bool accepts(const SeenMessage& message) const;
};

/// Who is who on the node.
struct Names {
    TAaSysComNid ownNode;
    std::function<std::string(TAaSysComCpid)> ofCpid; ///< the service that holds it; empty for none
    std::function<std::string(std::int32_t)> ofPid;   ///< the service that the process is; empty for none
};

/// Who has an address. A service of another node may hold the same cpid as one of this node, and has no name here.
Party partyAt(TAaSysComSicad address, const Names& names);

/// "<time> 3 messages of ClimateS missed"
std::string missedText(const SeenMessage& message, const Names& names);
Json missedJson(const SeenMessage& message, const Names& names);

/// "<time> 0x2101 ClimateS 0x0211 -> LedS 0x0212 8 bytes", and with @p isDumped the payload in lines below.
std::string messageText(const SeenMessage& message, const Names& names, bool isDumped);
Json messageJson(const SeenMessage& message, const Names& names, bool isDumped);

/// A message that came in answer to one that was sent.
struct Reply {
    TAaSysComMsgId id;
    Party sender;
    Bytes payload;
};

/// "0x2112 from ClimateS 0x0211, 16 bytes", and the payload below.
std::string replyText(const Reply& reply, TAaSysComNid ownNode);
Json replyJson(const Reply& reply);

} // namespace dorn::tool
