// SPDX-License-Identifier: MIT
#include "Nouns.hpp"

#include "AaSysLog.h"
#include "Program.hpp"
#include "answers/GatewayText.hpp"
#include "gateway/Gateway.hpp"
#include "gateway/Keys.hpp"
#include "gateway/Table.hpp"
#include "log/LogName.hpp"
#include "node/BoardRoot.hpp"
#include "node/NodePlace.hpp"
#include "node/PerNode.hpp"
#include "node/RunDirectory.hpp"
#include "syscom/Node.hpp"
#include "text/Json.hpp"
#include "text/Table.hpp"
#include "text/Values.hpp"
#include "waiting/TimeLimit.hpp"
#include "waiting/Watch.hpp"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>

namespace dorn::tool {
namespace {

constexpr const char* tableHelp = "Table of nodes; /opt/dorn/gateway.table of the board without one";
constexpr const char* checkKeyHelp =
    "Key file of this node; /opt/dorn/gateway.key of the board without one, if it is there";
constexpr const char* keyHelp = "Key file of this node; /opt/dorn/gateway.key of the board without one";

struct RunOptions {
    std::string table;
    std::string key;
    std::string listenAddress;
    std::string queueMessages;
    std::string queueBytes;
};

struct StatusOptions {
    bool isToBeUp = false;
    bool asJson = false;
};

struct KeysOptions {
    std::string file;
    bool isForced = false;
    bool isShown = false;
    bool asJson = false;
};

struct CheckOptions {
    std::string table;
    std::string key;
    bool asJson = false;
};

/// What a person named, or where the board has it.
std::string placeOf(const std::string& named, const char* onBoard)
{
    return named.empty() ? host::boardPath(onBoard) : named;
}

/// The table as a gateway of this node takes it, with what there is to complain about.
gateway::TableReading readOwnTable(const std::string& path, const gateway::PublicKey& ownKey)
{
    const TAaSysComNid ownNode = host::idInAddresses(host::nodeIdFromEnvironment());
    gateway::TableReading reading = gateway::readTable(path, ownNode);
    const gateway::TableRow* const own = reading.table.find(ownNode);
    if (own && own->key != ownKey) {
        reading.complaints.push_back({0, "node " + hexNumber(ownNode, 4) +
                                             ", this one, has another key than its key file: " + ownKey.text() +
                                             " is expected"});
    }
    return reading;
}

constexpr std::uint64_t greatestQueueMessages = 1U << 24;
constexpr std::uint64_t greatestQueueBytes = 1U << 30;

gateway::GatewayOptions gatewayOptions(const RunOptions& options)
{
    gateway::GatewayOptions result;
    std::uint64_t messages = result.queueMessages;
    std::uint64_t bytes = result.queueBytes;
    if (!options.queueMessages.empty()) {
        messages = parseNumber("--queue-messages", options.queueMessages, greatestQueueMessages);
    }
    if (!options.queueBytes.empty()) {
        bytes = parseSize("--queue-bytes", options.queueBytes);
    }
    if (messages == 0 || bytes == 0 || bytes > greatestQueueBytes) {
        throw UsageError("a queue has room for 1 message and 1 byte at least, and for 1G at most");
    }
    result.listenAddress = options.listenAddress;
    result.queueMessages = static_cast<std::size_t>(messages);
    result.queueBytes = static_cast<std::size_t>(bytes);
    result.allQueuesBytes = std::max(result.allQueuesBytes, result.queueBytes);
    return result;
}

Outcome run(const RunOptions& options, Console&)
{
    const gateway::GatewayOptions bounds = gatewayOptions(options);
    const gateway::KeyPair keys = gateway::readKeyFile(placeOf(options.key, gateway::defaultKeyFile));
    const std::string path = placeOf(options.table, gateway::defaultTableFile);
    const gateway::TableReading reading = readOwnTable(path, keys.publicKey);
    host::nameLog("Gateway");
    for (const gateway::TableComplaint& complaint : reading.complaints) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Error, "%s", complaintText(path, complaint).c_str());
    }
    gateway::Gateway gateway(host::PerNode<host::RunDirectory>::get(), reading.table, keys, bounds);
    const StopRequest stop([&gateway] { gateway.stop(); });
    gateway.run();
    return Outcome::Fine;
}

const CLI::App& addRun(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<RunOptions>();
    VerbText text{"run", "Carries messages between this node and the others of a table, until Ctrl-C or SIGTERM",
                  "dorn gateway run --table /opt/dorn/gateway.table"};
    text.isService = true;
    CLI::App& verb = program.addVerb(noun, text, [options](Console& console) { return run(*options, console); });
    verb.add_option("--table", options->table, tableHelp)->type_name("FILE");
    verb.add_option("--key", options->key, keyHelp)->type_name("FILE");
    verb.add_option("--listen", options->listenAddress, "Address to listen on; all of this machine without one")
        ->type_name("ADDRESS");
    verb.add_option("--queue-messages", options->queueMessages, "Messages that may wait for a node; 65536 without")
        ->type_name("N");
    verb.add_option("--queue-bytes", options->queueBytes, "Their bytes; 16M without, 1G at most")->type_name("SIZE");
    return verb;
}

gateway::GatewayStatus fetchOwnStatus()
{
    const NodePlace node;
    node.require(NodePart::Gateway);
    const gateway::FetchedStatus fetched = gateway::fetchStatus(host::PerNode<host::RunDirectory>::get());
    if (fetched.status) {
        return *fetched.status;
    }
    if (fetched.holder == 0) {
        throw Failure("no gateway runs on " + node.nodeName() + "; start 'dorn gateway run'");
    }
    const std::string process = fetched.holder > 0 ? ", process " + std::to_string(fetched.holder) + "," : "";
    throw Failure("the gateway of " + node.nodeName() + process + " does not answer");
}

Outcome status(const StatusOptions& options, Console& console)
{
    const gateway::GatewayStatus told = answerOf("the node's gateway", fetchOwnStatus);
    const host::Nanoseconds now = host::Clock::get().wall();
    console.print(options.asJson ? jsonText(gatewayJson(told, now)) : gatewayText(told, now, console));
    Outcome outcome = Outcome::Fine;
    for (const gateway::LinkStatus& link : told.links) {
        if (options.isToBeUp && link.state != gateway::LinkState::Up) {
            console.remark(downText(link));
            outcome = Outcome::No;
        }
    }
    return outcome;
}

void addStatus(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<StatusOptions>();
    CLI::App& verb =
        program.addVerb(noun, {"status", "Shows the gateway and its link to each node", "dorn gateway status --up"},
                        [options](Console& console) { return status(*options, console); });
    verb.add_flag("--up", options->isToBeUp, "Status 1 unless every link is up");
    verb.add_flag("--json", options->asJson, "Prints JSON");
}

gateway::KeyPair makeKeyFile(const std::string& path, bool isForced)
{
    const gateway::KeyPair keys = gateway::makeKeyPair();
    gateway::writeKeyFile(path, keys, isForced ? gateway::OldKey::Replaced : gateway::OldKey::Kept);
    return keys;
}

Outcome keys(const KeysOptions& options, Console& console)
{
    const std::string path = placeOf(options.file, gateway::defaultKeyFile);
    const gateway::PublicKey key =
        (options.isShown ? gateway::readKeyFile(path) : makeKeyFile(path, options.isForced)).publicKey;
    console.print(options.asJson ? jsonText({{"file", path}, {"publicKey", key.text()}}) : key.text() + "\n");
    return Outcome::Fine;
}

void addKeys(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<KeysOptions>();
    CLI::App& verb =
        program.addVerb(noun,
                        {"keys", "Makes the node's key pair, keeps the secret key in a file and prints the public one",
                         "dorn gateway keys", "", 1},
                        [options](Console& console) { return keys(*options, console); });
    verb.add_option("FILE", options->file, "File of the key pair; /opt/dorn/gateway.key of the board without one");
    CLI::Option* const force = verb.add_flag("--force", options->isForced,
                                             "Replaces keys that are there; other nodes' tables need the new one");
    verb.add_flag("--show", options->isShown, "Makes nothing: prints the public key that is there")->excludes(force);
    verb.add_flag("--json", options->asJson, "Prints JSON");
}

Json tableJson(const gateway::TableReading& reading)
{
    Json nodes = Json::array();
    for (const gateway::TableRow& row : reading.table.rows()) {
        nodes.push_back({{"node", row.node}, {"host", row.host}, {"port", row.port}, {"publicKey", row.key.text()}});
    }
    Json complaints = Json::array();
    for (const gateway::TableComplaint& complaint : reading.complaints) {
        complaints.push_back({{"line", complaint.line}, {"text", complaint.text}});
    }
    return {{"nodes", nodes}, {"complaints", complaints}};
}

std::string tableText(const gateway::Table& nodes, const Console& console)
{
    Table table({"NODE", "HOST", "PORT", "PUBLIC KEY"});
    for (const gateway::TableRow& row : nodes.rows()) {
        table.add({hexNumber(row.node, 4), row.host, std::to_string(row.port), row.key.text()});
    }
    return nodes.rows().empty() ? "" : table.text(console);
}

/// Where a table is written, as on a PC, there need be no node with keys of its own. What cannot be looked at is there.
bool isThere(const std::string& file)
{
    std::error_code ignored;
    return std::filesystem::symlink_status(file, ignored).type() != std::filesystem::file_type::not_found;
}

Outcome check(const CheckOptions& options, Console& console)
{
    const std::string path = placeOf(options.table, gateway::defaultTableFile);
    const std::string keyFile = placeOf(options.key, gateway::defaultKeyFile);
    const bool isNode = !options.key.empty() || isThere(keyFile);
    const gateway::TableReading reading =
        isNode ? readOwnTable(path, gateway::readKeyFile(keyFile).publicKey) : gateway::readTable(path);
    console.print(options.asJson ? jsonText(tableJson(reading)) : tableText(reading.table, console));
    for (const gateway::TableComplaint& complaint : reading.complaints) {
        console.remark(complaintText(path, complaint));
    }
    if (!isNode) {
        console.remark("no key file '" + keyFile +
                       "' here: whether the table has the row of this node was not checked");
    }
    return reading.complaints.empty() ? Outcome::Fine : Outcome::No;
}

void addCheck(Program& program, CLI::App& noun)
{
    const auto options = std::make_shared<CheckOptions>();
    CLI::App& verb = program.addVerb(noun,
                                     {"check", "Prints the table of nodes and says what is wrong with it",
                                      "dorn gateway check /opt/dorn/gateway.table", "", 1},
                                     [options](Console& console) { return check(*options, console); });
    verb.add_option("TABLE", options->table, tableHelp);
    verb.add_option("--key", options->key, checkKeyHelp)->type_name("FILE");
    verb.add_flag("--json", options->asJson, "Prints JSON");
}

} // namespace

void addGatewayNoun(Program& program)
{
    CLI::App& noun = program.addNoun("gateway", "The node's gateway to the other nodes");
    program.setVerbOfBareNoun(noun, addRun(program, noun));
    addStatus(program, noun);
    addKeys(program, noun);
    addCheck(program, noun);
}

} // namespace dorn::tool
