// SPDX-License-Identifier: MIT
#include "image/ImageText.hpp"

#include "binary/Unsigned32.hpp"
#include "text/Values.hpp"

namespace dorn::tool {
namespace {

/// @p text with XML's own characters as entities.
std::string escaped(const std::string& text)
{
    std::string result;
    for (const char character : text) {
        switch (character) {
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '&':
            result += "&amp;";
            break;
        default:
            result += character;
        }
    }
    return result;
}

std::string elementXml(const std::string& name, const std::string& text)
{
    return text.empty() ? "" : "  <" + name + ">" + escaped(text) + "</" + name + ">\n";
}

std::string idsText(const std::vector<std::uint32_t>& ids)
{
    std::string text;
    for (const std::uint32_t id : ids) {
        text += (text.empty() ? "" : " ") + hexNumber(id, 4);
    }
    return text;
}

std::string row(const std::string& name, const std::string& value)
{
    constexpr std::size_t width = 13;
    return name + ":" + std::string(width - name.size(), ' ') + (value.empty() ? "-" : printable(value)) + "\n";
}

} // namespace

std::string trailerXml(const ImageFacts& facts)
{
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<trailer>\n" +
                      elementXml("Version", std::to_string(facts.version)) +
                      elementXml("Crc32", hexNumber(facts.crc32, 8)) +
                      elementXml("Length", std::to_string(facts.length)) + elementXml("TargetUnit", facts.targetUnit) +
                      elementXml("SwId", facts.swId) + elementXml("SwVersion", facts.swVersion) +
                      elementXml("BuildTime", facts.buildTime) + "  <HwSwIdList>\n";
    for (const std::uint32_t id : facts.hwSwIds) {
        xml += "  " + elementXml("HwSwId", hexNumber(id, 4));
    }
    return xml + "  </HwSwIdList>\n</trailer>\n";
}

std::string softwareVersionText(const std::string& text)
{
    const std::uint32_t version = vel::hwapi::firmware::softwareVersionOf(text.c_str());
    const std::string decimal = std::to_string(version);
    const std::string number = decimal + " (" + hexNumber(version, 1) + ")";
    return text == decimal || text == hexNumber(version, 1) ? number : "'" + text + "', read as " + number;
}

std::string imageText(const ImageFile& image, const ImageFacts& facts)
{
    const std::uint64_t trailerLength = image.size() - image.payloadLength();
    return row("image", image.path() + ", " + std::to_string(image.size()) + " bytes") +
           row("payload", std::to_string(image.payloadLength()) + " bytes") +
           row("trailer",
               "version " + std::to_string(facts.version) + ", " + std::to_string(trailerLength) + " bytes") +
           row("CRC-32", hexNumber(facts.crc32, 8)) + row("length", std::to_string(facts.length)) +
           row("target unit", facts.targetUnit) + row("software", facts.swId) +
           row("version", softwareVersionText(facts.swVersion)) + row("build time", facts.buildTime) +
           row("boards", idsText(facts.hwSwIds));
}

Json imageJson(const ImageFile& image, const ImageFacts& facts)
{
    return {{"file", image.path()},
            {"size", image.size()},
            {"payloadLength", image.payloadLength()},
            {"trailer",
             {{"version", facts.version},
              {"crc32", facts.crc32},
              {"length", facts.length},
              {"targetUnit", facts.targetUnit},
              {"swId", facts.swId},
              {"swVersion", facts.swVersion},
              {"buildTime", facts.buildTime},
              {"hwSwIds", facts.hwSwIds}}},
            {"softwareVersion", vel::hwapi::firmware::softwareVersionOf(facts.swVersion.c_str())}};
}

std::string verdictText(const ImageVerdict& verdict)
{
    std::string text = printable(verdict.path) + ": good, CRC-32 " + hexNumber(verdict.crc32, 8) + ", version " +
                       printable(softwareVersionText(verdict.swVersion));
    if (verdict.own) {
        text += ", fits " + hexNumber(*verdict.own, 4);
        text += *verdict.own == verdict.fitting ? "" : " as a minor version of " + hexNumber(verdict.fitting, 4);
    }
    return text;
}

Json verdictJson(const ImageVerdict& verdict)
{
    Json json{{"file", verdict.path}, {"result", verdict.result}};
    if (verdict.result != 0) {
        json["reason"] = verdict.reason;
        return json;
    }
    json["crc32"] = verdict.crc32;
    json["softwareVersion"] = vel::hwapi::firmware::softwareVersionOf(verdict.swVersion.c_str());
    if (verdict.own) {
        json["hwSwId"] = verdict.fitting;
    }
    return json;
}

} // namespace dorn::tool
