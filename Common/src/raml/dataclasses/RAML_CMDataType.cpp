// SPDX-License-Identifier: MIT
#include "raml/dataclasses/RAML_CMDataType.hpp"

#include "AaSysLog.h"
#include "rad/ERadHwapi.h"
#include "raml/RAML_ostream.hpp"

#include <algorithm>
#include <iostream>

namespace RAML {

RAML_CMDataType::RAML_CMDataType()
{
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "Constructor of CmDataType [%s]", name.c_str());
}

RAML_CMDataType::~RAML_CMDataType()
{
    clearMOs();
    AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "Destructor of CmDataType [%s]", name.c_str());
}

RAML_ManagedObjectType::pointer RAML_CMDataType::findManagedObject(const std::string& distName) const
{
    for (const RAML_ManagedObjectType::pointer& mo : managedObjects) {
        if (mo && mo->mDistName == distName) {
            AaSysLogPrintE(EAaSysLogSeverityLevel_Debug, ERadHwapi_RAML, "managed object [%s] found", distName.c_str());
            return mo;
        }
    }
    return {};
}

void RAML_CMDataType::sort(const TmlMoHierarchyMap& classes)
{
    const RamlMoPtr_validclass isValid(classes);
    for (const RAML_ManagedObjectType::pointer& mo : managedObjects) {
        if (!isValid(mo) && mo) {
            std::cout << mo << "\n";
        }
    }
    // What is left behind the valid objects stays: pointers that were moved to the front are empty, so that no object
    // stands twice.
    static_cast<void>(std::remove_if(managedObjects.begin(), managedObjects.end(),
                                     [&isValid](const RAML_ManagedObjectType::pointer& mo) { return !isValid(mo); }));
    std::sort(managedObjects.begin(), managedObjects.end(), RamlMoPtr_less(classes));
}

std::string RAML_CMDataType::toString(RAML_PlanType plan) const
{
    switch (plan) {
    case RAML_PLAN_ACTUAL:
        return "actual";
    case RAML_PLAN_CANDIDATE:
        return "plan";
    case RAML_PLAN_DEFAULTS:
        return "defaults";
    case RAML_PLAN_NONE:
        return "none";
    }
    return {};
}

std::string RAML_CMDataType::toString(RAML_ScopeType scopeOfBlock) const
{
    switch (scopeOfBlock) {
    case RAML_SCOPE_ALL:
        return "all";
    case RAML_SCOPE_HIERARCHY:
        return "hierarchy";
    case RAML_SCOPE_CHANGES:
        return "changes";
    case RAML_SCOPE_SELECTION:
        return "selection";
    case RAML_SCOPE_NONE:
    case RAML_SCOPE_INVALID:
        break;
    }
    return {};
}

} // namespace RAML
