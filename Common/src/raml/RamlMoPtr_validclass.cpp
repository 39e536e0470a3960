// SPDX-License-Identifier: MIT
#include "raml/RamlMoPtr_validclass.hpp"

#include "AaSysLog.h"
#include "rad/ERadHwapi.h"

namespace RAML {

bool RamlMoPtr_validclass::operator()(const RAML_ManagedObjectType::pointer& mo) const
{
    if (!mo) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                       "empty RamlMo::pointer in RamlMoPtr_validclass::operator()");
        return false;
    }
    return mrTmlValidClasses.contains(mo->mClassname);
}

} // namespace RAML
