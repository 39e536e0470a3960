// SPDX-License-Identifier: MIT
/// @file RAML_MOParameterType.hpp
/// What a managed object's parameters have in common: simple values (RAML_ParameterType) and lists (RAML_ListType).
#pragma once

#include "raml/RamlDefs.hpp"

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <string>

namespace RAML {

/// A parameter of a managed object: a value or a list, which getType() tells apart.
class RAML_MOParameterType {
public:
    /// How the model holds it; freed with its last holder.
    using pointer = boost::shared_ptr<RAML_MOParameterType>;

    /// A new value without name.
    static pointer create() { return boost::make_shared<RAML_MOParameterType>(); }

    RAML_MOParameterType() = default;
    /// @param paramType RAML_P or RAML_LIST
    RAML_MOParameterType(RAML_ParamType paramType, std::string paramName);
    RAML_MOParameterType(const RAML_MOParameterType&) = delete;
    RAML_MOParameterType& operator=(const RAML_MOParameterType&) = delete;
    virtual ~RAML_MOParameterType();

    /// RAML_P: a RAML_ParameterType; RAML_LIST: a RAML_ListType.
    RAML_ParamType getType() const { return type; }

    /// The name of a kind, e.g. "RAML_LIST". A value that is none gives the empty text and an error line.
    static std::string paramTypeToString(const RAML_ParamType& paramType);

    /// Attribute `name`; need not be unique in its object.
    std::string name;
    /// See getType().
    RAML_ParamType type = RAML_P;
};

} // namespace RAML
