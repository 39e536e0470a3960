// SPDX-License-Identifier: MIT
#include "files/InputFile.hpp"

#include "Outcome.hpp"
#include "port/Descriptor.hpp"
#include "text/Values.hpp"
#include "waiting/ProgressBar.hpp"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace dorn::tool {
namespace {

constexpr std::size_t step = 1U << 16U; // what a pipe holds

[[noreturn]] void failToRead(const std::string& file, int error)
{
    throw Failure(shownName(file) + " cannot be read: " + std::strerror(error));
}

[[noreturn]] void refuse(const std::string& file, std::uint64_t limit)
{
    throw Failure(shownName(file) + " is greater than " + sizeText(limit) + "; --limit sets another limit");
}

host::Descriptor openInput(const std::string& file)
{
    const bool isStandardInput = file == standardInputName;
    host::Descriptor descriptor(isStandardInput ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                                                : open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (!descriptor) {
        failToRead(file, errno);
    }
    return descriptor;
}

/// The size of an ordinary file; nothing for a pipe and the like.
std::optional<std::uint64_t> sizeOf(const host::Descriptor& descriptor)
{
    struct stat status {};
    if (fstat(descriptor.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(status.st_size);
}

/// Appends what is there, up to @p most bytes. @return how many; 0 at the end.
std::size_t append(const std::string& file, const host::Descriptor& descriptor, std::string& text, std::size_t most)
{
    const std::size_t before = text.size();
    text.resize(before + most);
    ssize_t count = -1;
    do {
        count = read(descriptor.get(), text.data() + before, most);
    } while (count < 0 && errno == EINTR);
    if (count < 0) {
        failToRead(file, errno);
    }
    text.resize(before + static_cast<std::size_t>(count));
    return static_cast<std::size_t>(count);
}

} // namespace

std::string shownName(const std::string& file)
{
    return file == standardInputName ? "standard input" : "'" + file + "'";
}

std::string readInput(const std::string& file, std::uint64_t limit, Console& console)
{
    const host::Descriptor descriptor = openInput(file);
    const std::optional<std::uint64_t> size = sizeOf(descriptor);
    if (size && *size > limit) {
        refuse(file, limit);
    }
    std::string text;
    if (size) {
        text.reserve(static_cast<std::size_t>(*size) + step); // a step more, in which the end is seen
    }
    ProgressBar progress(console, "reading " + shownName(file));
    while (append(file, descriptor, text, step) != 0) {
        if (text.size() > limit) {
            refuse(file, limit);
        }
        const bool isSizeKnown = size && *size >= text.size();
        progress.show(isSizeKnown ? static_cast<double>(text.size()) / static_cast<double>(*size) : -1, text.size());
    }
    return text;
}

} // namespace dorn::tool
