// SPDX-License-Identifier: MIT
/// @file RamlDocuments.hpp
/// Small RAML documents for tests of the noun raml.
#pragma once

#include "raml/RamlParser.hpp"

#include <gtest/gtest.h>
#include <string>

namespace dorn::tool {

/// A document with one block around @p objects.
inline std::string ramlAround(const std::string& objects)
{
    return "<raml version=\"2.1E\" xmlns=\"raml21.xsd\">\n"
           "  <cmData type=\"plan\" id=\"1\">\n" +
           objects +
           "  </cmData>\n"
           "</raml>\n";
}

/// A managed object around @p parameters.
inline std::string ramlObject(const std::string& className, const std::string& distName,
                              const std::string& parameters = "", const std::string& operation = "create")
{
    return "    <managedObject class=\"" + className + "\" distName=\"" + distName + "\" operation=\"" + operation +
           "\">\n" + parameters + "    </managedObject>\n";
}

/// A simple parameter.
inline std::string ramlParameter(const std::string& name, const std::string& value)
{
    return "      <p name=\"" + name + "\">" + value + "</p>\n";
}

/// The model of a document that must be good.
inline RAML::RAML_Type::pointer ramlModel(const std::string& text)
{
    RAML::RAML_ParsingResult result = RAML::RAML_OK;
    RAML::RAML_Type::pointer document = RAML::RamlParser().parseRaml(text, result, false);
    EXPECT_EQ(result, RAML::RAML_OK) << text;
    return document ? document : RAML::RAML_Type::create();
}

} // namespace dorn::tool
