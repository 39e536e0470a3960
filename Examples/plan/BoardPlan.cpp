// SPDX-License-Identifier: MIT
#include "BoardPlan.hpp"

#include "AaFile.h"
#include "AaSysLog.h"
#include "raml/RamlParser.hpp"
#include "raml/dataclasses/RAML_ParameterType.hpp"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <string>
#include <vector>

namespace dorn::examples {
namespace {

using namespace RAML;
using Numbers = std::vector<PlanNumber>;

/// A board does without a plan; that is not worth an error line.
bool isThere(const char* file)
{
    AaFile* const opened = AaFileOpen(file, "r");
    const bool isMissing = !opened && errno == ENOENT;
    AaFileClose(opened);
    return !isMissing;
}

RAML_ManagedObjectType::pointer findPlanned(const RAML_Type& document, const char* distName)
{
    for (const RAML_CMDataType::pointer& block : document.cmDataList) {
        if (block->type == RAML_PLAN_CANDIDATE) {
            if (RAML_ManagedObjectType::pointer object = block->findManagedObject(distName)) {
                return object;
            }
        }
    }
    return {};
}

/// @return false when it is no number that makes sense.
bool parse(const std::string& text, PlanNumber& number)
{
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number.value);
    return error == std::errc() && rest == end && number.value >= number.least && number.value <= number.greatest;
}

/// @return what is wrong, empty when nothing is.
std::string takeParameter(const RAML_MOParameterType& parameter, Numbers& numbers)
{
    const auto number = std::find_if(numbers.begin(), numbers.end(),
                                     [&parameter](const PlanNumber& one) { return parameter.name == one.name; });
    if (number == numbers.end()) {
        return "nobody knows " + parameter.name; // most likely misspelt, so that another stays as it is unnoticed
    }
    const auto* const simple = dynamic_cast<const RAML_ParameterType*>(&parameter);
    if (!simple || !parse(simple->value, *number)) {
        return parameter.name + " is no number from " + std::to_string(number->least) + " to " +
               std::to_string(number->greatest);
    }
    return {};
}

/// @return what is wrong, empty when nothing is.
std::string takeObject(const RAML_ManagedObjectType& object, Numbers& numbers, PlanCheck check)
{
    if (object.mOperation != RAML_OP_CREATE && object.mOperation != RAML_OP_UPDATE) {
        return "it is neither created nor updated";
    }
    for (const RAML_MOParameterType::pointer& parameter : object.mParameters) {
        if (std::string trouble = takeParameter(*parameter, numbers); !trouble.empty()) {
            return trouble;
        }
    }
    const char* const nonsense = check ? check(numbers) : nullptr;
    return nonsense ? nonsense : "";
}

std::string textOf(std::span<const PlanNumber> numbers)
{
    std::string text;
    for (const PlanNumber& number : numbers) {
        text += std::string(" ") + number.name + "=" + std::to_string(number.value);
    }
    return text;
}

} // namespace

bool applyPlan(ERadHwapi feature, const char* distName, std::span<PlanNumber> numbers, PlanCheck check)
{
    if (!isThere(boardPlanFile)) {
        return false;
    }
    RAML_ParsingResult result = RAML_OK;
    const RAML_Type::pointer document = RamlParser().parseRaml(boardPlanFile, result, true);
    const RAML_ManagedObjectType::pointer object = document ? findPlanned(*document, distName) : nullptr;
    if (result == RAML_OK && !object) {
        return false; // it is for others
    }
    Numbers planned(numbers.begin(), numbers.end());
    const std::string trouble =
        result == RAML_OK ? takeObject(*object, planned, check) : "the document has errors or cannot be read";
    if (!trouble.empty()) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Warning, feature, "Plan %s not applied to %s: %s", boardPlanFile,
                       distName, trouble.c_str());
        return false;
    }
    std::copy(planned.begin(), planned.end(), numbers.begin());
    AaSysLogPrintE(EAaSysLogSeverityLevel_Vip, feature, "Plan %s applied to %s:%s", boardPlanFile, distName,
                   textOf(numbers).c_str());
    return true;
}

} // namespace dorn::examples
