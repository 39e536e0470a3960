// SPDX-License-Identifier: MIT
#include "manual/HelpPage.hpp"

#include "manual/Roff.hpp"

#include <array>
#include <sstream>
#include <string_view>

namespace dorn::tool {
namespace {

/// A section of a page: what its lines of the help begin with, its title, and how its text is written.
struct Section {
    std::string_view beginning;
    std::string_view title;
    std::string (*write)(const std::string& text);
};

std::string paragraph(const std::string& text)
{
    return plain(text) + "\n";
}

std::string command(const std::string& text)
{
    return bold(text) + "\n";
}

std::string example(const std::string& text)
{
    return ".nf\n" + plain(text) + "\n.fi\n";
}

/// "--rio PLACE  what it is", or one half of it where the name leaves no room for the other.
std::string option(const std::string& text)
{
    const std::size_t begin = text.find_first_not_of(' ');
    if (begin > 0) {
        return paragraph(text.substr(begin));
    }
    const std::size_t gap = text.find("  ");
    if (gap == std::string::npos) {
        return ".TP\n" + command(text);
    }
    return item(bold(text.substr(0, gap)), text.substr(text.find_first_not_of(' ', gap)));
}

/// A line belongs to the first of these whose beginning it has.
constexpr std::array sections{
    Section{"Usage: ", "SYNOPSIS", command},  Section{"  ", "OPTIONS", option},
    Section{"Example: ", "EXAMPLE", example}, Section{"Exit status: ", "EXIT STATUS", paragraph},
    Section{"", "DESCRIPTION", paragraph},
};

const Section& sectionOf(const std::string& line)
{
    std::size_t index = 0;
    while (!line.starts_with(sections[index].beginning)) {
        ++index;
    }
    return sections[index];
}

} // namespace

ManualPage helpPage(const std::string& name, const std::string& help, const std::string& version)
{
    std::string summary;
    std::string body;
    std::string_view title;
    std::istringstream lines(help);
    for (std::string line; std::getline(lines, line);) {
        if (line.empty()) {
            continue;
        }
        const Section& section = sectionOf(line);
        if (summary.empty() && section.beginning.empty()) {
            summary = line.substr(0, line.find_last_not_of('.') + 1);
        }
        if (section.title != title) {
            title = section.title;
            body += ".SH " + std::string(title) + "\n";
        }
        body += section.write(line.substr(section.beginning.size()));
    }
    return {name, pageHead(name, version, summary) + body + ".SH SEE ALSO\n.BR dorn (1)\n"};
}

} // namespace dorn::tool
