// SPDX-License-Identifier: MIT
#include "Image.hpp"

namespace dorn::test {

std::uint32_t crcOf(std::string_view bytes)
{
    std::uint32_t crc = 0xFFFFFFFFU;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1U) != 0 ? crc >> 1 ^ 0xEDB88320U : crc >> 1;
        }
    }
    return ~crc;
}

std::string payloadOf(std::size_t size)
{
    std::string bytes;
    bytes.reserve(size);
    std::uint32_t state = 1;
    while (bytes.size() < size) {
        state = state * 1664525U + 1013904223U;
        bytes += static_cast<char>(state >> 24);
    }
    return bytes;
}

std::string wordOf(std::uint32_t value)
{
    std::string bytes;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(value >> shift & 0xFFU);
    }
    return bytes;
}

std::string element(const std::string& name, const std::string& text)
{
    return "<" + name + ">" + text + "</" + name + ">";
}

std::string trailerOf(const std::string& content)
{
    return element("trailer", content);
}

std::string contentFor(std::string_view payload)
{
    return element("Version", "1") + element("Crc32", std::to_string(crcOf(payload))) +
           element("Length", std::to_string(payload.size())) + element("TargetUnit", "NAXE") + element("SwId", "FPGA") +
           element("SwVersion", "0x20A") + element("BuildTime", "2026-11-21 09:18:01") +
           element("HwSwIdList", element("HwSwId", "3A01"));
}

std::string imageOf(const std::string& payload, const std::string& trailerText)
{
    return payload + trailerText + wordOf(static_cast<std::uint32_t>(payload.size()));
}

std::string goodImage()
{
    const std::string payload = payloadOf(1000);
    return imageOf(payload, trailerOf(contentFor(payload)));
}

} // namespace dorn::test
