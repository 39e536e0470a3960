// SPDX-License-Identifier: MIT
#include "Nouns.hpp"

#include "Program.hpp"
#include "answers/TagText.hpp"
#include "config/TagStore.hpp"
#include "node/NodePlace.hpp"
#include "node/PerNode.hpp"
#include "waiting/Mailbox.hpp"
#include "waiting/TimeLimit.hpp"
#include "waiting/Watch.hpp"

#include <CLI/CLI.hpp>
#include <memory>
#include <set>

namespace dorn::tool {
namespace {

constexpr const char* awaited = "the node's tags";
constexpr const char* names = "dorn tag list --names";

struct ListOptions {
    std::string prefix;
    bool asJson = false;
    bool asNames = false;
};

struct GetOptions {
    std::string name;
    std::string form;
    bool asJson = false;
};

struct SetOptions {
    std::string name;
    std::string value;
    CLI::Option* asU16 = nullptr;
    CLI::Option* asU32 = nullptr;
    CLI::Option* asString = nullptr;
    CLI::Option* asHex = nullptr;
    bool asJson = false;
};

struct WatchOptions {
    std::vector<std::string> names;
    bool asJson = false;
    WatchLimits limits;
};

host::TagStore& openStore()
{
    NodePlace().require(NodePart::Tags);
    return host::PerNode<host::TagStore>::get();
}

void requireName(const std::string& name)
{
    if (!host::TagStore::isName(name)) {
        throw UsageError("TAG: a name has 1 to " + std::to_string(host::maximumTagName) + " bytes, this one " +
                         std::to_string(name.size()));
    }
    if (host::isProcessTag(name)) {
        throw Failure("tag '" + name + "' belongs to each process by itself and cannot be reached from outside");
    }
}

Outcome list(const ListOptions& options, Console& console)
{
    std::vector<host::Tag> tags = answerOf(awaited, [] { return openStore().list(); });
    std::erase_if(tags, [&options](const host::Tag& tag) { return !tag.name.starts_with(options.prefix); });
    if (options.asJson) {
        console.print(jsonText(jsonArray(tags, tagJson)));
    } else if (!tags.empty()) {
        console.print(options.asNames ? tagNames(tags) : tagTable(tags, console));
    }
    if (tags.empty()) {
        console.remark(options.prefix.empty()
                           ? "there are no tags on " + NodePlace().nodeName()
                           : "no tag on " + NodePlace().nodeName() + " begins with '" + options.prefix + "'");
        return Outcome::No;
    }
    return Outcome::Fine;
}

TagForm formFor(const GetOptions& options, BytesView value)
{
    return options.form.empty() ? formOf(value) : parseForm("--as", options.form);
}

Outcome get(const GetOptions& options, Console& console)
{
    formFor(options, {}); // wrong use comes before all else
    requireName(options.name);
    const std::optional<host::TagBytes> value = answerOf(awaited, [&options] { return openStore().get(options.name); });
    if (!value) {
        throw Failure("no tag '" + options.name + "' on " + NodePlace().nodeName() +
                      "; 'dorn tag list' shows all that there are");
    }
    if (options.asJson) {
        console.print(jsonText(tagJson({options.name, *value})));
        return Outcome::Fine;
    }
    try {
        console.print(tagValueText(*value, formFor(options, *value)) + "\n");
    } catch (const Failure& failure) {
        throw Failure("tag '" + options.name + "': " + failure.what());
    }
    return Outcome::Fine;
}

Bytes valueOf(const SetOptions& options)
{
    if (*options.asU16) {
        return numberBytes(parseUnsigned<std::uint16_t>("--u16", options.value), TagForm::U16);
    }
    if (*options.asU32) {
        return numberBytes(parseUnsigned<std::uint32_t>("--u32", options.value), TagForm::U32);
    }
    if (*options.asHex) {
        return parseHex("--hex", options.value);
    }
    if (*options.asString) {
        return bytesOf(options.value);
    }
    throw UsageError("'dorn tag set' needs one of --u16, --u32, --string, --hex");
}

Outcome set(const SetOptions& options, Console& console)
{
    const Bytes value = valueOf(options);
    requireName(options.name);
    if (value.size() > host::maximumTagValue) {
        throw UsageError("a tag's value has at most " + std::to_string(host::maximumTagValue) + " bytes, this one " +
                         std::to_string(value.size()));
    }
    const std::optional<host::TagBytes> before = answerOf(awaited, [&] {
        auto& store = host::PerNode<host::TagStore>::get(); // tags may be set before any service has run
        std::optional<host::TagBytes> old = store.get(options.name);
        store.set(options.name, value);
        return old;
    });
    if (options.asJson) {
        console.print(jsonText({{"name", options.name},
                                {"old", before ? tagValueJson(*before) : Json(nullptr)},
                                {"new", tagValueJson(value)}}));
    } else {
        console.print(printable(options.name) + ": " + (before ? describedValue(*before) : "none") + " -> " +
                      describedValue(value) + "\n");
    }
    return Outcome::Fine;
}

/// One set of a tag, as it was reported.
struct TagSet {
    host::Nanoseconds wall;
    host::Tag tag;
};

void show(const TagSet& item, bool asJson, Console& console)
{
    if (asJson) {
        Json json{{"time", timeText(item.wall)}};
        json.update(tagJson(item.tag));
        console.printLine(jsonLine(json));
    } else {
        console.printLine(timeText(item.wall) + " " + printable(item.tag.name) + ": " + describedValue(item.tag.value));
    }
}

Outcome watch(const WatchOptions& options, Console& console)
{
    WatchProgress progress(options.limits, console);
    for (const std::string& name : options.names) {
        requireName(name);
    }
    const std::set<std::string> wanted(options.names.begin(), options.names.end());
    Mailbox<TagSet> mailbox;
    const auto note = [&mailbox, &wanted](const std::string& name, host::TagView value) {
        if (wanted.empty() || wanted.contains(name)) {
            mailbox.put({host::Clock::get().wall(), {name, host::TagBytes(value.begin(), value.end())}});
        }
    };
    const auto tagWatch =
        answerOf(awaited, [&note] { return std::make_unique<host::TagWatch>(openStore(), "", note); });
    const StopRequest stop([&mailbox] { mailbox.interrupt(); });
    while (progress.wantsMore() && !stop.hasCome()) {
        for (const TagSet& item : mailbox.take(progress.until())) {
            if (progress.wantsMore()) {
                show(item, options.asJson, console);
                progress.noteItem();
            }
        }
    }
    return stop.hasCome() ? Outcome::Fine : progress.outcome();
}

void addList(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<ListOptions>();
    CLI::App& verb = program.addVerb(noun, {"list", "Lists the tags and their values", "dorn tag list board."},
                                     [options](Console& console) { return list(*options, console); });
    verb.add_option("PREFIX", options->prefix, "Only tags whose name begins so");
    CLI::Option* const json = verb.add_flag("--json", options->asJson, "Prints JSON");
    verb.add_flag("--names", options->asNames, "Prints the names alone, one a line")->excludes(json);
}

void addGet(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<GetOptions>();
    CLI::App& verb =
        program.addVerb(noun, {"get", "Prints the value of a tag", "dorn tag get board.climate.ambient", names},
                        [options](Console& console) { return get(*options, console); });
    verb.add_option("TAG", options->name, "Name of the tag")->required();
    CLI::Option* const form =
        verb.add_option("--as", options->form, "Shows the value as text, u16, u32 or hex")->type_name("FORM");
    verb.add_flag("--json", options->asJson, "Prints JSON")->excludes(form);
}

void addSet(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<SetOptions>();
    CLI::App& verb = program.addVerb(
        noun, {"set", "Sets a tag for all processes of the node", "dorn tag set board.climate.ambient --u32 60", names},
        [options](Console& console) { return set(*options, console); });
    verb.add_option("TAG", options->name, "Name of the tag")->required();
    options->asU16 = verb.add_option("--u16", options->value, "To a 16-bit number")->type_name("N");
    options->asU32 = verb.add_option("--u32", options->value, "To a 32-bit number")->type_name("N");
    options->asString = verb.add_option("--string", options->value, "To a text")->type_name("TEXT");
    options->asHex = verb.add_option("--hex", options->value, "To bytes")->type_name("BYTES");
    options->asU32->excludes(options->asU16);
    options->asString->excludes(options->asU16)->excludes(options->asU32);
    options->asHex->excludes(options->asU16)->excludes(options->asU32)->excludes(options->asString);
    verb.add_flag("--json", options->asJson, "Prints JSON");
}

void addWatch(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<WatchOptions>();
    CLI::App& verb = program.addVerb(
        noun,
        {"watch", "Prints each set of a tag, until Ctrl-C", "dorn tag watch board.climate.ambient --count 1", names},
        [options](Console& console) { return watch(*options, console); });
    verb.add_option("TAG", options->names, "The tags to watch; all without one");
    addWatchLimits(verb, options->limits);
    verb.add_flag("--json", options->asJson, "Prints a JSON object a line");
}

} // namespace

void addTagNoun(Program& program)
{
    CLI::App& noun = program.addNoun("tag", "The configuration tags of the node");
    addList(program, noun);
    addGet(program, noun);
    addSet(program, noun);
    addWatch(program, noun);
}

} // namespace dorn::tool
