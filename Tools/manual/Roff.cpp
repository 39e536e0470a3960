// SPDX-License-Identifier: MIT
#include "manual/Roff.hpp"

#include <algorithm>
#include <cctype>

namespace dorn::tool {
namespace {

std::string upperCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

} // namespace

std::string plain(const std::string& text)
{
    std::string result;
    for (const char c : text) {
        if (c == '\\') {
            result += "\\e";
        } else if (c == '-') {
            result += "\\-";
        } else {
            if ((c == '.' || c == '\'') && (result.empty() || result.back() == '\n')) {
                result += "\\&";
            }
            result += c;
        }
    }
    return result;
}

std::string bold(const std::string& text)
{
    return "\\fB" + plain(text) + "\\fR";
}

std::string item(const std::string& term, const std::string& description)
{
    return ".TP\n" + term + "\n" + plain(description) + "\n";
}

std::string pageHead(const std::string& name, const std::string& version, const std::string& description)
{
    return ".TH " + upperCase(name) + " 1 \"\" \"" + version + "\" \"Dorn\"\n" + ".SH NAME\n" + plain(name) + " \\- " +
           plain(description) + "\n";
}

} // namespace dorn::tool
