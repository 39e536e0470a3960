// SPDX-License-Identifier: MIT
/// @file RAML_ParameterType.hpp
/// A simple parameter of a managed object: a named value.
#pragma once

#include "raml/dataclasses/RAML_MOParameterType.hpp"

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <string>
#include <utility>

namespace RAML {

/// A parameter with a single value.
class RAML_ParameterType : public RAML_MOParameterType {
public:
    /// How the model holds it; freed with its last holder.
    using pointer = boost::shared_ptr<RAML_ParameterType>;

    /// A new parameter without name and value.
    static pointer create() { return boost::make_shared<RAML_ParameterType>(); }
    /// A new parameter with name and value.
    static pointer create(std::string nameOfParameter, std::string valueOfParameter)
    {
        pointer parameter = create();
        parameter->name = std::move(nameOfParameter);
        parameter->value = std::move(valueOfParameter);
        return parameter;
    }

    RAML_ParameterType();
    ~RAML_ParameterType() override;

    std::string value; ///< the element's character content
};

} // namespace RAML
