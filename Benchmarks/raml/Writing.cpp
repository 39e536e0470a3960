// SPDX-License-Identifier: MIT
/// @file Writing.cpp
/// Registers our writing to a string stream, next to a plain writer that does the same inserts without escaping.
#include "raml/Documents.hpp"
#include "raml/FreshProcess.hpp"

#include "raml/RAML_ostream.hpp"
#include "raml/RamlParser.hpp"
#include "raml/dataclasses/RAML_ItemType.hpp"
#include "raml/dataclasses/RAML_ListParameterType.hpp"
#include "raml/dataclasses/RAML_ListType.hpp"
#include "raml/dataclasses/RAML_ParameterType.hpp"

#include <cstdlib>
#include <ostream>
#include <sstream>

namespace {

using namespace dorn::benchmarks;
using namespace RAML;

void writePlainList(std::ostream& stream, const RAML_ListType& list)
{
    stream << "      <list name=\"" << list.name << "\">" << std::endl;
    for (const RAML_ListElementType::pointer& element : list.listElements) {
        if (element->type == RAML_LIST_P) {
            stream << "        <p>" << static_cast<const RAML_ListParameterType&>(*element).value << "</p>"
                   << std::endl;
            continue;
        }
        stream << "        <item>" << std::endl;
        for (const RAML_ItemParameterType& parameter : static_cast<const RAML_ItemType&>(*element).params) {
            stream << "          <p name=\"" << parameter.name << "\">" << parameter.value << "</p>" << std::endl;
        }
        stream << "        </item>" << std::endl;
    }
    stream << "      </list>";
}

void writePlainObject(std::ostream& stream, const RAML_ManagedObjectType& mo)
{
    stream << "    <managedObject class=\"" << mo.mClassname << "\" "
           << "operation=\""
           << "create"
           << "\""
           << " distName=\"" << mo.mDistName << "\" version=\"" << mo.mVersion << "\">" << std::endl;
    for (const RAML_MOParameterType::pointer& parameter : mo.mParameters) {
        if (parameter->type == RAML_P) {
            stream << "      <p name=\"" << parameter->name << "\">"
                   << static_cast<const RAML_ParameterType&>(*parameter).value << "</p>";
        } else {
            writePlainList(stream, static_cast<const RAML_ListType&>(*parameter));
        }
        stream << std::endl;
    }
    stream << "    </managedObject>" << std::endl;
}

void writePlain(std::ostream& stream, const RAML_Type& document)
{
    stream << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>" << std::endl;
    stream << "<raml version=\"" << document.version << "\" xmlns=\"" << document.xmlns << "\">" << std::endl;
    for (const RAML_CMDataType::pointer& cmData : document.cmDataList) {
        stream << "  <cmData id=\"" << cmData->id << "\" type=\""
               << "actual"
               << "\" scope=\""
               << "all"
               << "\" domain=\"" << cmData->domain << "\" adaptationVersionMajor=\"" << cmData->adaptationVersionMajor
               << "\" >" << std::endl;
        stream << cmData->header << std::endl; // one
        for (const RAML_ManagedObjectType::pointer& mo : cmData->managedObjects) {
            writePlainObject(stream, *mo);
            stream << std::endl;
        }
        stream << "  </cmData>" << std::endl << std::endl;
    }
    stream << "</raml>" << std::endl;
}

void writeOurs(std::ostream& stream, const RAML_Type& document)
{
    stream << document;
}

/// Measures a writer as "raml/write/<name>". An item is a byte.
bool registerWriting(const std::string& name, void (*write)(std::ostream& stream, const RAML_Type& document))
{
    benchmark::RegisterBenchmark(("raml/write/" + name).c_str(), [write](benchmark::State& state) {
        RAML_ParsingResult result{};
        const RAML_Type::pointer document = RamlParser().parseRaml(siteDocument(10 * megabyte), result, false);
        std::ostringstream ours;
        ours << *document;
        measureInFreshProcesses(state, ours.str().size(), [&] {
            std::ostringstream stream;
            write(stream, *document);
            if (stream.view() != ours.view()) {
                std::abort();
            }
        });
    })->UseManualTime();
    return true;
}

[[maybe_unused]] const bool isRegistered = registerWriting("dorn", writeOurs) && registerWriting("plain", writePlain);

} // namespace
