// SPDX-License-Identifier: MIT
/// @file RAML_MOParameterType.hpp
/// What a managed object's parameters have in common: simple values (RAML_ParameterType) and lists (RAML_ListType).
#pragma once

#include "raml/RamlDefs.hpp"

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <string>

namespace RAML {

class RAML_MOParameterType {
public:
    using pointer = boost::shared_ptr<RAML_MOParameterType>;

    static pointer create() { return boost::make_shared<RAML_MOParameterType>(); }

    RAML_MOParameterType() = default;
    RAML_MOParameterType(RAML_ParamType paramType, std::string paramName);
    RAML_MOParameterType(const RAML_MOParameterType&) = delete;
    RAML_MOParameterType& operator=(const RAML_MOParameterType&) = delete;
    virtual ~RAML_MOParameterType();

    RAML_ParamType getType() const { return type; }

    /// The name of a kind, e.g. "RAML_LIST". A value that is none gives the empty text and an error line.
    static std::string paramTypeToString(const RAML_ParamType& paramType);

    std::string name;
    RAML_ParamType type = RAML_P;
};

} // namespace RAML
