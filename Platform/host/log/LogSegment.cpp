// SPDX-License-Identifier: MIT
#include "log/LogSegment.hpp"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace dorn::host {
namespace {

constexpr std::string_view suffix = ".log";
constexpr std::size_t maxEeName = 63;

/// An EE name as part of a file name.
std::string fileNamePart(const std::string& eeName)
{
    std::string part = eeName.substr(0, maxEeName);
    const auto isUnfit = [](char c) { return c == '/' || static_cast<unsigned char>(c) <= ' ' || c == '\x7f'; };
    std::replace_if(part.begin(), part.end(), isUnfit, '_');
    if (part.empty() || part.front() == '.') {
        part.insert(0, "_");
    }
    return part;
}

/// Cuts the part behind the last dot off @p rest and reads it as a number.
template <class Number>
bool takeNumber(std::string_view& rest, Number& number, int base)
{
    const std::size_t dot = rest.rfind('.');
    if (dot == std::string_view::npos) {
        return false;
    }
    const std::string_view digits = rest.substr(dot + 1);
    rest = rest.substr(0, dot);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
    return error == std::errc() && end == digits.data() + digits.size() && number >= 0 && !digits.empty();
}

} // namespace

std::string segmentFileName(const SegmentName& name)
{
    std::array<char, 64> numbers{};
    std::snprintf(numbers.data(), numbers.size(), ".%d.%llx.%u", name.pid, static_cast<unsigned long long>(name.start),
                  name.number);
    return fileNamePart(name.eeName) + numbers.data() + std::string(suffix);
}

bool parseSegmentFileName(std::string_view fileName, SegmentName& name)
{
    if (!fileName.ends_with(suffix)) {
        return false;
    }
    std::string_view rest = fileName.substr(0, fileName.size() - suffix.size());
    if (!takeNumber(rest, name.number, 10) || !takeNumber(rest, name.start, 16) || !takeNumber(rest, name.pid, 10)) {
        return false;
    }
    name.eeName = rest;
    return name.number < segmentsPerProcess && segmentFileName(name) == fileName;
}

} // namespace dorn::host
