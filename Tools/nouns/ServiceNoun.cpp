// SPDX-License-Identifier: MIT
#include "Nouns.hpp"

#include "Program.hpp"
#include "answers/ServiceList.hpp"
#include "node/NodePlace.hpp"
#include "node/PerNode.hpp"
#include "waiting/TimeLimit.hpp"

#include <CLI/CLI.hpp>
#include <memory>

namespace dorn::tool {
namespace {

struct ListOptions {
    std::string name;
    bool asJson = false;
    bool asNames = false;
};

/// The services of the node, those called @p name if it is not empty.
std::vector<host::EeInfo> readServices(const std::string& name)
{
    std::vector<host::EeInfo> services =
        answerOf("the node's list of services", [] { return host::PerNode<host::EeTable>::get().list(); });
    std::erase_if(services, [&name](const host::EeInfo& service) { return !name.empty() && service.name != name; });
    return services;
}

Outcome list(const ListOptions& options, Console& console)
{
    const NodePlace node;
    node.require(NodePart::Services);
    const std::vector<host::EeInfo> services = readServices(options.name);
    if (options.asJson) {
        console.print(jsonText(servicesJson(services)));
    } else if (!services.empty()) {
        console.print(options.asNames ? serviceNames(services) : servicesTable(services, console));
    }
    if (services.empty()) {
        console.remark(options.name.empty() ? "no services have run on " + node.nodeName()
                                            : "no service '" + options.name + "' has run on " + node.nodeName() +
                                                  "; 'dorn service list' shows all that have");
        return Outcome::No;
    }
    return Outcome::Fine;
}

} // namespace

void addServiceNoun(Program& program)
{
    CLI::App& noun = program.addNoun("service", "The services of the node");
    const auto options = std::make_shared<ListOptions>();
    CLI::App& verb = program.addVerb(noun,
                                     {"list", "Lists the services that run or have run, and what they do",
                                      "dorn service list", "dorn service list --names"},
                                     [options](Console& console) { return list(*options, console); });
    verb.add_option("NAME", options->name, "Only services of this name");
    CLI::Option* const json = verb.add_flag("--json", options->asJson, "Prints JSON");
    verb.add_flag("--names", options->asNames, "Prints the names alone, one a line")->excludes(json);
}

} // namespace dorn::tool
