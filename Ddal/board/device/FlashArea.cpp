// SPDX-License-Identifier: MIT
#include "device/FlashArea.hpp"

#include "device/Resets.hpp"
#include "node/BoardRoot.hpp"
#include "state/StateNote.hpp"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

namespace dorn::board {
namespace {

StateFile imageFile(const std::string& name)
{
    return StateFile(name + ".image");
}

StateFile noteFile(const std::string& name)
{
    return StateFile(name + ".note");
}

[[noreturn]] void refuse(ddal_result code, const std::string& path, const std::string& reason)
{
    throw BoardFailure(code, "image '" + path + "' " + reason);
}

/// Opens an image that fits into @p room bytes.
host::Descriptor openImage(const std::string& path, std::uint32_t room)
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
    if (static_cast<std::uint64_t>(status.st_size) > room) {
        refuse(DDAL_ERROR_NO_RESOURCE, path,
               "has " + std::to_string(status.st_size) + " bytes; there is room for " + std::to_string(room));
    }
    return image;
}

} // namespace

void FlashArea::flash(const std::string& path, const std::string& versionInUse) const
{
    const host::Descriptor source = openImage(path, m_size);
    const auto lock = StateLock::tryTake(m_name);
    if (!lock) {
        throw BoardFailure(DDAL_ERROR_BUSY, "flash area '" + m_name + "' is being written");
    }
    // The note first: with the image that is there now it says what is the case, and so it does with the new one.
    writeNote(noteFile(m_name), {resetCount(), versionInUse});
    imageFile(m_name).replaceByCopy(source.get());
}

std::optional<FlashedImage> FlashArea::flashed() const
{
    const host::Descriptor image = imageFile(m_name).open();
    struct stat status {};
    if (!image || fstat(image.get(), &status) != 0) {
        return std::nullopt;
    }
    FlashedImage flashed;
    flashed.size = static_cast<std::uint64_t>(status.st_size);
    flashed.version = versionIn(image.get());
    if (const auto note = readNote(noteFile(m_name))) {
        flashed.isPending = note->resets == resetCount();
        flashed.versionBefore = note->value;
    }
    return flashed;
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
        if (image && image->version) {
            return std::to_string(*image->version);
        }
    }
    return described;
}

} // namespace dorn::board
