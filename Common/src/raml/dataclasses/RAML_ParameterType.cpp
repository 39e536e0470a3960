// SPDX-License-Identifier: MIT
#include "raml/dataclasses/RAML_ParameterType.hpp"

#include "AaSysLog.h"
#include "rad/ERadHwapi.h"

namespace RAML {

RAML_ParameterType::RAML_ParameterType() : RAML_MOParameterType(RAML_P, {}) {}

RAML_ParameterType::~RAML_ParameterType()
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "Destructor of RAML_ParameterType");
}

} // namespace RAML
