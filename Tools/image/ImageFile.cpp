// SPDX-License-Identifier: MIT
#include "image/ImageFile.hpp"

#include "AaGpuXml.hpp"
#include "binary.h"
#include "binary/HwSwId.hpp"
#include "binary/ImageTrailer.hpp"
#include "binary/Unsigned32.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <utility>
#include <zlib.h>

namespace dorn::tool {
namespace {

namespace firmware = vel::hwapi::firmware;

std::string inQuotes(const std::string& path)
{
    return "'" + path + "'";
}

std::vector<std::uint32_t> hwSwIdsIn(const AaGpuXmlNode& trailer)
{
    std::vector<std::uint32_t> ids;
    const AaGpuXmlNode* const list = FindXmlTag(&trailer, "HwSwIdList");
    if (!list) {
        return ids;
    }
    for (auto child = list->AaGpuXmlGetFirstChildren(); child != list->AaGpuXmlGetLastChildren(); ++child) {
        if (std::string_view((*child)->AaGpuXmlGetName()) == "HwSwId") {
            ids.push_back(firmware::toUnsigned32((*child)->AaGpuXmlGetValue(), 16));
        }
    }
    return ids;
}

} // namespace

RegularFile::RegularFile(const std::string& path)
    : descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) // a pipe would wait for its writer
{
    struct stat status {};
    if (!descriptor || fstat(descriptor.get(), &status) != 0) {
        throw ImageFault(BINARY_FILE_FAILED, inQuotes(path) + " cannot be opened: " + std::strerror(errno));
    }
    if (!S_ISREG(status.st_mode)) {
        throw ImageFault(BINARY_FILE_FAILED, inQuotes(path) + " is no regular file");
    }
    size = static_cast<std::uint64_t>(status.st_size);
}

ImageFacts readImageFacts(const std::string& text, const std::string& path)
{
    AaGpuXmlParser parser(0);
    const std::unique_ptr<AaGpuXmlNode> root(parser.AaGpuXmlParsePrefix(text.substr(0, text.find('\0')), ""));
    if (!root) {
        throw ImageFault(BINARY_TRAILER_XML_INVALID,
                         "the trailer of " + inQuotes(path) + " is not well-formed XML: " + parser.AaGpuXmlLastError());
    }
    const AaGpuXmlNode* const trailer = FindXmlTag(root.get(), "trailer");
    if (!trailer) {
        throw ImageFault(BINARY_TRAILER_XML_INVALID, "the trailer of " + inQuotes(path) + " has no element 'trailer'");
    }
    const firmware::TrailerFields fields = firmware::readTrailerFields(*trailer);
    return {.version = fields.version,
            .crc32 = fields.crc32,
            .length = fields.length,
            .targetUnit = fields.targetUnit,
            .swId = fields.swId,
            .swVersion = fields.swVersion,
            .buildTime = fields.buildTime,
            .hwSwIds = hwSwIdsIn(*trailer)};
}

std::optional<std::uint32_t> fittingHwSwId(const std::vector<std::uint32_t>& ids, std::uint32_t own, bool isMinorFree)
{
    auto found = std::find(ids.begin(), ids.end(), own);
    if (found == ids.end() && isMinorFree) {
        found =
            std::find_if(ids.begin(), ids.end(), [own](std::uint32_t id) { return firmware::isSameButMinor(id, own); });
    }
    return found == ids.end() ? std::nullopt : std::optional(*found);
}

ImageFile::ImageFile(std::string path) : m_path(std::move(path)), m_file(m_path)
{
    if (m_file.size < trailerWordSize) {
        throw ImageFault(BINARY_FILE_FAILED,
                         inQuotes(m_path) + " is no firmware image: it has " + std::to_string(m_file.size) + " bytes");
    }
    if (m_file.size > greatestImageSize) {
        throw ImageFault(BINARY_TRAILER_OFFSET_INVALID, inQuotes(m_path) + " has " + std::to_string(m_file.size) +
                                                            " bytes; an image is smaller than 2 GiB");
    }
    std::array<std::uint8_t, trailerWordSize> word{};
    read(word.data(), word.size(), m_file.size - trailerWordSize);
    for (std::size_t index = word.size(); index-- > 0;) {
        m_payloadLength = m_payloadLength << 8 | word[index];
    }
    if (m_payloadLength == 0 || m_payloadLength >= m_file.size) {
        throw ImageFault(BINARY_TRAILER_OFFSET_INVALID,
                         inQuotes(m_path) + " is no firmware image: its last four bytes place the trailer at offset " +
                             std::to_string(m_payloadLength) + " of " + std::to_string(m_file.size) + " bytes");
    }
}

ImageFacts ImageFile::facts() const
{
    const std::uint64_t length = m_file.size - m_payloadLength;
    if (length > BINARY_TRAILER_LENGTH_MAX) {
        throw ImageFault(BINARY_FILE_FAILED, inQuotes(m_path) + " has a trailer of " + std::to_string(length) +
                                                 " bytes, and " + std::to_string(BINARY_TRAILER_LENGTH_MAX) +
                                                 " are read at most; are its last four bytes damaged?");
    }
    std::string text(length, '\0');
    read(text.data(), text.size(), m_payloadLength);
    return readImageFacts(text, m_path);
}

std::uint32_t ImageFile::readPayload(const std::function<void(BytesView)>& take) const
{
    constexpr std::uint32_t blockSize = 64U << 10;
    Bytes block(blockSize);
    uLong crc = crc32(0, nullptr, 0);
    for (std::uint32_t done = 0; done < m_payloadLength;) {
        const std::uint32_t size = std::min(blockSize, m_payloadLength - done);
        read(block.data(), size, done);
        crc = crc32(crc, reinterpret_cast<const Bytef*>(block.data()), size);
        if (take) {
            take(BytesView(block).first(size));
        }
        done += size;
    }
    return static_cast<std::uint32_t>(crc);
}

void ImageFile::read(void* to, std::size_t size, std::uint64_t offset) const
{
    for (std::size_t done = 0; done < size;) {
        const ssize_t count = pread(m_file.descriptor.get(), static_cast<char*>(to) + done, size - done,
                                    static_cast<off_t>(offset + done));
        if (count == 0) {
            throw ImageFault(BINARY_FILE_FAILED, inQuotes(m_path) + " got shorter while it was read");
        }
        if (count < 0 && errno != EINTR) {
            throw ImageFault(BINARY_FILE_FAILED, inQuotes(m_path) + " cannot be read: " + std::strerror(errno));
        }
        done += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
}

void requireCrc(const ImageFile& image, const ImageFacts& facts, std::uint32_t crc)
{
    if (crc != facts.crc32) {
        throw ImageFault(BINARY_CRC_MISMATCH, inQuotes(image.path()) + " is damaged: its payload has the CRC-32 " +
                                                  hexNumber(crc, 8) + ", its trailer says " +
                                                  hexNumber(facts.crc32, 8));
    }
}

} // namespace dorn::tool
