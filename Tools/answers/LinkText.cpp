// SPDX-License-Identifier: MIT
#include "answers/LinkText.hpp"

#include "LinkNames.hpp"
#include "text/Table.hpp"
#include "text/Values.hpp"

#include <algorithm>

namespace dorn::tool {
namespace {

using namespace examples;

/// "-" where the standard has no such states.
std::string txText(const SLink& link)
{
    return link.standard == ELinkStandard_Cpri ? "-"
                                               : nameOrNumber(nameIn(obsaiTxStateNames, link.txState), link.txState);
}

/// The names of the bits that are set.
template <std::size_t count>
std::vector<std::string> namesOf(const std::array<const char*, count>& names, std::uint32_t bits)
{
    std::vector<std::string> set;
    for (std::size_t bit = 0; bit < count; ++bit) {
        if ((bits >> bit & 1U) != 0) {
            set.emplace_back(names[bit]);
        }
    }
    return set;
}

std::string listText(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : ", ") + name;
    }
    return text.empty() ? "-" : text;
}

} // namespace

std::string linkName(const SLink& link)
{
    return printable({link.name.begin(), std::find(link.name.begin(), link.name.end(), '\0')});
}

std::string linkRxText(const SLink& link)
{
    return nameOrNumber(linkRxStateName(link.standard, link.rxState), link.rxState);
}

bool isLinkUp(const SLink& link)
{
    return link.rxState + 1 ==
           (link.standard == ELinkStandard_Cpri ? cpriRxStateNames.size() : obsaiRxStateNames.size());
}

std::string linkConditionsText(const SLink& link)
{
    return listText(namesOf(linkConditionNames, link.conditions));
}

std::string linkTable(const std::vector<SLink>& links, const Console& console)
{
    Table table({"LINK", "ID", "RX", "TX", "DELAY", "EVENTS", "BROKEN", "CONDITIONS"});
    for (const SLink& link : links) {
        table.add({linkName(link),
                   std::to_string(link.uniqueId),
                   {linkRxText(link), isLinkUp(link) ? Colour::Green : Colour::Red},
                   txText(link),
                   std::to_string(link.delay),
                   std::to_string(link.eventCount),
                   listText(namesOf(linkPartNames, link.brokenParts)),
                   linkConditionsText(link)});
    }
    return table.text(console);
}

Json linksJson(const std::vector<SLink>& links)
{
    Json list = Json::array();
    for (const SLink& link : links) {
        list.push_back({{"name", linkName(link)},
                        {"standard", nameOrNumber(nameIn(linkStandardNames, link.standard), link.standard)},
                        {"id", link.uniqueId},
                        {"rx", linkRxText(link)},
                        {"tx", link.standard == ELinkStandard_Cpri ? Json(nullptr) : Json(txText(link))},
                        {"delay", link.delay},
                        {"events", link.eventCount},
                        {"broken", namesOf(linkPartNames, link.brokenParts)},
                        {"conditions", namesOf(linkConditionNames, link.conditions)}});
    }
    return list;
}

std::string linkNames(const std::vector<SLink>& links)
{
    std::string text;
    for (const SLink& link : links) {
        text += linkName(link) + "\n";
    }
    return text;
}

} // namespace dorn::tool
