// SPDX-License-Identifier: MIT
#include "raml/Documents.hpp"

#include <string_view>

namespace dorn::benchmarks {
namespace {

constexpr std::string_view begin = R"(<?xml version="1.0" encoding="UTF-8"?>
<raml version="2.1" xmlns="urn:raml21">
  <cmData type="actual" scope="all" domain="radio" adaptationVersionMajor="LN7" id="1">
    <header>
      <log dateTime="2026-01-01T00:00:00" action="created" user="planner">all cells</log>
    </header>
)";
constexpr std::string_view end = R"(  </cmData>
</raml>
)";

std::string objectBegin(std::size_t number)
{
    return R"(    <managedObject class="CELL" operation="create" distName="NET-1/SITE-1/CELL-)" +
           std::to_string(number) + R"(" version="1.0" id=")" + std::to_string(number) + "\">\n";
}

std::string parameter(std::size_t number, std::size_t value)
{
    return "      <p name=\"parameter" + std::to_string(number) + "\">" + std::to_string(value) + "</p>\n";
}

constexpr std::string_view objectEnd = "    </managedObject>\n";

void appendSiteObject(std::string& text, std::size_t number)
{
    text += objectBegin(number);
    for (std::size_t index = 0; index < 20; ++index) {
        text += parameter(index, number * 31 + index * 7919);
    }
    text += "      <list name=\"values\">\n";
    for (std::size_t index = 0; index < 4; ++index) {
        text += "        <p>" + std::to_string(number * index) + "</p>\n";
    }
    text += "      </list>\n      <list name=\"items\">\n";
    for (std::size_t index = 0; index < 3; ++index) {
        text += "        <item>\n          <p name=\"first\">" + std::to_string(index) +
                "</p>\n          <p name=\"second\">" + std::to_string(number) + "</p>\n        </item>\n";
    }
    text += "      </list>\n";
    text += objectEnd;
}

} // namespace

const std::string& siteDocument(std::size_t size)
{
    static std::string text;
    static std::size_t textSize = 0;
    if (textSize != size) {
        textSize = size;
        text.clear();
        text.shrink_to_fit();
        text.reserve(size + 4096);
        text += begin;
        for (std::size_t number = 1; text.size() < size; ++number) {
            appendSiteObject(text, number);
        }
        text += end;
    }
    return text;
}

std::string documentOfParameters(std::size_t count)
{
    std::string text(begin);
    text += objectBegin(1);
    for (std::size_t number = 0; number < count; ++number) {
        text += parameter(number, number * 31);
    }
    text += objectEnd;
    text += end;
    return text;
}

std::string documentOfObjects(std::size_t count)
{
    std::string text(begin);
    for (std::size_t number = 0; number < count; ++number) {
        text += objectBegin(number) + parameter(1, number * 31);
        text += objectEnd;
    }
    text += end;
    return text;
}

std::string documentOfLists(std::size_t count)
{
    std::string text(begin);
    text += objectBegin(1);
    for (std::size_t number = 0; number < count; ++number) {
        text += "      <list name=\"l" + std::to_string(number) + "\">\n        <item>\n          <p name=\"first\">" +
                std::to_string(number) + "</p>\n        </item>\n      </list>\n";
    }
    text += objectEnd;
    text += end;
    return text;
}

} // namespace dorn::benchmarks
