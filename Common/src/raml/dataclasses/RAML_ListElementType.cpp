// SPDX-License-Identifier: MIT
#include "raml/dataclasses/RAML_ListElementType.hpp"

#include "AaSysLog.h"
#include "rad/ERadHwapi.h"
#include "raml/dataclasses/RAML_MOParameterType.hpp"

#include <string>

namespace RAML {

RAML_ListElementType::RAML_ListElementType(RAML_ParamType elementType) : type(elementType)
{
    // Not inside the call, which evaluates its arguments only while debug lines are on: a wrong type is an error line.
    const std::string typeName = RAML_MOParameterType::paramTypeToString(type);
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "Constructor RAML_ListElementType (type=%s)",
                   typeName.c_str());
}

} // namespace RAML
