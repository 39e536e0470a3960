// SPDX-License-Identifier: MIT
#include "AaStartup.h"

#include "AaConfigTag.h"
#include "AaMem.h"
#include "log/LogName.hpp"
#include "node/EeTable.hpp"
#include "node/PerNode.hpp"
#include "node/RunDirectory.hpp"
#include "syscom/CpidRegistry.hpp"
#include "syscom/MessageTap.hpp"

#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <string>

namespace dorn::host {
namespace {

constexpr const char* eeNameTag = "tessel.service.aapro.eename";
constexpr const char* eeCpidTag = "tessel.service.aatbts.cpid";

struct MemDeleter {
    void operator()(void* block) const { AaMemUnRef(block); }
};

/// The value of a tag as bytes; empty when there is none.
std::string tagBytes(const char* name)
{
    void* value = nullptr;
    std::uint32_t length = 0;
    if (AaConfigTagGet(name, &value, &length) != EAaConfigTagStatus_Ok) {
        return {};
    }
    const std::unique_ptr<void, MemDeleter> owner(value);
    return {static_cast<const char*>(value), length};
}

std::uint16_t ownCpid()
{
    const std::string bytes = tagBytes(eeCpidTag);
    std::uint16_t cpid = 0;
    if (bytes.size() == sizeof cpid) {
        std::memcpy(&cpid, bytes.data(), sizeof cpid);
    }
    return cpid;
}

void enterNode(const std::string& eeName)
{
    nameLog(eeName);
    PerNode<MessageTap>::get();
    PerNode<CpidRegistry>::get();
    PerNode<EeTable>::get().enter(eeName, ownCpid());
}

} // namespace
} // namespace dorn::host

int32_t AaStartupEeStartup()
{
    try {
        dorn::host::PerNode<dorn::host::RunDirectory>::get(); // in a bad environment no tag can be read either
        const std::string eeName = dorn::host::tagBytes(dorn::host::eeNameTag);
        if (eeName.empty()) {
            std::fprintf(stderr, "dorn: the EE has no name: tag \"%s\" is not set\n", dorn::host::eeNameTag);
            return 1;
        }
        dorn::host::enterNode(eeName);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "dorn: %s\n", error.what());
        return 2;
    }
    return 0;
}
