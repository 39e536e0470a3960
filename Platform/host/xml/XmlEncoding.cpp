// SPDX-License-Identifier: MIT
#include "xml/XmlEncoding.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace dorn::host {
namespace {

constexpr std::array<std::pair<std::string_view, XmlEncoding>, 6> encodings{{{"utf-8", XmlEncoding::Utf8},
                                                                             {"utf8", XmlEncoding::Utf8},
                                                                             {"us-ascii", XmlEncoding::Ascii},
                                                                             {"ascii", XmlEncoding::Ascii},
                                                                             {"iso-8859-1", XmlEncoding::Latin1},
                                                                             {"latin1", XmlEncoding::Latin1}}};

char toSmall(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isSameName(std::string_view left, std::string_view right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char l, char r) { return toSmall(l) == toSmall(r); });
}

} // namespace

std::optional<XmlEncoding> xmlEncodingOf(std::string_view name)
{
    for (const auto& [known, encoding] : encodings) {
        if (isSameName(known, name)) {
            return encoding;
        }
    }
    return std::nullopt;
}

bool isXmlEncodingName(std::string_view name)
{
    constexpr std::size_t longest = 40;
    const auto isLetter = [](char c) { return toSmall(c) >= 'a' && toSmall(c) <= 'z'; };
    const auto isAllowed = [&](char c) {
        return isLetter(c) || (c >= '0' && c <= '9') || c == '.' || c == '_' || c == '-';
    };
    return !name.empty() && name.size() <= longest && isLetter(name.front()) &&
           std::all_of(name.begin(), name.end(), isAllowed);
}

std::string_view declaredXmlEncoding(std::string_view text)
{
    constexpr std::string_view begin = "<?xml";
    constexpr std::string_view key = "encoding";
    constexpr std::string_view white = " \t\r\n";
    if (!text.starts_with(begin) || text.size() == begin.size() ||
        white.find(text[begin.size()]) == std::string_view::npos) {
        return {};
    }
    std::string_view rest = text.substr(0, text.find("?>"));
    const std::size_t at = rest.find(key);
    if (at == std::string_view::npos) {
        return {};
    }
    rest.remove_prefix(at + key.size());
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t\r\n="), rest.size()));
    if (rest.empty() || (rest.front() != '"' && rest.front() != '\'')) {
        return {};
    }
    const std::size_t end = rest.find(rest.front(), 1);
    return end == std::string_view::npos ? std::string_view() : rest.substr(1, end - 1);
}

std::string latin1ToUtf8(std::string_view text)
{
    std::string result;
    result.reserve(text.size() + text.size() / 8);
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            result += c;
        } else {
            result += static_cast<char>(0xC0 | byte >> 6);
            result += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return result;
}

} // namespace dorn::host
