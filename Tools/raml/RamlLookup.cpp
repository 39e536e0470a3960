// SPDX-License-Identifier: MIT
#include "raml/RamlLookup.hpp"

#include "Outcome.hpp"
#include "files/InputFile.hpp"
#include "text/Values.hpp"

namespace dorn::tool {
namespace {

using namespace RAML;

/// "it has limit, mode", of many the first.
std::string parameterNames(const RAML_ManagedObjectType& object)
{
    constexpr std::size_t most = 12;
    if (object.mParameters.empty()) {
        return "it has none";
    }
    std::string names;
    for (std::size_t index = 0; index < object.mParameters.size(); ++index) {
        if (index == most) {
            return "it has " + names + " and " + std::to_string(object.mParameters.size() - most) + " more";
        }
        names += (names.empty() ? "" : ", ") + printable(object.mParameters[index]->name);
    }
    return "it has " + names;
}

} // namespace

RAML_ManagedObjectType::pointer findObject(const RAML_Type& document, const std::string& file,
                                           const std::string& distName)
{
    for (const RAML_CMDataType::pointer& block : document.cmDataList) {
        if (RAML_ManagedObjectType::pointer object = block->findManagedObject(distName)) {
            return object;
        }
    }
    throw Failure("there is no managed object '" + printable(distName) + "' in " + shownName(file) +
                  "; 'dorn raml show --names' lists all that there are");
}

RAML_MOParameterType::pointer findParameter(const RAML_ManagedObjectType& object, const std::string& name)
{
    if (RAML_MOParameterType::pointer parameter = object.findParameter(name)) {
        return parameter;
    }
    throw Failure("managed object '" + printable(object.mDistName) + "' has no parameter '" + printable(name) + "'; " +
                  parameterNames(object));
}

} // namespace dorn::tool
