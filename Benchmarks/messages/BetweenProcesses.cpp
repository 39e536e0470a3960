// SPDX-License-Identifier: MIT
#include "messages/BetweenProcesses.hpp"

#include <cerrno>
#include <csignal>
#include <map>
#include <spawn.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace dorn::benchmarks {
namespace {

constexpr const char* partnerOption = "--partner";

std::map<std::string, PartnerKind::Serve>& kinds()
{
    static std::map<std::string, PartnerKind::Serve> all;
    return all;
}

} // namespace

PartnerKind::PartnerKind(const char* name, Serve serve)
{
    kinds()[name] = serve;
}

bool runAsPartner(int argc, char** argv)
{
    if (argc != 5 || std::string(argv[1]) != partnerOption) {
        return false;
    }
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    kinds().at(argv[2])(argv[3], std::stoul(argv[4]));
    return true;
}

PartnerProcess::PartnerProcess(const std::string& kind, const std::string& address, std::size_t size)
{
    std::string arguments[] = {"partner", partnerOption, kind, address, std::to_string(size)};
    char* pointers[] = {arguments[0].data(), arguments[1].data(), arguments[2].data(),
                        arguments[3].data(), arguments[4].data(), nullptr};
    if (const int error = posix_spawn(&m_process, "/proc/self/exe", nullptr, nullptr, pointers, environ)) {
        throw std::system_error(error, std::generic_category(), "partner process");
    }
}

void PartnerProcess::signal(int number) const
{
    kill(m_process, number);
}

PartnerProcess::~PartnerProcess()
{
    while (waitpid(m_process, nullptr, 0) < 0 && errno == EINTR) {
    }
}

} // namespace dorn::benchmarks
