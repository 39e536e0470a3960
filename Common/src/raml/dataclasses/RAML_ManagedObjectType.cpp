// SPDX-License-Identifier: MIT
#include "raml/dataclasses/RAML_ManagedObjectType.hpp"

#include "AaSysLog.h"
#include "rad/ERadHwapi.h"

#include <sstream>

namespace RAML {

RAML_ManagedObjectType::RAML_ManagedObjectType()
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "Constructor of Raml_ManagedObjectType [%s] %p",
                   mDistName.c_str(), static_cast<void*>(this));
}

RAML_ManagedObjectType::~RAML_ManagedObjectType()
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "Destructor of Raml_ManagedObjectType [%s] %p",
                   mDistName.c_str(), static_cast<void*>(this));
}

RAML_MOParameterType::pointer RAML_ManagedObjectType::findParameter(const std::string& name) const
{
    for (const RAML_MOParameterType::pointer& parameter : mParameters) {
        if (parameter && parameter->name == name) {
            AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "parameter [%s] found", name.c_str());
            return parameter;
        }
    }
    return {};
}

std::string RAML_ManagedObjectType::toString(const RAML_MOOperationType& operation) const
{
    std::ostringstream text;
    text << operation;
    return text.str();
}

} // namespace RAML
