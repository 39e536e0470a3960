// SPDX-License-Identifier: MIT
// The gateway of a test's node: GatewayProgram TABLE KEYFILE LISTEN-ADDRESS [SILENCE-MILLISECONDS]. Ends with SIGTERM.
#include "gateway/Gateway.hpp"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace {

std::atomic<dorn::gateway::Gateway*> running{nullptr};

void stop(int)
{
    if (dorn::gateway::Gateway* const gateway = running.load()) {
        gateway->stop();
    }
}

void run(const char* table, const char* keyFile, const char* address, const char* silence)
{
    const dorn::host::RunDirectory directory;
    dorn::gateway::GatewayOptions options;
    options.listenAddress = address;
    if (silence) {
        options.silence = std::chrono::milliseconds(std::strtol(silence, nullptr, 10));
        options.heartbeat = options.silence / 4;
    }
    options.firstBackOff = std::chrono::milliseconds(20);
    options.greatestBackOff = std::chrono::milliseconds(200);
    dorn::gateway::Gateway gateway(directory, dorn::gateway::readTable(table).table,
                                   dorn::gateway::readKeyFile(keyFile), options);
    running.store(&gateway);
    std::signal(SIGTERM, stop);
    std::puts("ready");
    std::fflush(stdout);
    gateway.run();
    running.store(nullptr);
}

} // namespace

int main(int, char** arguments)
{
    try {
        run(arguments[1], arguments[2], arguments[3], arguments[4]);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
