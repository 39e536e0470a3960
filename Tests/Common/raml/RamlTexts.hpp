// SPDX-License-Identifier: MIT
/// @file RamlTexts.hpp
/// RAML documents around what a test is about.
#pragma once

#include <string>

namespace dorn::test {

inline std::string inRaml(const std::string& content)
{
    return "<raml version='2.1' xmlns='ns'>" + content + "</raml>";
}

inline std::string inBlock(const std::string& content)
{
    return inRaml("<cmData type='actual' scope='all'>" + content + "</cmData>");
}

/// A managed object of class A.
inline std::string object(const std::string& distName, const std::string& content = {})
{
    return "<managedObject class='A' distName='" + distName + "' operation='create'>" + content + "</managedObject>";
}

inline std::string inObject(const std::string& content)
{
    return inBlock(object("A-1", content));
}

inline std::string inList(const std::string& content)
{
    return inObject("<list name='l'>" + content + "</list>");
}

inline std::string inItem(const std::string& content)
{
    return inList("<item>" + content + "</item>");
}

} // namespace dorn::test
