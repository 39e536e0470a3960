// SPDX-License-Identifier: MIT
/// @file RAML_ItemType.hpp
/// An item of a list: named values that belong together.
#pragma once

#include "raml/dataclasses/RAML_ItemParameterType.hpp"
#include "raml/dataclasses/RAML_ListElementType.hpp"

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

namespace RAML {

/// One `item` of a list: named values that belong together.
class RAML_ItemType : public RAML_ListElementType {
public:
    /// How the model holds it; freed with its last holder.
    using pointer = boost::shared_ptr<RAML_ItemType>;

    /// A new item without values.
    static pointer create() { return boost::make_shared<RAML_ItemType>(); }

    RAML_ItemType() : RAML_ListElementType(RAML_ITEM) {}

    /// Stores what getListItemOperationType() makes of @p text.
    void setListItemOperation(const std::string& text) { mListItemOperation = getListItemOperationType(text); }
    /// Stores the operation itself.
    void setListItemOperation(RAML_ListItemOperationType operation) { mListItemOperation = operation; }
    /// What is to be done with the item; NONE when the document does not say.
    RAML_ListItemOperationType getListItemOperation() const { return mListItemOperation; }

    std::vector<RAML_ItemParameterType> params; ///< in the order of the document
    /// See getListItemOperation().
    RAML_ListItemOperationType mListItemOperation = RAML_LIST_ITEM_OP_NONE;
};

} // namespace RAML
