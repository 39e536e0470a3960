// SPDX-License-Identifier: MIT
#include "AaTrbl.h"

#include "AaSysLog.h"
#include "node/PerNode.hpp"
#include "port/CancellationOff.hpp"
#include "trbl/TroubleFiles.hpp"

#include <cstring>
#include <exception>

namespace {

using dorn::host::CancellationOff;
using dorn::host::PerNode;
using dorn::host::TroubleFiles;

enum Registration : int32_t { registered = 0, badArgument = 1, storeFailed = 2, listFull = 3 };

bool fits(const char* text, std::size_t sizeWithTerminator)
{
    return text && *text && std::strlen(text) < sizeWithTerminator;
}

} // namespace

int32_t AaTrblFileRegister(const char* name, const char* path, uint32_t priority, uint32_t flags,
                           TAaTrblFileCallback prepare, TAaTrblFileCallback store, TAaTrblFileCallback remove,
                           void* opaque)
{
    if (!fits(name, TroubleFiles::nameSize) || !fits(path, TroubleFiles::pathSize) || *path != '/' || flags != 0) {
        return badArgument;
    }
    const CancellationOff off; // not a wait
    try {
        if (PerNode<TroubleFiles>::get().add(name, path, priority, {prepare, store, remove, opaque})) {
            return registered;
        }
        AaSysLogPrint(EAaSysLogSeverityLevel_Warning,
                      "Troubleshooting file %s is not registered: the node's list has no more than %zu places", path,
                      TroubleFiles::capacity);
        return listFull;
    } catch (const std::exception& error) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Error, "Troubleshooting file %s is not registered: %s", path,
                      error.what());
        return storeFailed;
    }
}
