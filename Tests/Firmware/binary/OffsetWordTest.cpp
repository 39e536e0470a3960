// SPDX-License-Identifier: MIT
// The word behind the trailer is bytes like any other to who reads the XML: none of its values may matter.
#include "binary.h"

#include "FirmwareTest.hpp"

#include <array>
#include <filesystem>
#include <fstream>

namespace dorn::test {
namespace {

constexpr std::uint32_t ownId = 0x3A01;

class OffsetWordTest : public FirmwareTest {
protected:
    /// Makes an image of this many payload bytes that need no room on the disk: zeros.
    void writeSparse(std::uint32_t size, const std::string& trailerText) const
    {
        write("");
        std::filesystem::resize_file(m_node.boardPath(path), size);
        std::ofstream(m_node.boardPath(path), std::ios::binary | std::ios::app) << trailerText << wordOf(size);
    }

    std::int32_t version() const
    {
        std::uint32_t version = 0;
        const std::int32_t result = binary_version(path, ownId, 0, &version);
        return result == 0 ? static_cast<std::int32_t>(version) : result;
    }
};

/// Every byte value as the word's first, and so directly behind the XML.
TEST_F(OffsetWordTest, AnyFirstByteIsPassedOver)
{
    for (std::size_t size = 1; size <= 0x100; ++size) {
        const std::string payload = payloadOf(size);
        write(imageOf(payload, trailerOf(contentFor(payload))));

        EXPECT_EQ(binary_validate(path, ownId), 0) << size;
        EXPECT_EQ(binary_crc(path), 0) << size;
        EXPECT_EQ(version(), 0x20A) << size;
    }
}

/// Two bytes that mean something in XML, with and without a line feed between them and the document.
TEST_F(OffsetWordTest, AnyTwoBytesThatMeanSomethingArePassedOver)
{
    constexpr std::string_view special = "<>&/!?-[]\"'=; \t\n\rax#\x80\xC3\xEF\xFF";
    const std::string content = element("SwVersion", "7") + element("HwSwIdList", element("HwSwId", "3A01"));
    for (const char first : special) {
        for (const char second : special) {
            const auto size =
                static_cast<std::uint32_t>(static_cast<unsigned char>(second) << 8 | static_cast<unsigned char>(first));
            for (const char* const end : {"", "\n", "\n<!-- end -->"}) {
                writeSparse(size, trailerOf(content) + end);

                EXPECT_EQ(version(), 7) << size << end;
            }
        }
    }
}

/// Four bytes without a NUL: only the terminating one ends the text. Sizes are those of large sparse files.
TEST_F(OffsetWordTest, AnyFourBytesWithoutNulArePassedOver)
{
    const std::string trailerText =
        trailerOf(element("SwVersion", "7") + element("HwSwIdList", element("HwSwId", "3A01")));
    for (const char* const word : {"<a/>", "<b>>", "&lt;", "]]>!", "<!--", "-->\n", "<?x?", "abcd", "</t>", ">>>>",
                                   "<<<<", "\xEF\xBB\xBF\x01", "\xFF\xFE\xFD\x7E"}) {
        std::uint32_t size = 0;
        for (unsigned index = 0; index < 4; ++index) {
            size |= static_cast<std::uint32_t>(static_cast<unsigned char>(word[index])) << 8 * index;
        }
        ASSERT_LT(size, 0x7FFFFF00U);
        writeSparse(size, trailerText);

        EXPECT_EQ(version(), 7) << word;
    }
}

/// Part of the text it is all the same.
TEST_F(OffsetWordTest, WordMayEndTheXml)
{
    const std::string cut = "<trailer></trailer";
    writeSparse('>', cut);
    EXPECT_EQ(version(), BINARY_VERSION_NOT_COMPATIBLE);

    writeSparse('?', cut);
    EXPECT_EQ(version(), BINARY_VERSION_XML_INVALID);
}

} // namespace
} // namespace dorn::test
