// SPDX-License-Identifier: MIT
#include "raml/dataclasses/RAML_ListElementType.hpp"

#include "AaSysLog.h"
#include "rad/ERadHwapi.h"
#include "raml/dataclasses/RAML_MOParameterType.hpp"

namespace RAML {

RAML_ListElementType::RAML_ListElementType(RAML_ParamType elementType) : type(elementType)
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "Constructor RAML_ListElementType (type=%s)",
                   RAML_MOParameterType::paramTypeToString(type).c_str());
}

} // namespace RAML
