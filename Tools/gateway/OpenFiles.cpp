// SPDX-License-Identifier: MIT
#include "gateway/OpenFiles.hpp"

#include "AaSysLog.h"
#include "node/RunDirectory.hpp"

#include <algorithm>
#include <string>
#include <sys/resource.h>

namespace dorn::gateway {
namespace {

/// What a gateway without other nodes has open, the receivers of its node included.
constexpr rlim_t ownDescriptors = 256;
/// Connections that have not proven who they are.
constexpr rlim_t strangers = 256;
/// Both connections and their sockets, and the senders of this node.
constexpr rlim_t descriptorsPerNode = 8 + 64;
/// What a gateway cannot do without: its own, and for each node both connections with their sockets.
constexpr rlim_t leastDescriptors = 64;
constexpr rlim_t leastDescriptorsPerNode = 8;

} // namespace

void raiseOpenFiles(std::size_t nodes)
{
    const rlim_t least = leastDescriptors + nodes * leastDescriptorsPerNode;
    const rlim_t needed = ownDescriptors + strangers + nodes * descriptorsPerNode;
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= needed) {
        return;
    }
    limit.rlim_cur = std::min(needed, limit.rlim_max);
    setrlimit(RLIMIT_NOFILE, &limit);
    if (limit.rlim_cur < least) {
        throw host::EnvironmentError("a table of " + std::to_string(nodes) + " nodes needs " + std::to_string(least) +
                                     " open files at least, and this process may have " +
                                     std::to_string(limit.rlim_cur) + "; raise its limit (ulimit -n, LimitNOFILE)");
    }
    if (limit.rlim_cur < needed) {
        AaSysLogPrint(
            EAaSysLogSeverityLevel_Warning,
            "The gateway may have %llu open files, and a table of %zu nodes can need %llu: connections beyond "
            "are not taken",
            static_cast<unsigned long long>(limit.rlim_cur), nodes, static_cast<unsigned long long>(needed));
    }
}

} // namespace dorn::gateway
