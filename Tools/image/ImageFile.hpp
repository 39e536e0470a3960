// SPDX-License-Identifier: MIT
/// @file ImageFile.hpp
/// A firmware image as a file of this machine. Firmware/src/binary.h says what it is made of.
#pragma once

#include "Outcome.hpp"
#include "port/Descriptor.hpp"
#include "text/Values.hpp"

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace dorn::tool {

/// The most bytes that an image can have: it is smaller than 2 GiB.
constexpr std::uint64_t greatestImageSize = std::numeric_limits<std::int32_t>::max();
/// Bytes of its last word, which says where the trailer begins.
constexpr std::size_t trailerWordSize = 4;

/// Why an image is refused, in words, and as binary_validate() says it on the board.
class ImageFault : public Failure {
public:
    ImageFault(std::int32_t result, const std::string& text) : Failure(text), m_result(result) {}

    std::int32_t result() const { return m_result; }

private:
    std::int32_t m_result;
};

/// What a trailer says.
struct ImageFacts {
    std::uint32_t version = 0;
    std::uint32_t crc32 = 0;
    std::uint32_t length = 0;
    std::string targetUnit;
    std::string swId;
    std::string swVersion;
    std::string buildTime;
    std::vector<std::uint32_t> hwSwIds;

    bool operator==(const ImageFacts&) const = default;
};

/// Reads the document at the begin of @p text. @param path is named in what is thrown @throws ImageFault
ImageFacts readImageFacts(const std::string& text, const std::string& path);

/// The id of a list by which a board is accepted; nothing when it is not.
/// @param isMinorFree whether an id may differ in the minor version, the lowest 8 bits
std::optional<std::uint32_t> fittingHwSwId(const std::vector<std::uint32_t>& ids, std::uint32_t own, bool isMinorFree);

/// A regular file of this machine, open for reading.
struct RegularFile {
    /// @throws ImageFault
    explicit RegularFile(const std::string& path);

    host::Descriptor descriptor;
    std::uint64_t size = 0;
};

/// An image, open for reading.
class ImageFile {
public:
    /// Finds where payload and trailer are. @throws ImageFault when they are nowhere.
    explicit ImageFile(std::string path);

    const std::string& path() const { return m_path; }
    std::uint64_t size() const { return m_file.size; }
    std::uint32_t payloadLength() const { return m_payloadLength; }

    /// Reads the trailer. @throws ImageFault
    ImageFacts facts() const;

    /// Gives the payload, piece by piece, to @p take, which may be empty. @return its CRC-32. @throws ImageFault
    std::uint32_t readPayload(const std::function<void(BytesView)>& take) const;

private:
    void read(void* to, std::size_t size, std::uint64_t offset) const;

    std::string m_path;
    RegularFile m_file;
    std::uint32_t m_payloadLength = 0;
};

/// @throws ImageFault when the CRC-32 of the payload is not the one in the trailer.
void requireCrc(const ImageFile& image, const ImageFacts& facts, std::uint32_t crc);

} // namespace dorn::tool
