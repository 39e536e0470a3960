// SPDX-License-Identifier: MIT
#include "firmware/Image.hpp"

#include "RandomNumbers.hpp"
#include "TestNode.hpp"

#include <zlib.h>

namespace dorn::benchmarks {
namespace {

struct Image {
    std::string payload;
    std::uint32_t crc = 0;
    std::string imagePlace;
    std::string copyPlace;
};

Image& image()
{
    static Image only;
    return only;
}

std::string wordOf(std::uint32_t value)
{
    std::string bytes;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(value >> shift & 0xFFU);
    }
    return bytes;
}

} // namespace

void writeImage(const testkit::TestNode& node)
{
    Image& only = image();
    only.payload = randomBytes(payloadLength);
    only.crc = static_cast<std::uint32_t>(crc32(0, reinterpret_cast<const Bytef*>(only.payload.data()), payloadLength));
    only.imagePlace = node.boardPath(imagePath);
    only.copyPlace = node.boardPath(copyPath);
    node.writeBoardFile(imagePath, only.payload + "<trailer><Crc32>" + std::to_string(only.crc) +
                                       "</Crc32><HwSwIdList><HwSwId>3A01</HwSwId></HwSwIdList></trailer>" +
                                       wordOf(payloadLength));
}

const std::string& imagePlace()
{
    return image().imagePlace;
}

const std::string& copyPlace()
{
    return image().copyPlace;
}

const std::string& payload()
{
    return image().payload;
}

std::uint32_t payloadCrc()
{
    return image().crc;
}

} // namespace dorn::benchmarks
