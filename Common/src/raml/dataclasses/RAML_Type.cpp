// SPDX-License-Identifier: MIT
#include "raml/dataclasses/RAML_Type.hpp"

#include "AaSysLog.h"
#include "rad/ERadHwapi.h"

namespace RAML {

RAML_Type::RAML_Type()
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "Constructor of Raml_Type");
}

RAML_Type::~RAML_Type()
{
    clearCmDataList();
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "Destructor of Raml_Type");
}

} // namespace RAML
