// SPDX-License-Identifier: MIT
/// @file RAML_ListParameterType.hpp
/// A bare value inside a list.
#pragma once

#include "raml/dataclasses/RAML_ListElementType.hpp"

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <string>

namespace RAML {

/// A bare value inside a list.
class RAML_ListParameterType : public RAML_ListElementType {
public:
    /// How the model holds it; freed with its last holder.
    using pointer = boost::shared_ptr<RAML_ListParameterType>;

    /// A new, empty value.
    static pointer create() { return boost::make_shared<RAML_ListParameterType>(); }

    RAML_ListParameterType() : RAML_ListElementType(RAML_LIST_P) {}

    std::string value; ///< the element's character content
};

} // namespace RAML
