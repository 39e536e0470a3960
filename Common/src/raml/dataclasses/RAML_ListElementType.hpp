// SPDX-License-Identifier: MIT
/// @file RAML_ListElementType.hpp
/// What the elements of a list have in common: bare values (RAML_ListParameterType) and items (RAML_ItemType).
#pragma once

#include "raml/RamlDefs.hpp"

#include <boost/shared_ptr.hpp>

namespace RAML {

/// What a list is made of: a bare value or an item, which getType() tells apart.
class RAML_ListElementType {
public:
    /// How the model holds it; freed with its last holder.
    using pointer = boost::shared_ptr<RAML_ListElementType>;

    /// @param elementType RAML_LIST_P or RAML_ITEM
    explicit RAML_ListElementType(RAML_ParamType elementType);
    RAML_ListElementType(const RAML_ListElementType&) = delete;
    RAML_ListElementType& operator=(const RAML_ListElementType&) = delete;
    virtual ~RAML_ListElementType() = default;

    /// RAML_LIST_P: a RAML_ListParameterType; RAML_ITEM: a RAML_ItemType.
    RAML_ParamType getType() const { return type; }

    /// See getType().
    RAML_ParamType type;
};

} // namespace RAML
