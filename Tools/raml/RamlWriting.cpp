// SPDX-License-Identifier: MIT
#include "raml/RamlWriting.hpp"

#include "Outcome.hpp"
#include "raml/RAML_ostream.hpp"
#include "raml/RamlDiff.hpp"
#include "raml/RamlFields.hpp"
#include "raml/RamlReading.hpp"
#include "raml/dataclasses/RAML_ListType.hpp"
#include "text/Values.hpp"

#include <CLI/CLI.hpp>
#include <sstream>

namespace dorn::tool {
namespace {

using namespace RAML;

template <class Part>
void countUnwritten(UnwrittenFields& counts, const char* element, const Part& part)
{
    for (const RamlField& field : fieldsOf(part)) {
        if (!field.isWritten) {
            ++counts[element + std::string("@") + std::string(field.name)];
        }
    }
}

void countUnwrittenOfLists(UnwrittenFields& counts, const RAML_ManagedObjectType& object)
{
    for (const RAML_MOParameterType::pointer& parameter : object.mParameters) {
        const auto* const list = dynamic_cast<const RAML_ListType*>(parameter.get());
        if (!list) {
            continue;
        }
        for (const RAML_ListElementType::pointer& element : list->listElements) {
            if (const auto* const item = dynamic_cast<const RAML_ItemType*>(element.get())) {
                countUnwritten(counts, "item", *item);
            }
        }
    }
}

/// The first operation that is written as none.
std::string unwrittenOperation(const RAML_Type& document)
{
    for (const RAML_CMDataType::pointer& block : document.cmDataList) {
        for (const RAML_ManagedObjectType::pointer& object : block->managedObjects) {
            if (object->toString(object->mOperation).empty()) {
                return "operation " + std::string(nameOf(object->mOperation)) + " of '" + object->mDistName +
                       "' is not written";
            }
        }
    }
    return {};
}

} // namespace

std::string writtenRaml(const RAML_Type& document)
{
    std::ostringstream stream;
    stream << document;
    return std::move(stream).str();
}

std::string whyNotKept(const RAML_Type& document, const std::string& written)
{
    if (std::string reason = unwrittenOperation(document); !reason.empty()) {
        return reason;
    }
    const RamlReading reading = readRaml(written, 1);
    if (reading.result != RAML_OK) {
        return "only one character of a parameter's value, and none elsewhere, is escaped; in what is written: " +
               findingText(reading.findings.front());
    }
    const std::vector<RamlChange> changes = diffRaml(document, *reading.document, RamlDiffFields::Written);
    return changes.empty() ? "" : "'" + changes.front().subject + "' reads back changed";
}

UnwrittenFields unwrittenFields(const RAML_Type& document)
{
    UnwrittenFields counts;
    for (const RAML_CMDataType::pointer& block : document.cmDataList) {
        countUnwritten(counts, "cmData", *block);
        for (const RAML_LogType& log : block->header.logs) {
            countUnwritten(counts, "log", log);
        }
        for (const RAML_ManagedObjectType::pointer& object : block->managedObjects) {
            countUnwritten(counts, "managedObject", *object);
            countUnwrittenOfLists(counts, *object);
        }
    }
    return counts;
}

WrittenRaml writeRaml(const RAML_Type& document, bool isForced)
{
    WrittenRaml written{writtenRaml(document), {}, unwrittenFields(document)};
    written.trouble = whyNotKept(document, written.text);
    if (!written.trouble.empty() && !isForced) {
        throw Failure("what services write would not read back: " + written.trouble +
                      "; --force prints it all the same");
    }
    return written;
}

void printWrittenRaml(const WrittenRaml& written, Console& console)
{
    console.print(written.text);
    if (!written.trouble.empty()) {
        console.remark("this does not read back: " + written.trouble);
    }
    std::string fields;
    for (const auto& [name, count] : written.unwritten) {
        fields += (fields.empty() ? "not written: " : ", ") + name + " (" + std::to_string(count) + ")";
    }
    if (!fields.empty()) {
        console.remark(fields);
    }
}

Json writtenRamlJson(const WrittenRaml& written)
{
    Json json{{"document", written.text},
              {"readsBack", written.trouble.empty()},
              {"trouble", nullptr},
              {"notWritten", Json::object()}};
    if (!written.trouble.empty()) {
        json["trouble"] = written.trouble;
    }
    for (const auto& [name, count] : written.unwritten) {
        json["notWritten"][name] = count;
    }
    return json;
}

void addRamlWriting(CLI::App& verb, RamlWritingOptions& options)
{
    verb.add_flag("--force", options.isForced, "Prints also what would not read back");
    verb.add_flag("--json", options.asJson, "Prints JSON: the document, and what gets lost");
}

} // namespace dorn::tool
