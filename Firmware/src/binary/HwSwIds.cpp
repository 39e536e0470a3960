// SPDX-License-Identifier: MIT
#include "binary.h"

#include "AaGpuXml.hpp"
#include "binary/HwSwId.hpp"
#include "binary/Unsigned32.hpp"

#include <optional>
#include <string_view>
#include <syslog.h>

using vel::hwapi::firmware::isSameButMinor;
using vel::hwapi::firmware::toUnsigned32;

namespace {

constexpr const char* function = "scan_hwswid";

/// The first HwSwId of a list for which @p isMatch holds; those up to it are logged.
template <class Match>
std::optional<std::uint32_t> findHwSwId(const AaGpuXmlNode& list, Match isMatch)
{
    const auto end = list.AaGpuXmlGetLastChildren();
    for (auto child = list.AaGpuXmlGetFirstChildren(); child != end; ++child) {
        if (std::string_view((*child)->AaGpuXmlGetName()) != "HwSwId") {
            continue;
        }
        const std::uint32_t id = toUnsigned32((*child)->AaGpuXmlGetValue(), 16);
        syslog(LOG_INFO, "%s(): Found HwSwId: 0x%x", function, id);
        if (isMatch(id)) {
            return id;
        }
    }
    return std::nullopt;
}

} // namespace

std::uint32_t scan_hwswid(const AaGpuXmlNode* trailerNode, std::uint32_t hwSwId, std::int32_t minor)
{
    const AaGpuXmlNode* const list = FindXmlTag(trailerNode, "HwSwIdList");
    if (!list) {
        return BINARY_HWSWID_NOT_FOUND;
    }
    if (findHwSwId(*list, [hwSwId](std::uint32_t listed) { return listed == hwSwId; })) {
        syslog(LOG_INFO, "%s(): Matching HwSwId found: 0x%x", function, hwSwId);
        return BINARY_OK;
    }
    if (minor == 0) {
        syslog(LOG_INFO, "%s(): HwSwId minor difference is not allowed", function);
        return BINARY_HWSWID_NOT_FOUND;
    }
    const auto isSame = [hwSwId](std::uint32_t listed) { return isSameButMinor(listed, hwSwId); };
    if (const std::optional<std::uint32_t> id = findHwSwId(*list, isSame)) {
        syslog(LOG_INFO, "%s(): Found matching HwSwId with minor version difference: 0x%x", function, *id);
        return BINARY_OK;
    }
    return BINARY_HWSWID_NOT_FOUND;
}
