// SPDX-License-Identifier: MIT
#include "snapshot/TroubleContent.hpp"

#include "node/BoardRoot.hpp"
#include "port/Descriptor.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace dorn::tool {
namespace {

constexpr off_t mostBytes = 16 << 20;

TroubleContent nothing(const std::string& remark)
{
    TroubleContent content;
    content.remark = remark;
    return content;
}

TroubleContent read(const std::string& place)
{
    const host::Descriptor file(open(place.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)); // not to wait for a pipe
    struct stat status {};
    if (!file || fstat(file.get(), &status) != 0) {
        return nothing(std::strerror(errno));
    }
    if (!S_ISREG(status.st_mode)) {
        return nothing("not an ordinary file");
    }
    const off_t begin = std::max<off_t>(status.st_size - mostBytes, 0);
    TroubleContent content{true, std::string(static_cast<std::size_t>(status.st_size - begin), '\0'),
                           status.st_mtim.tv_sec, ""};
    const ssize_t count = pread(file.get(), content.bytes.data(), content.bytes.size(), begin);
    if (count < 0) {
        return nothing(std::strerror(errno));
    }
    content.bytes.resize(static_cast<std::size_t>(count));
    if (begin != 0) {
        content.remark = "cut: the first " + std::to_string(begin) + " bytes are left out";
    }
    return content;
}

} // namespace

TroubleContent readTroubleFile(const host::CollectedFile& collected)
{
    const std::string process = "process " + std::to_string(collected.file.pid);
    switch (collected.answer) {
    case host::TroubleAnswer::Failed:
        return nothing(process + " could not store it");
    case host::TroubleAnswer::Pending:
        return nothing(process + " did not store it in time");
    case host::TroubleAnswer::Done:
        return read(host::boardPath(collected.file.path));
    case host::TroubleAnswer::Dead:
        break;
    }
    TroubleContent left = read(host::boardPath(collected.file.path));
    left.remark = process + " has ended" + (left.remark.empty() ? "" : "; ") + left.remark;
    return left;
}

} // namespace dorn::tool
