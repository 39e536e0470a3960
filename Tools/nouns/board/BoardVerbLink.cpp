// SPDX-License-Identifier: MIT
#include "nouns/board/BoardVerbs.hpp"

#include "LinkNames.hpp"
#include "Program.hpp"
#include "answers/LinkText.hpp"
#include "node/AskedService.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

namespace dorn::tool {
namespace {

using namespace examples;

constexpr AskedService linkService{linkServiceCpid, "the link service", "DornLinkSExe"};
constexpr const char* names = "dorn board link show --names";

struct ShowOptions {
    bool asJson = false;
    bool asNames = false;
};

struct BreakOptions {
    std::string link;
    std::string part;
};

Outcome show(const ShowOptions& options, Console& console)
{
    const auto answer = askOnce<LinkShowReqMsg, LinkShowRespMsg>(linkService, {newTransactionId()});
    const auto links = answer.items<SLink>(answer->linkCount);
    if (options.asJson) {
        console.print(jsonText(linksJson(links)));
    } else {
        console.print(options.asNames ? linkNames(links) : linkTable(links, console));
    }
    return Outcome::Fine;
}

[[noreturn]] void failAsUnknown(const std::string& link)
{
    throw Failure("the board has no link '" + link + "'; 'dorn board link show' lists those that it has");
}

/// Has the parts of a link broken, and no others. @return ELinkBreakStatus
std::uint32_t setBroken(const std::string& link, std::uint32_t parts)
{
    SLinkBreakReq request{newTransactionId(), {}, parts};
    if (link.size() >= request.name.size()) {
        failAsUnknown(link);
    }
    std::copy(link.begin(), link.end(), request.name.begin());
    const std::uint32_t status = askOnce<LinkBreakReqMsg, LinkBreakRespMsg>(linkService, request)->status;
    if (status == ELinkBreakStatus_NoSuchLink) {
        failAsUnknown(link);
    }
    return status;
}

/// What `break` breaks: both fibres, or the named part alone.
std::uint32_t partsOf(const std::string& name)
{
    if (name.empty()) {
        return ELinkPart_Receive | ELinkPart_Transmit;
    }
    const auto found = std::find(linkPartNames.begin(), linkPartNames.end(), name);
    if (found == linkPartNames.end()) {
        throw UsageError("'" + name + "' is no part of a link: give 'receive', 'transmit' or 'framing'");
    }
    return 1U << static_cast<unsigned>(found - linkPartNames.begin());
}

Outcome breakLink(const BreakOptions& options)
{
    const std::uint32_t status = setBroken(options.link, partsOf(options.part));
    if (status == ELinkBreakStatus_SoAlready) {
        throw Failure("link '" + options.link + "' is broken like this already");
    }
    if (status != ELinkBreakStatus_Done) {
        throw Failure("the link service does not know how to break link '" + options.link + "' like this");
    }
    return Outcome::Fine;
}

Outcome restore(const BreakOptions& options)
{
    if (setBroken(options.link, 0) != ELinkBreakStatus_Done) {
        throw Failure("nothing of link '" + options.link + "' is broken");
    }
    return Outcome::Fine;
}

} // namespace

void addBoardLink(Program& program, CLI::App& board)
{
    CLI::App& part = program.addPart(board, "link", "The baseband links and their fibres");
    const auto shown = std::make_shared<ShowOptions>();
    CLI::App& showVerb = program.addVerb(
        part, {"show", "Shows the links, and what the link service has been told of them", "dorn board link show"},
        [shown](Console& console) { return show(*shown, console); });
    CLI::Option* const json = showVerb.add_flag("--json", shown->asJson, "Prints JSON");
    showVerb.add_flag("--names", shown->asNames, "Prints the names alone, one a line")->excludes(json);

    const auto broken = std::make_shared<BreakOptions>();
    CLI::App& breakVerb =
        program.addVerb(part, {"break", "Breaks both fibres of a link", "dorn board link break cpri0", names},
                        [broken](Console&) { return breakLink(*broken); });
    breakVerb.add_option("LINK", broken->link, "Name of the link")->required();
    breakVerb.add_option("--only", broken->part, "'receive' or 'transmit' for one fibre, 'framing' for frames in vain")
        ->type_name("PART");

    const auto restored = std::make_shared<BreakOptions>();
    CLI::App& restoreVerb =
        program.addVerb(part, {"restore", "Repairs what is broken of a link", "dorn board link restore cpri0", names},
                        [restored](Console&) { return restore(*restored); });
    restoreVerb.add_option("LINK", restored->link, "Name of the link")->required();
}

} // namespace dorn::tool
