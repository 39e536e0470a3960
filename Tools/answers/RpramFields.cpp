// SPDX-License-Identifier: MIT
#include "answers/RpramFields.hpp"

#include "Outcome.hpp"
#include "RpramFiles.hpp"
#include "files/TargetFile.hpp"
#include "text/Values.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>

namespace dorn::tool {
namespace {

/// What stands in front of the names in the files' names, the longest first.
constexpr std::array<std::string_view, 4> beginnings{"ERP_RAM_hdbde_", "RP_RAM_hdbde_", "RP_RAM_field_", ""};
constexpr std::string_view ending = ".txt";

std::string nameOf(const std::string& path)
{
    std::string_view name = std::string_view(path).substr(path.rfind('/') + 1);
    name.remove_suffix(ending.size());
    const auto* const beginning = std::find_if(beginnings.begin(), beginnings.end(),
                                               [name](std::string_view text) { return name.starts_with(text); });
    return std::string(name.substr(beginning->size()));
}

/// How much of a text fits into a line behind its number.
std::size_t roomForText(std::uint32_t value)
{
    return RPRAM_TEXT_SIZE - 1 - (hexNumber(value, 1) + " :").size();
}

std::vector<RpramField> makeFields()
{
    std::vector<RpramField> fields;
    for (std::int32_t number = 0; number <= ERP_RAM_hdbde_PM_none; ++number) {
        const auto field = static_cast<ERP_RAM_field>(number);
        if (const std::string path = vel::hwapi::reset::getFileName(field); !path.empty()) {
            fields.push_back({field, nameOf(path), path});
        }
    }
    return fields;
}

} // namespace

const std::vector<RpramField>& rpramFields()
{
    static const std::vector<RpramField> fields = makeFields();
    return fields;
}

const RpramField& rpramFieldNamed(const std::string& text)
{
    const auto number = readNumber(text);
    const auto& fields = rpramFields();
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const RpramField& field) {
        return number ? static_cast<std::uint64_t>(field.field) == *number : field.name == text;
    });
    if (found == fields.end()) {
        throw UsageError("there is no field '" + text + "'; 'dorn rpram list --names' lists them");
    }
    return *found;
}

std::optional<RpramValue> readRpram(const RpramField& field)
{
    std::uint32_t value = 0;
    std::array<char, RPRAM_TEXT_SIZE> text{};
    if (ApiResetRpramGet(field.field, &value, text.data()) == 0) {
        return RpramValue{value, text.data()};
    }
    const TargetFile file(AaFileOpen(field.path.c_str(), "r"));
    if (!file && errno == ENOENT) {
        return std::nullopt;
    }
    throw Failure("'" + field.path + "' cannot be read: " + std::strerror(errno));
}

std::vector<std::string> rpramHistory(const RpramField& field)
{
    std::vector<std::string> lines;
    const TargetFile file(AaFileOpen(field.path.c_str(), "r"));
    std::array<char, 4096> buffer{};
    bool isWithin = false; // a line that is longer than the buffer
    while (file && AaFileReadLine(file.get(), buffer.data(), buffer.size()) > 0) {
        std::string part = buffer.data();
        const bool isEnd = part.ends_with('\n');
        if (isEnd) {
            part.pop_back();
        }
        if (isWithin) {
            lines.back() += part;
        } else {
            lines.push_back(part);
        }
        isWithin = !isEnd;
    }
    return lines;
}

void writeRpram(const RpramField& field, const RpramValue& value)
{
    if (ApiResetRpramSet(field.field, value.value, value.text.c_str()) != 0) {
        throw Failure("'" + field.path + "' cannot be written: " + std::strerror(errno));
    }
    if (readRpram(field) != RpramValue{value.value, value.text.substr(0, roomForText(value.value))}) {
        throw Failure("'" + field.path + "' has not been stored: is the storage full?");
    }
}

} // namespace dorn::tool
