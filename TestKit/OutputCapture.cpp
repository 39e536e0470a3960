// SPDX-License-Identifier: MIT
#include "OutputCapture.hpp"

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

namespace dorn::testkit {
namespace {

int orThrow(int descriptor)
{
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "output capture");
    }
    return descriptor;
}

} // namespace

OutputCapture::Diversion::Diversion(int descriptor)
    : m_descriptor(descriptor),
      m_original(orThrow(fcntl(descriptor, F_DUPFD_CLOEXEC, 0))),
      m_file(orThrow(memfd_create("output", MFD_CLOEXEC)))
{
    std::fflush(nullptr);
    orThrow(dup2(m_file, m_descriptor));
}

OutputCapture::Diversion::~Diversion()
{
    std::fflush(nullptr);
    dup2(m_original, m_descriptor);
    close(m_original);
    close(m_file);
}

std::string OutputCapture::Diversion::text() const
{
    std::fflush(nullptr);
    std::string text;
    std::array<char, 4096> part; // NOLINT: filled by the call
    for (;;) {
        const ssize_t size = pread(m_file, part.data(), part.size(), static_cast<off_t>(text.size()));
        if (size <= 0) {
            return text;
        }
        text.append(part.data(), static_cast<std::size_t>(size));
    }
}

OutputCapture::OutputCapture() : m_output(STDOUT_FILENO), m_error(STDERR_FILENO) {}

OutputCapture::~OutputCapture() = default;

} // namespace dorn::testkit
