// SPDX-License-Identifier: MIT
#include "state/FlashRecord.hpp"

#include "state/StateNote.hpp"

#include <sstream>

namespace dorn::board {
namespace {

constexpr const char* noVersion = "-";

StateFile recordFile(const std::string& area)
{
    return StateFile(area + ".record");
}

/// "<image> <size> <version or -> <version before>", the last one with whatever blanks it has.
std::optional<FlashRecord> parse(const StateNote& note)
{
    FlashRecord record;
    record.resets = note.resets;
    std::istringstream text(note.value);
    std::string version;
    if (!(text >> record.image >> record.size >> version) || record.image > 1 || text.get() != ' ') {
        return std::nullopt;
    }
    std::getline(text, record.versionBefore);
    if (version != noVersion) {
        std::uint32_t number = 0;
        if (!(std::istringstream(version) >> number)) {
            return std::nullopt;
        }
        record.version = number;
    }
    return record;
}

} // namespace

std::optional<FlashRecord> readFlashRecord(const std::string& area)
{
    const auto note = readNote(recordFile(area));
    if (!note) {
        return std::nullopt;
    }
    auto record = parse(*note);
    if (!record) {
        recordFile(area).setAside("is no record of an image in flash");
    }
    return record;
}

void writeFlashRecord(const std::string& area, const FlashRecord& record)
{
    const std::string version = record.version ? std::to_string(*record.version) : noVersion;
    writeNote(recordFile(area), {record.resets, std::to_string(record.image) + " " + std::to_string(record.size) + " " +
                                                    version + " " + record.versionBefore});
}

} // namespace dorn::board
