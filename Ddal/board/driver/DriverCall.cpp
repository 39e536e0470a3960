// SPDX-License-Identifier: MIT
#include "driver/DriverCall.hpp"

#include "AaSysLog.h"
#include "node/PerNode.hpp"

#include <mutex>
#include <new>
#include <set>
#include <string>

namespace dorn::board {
namespace {

/// What this process has said about the board of its node.
class SaidFailures {
public:
    /// Notes a text. @return whether it is new.
    bool note(const std::string& text)
    {
        constexpr std::size_t most = 1000; // so that texts with ever new numbers do not fill the memory
        const std::lock_guard lock(m_mutex);
        return m_texts.size() < most && m_texts.insert(text).second;
    }

private:
    std::mutex m_mutex;
    std::set<std::string> m_texts;
};

std::int32_t resultOf(const std::exception& failure)
{
    if (const auto* const known = dynamic_cast<const BoardFailure*>(&failure)) {
        return known->code();
    }
    return dynamic_cast<const std::bad_alloc*>(&failure) ? DDAL_ERROR_NO_RESOURCE : DDAL_ERROR_FAILED;
}

void say(DriverFunction function, const std::exception& failure)
{
    const std::string text = std::string(function.name()) + "(): " + failure.what();
    const auto usual =
        resultOf(failure) == DDAL_ERROR_NOT_FOUND ? EAaSysLogSeverityLevel_Warning : EAaSysLogSeverityLevel_Error;
    const bool isNew = host::PerNode<SaidFailures>::get().note(text);
    AaSysLogPrint(isNew ? usual : EAaSysLogSeverityLevel_Debug, "%s", text.c_str());
}

} // namespace

std::optional<std::int32_t> injectedFault(DriverFunction function) noexcept
{
    try {
        const auto code = host::PerNode<FaultStore>::get().take(function);
        if (code == FaultStore::powerLoss) {
            AaSysLogPrint(EAaSysLogSeverityLevel_Info, "the board loses its power in %s() as it was told to",
                          function.name().data());
        } else if (code) {
            AaSysLogPrint(EAaSysLogSeverityLevel_Info, "%s() fails with %d as it was told to", function.name().data(),
                          static_cast<int>(*code));
        }
        return code;
    } catch (const std::exception& failure) { // without the store nobody has told anything
        reportFailure(function, failure);
        return std::nullopt;
    }
}

std::int32_t reportFailure(DriverFunction function, const std::exception& failure) noexcept
{
    try {
        say(function, failure);
    } catch (const std::exception&) { // no memory for words: the result says it
    }
    return resultOf(failure);
}

} // namespace dorn::board
