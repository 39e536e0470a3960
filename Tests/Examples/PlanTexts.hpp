// SPDX-License-Identifier: MIT
/// @file PlanTexts.hpp
/// Plans of a board for tests.
#pragma once

#include <string>

namespace dorn::examples {

/// A parameter of a managed object.
inline std::string planned(const std::string& name, const std::string& value)
{
    return "<p name='" + name + "'>" + value + "</p>";
}

/// A plan for one managed object around @p parameters.
inline std::string planFor(const std::string& distName, const std::string& parameters,
                           const std::string& operation = "update", const std::string& type = "plan")
{
    return "<raml version='2.1E' xmlns='raml21.xsd'><cmData type='" + type + "'><managedObject class='A' distName='" +
           distName + "' operation='" + operation + "'>" + parameters + "</managedObject></cmData></raml>";
}

} // namespace dorn::examples
