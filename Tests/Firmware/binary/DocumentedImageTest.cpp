// SPDX-License-Identifier: MIT
// The image that the documentation shows byte by byte.
#include "FirmwareTest.hpp"

#include "binary.h"

#include <fstream>
#include <regex>

namespace dorn::test {
namespace {

/// The bytes of the dump in the page: lines of an offset, up to 16 bytes and the same as text.
std::string shownImage()
{
    static const std::regex dumped("    [0-9a-f]{8}  ((?:[0-9a-f]{2} {1,2})+) *\\|.*\\|");
    static const std::regex byte("[0-9a-f]{2}");
    std::ifstream page(DORN_FIRMWARE_PAGE);
    std::string image;
    for (std::string line; std::getline(page, line);) {
        std::smatch bytes;
        if (std::regex_match(line, bytes, dumped)) {
            const std::string text = bytes[1];
            for (std::sregex_iterator at(text.begin(), text.end(), byte); at != std::sregex_iterator(); ++at) {
                image += static_cast<char>(std::stoi(at->str(), nullptr, 16));
            }
        }
    }
    return image;
}

TEST_F(FirmwareTest, DocumentedImageIsValid)
{
    const std::string image = shownImage();
    ASSERT_EQ(image.size(), 132U);
    write(image);
    std::uint32_t version = 0;

    EXPECT_EQ(binary_validate(path, 0x3A01), BINARY_OK);
    EXPECT_EQ(binary_version(path, 0x3A01, 0, &version), BINARY_VERSION_OK);
    EXPECT_EQ(version, 0x20011U);
    EXPECT_EQ(binary_copy_without_trailer(path, "/payload"), BINARY_COPY_OK);
    EXPECT_EQ(m_node.readBoardFile("/payload"), image.substr(0, 8));
}

} // namespace
} // namespace dorn::test
