// SPDX-License-Identifier: MIT
#include "raml/RamlMoPtr_less.hpp"

#include "AaSysLog.h"
#include "rad/ERadHwapi.h"

namespace RAML {

bool RamlMoPtr_less::operator()(const RAML_ManagedObjectType::pointer& mo1,
                                const RAML_ManagedObjectType::pointer& mo2) const
{
    if (!mo1) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                       "empty mo1 in RamlMo::pointer in RamlMoPtr_less::operator()");
        return false;
    }
    if (!mo2) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, ERadHwapi_RAML,
                       "empty mo2 in RamlMo::pointer in RamlMoPtr_less::operator()");
        return true;
    }
    const auto rank1 = mrTmlValidClasses.find(mo1->mClassname);
    const auto rank2 = mrTmlValidClasses.find(mo2->mClassname);
    if (rank1 == mrTmlValidClasses.end()) {
        return false;
    }
    return rank2 == mrTmlValidClasses.end() || rank1->second < rank2->second;
}

} // namespace RAML
