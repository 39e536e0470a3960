// SPDX-License-Identifier: MIT
/// @file RAML_Type.hpp
/// A RAML document.
#pragma once

#include "raml/dataclasses/RAML_CMDataType.hpp"

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

namespace RAML {

/// The root element. Made by RamlParser (RamlParser.hpp) or by hand, written with `operator<<` (RAML_ostream.hpp).
///
/// The model below it has no rules of its own: all texts are kept byte by byte, all vectors keep their order, nothing
/// is looked for duplicates. It is built and used by one thread at a time. Constructors and destructors leave debug
/// lines.
class RAML_Type {
public:
    /// How callers hold a document; freed with its last holder.
    using pointer = boost::shared_ptr<RAML_Type>;

    /// A new document without blocks.
    static pointer create() { return boost::make_shared<RAML_Type>(); }

    RAML_Type();
    RAML_Type(const RAML_Type&) = delete;
    RAML_Type& operator=(const RAML_Type&) = delete;
    virtual ~RAML_Type();

    /// Takes all blocks out; those that somebody else holds live on.
    void clearCmDataList() { cmDataList.clear(); }

    std::vector<RAML_CMDataType::pointer> cmDataList; ///< in the order of the document
    /// Attribute `xmlns`; the namespace is not checked.
    std::string xmlns;
    /// Attribute `version` of the root; not checked.
    std::string version;
};

} // namespace RAML
