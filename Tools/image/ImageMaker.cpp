// SPDX-License-Identifier: MIT
#include "image/ImageMaker.hpp"

#include "binary.h"
#include "binary/Unsigned32.hpp"
#include "files/NewFile.hpp"
#include "image/ImageText.hpp"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <span>
#include <unistd.h>
#include <zlib.h>

namespace dorn::tool {
namespace {

BytesView bytesIn(const std::string& text)
{
    return std::as_bytes(std::span(text));
}

/// Copies the payload. @return its CRC-32.
std::uint32_t copyPayload(const RegularFile& from, NewFile& to, const std::string& path, const Advance& advance)
{
    Bytes block(64U << 10);
    uLong crc = crc32(0, nullptr, 0);
    std::uint64_t done = 0;
    for (;;) {
        const ssize_t count = read(from.descriptor.get(), block.data(), block.size());
        if (count < 0 && errno != EINTR) {
            throw Failure("'" + path + "' cannot be read: " + std::strerror(errno));
        }
        if (count == 0) {
            break;
        }
        const BytesView bytes = BytesView(block).first(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        crc = crc32(crc, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(bytes.size()));
        to.write(bytes);
        done += bytes.size();
        advance(bytes.size());
    }
    if (done != from.size) {
        throw Failure("'" + path + "' was changed while it was read");
    }
    return static_cast<std::uint32_t>(crc);
}

bool readsBack(const std::string& region, const ImageFacts& facts)
{
    try {
        return readImageFacts(region, "") == facts;
    } catch (const ImageFault&) {
        return false;
    }
}

/// The trailer, with the word behind it.
std::string trailerRegion(const ImageFacts& facts, const std::string& imagePath)
{
    std::string region = trailerXml(facts);
    for (unsigned index = 0; index < trailerWordSize; ++index) {
        region += static_cast<char>(facts.length >> 8 * index & 0xFFU);
    }
    if (!readsBack(region, facts)) {
        throw Failure("the texts of the trailer would not be read back as they are given: they have characters that "
                      "XML does not keep");
    }
    if (facts.length + region.size() > greatestImageSize) {
        throw Failure("'" + imagePath + "' would have " + std::to_string(facts.length + region.size()) +
                      " bytes; an image is smaller than 2 GiB");
    }
    if (region.size() > BINARY_TRAILER_LENGTH_MAX) {
        throw Failure("the trailer would have " + std::to_string(region.size()) + " bytes, and " +
                      std::to_string(BINARY_TRAILER_LENGTH_MAX) + " are read at most");
    }
    return region;
}

} // namespace

std::string parseSoftwareVersion(const std::string& what, const std::string& text)
{
    const auto meant = parseUnsigned<std::uint32_t>(what, text);
    const std::uint32_t read = vel::hwapi::firmware::softwareVersionOf(text.c_str());
    if (read != meant) {
        throw UsageError(what + ": a board would read '" + text + "' as " + std::to_string(read) + "; write " +
                         hexNumber(meant, 1));
    }
    return text;
}

std::uint32_t parseHwSwId(const std::string& what, const std::string& text)
{
    const bool isPrefixed = text.starts_with("0x") || text.starts_with("0X");
    const char* const end = text.data() + text.size();
    std::uint32_t id = 0;
    const auto [last, error] = std::from_chars(text.data() + (isPrefixed ? 2 : 0), end, id, 16);
    if (error != std::errc() || last != end) {
        throw UsageError(what + ": '" + text + "' is not a number of 32 bits in hexadecimal digits");
    }
    return id;
}

void makeImage(const std::string& payloadPath, const std::string& imagePath, ImageFacts facts, const Advance& advance)
{
    const RegularFile payload(payloadPath);
    if (payload.size == 0) {
        throw Failure("'" + payloadPath + "' is empty; an image has a payload");
    }
    if (payload.size > greatestImageSize) {
        throw Failure("'" + payloadPath + "' has " + std::to_string(payload.size) +
                      " bytes; an image is smaller than 2 GiB");
    }
    facts.length = static_cast<std::uint32_t>(payload.size);
    trailerRegion(facts, imagePath); // before a long copy
    NewFile image(imagePath);
    facts.crc32 = copyPayload(payload, image, payloadPath, advance);
    image.write(bytesIn(trailerRegion(facts, imagePath)));
    image.keep();
}

} // namespace dorn::tool
