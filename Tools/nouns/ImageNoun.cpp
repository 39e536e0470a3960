// SPDX-License-Identifier: MIT
#include "Nouns.hpp"

#include "Program.hpp"
#include "binary.h"
#include "description/DescribedBoard.hpp"
#include "files/NewFile.hpp"
#include "image/ImageFile.hpp"
#include "image/ImageMaker.hpp"
#include "image/ImageText.hpp"
#include "waiting/ProgressBar.hpp"
#include "waiting/Watch.hpp"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <filesystem>
#include <memory>

namespace dorn::tool {
namespace {

struct CreateOptions {
    std::string payload;
    std::string image;
    std::string swVersion;
    std::vector<std::string> hwSwIds;
    std::string targetUnit;
    std::string swId;
    std::string buildTime;
    std::string trailerVersion = "1";
    bool asJson = false;
};

struct ShowOptions {
    std::string image;
    bool asJson = false;
};

struct VerifyOptions {
    std::vector<std::string> images;
    std::string hwSwId;
    std::string board;
    bool isExact = false;
    bool asJson = false;
};

struct ExtractOptions {
    std::string image;
    std::string payload;
    bool isUnchecked = false;
};

/// Shows how far work on a file is, and ends it when the process is asked to end: so nothing half done stays behind.
class Work {
public:
    Work(Console& console, std::string what, std::uint64_t total) : m_bar(console, std::move(what)), m_total(total) {}

    void advance(std::uint64_t bytes)
    {
        if (m_stop.hasCome()) {
            throw Failure("interrupted");
        }
        m_done += bytes;
        m_bar.show(static_cast<double>(m_done) / static_cast<double>(m_total), m_done);
    }

private:
    ProgressBar m_bar;
    std::uint64_t m_total;
    std::uint64_t m_done = 0;
    StopRequest m_stop{[] {}};
};

std::uint64_t sizeOf(const std::string& path)
{
    std::error_code ignored;
    const std::uintmax_t size = std::filesystem::file_size(path, ignored);
    return ignored ? 0 : size;
}

/// Writing a file over the one that it is made from loses that.
void requireTwoFiles(const std::string& from, const std::string& to)
{
    std::error_code ignored;
    if (std::filesystem::equivalent(from, to, ignored)) {
        throw UsageError("'" + from + "' and '" + to + "' are the same file");
    }
}

/// The time of the build: SOURCE_DATE_EPOCH for builds that can be repeated, else now.
std::string buildTime()
{
    const char* const epoch = std::getenv("SOURCE_DATE_EPOCH");
    if (!epoch || !*epoch) {
        return shortTimeText(host::Clock::get().wall());
    }
    constexpr std::uint64_t greatest = 253402300799; // the last second of the year 9999
    return shortTimeText(std::chrono::seconds(parseNumber("SOURCE_DATE_EPOCH", epoch, greatest)));
}

ImageFacts factsOf(const CreateOptions& options)
{
    ImageFacts facts;
    facts.version = parseUnsigned<std::uint32_t>("--trailer-version", options.trailerVersion);
    facts.targetUnit = options.targetUnit;
    facts.swId = options.swId;
    facts.swVersion = parseSoftwareVersion("--sw-version", options.swVersion);
    facts.buildTime = options.buildTime.empty() ? buildTime() : options.buildTime;
    for (const std::string& id : options.hwSwIds) {
        facts.hwSwIds.push_back(parseHwSwId("--hwswid", id));
    }
    return facts;
}

/// The board that the images are to be meant for, if one is given.
std::optional<std::uint32_t> ownHwSwId(const VerifyOptions& options)
{
    if (!options.hwSwId.empty()) {
        return parseHwSwId("--hwswid", options.hwSwId);
    }
    if (!options.board.empty()) {
        setenv("DORN_BOARD", options.board.c_str(), 1);
        return board::DescribedBoard().part("units", 0).cell("dorn,hw-sw-id");
    }
    if (options.isExact) {
        throw UsageError("'--exact' needs '--hwswid' or '--board'");
    }
    return std::nullopt;
}

/// Looks whether an image is whole and, where one is given, meant for a board.
ImageVerdict verdictOn(const std::string& path, std::optional<std::uint32_t> own, bool isExact, Console& console)
{
    const ImageFile image(path);
    const ImageFacts facts = image.facts();
    Work work(console, "checking '" + path + "'", image.payloadLength());
    const std::uint32_t crc = image.readPayload([&work](BytesView bytes) { work.advance(bytes.size()); });
    requireCrc(image, facts, crc);
    ImageVerdict verdict{.path = path, .crc32 = crc, .swVersion = facts.swVersion, .own = own};
    if (own) {
        const std::optional<std::uint32_t> id = fittingHwSwId(facts.hwSwIds, *own, !isExact);
        if (!id) {
            throw ImageFault(BINARY_HWSWID_NOT_FOUND, "'" + path + "' is not meant for the board " +
                                                          hexNumber(*own, 4) +
                                                          "; 'dorn image show' lists the boards that it is meant for");
        }
        verdict.fitting = *id;
    }
    return verdict;
}

Outcome create(const CreateOptions& options, Console& console)
{
    const ImageFacts facts = factsOf(options);
    requireTwoFiles(options.payload, options.image);
    {
        Work work(console, "writing '" + options.image + "'", sizeOf(options.payload));
        makeImage(options.payload, options.image, facts, [&work](std::uint64_t bytes) { work.advance(bytes); });
    }
    const ImageFile image(options.image);
    console.print(options.asJson ? jsonText(imageJson(image, image.facts())) : imageText(image, image.facts()));
    return Outcome::Fine;
}

Outcome show(const ShowOptions& options, Console& console)
{
    const ImageFile image(options.image);
    const ImageFacts facts = image.facts();
    console.print(options.asJson ? jsonText(imageJson(image, facts)) : imageText(image, facts));
    return Outcome::Fine;
}

Outcome verify(const VerifyOptions& options, Console& console)
{
    const std::optional<std::uint32_t> own = ownHwSwId(options);
    Outcome outcome = Outcome::Fine;
    Json json = Json::array();
    for (const std::string& path : options.images) {
        try {
            const ImageVerdict verdict = verdictOn(path, own, options.isExact, console);
            json.push_back(verdictJson(verdict));
            if (!options.asJson) {
                console.printLine(verdictText(verdict));
            }
        } catch (const ImageFault& fault) {
            json.push_back(verdictJson({.path = path, .result = fault.result(), .reason = fault.what()}));
            console.remark(fault.what());
            outcome = Outcome::No;
        }
    }
    if (options.asJson) {
        console.print(jsonText(json));
    }
    return outcome;
}

Outcome extract(const ExtractOptions& options, Console& console)
{
    requireTwoFiles(options.image, options.payload);
    const ImageFile image(options.image);
    const std::optional<ImageFacts> facts = options.isUnchecked ? std::nullopt : std::optional(image.facts());
    Work work(console, "writing '" + options.payload + "'", image.payloadLength());
    NewFile payload(options.payload);
    const std::uint32_t crc = image.readPayload([&](BytesView bytes) {
        payload.write(bytes);
        work.advance(bytes.size());
    });
    if (facts) {
        requireCrc(image, *facts, crc);
    }
    payload.keep();
    return Outcome::Fine;
}

void addCreate(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<CreateOptions>();
    CLI::App& verb =
        program.addVerb(noun,
                        {.name = "create",
                         .description = "Makes an image of a payload",
                         .example = "dorn image create fpga.rbf NAX-FPGA.bin --sw-version 0x20A --hwswid 3A01",
                         .files = 2},
                        [options](Console& console) { return create(*options, console); });
    verb.add_option("PAYLOAD", options->payload, "The file that goes into flash")->required();
    verb.add_option("IMAGE", options->image, "The image; what bears the name is replaced")->required();
    verb.add_option("--sw-version", options->swVersion, "Version of the software: decimal, or hexadecimal behind 0x")
        ->type_name("N")
        ->required();
    verb.add_option("--hwswid", options->hwSwIds, "A board that it is meant for, hexadecimal; may be repeated")
        ->type_name("ID")
        ->allow_extra_args(false)
        ->required();
    verb.add_option("--target-unit", options->targetUnit, "Unit that it is meant for")->type_name("TEXT");
    verb.add_option("--sw-id", options->swId, "Name of the software")->type_name("TEXT");
    verb.add_option("--build-time", options->buildTime, "Time of the build; SOURCE_DATE_EPOCH or now without it")
        ->type_name("TEXT");
    verb.add_option("--trailer-version", options->trailerVersion, "Version of the trailer's format; 1 without it")
        ->type_name("N");
    verb.add_flag("--json", options->asJson, "Prints JSON");
}

void addShow(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<ShowOptions>();
    CLI::App& verb = program.addVerb(noun,
                                     {.name = "show",
                                      .description = "Shows what the trailer of an image says",
                                      .example = "dorn image show NAX-FPGA.bin",
                                      .files = 1},
                                     [options](Console& console) { return show(*options, console); });
    verb.add_option("IMAGE", options->image, "The image")->required();
    verb.add_flag("--json", options->asJson, "Prints JSON");
}

void addVerify(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<VerifyOptions>();
    CLI::App& verb = program.addVerb(noun,
                                     {.name = "verify",
                                      .description = "Checks images as a board does: trailer, CRC-32, boards",
                                      .example = "dorn image verify NAX-FPGA.bin --hwswid 3A02",
                                      .files = everyArgument},
                                     [options](Console& console) { return verify(*options, console); });
    verb.add_option("IMAGE", options->images, "The images")->required();
    CLI::Option* const id =
        verb.add_option("--hwswid", options->hwSwId, "The board that they are to be meant for, hexadecimal")
            ->type_name("ID");
    verb.add_option("--board", options->board, "The same, by the device tree of the board: its .dtb")
        ->type_name("FILE")
        ->excludes(id);
    verb.add_flag("--exact", options->isExact, "Refuses a difference in the minor version of the board");
    verb.add_flag("--json", options->asJson, "Prints JSON");
}

void addExtract(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<ExtractOptions>();
    CLI::App& verb = program.addVerb(noun,
                                     {.name = "extract",
                                      .description = "Gets the payload out of an image",
                                      .example = "dorn image extract NAX-FPGA.bin fpga.rbf",
                                      .files = 2},
                                     [options](Console& console) { return extract(*options, console); });
    verb.add_option("IMAGE", options->image, "The image")->required();
    verb.add_option("PAYLOAD", options->payload, "The file to write; what bears the name is replaced")->required();
    verb.add_flag("--unchecked", options->isUnchecked, "Does not look whether the trailer is right");
}

} // namespace

void addImageNoun(Program& program)
{
    CLI::App& noun = program.addNoun("image", "Firmware images: a payload with a trailer");
    addCreate(program, noun);
    addShow(program, noun);
    addVerify(program, noun);
    addExtract(program, noun);
}

} // namespace dorn::tool
