// SPDX-License-Identifier: MIT
/// @file RamlParser.hpp
/// Reads RAML documents.
///
/// 1. Construct a RamlParser and call parseRaml() with a file name or with the document itself.
/// 2. Look at the result code first. RAML_OK: the model is the whole document. RAML_SYNTAX_ERROR: some element is
/// against
///    the rules; the model holds what was read before and beside it, and error lines say what was wrong. Any other
///    code: there is no model.
/// 3. Walk the model (dataclasses/RAML_Type.hpp). It stands by itself: the parser may read the next document, or end.
///
/// The first error in a managed object drops it and all that follow in the document; they are read for their errors'
/// sake only. Nothing that stands in a document raises an exception. Texts are taken byte by byte as the platform's XML
/// parser gives them; nothing is trimmed.
///
/// A parser is used by one thread at a time; parsers do not know each other.
#pragma once

#include "AaGpuXml.hpp"
#include "AaTypes.h"
#include "raml/RamlDefs.hpp"
#include "raml/dataclasses/RAML_CMDataType.hpp"
#include "raml/dataclasses/RAML_HeaderType.hpp"
#include "raml/dataclasses/RAML_ListType.hpp"
#include "raml/dataclasses/RAML_ManagedObjectType.hpp"
#include "raml/dataclasses/RAML_Type.hpp"

#include <cstddef>
#include <memory>
#include <string>

namespace RAML {

/// Reads one RAML document after the other.
class RamlParser {
public:
    RamlParser();
    RamlParser(const RamlParser&) = delete;
    RamlParser& operator=(const RamlParser&) = delete;
    virtual ~RamlParser();

    /// Reads a document.
    /// @param input the document, or the name of a file that holds it: a path of the target; a relative one counts from
    ///   the working directory
    /// @param[out] result RAML_OK, or what was wrong first
    /// @param inputIsFile whether @p input is a file name
    /// @return the document; empty when the text has no `raml` element, is not well-formed, or cannot be had.
    RAML_Type::pointer parseRaml(const std::string& input, RAML_ParsingResult& result, bool inputIsFile);

    /// True from construction on; for callers to keep in mind.
    bool defaultConfigRequired() const { return mDefaultConfigRequired; }

    /// The element that is being read: for who observes the log while parseRaml() works, the one that an error line is
    /// about. Null before the first element; it stays at the last one until the next document.
    const AaGpuXmlNode* currentElement() const { return mCurrentElement; }

    // The steps of parseRaml(), for who reads parts of a document. Each fills the object that it is given from the
    // node; `result` is written on an error and left alone otherwise.

    /// Reads the input and parses its XML into the tree that the parser keeps until the next document.
    void load(const std::string& input, RAML_ParsingResult& result, bool inputIsFile);
    /// Reads the root element with all its blocks.
    void in_raml(AaGpuXmlNode* node, RAML_Type& document, RAML_ParsingResult& result);
    /// Reads a block with its header and its managed objects.
    void in_cmData(AaGpuXmlNode* node, const RAML_CMDataType::pointer& cmData, RAML_ParsingResult& result);
    /// Reads a block's attributes, not what is inside.
    void in_cmDataAttributesOnly(AaGpuXmlNode* node, const RAML_CMDataType::pointer& cmData,
                                 RAML_ParsingResult& result);
    /// Reads a block's header with its log entries.
    void in_header(AaGpuXmlNode* node, RAML_HeaderType& header, RAML_ParsingResult& result);
    /// Reads a managed object with its parameters.
    void in_mo(AaGpuXmlNode* node, const RAML_ManagedObjectType::pointer& mo, RAML_ParsingResult& result);
    /// Reads a list and appends it to the managed object's parameters unless `result` tells of an error.
    void in_list(AaGpuXmlNode* node, const RAML_ManagedObjectType::pointer& mo, RAML_ParsingResult& result);
    /// Reads an item and appends it to the list.
    void in_item(AaGpuXmlNode* node, const RAML_ListType::pointer& list, RAML_ParsingResult& result);

    /// "actual", "plan", "defaults"; all else is RAML_PLAN_NONE.
    RAML_PlanType getPlanType(const std::string& text);
    /// "all", "hierarchy", "changes", "selection"; all else, the empty text too, is RAML_SCOPE_INVALID.
    RAML_ScopeType getScopeType(const std::string& text);

    /// The first node from @p start on, itself included, that has the type and, unless @p name is null, the name.
    /// @param start may be null
    AaGpuXmlNode* getNextSiblingNode(AaGpuXmlNode* start, EAaGpuXmlNodeType type, const char* name);
    /// Looks an attribute up.
    /// @param node may be null
    /// @param[out] value left alone when there is no such attribute
    /// @return 1 when it is there, be it empty; 0 otherwise.
    TBoolean GetAttributeValue(AaGpuXmlNode* node, const std::string& attributeName, std::string& value);

private:
    bool readMoAttributes(AaGpuXmlNode* node, RAML_ManagedObjectType& mo, RAML_ParsingResult& result);
    bool readMoParameter(AaGpuXmlNode* node, RAML_ManagedObjectType& mo, RAML_ParsingResult& result);
    bool readListParameter(AaGpuXmlNode* node, RAML_ListType& list, RAML_ParsingResult& result);
    AaGpuXmlNode* firstElementIn(const AaGpuXmlNode* parent);
    AaGpuXmlNode* nextElement(const AaGpuXmlNode* element);
    std::size_t countElements(const AaGpuXmlNode* parent, const char* name);
    static void reportUnexpectedTag(const AaGpuXmlNode* parent, const AaGpuXmlNode* child, RAML_ParsingResult& result);

    std::unique_ptr<AaGpuXmlNode> mDocumentNode; ///< root of the last document's tree; null when it was not well-formed
    bool mDefaultConfigRequired = true;
    const AaGpuXmlNode* mCurrentElement = nullptr; ///< of the document's tree
};

} // namespace RAML
