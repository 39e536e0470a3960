// SPDX-License-Identifier: MIT
#include "device/FlashArea.hpp"

#include "device/Resets.hpp"
#include "node/BoardRoot.hpp"
#include "state/FlashRecord.hpp"
#include "state/StateFile.hpp"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

namespace dorn::board {
namespace {

StateFile imageFile(const std::string& name, std::uint32_t number)
{
    return StateFile(name + ".image-" + std::to_string(number));
}

[[noreturn]] void refuse(ddal_result code, const std::string& path, const std::string& reason)
{
    throw BoardFailure(code, "image '" + path + "' " + reason);
}

/// An image that is to be flashed.
struct SourceImage {
    host::Descriptor descriptor;
    std::uint64_t size;
};

/// Opens an image that fits into @p room bytes.
SourceImage openImage(const std::string& path, std::uint32_t room)
{
    const std::string place = host::boardPath(path);
    host::Descriptor image(place.empty() ? -1 : ::open(place.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!image || fstat(image.get(), &status) != 0) {
        refuse(DDAL_ERROR_BAD_FILE, path,
               std::string("cannot be read: ") + (place.empty() ? "not an absolute path" : std::strerror(errno)));
    }
    if (!S_ISREG(status.st_mode)) {
        refuse(DDAL_ERROR_BAD_FILE, path, "is no file");
    }
    if (status.st_size == 0) {
        refuse(DDAL_ERROR_BAD_FILE, path, "is empty");
    }
    const auto size = static_cast<std::uint64_t>(status.st_size);
    if (size > room) {
        refuse(DDAL_ERROR_NO_RESOURCE, path,
               "has " + std::to_string(size) + " bytes; there is room for " + std::to_string(room));
    }
    return {std::move(image), size};
}

/// Size of a state file; 0 when it is not there.
std::uint64_t sizeOf(const StateFile& file)
{
    const host::Descriptor descriptor = file.open();
    struct stat status {};
    return descriptor && fstat(descriptor.get(), &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

} // namespace

void FlashArea::flash(const std::string& path, const std::string& versionInUse, FlashExtent extent) const
{
    const SourceImage source = openImage(path, m_size);
    const auto lock = StateLock::tryTake(m_name);
    if (!lock) {
        throw BoardFailure(DDAL_ERROR_BUSY, "flash area '" + m_name + "' is being written");
    }
    const std::optional<FlashRecord> before = record();
    const FlashRecord now{resetCount(), versionInUse, before ? 1 - before->image : 0, source.size,
                          versionIn(source.descriptor.get())};
    const StateFile image = imageFile(m_name, now.image);
    try {
        image.replaceByCopy(source.descriptor.get(), extent == FlashExtent::Half ? source.size / 2 : source.size);
        writeFlashRecord(m_name, now);
    } catch (const BoardFailure&) {
        image.remove();
        throw;
    }
    if (before) {
        imageFile(m_name, before->image).remove();
    }
}

std::optional<FlashRecord> FlashArea::record() const
{
    return readFlashRecord(m_name);
}

FlashedImage FlashArea::describe(const FlashRecord& record) const
{
    const StateFile file = imageFile(m_name, record.image);
    FlashedImage image;
    image.size = sizeOf(file);
    image.path = file.path();
    image.versionBefore = record.versionBefore;
    image.isWhole = image.size == record.size;
    image.version = image.isWhole ? record.version : std::nullopt;
    image.isPending = record.resets == resetCount();
    return image;
}

std::optional<FlashedImage> FlashArea::flashed() const
{
    for (auto known = record(); known;) {
        FlashedImage image = describe(*known);
        auto after = image.isWhole ? known : record();
        if (after == known) {
            return image;
        }
        known = after; // it was flashed anew meanwhile, and the file removed that was looked at
    }
    return std::nullopt;
}

std::optional<std::uint32_t> FlashArea::versionIn(int image) const
{
    std::array<unsigned char, 4> bytes{};
    if (!m_versionOffset || pread(image, bytes.data(), bytes.size(), static_cast<off_t>(*m_versionOffset)) !=
                                static_cast<ssize_t>(bytes.size())) {
        return std::nullopt;
    }
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 | bytes[3];
}

std::string versionInUse(const std::vector<FlashArea>& areas, const std::string& described)
{
    for (const FlashArea& area : areas) {
        const auto image = area.flashed();
        if (image && image->isPending) {
            return image->versionBefore;
        }
        if (image && image->version) { // and so is whole
            return std::to_string(*image->version);
        }
    }
    return described;
}

} // namespace dorn::board
