// SPDX-License-Identifier: MIT
#include "generator/ObjectText.hpp"

#include "generator/ValueText.hpp"

#include <algorithm>
#include <array>
#include <span>

namespace dorn::testkit {
namespace {

/// The first six have a text when they are written.
constexpr std::array<std::string_view, 8> operations{"create", "delete", "update",    "query",
                                                     "action", "auto",   "subscribe", "unsubscribe"};
constexpr std::size_t writtenOperations = 6;

constexpr std::array<std::string_view, 12> parameterWords{"limit", "mode",   "level", "label", "period", "offset",
                                                          "gain",  "target", "state", "speed", "start",  "count"};

constexpr std::array<std::string_view, 8> otherAttributes{
    R"( id="4711")",          R"( name="left &amp; right")",
    R"( vendor="Meadow")",    R"( timeStamp="2026-11-21T09:18:01Z")",
    R"( sequenceNo="12")",    R"( levelScope="wholeSubtree")",
    R"( funcScope="ETH_IF")", R"( filter="CM")"};

constexpr std::array<std::string_view, 3> ignoredElements{
    "      <defaults name=\"base\"><p name=\"limit\">0</p></defaults>\n", "      <extension/>\n",
    "      <!-- <p name=\"commented\">out</p> -->\n"};

/// What is wrong inside a managed object, and how it is written.
struct FaultyContent {
    RamlFault fault;
    std::string_view text;
};
constexpr std::array<FaultyContent, 7> faultyContents{{
    {RamlFault::UnknownInObject, "      <q name=\"limit\">1</q>\n"},
    {RamlFault::NoParameterName, "      <p>1</p>\n"},
    {RamlFault::EmptyParameterName, "      <p name=\"\">1</p>\n"},
    {RamlFault::NoListName, "      <list>\n        <p>1</p>\n      </list>\n"},
    {RamlFault::NamedListValue, "      <list name=\"faulty\">\n        <p name=\"limit\">1</p>\n      </list>\n"},
    {RamlFault::UnknownInList, "      <list name=\"faulty\">\n        <q>1</q>\n      </list>\n"},
    {RamlFault::UnknownInItem,
     "      <list name=\"faulty\">\n        <item>\n          <q>1</q>\n        </item>\n      </list>\n"},
}};

std::string parameterName(std::uint64_t number)
{
    const std::string word(parameterWords[static_cast<std::size_t>(number % parameterWords.size())]);
    return number < parameterWords.size() ? word : word + std::to_string(number / parameterWords.size() + 1);
}

} // namespace

ObjectText::ObjectText(const RamlShape& shape, const std::vector<RamlFault>& faults, RandomNumbers& random,
                       std::string& to)
    : m_shape(shape), m_faults(faults), m_random(random), m_text(to)
{
}

void ObjectText::write(const ObjectName& name)
{
    writeBeginTag(name);
    writeContent();
    if (!has(RamlFault::CutOff)) {
        m_text += has(RamlFault::WrongEndTag) ? "    </managed>\n" : "    </managedObject>\n";
    }
}

bool ObjectText::has(RamlFault fault) const
{
    return std::find(m_faults.begin(), m_faults.end(), fault) != m_faults.end();
}

void ObjectText::writeBeginTag(const ObjectName& name)
{
    m_text += "    <managedObject";
    if (!has(RamlFault::NoClass)) {
        m_text += " class=\"" + name.className + "\"";
    }
    const std::size_t choice = m_shape.isPlain ? writtenOperations : operations.size();
    const std::string_view operation = m_random.oneOf(std::span(operations).first(choice));
    if (!has(RamlFault::NoOperation)) {
        m_text += " operation=\"" + std::string(has(RamlFault::WrongOperation) ? "modify" : operation) + "\"";
    }
    if (!has(RamlFault::NoDistName)) {
        m_text += " distName=\"" + name.distName + "\"";
    }
    m_text += " version=\"1.0\"";
    if (!m_shape.isPlain) {
        writeAttributesThatAreNotWritten();
    }
    m_text += ">\n";
}

void ObjectText::writeAttributesThatAreNotWritten()
{
    for (const std::string_view attribute : otherAttributes) {
        if (m_random.oneIn(4)) {
            m_text += attribute;
        }
    }
}

void ObjectText::writeContent()
{
    std::uint64_t parameters = m_random.around(m_shape.parameters);
    std::uint64_t lists = m_random.around(m_shape.lists);
    const std::uint64_t faultyAt = m_random.below(parameters + lists + 1);
    for (std::uint64_t index = 0; parameters + lists > 0 || index == faultyAt; ++index) {
        if (index == faultyAt) {
            writeFaultyContent();
        } else if (m_random.below(parameters + lists) < parameters) {
            writeParameter();
            --parameters;
        } else {
            writeList();
            --lists;
        }
        if (!m_shape.isPlain && m_random.oneIn(20)) {
            writeSomethingIgnored();
        }
    }
}

void ObjectText::writeFaultyContent()
{
    for (const FaultyContent& content : faultyContents) {
        if (has(content.fault)) {
            m_text += content.text;
        }
    }
    if (has(RamlFault::ZeroByte)) {
        m_text += std::string("      <p name=\"zero\">") + '\0' + "</p>\n";
    }
    if (has(RamlFault::CutOff)) {
        m_text += "      <p name=\"cut";
    }
}

void ObjectText::writeSomethingIgnored()
{
    m_text += m_random.oneOf(std::span<const std::string_view>(ignoredElements));
}

std::string ObjectText::value(bool isSimple)
{
    const SpecialCharacters plain = isSimple ? SpecialCharacters::AtMostOne : SpecialCharacters::None;
    return escaped(valueText(m_random, m_shape.valueBytes, m_shape.isPlain ? plain : SpecialCharacters::Any));
}

void ObjectText::writeParameter()
{
    m_text += "      <p name=\"" + parameterName(m_names++) + "\">" + value(true) + "</p>\n";
}

void ObjectText::writeList()
{
    m_text += "      <list name=\"" + parameterName(m_names++) + "\">\n";
    const bool hasItems = m_random.oneIn(2);
    const std::uint64_t count = m_random.around(m_shape.listElements);
    for (std::uint64_t index = 0; index < count; ++index) {
        if (hasItems) {
            writeItem();
        } else {
            m_text += "        <p>" + value(false) + "</p>\n";
        }
    }
    m_text += "      </list>\n";
}

void ObjectText::writeItem()
{
    constexpr std::uint64_t greatestCount = 4;
    const bool hasOperation = !m_shape.isPlain && m_random.oneIn(4);
    m_text += hasOperation ? "        <item operation=\"create\">\n" : "        <item>\n";
    const std::uint64_t count = m_random.below(greatestCount);
    for (std::uint64_t index = 0; index < count; ++index) {
        m_text += "          <p name=\"" + parameterName(index) + "\">" + value(false) + "</p>\n";
    }
    m_text += "        </item>\n";
}

} // namespace dorn::testkit
