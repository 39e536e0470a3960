// SPDX-License-Identifier: MIT
// Configuration tags: values.
#include "AaConfigTag.h"
#include "AaMem.h"
#include "Check.hpp"
#include "Folder.hpp"
#include "Options.hpp"
#include "OtherProcess.hpp"
#include "Rules.hpp"

#include <array>
#include <cstring>
#include <string>

namespace dorn::conformance {
namespace {

/// What AaConfigTagGet() gives.
struct Tag {
    int32_t status = 0;
    std::string value;
};

Tag taken(int32_t status, void* value, uint32_t length)
{
    Tag tag{status, ""};
    expect((value != nullptr) == (status == 0),
           "the status of a read is " + std::to_string(status) + ", which does not go with the buffer that it gave");
    if (value) {
        tag.value.assign(static_cast<const char*>(value), length);
        expectEqual(int{static_cast<const char*>(value)[length]}, 0, "the byte behind a tag's value");
    }
    AaMemUnRef(value);
    return tag;
}

Tag get(const std::string& name)
{
    int untouched = 0;
    void* value = &untouched;
    uint32_t length = 0;
    const int32_t status = AaConfigTagGet(name.c_str(), &value, &length);
    return taken(status, value, length);
}

void expectTag(const std::string& name, const std::string& value)
{
    const Tag tag = get(name);
    expectEqual(tag.status, EAaConfigTagStatus_Ok, "AaConfigTagGet() of " + name.substr(0, 40));
    expect(tag.value == value, "the value of " + name.substr(0, 40) + " has " + std::to_string(tag.value.size()) +
                                   " bytes and is not what was set");
}

void textIsKept()
{
    for (const std::string text : {"text", "", "longer text than before"}) {
        expectEqual(AaConfigTagSetString("conformance.text", text.c_str()), 0, "AaConfigTagSetString()");
        expectTag("conformance.text", text);
    }
}

void numbersHaveTheirSize()
{
    const uint16_t small = 0x1234;
    const uint32_t large = 0x12345678;
    expectEqual(AaConfigTagSetU16("conformance.small", small), 0, "AaConfigTagSetU16()");
    expectTag("conformance.small", std::string(reinterpret_cast<const char*>(&small), sizeof small));
    expectEqual(AaConfigTagSetU32("conformance.large", large), 0, "AaConfigTagSetU32()");
    expectTag("conformance.large", std::string(reinterpret_cast<const char*>(&large), sizeof large));
}

void bytesAreKept()
{
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{65535}}) {
        const std::string bytes(size, '\x80');
        expectEqual(AaConfigTagSet("conformance.bytes", bytes.data(), static_cast<uint32_t>(size)), 0,
                    "AaConfigTagSet() of " + std::to_string(size) + " bytes");
        expectTag("conformance.bytes", bytes);
    }
    const std::string tooLong(65536, 'x');
    expectEqual(AaConfigTagSet("conformance.bytes", tooLong.data(), 65536), EAaConfigTagStatus_BadArgument,
                "AaConfigTagSet() of 65536 bytes");
    expectTag("conformance.bytes", std::string(65535, '\x80'));
}

void namesHaveTheirLimits()
{
    const std::string longest = "conformance." + std::string(255 - 12, 'n');
    expectEqual(AaConfigTagSetU32(longest.c_str(), 7), 0, "AaConfigTagSetU32() of a name of 255 characters");
    expectEqual(get(longest).status, EAaConfigTagStatus_Ok, "AaConfigTagGet() of it");
    for (const std::string& name : {longest + "n", std::string()}) {
        const std::string what = " of a name of " + std::to_string(name.size()) + " characters";
        expectEqual(AaConfigTagSetU32(name.c_str(), 7), EAaConfigTagStatus_BadArgument, "AaConfigTagSetU32()" + what);
        expectEqual(get(name).status, EAaConfigTagStatus_BadArgument, "AaConfigTagGet()" + what);
    }
    expectEqual(AaConfigTagSetU32(nullptr, 7), EAaConfigTagStatus_BadArgument, "AaConfigTagSetU32() without name");
    expectEqual(AaConfigTagSetU16(nullptr, 7), EAaConfigTagStatus_BadArgument, "AaConfigTagSetU16() without name");
    expectEqual(AaConfigTagSetString("conformance.text", nullptr), EAaConfigTagStatus_BadArgument,
                "AaConfigTagSetString() of null");
}

void unknownTagIsNotFound()
{
    expectEqual(get("conformance.unknown").status, EAaConfigTagStatus_NotFound, "AaConfigTagGet() of an unknown tag");
    uint32_t number = 77;
    expectEqual(AaConfigTagGetU32("conformance.unknown", &number), EAaConfigTagStatus_NotFound,
                "AaConfigTagGetU32() of an unknown tag");
    expectEqual(number, 77U, "what it was to store into");
}

Tag getDefault(const std::string& name, const std::string& otherwise)
{
    void* value = nullptr;
    uint32_t length = 0;
    const int32_t status =
        AaConfigTagGetDefault(name.c_str(), &value, &length, otherwise.data(), static_cast<uint32_t>(otherwise.size()));
    return taken(status, value, length);
}

void defaultStandsIn()
{
    const Tag missing = getDefault("conformance.unknown", "default");
    expectEqual(missing.status, 0, "AaConfigTagGetDefault() of an unknown tag");
    expectEqual(missing.value, std::string("default"), "what it gave");
    expectEqual(get("conformance.unknown").status, EAaConfigTagStatus_NotFound, "AaConfigTagGet() of it afterwards");
    AaConfigTagSetString("conformance.text", "text");
    expectEqual(getDefault("conformance.text", "default").value, std::string("text"),
                "what AaConfigTagGetDefault() gave for a tag that has a value");
}

void numberHasFourBytes()
{
    uint32_t number = 77;
    AaConfigTagSetU16("conformance.number", 5);
    expectEqual(AaConfigTagGetU32("conformance.number", &number), EAaConfigTagStatus_WrongSize,
                "AaConfigTagGetU32() of a tag of 2 bytes");
    expectEqual(number, 77U, "what it was to store into");
    AaConfigTagSetU32("conformance.number", 0xFEDCBA98);
    expectEqual(AaConfigTagGetU32("conformance.number", &number), 0, "AaConfigTagGetU32() of a tag of 4 bytes");
    expectEqual(number, 0xFEDCBA98U, "what it stored");
}

void tagsAreShared()
{
    AaConfigTagSetString("conformance.shared", "from one");
    AaConfigTagSetString("tessel.service.conformance", "one's own");
    OtherProcess other("shares-tags");
    other.expectToHear("0 from one");
    expectTag("conformance.shared", "from the other");
    expectTag("tessel.service.conformance", "one's own");
    expectEqual(other.waitForEnd(), 0, "the end of the other process");
}

void shareTags(std::span<char* const>)
{
    const Tag tag = get("conformance.shared");
    AaConfigTagSetString("conformance.shared", "from the other");
    AaConfigTagSetString("tessel.service.conformance", "the other's");
    say(std::to_string(tag.status) + " " + tag.value);
}

void fileIsReadOrRefused()
{
    const Folder folder;
    expectEqual(AaConfigTagReadFile(folder.path("missing").c_str()), 1,
                "AaConfigTagReadFile() of a file that is not there");
    writeFile(folder.path("garbage"), "<<< this is no configuration file >>>");
    expectEqual(AaConfigTagReadFile(folder.path("garbage").c_str()), 2, "AaConfigTagReadFile() of a file that is none");
}

void ownFileIsRead()
{
    if (!options().tagFile) {
        skip("name a configuration file of your platform with --tag-file");
    }
    expectEqual(AaConfigTagReadFile(options().tagFile->c_str()), 0, "AaConfigTagReadFile() of " + *options().tagFile);
}

constexpr std::array rules{
    Rule{"tag.text-is-kept", "AaConfigTag.h", "AaConfigTagSetString AaConfigTagGet",
         "A text is kept without terminator; a read gives its length and one zero byte behind it", textIsKept},
    Rule{"tag.numbers-have-their-size", "AaConfigTag.h", "AaConfigTagSetU16 AaConfigTagSetU32",
         "Numbers are kept in host byte order with their own size, 2 or 4 bytes", numbersHaveTheirSize},
    Rule{"tag.bytes-are-kept", "AaConfigTag.h", "AaConfigTagSet AaConfigTagGet",
         "Values of 0 to 65,535 bytes are kept as they are; a longer one is a bad argument", bytesAreKept},
    Rule{"tag.names-have-their-limits", "AaConfigTag.h",
         "AaConfigTagSetU32 AaConfigTagSetU16 AaConfigTagSetString AaConfigTagGet",
         "Names have 1 to 255 characters; others, and null, are bad arguments", namesHaveTheirLimits},
    Rule{"tag.unknown-is-not-found", "AaConfigTag.h", "AaConfigTagGet AaConfigTagGetU32",
         "A read of a tag that does not exist returns NotFound and gives nothing", unknownTagIsNotFound},
    Rule{"tag.default-stands-in", "AaConfigTag.h", "AaConfigTagGetDefault",
         "AaConfigTagGetDefault() gives a copy of the default, and 0, when there is no tag; it does not make one",
         defaultStandsIn},
    Rule{"tag.number-has-four-bytes", "AaConfigTag.h", "AaConfigTagGetU32",
         "AaConfigTagGetU32() reads a tag of exactly 4 bytes; for another it returns WrongSize and stores nothing",
         numberHasFourBytes},
    Rule{"tag.are-shared", "AaConfigTag.h", "AaConfigTagSetString AaConfigTagGet",
         "All processes of a node share their tags; those that begin with \"tessel.service.\" are each process's own",
         tagsAreShared},
    Rule{"tag.file-is-read-or-refused", "AaConfigTag.h", "AaConfigTagReadFile",
         "AaConfigTagReadFile() returns 1 for a file that cannot be opened and 2 when something was passed over",
         fileIsReadOrRefused},
    Rule{"tag.own-file-is-read", "AaConfigTag.h", "AaConfigTagReadFile",
         "AaConfigTagReadFile() of a file without fault returns 0", ownFileIsRead},
};

constexpr std::array roles{
    Role{"shares-tags", shareTags},
};

} // namespace

Rules tagRules()
{
    return rules;
}

Roles tagRoles()
{
    return roles;
}

} // namespace dorn::conformance
