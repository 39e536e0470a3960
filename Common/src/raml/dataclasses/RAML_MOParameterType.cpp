// SPDX-License-Identifier: MIT
#include "raml/dataclasses/RAML_MOParameterType.hpp"

#include "AaSysLog.h"
#include "rad/ERadHwapi.h"

#include <utility>

namespace RAML {

RAML_MOParameterType::RAML_MOParameterType(RAML_ParamType paramType, std::string paramName)
    : name(std::move(paramName)), type(paramType)
{
}

RAML_MOParameterType::~RAML_MOParameterType()
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "Destructor of RAML_MOParameterType ");
}

std::string RAML_MOParameterType::paramTypeToString(const RAML_ParamType& paramType)
{
    switch (paramType) {
    case RAML_LIST:
        return "RAML_LIST";
    case RAML_LIST_P:
        return "RAML_LIST_P";
    case RAML_P:
        return "RAML_P";
    case RAML_ITEM:
        return "RAML_ITEM";
    }
    AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML, "No such RAML_ParamType");
    return {};
}

} // namespace RAML
