// SPDX-License-Identifier: MIT
/// @file RAML_ListType.hpp
/// A list among a managed object's parameters.
#pragma once

#include "raml/dataclasses/RAML_ListElementType.hpp"
#include "raml/dataclasses/RAML_MOParameterType.hpp"

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <utility>
#include <vector>

namespace RAML {

/// A parameter with a list of values or items.
class RAML_ListType : public RAML_MOParameterType {
public:
    /// How the model holds it; freed with its last holder.
    using pointer = boost::shared_ptr<RAML_ListType>;

    /// A new list without name and elements.
    static pointer create() { return boost::make_shared<RAML_ListType>(); }

    RAML_ListType() : RAML_MOParameterType(RAML_LIST, {}) {}

    /// Appends a RAML_ListParameterType::pointer or a RAML_ItemType::pointer.
    template <class Pointer>
    void add(Pointer element)
    {
        listElements.push_back(std::move(element));
    }
    /// Takes all elements out; those that somebody else holds live on.
    void clear() { listElements.clear(); }

    std::vector<RAML_ListElementType::pointer> listElements; ///< in the order of the document
};

} // namespace RAML
