// SPDX-License-Identifier: MIT
/// @file RAML_ListElementType.hpp
/// What the elements of a list have in common: bare values (RAML_ListParameterType) and items (RAML_ItemType).
#pragma once

#include "raml/RamlDefs.hpp"

#include <boost/shared_ptr.hpp>

namespace RAML {

class RAML_ListElementType {
public:
    using pointer = boost::shared_ptr<RAML_ListElementType>;

    explicit RAML_ListElementType(RAML_ParamType elementType);
    RAML_ListElementType(const RAML_ListElementType&) = delete;
    RAML_ListElementType& operator=(const RAML_ListElementType&) = delete;
    virtual ~RAML_ListElementType() = default;

    RAML_ParamType getType() const { return type; }

    RAML_ParamType type;
};

} // namespace RAML
