// SPDX-License-Identifier: MIT
/// @file RamlFault.hpp
/// What can be wrong with a RAML document that is made for a test.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace dorn::testkit {

/// One fault for each way in which a document can be refused.
enum class RamlFault {
    NoText,
    CutOff,
    WrongEndTag,
    ZeroByte,
    NoRaml,
    NoVersion,
    WrongVersion,
    NoXmlns,
    NoBlock,
    NoType,
    WrongType,
    NoLogTime,
    NoLogAction,
    UnknownInHeader,
    UnknownInBlock,
    NoObject,
    NoClass,
    NoDistName,
    NoOperation,
    WrongOperation,
    UnknownInObject,
    NoParameterName,
    EmptyParameterName,
    NoListName,
    NamedListValue,
    UnknownInList,
    UnknownInItem
};

/// Where a fault can stand.
enum class RamlFaultPlace {
    Document, ///< there is one place for it
    Block,    ///< in any block
    Object    ///< in any managed object
};

/// A fault's row in the table: where it goes and what it is called.
struct RamlFaultText {
    /// The fault.
    RamlFault fault;
    /// Where in a document it can be put.
    RamlFaultPlace place;
    std::string_view name; ///< "no-class"
    /// What is wrong, for people.
    std::string_view description;
};

/// All faults, in the order of the enumeration.
constexpr std::array<RamlFaultText, 27> ramlFaults{{
    {RamlFault::NoText, RamlFaultPlace::Document, "no-text", "the document is empty"},
    {RamlFault::CutOff, RamlFaultPlace::Object, "cut-off", "the document ends in the middle of an object"},
    {RamlFault::WrongEndTag, RamlFaultPlace::Object, "wrong-end-tag", "an end tag has another name"},
    {RamlFault::ZeroByte, RamlFaultPlace::Object, "zero-byte", "there is a zero byte in a value"},
    {RamlFault::NoRaml, RamlFaultPlace::Document, "no-raml", "the document element is not raml"},
    {RamlFault::NoVersion, RamlFaultPlace::Document, "no-version", "raml has no version"},
    {RamlFault::WrongVersion, RamlFaultPlace::Document, "wrong-version", "the version is one that nobody knows"},
    {RamlFault::NoXmlns, RamlFaultPlace::Document, "no-xmlns", "raml has no xmlns"},
    {RamlFault::NoBlock, RamlFaultPlace::Document, "no-block", "there is no cmData"},
    {RamlFault::NoType, RamlFaultPlace::Block, "no-type", "a cmData has no type"},
    {RamlFault::WrongType, RamlFaultPlace::Block, "wrong-type", "the type of a cmData is not known"},
    {RamlFault::NoLogTime, RamlFaultPlace::Block, "no-log-time", "a log has no dateTime"},
    {RamlFault::NoLogAction, RamlFaultPlace::Block, "no-log-action", "a log has no action"},
    {RamlFault::UnknownInHeader, RamlFaultPlace::Block, "unknown-in-header", "a header has an unknown element"},
    {RamlFault::UnknownInBlock, RamlFaultPlace::Block, "unknown-in-block", "a cmData has an unknown element"},
    {RamlFault::NoObject, RamlFaultPlace::Block, "no-object", "a cmData has no managedObject"},
    {RamlFault::NoClass, RamlFaultPlace::Object, "no-class", "an object has no class"},
    {RamlFault::NoDistName, RamlFaultPlace::Object, "no-dist-name", "an object has no distName"},
    {RamlFault::NoOperation, RamlFaultPlace::Object, "no-operation", "an object has no operation"},
    {RamlFault::WrongOperation, RamlFaultPlace::Object, "wrong-operation", "an object's operation is not known"},
    {RamlFault::UnknownInObject, RamlFaultPlace::Object, "unknown-in-object", "an object has an unknown element"},
    {RamlFault::NoParameterName, RamlFaultPlace::Object, "no-parameter-name", "a parameter has no name"},
    {RamlFault::EmptyParameterName, RamlFaultPlace::Object, "empty-parameter-name", "a parameter's name is empty"},
    {RamlFault::NoListName, RamlFaultPlace::Object, "no-list-name", "a list has no name"},
    {RamlFault::NamedListValue, RamlFaultPlace::Object, "named-list-value", "a value in a list has a name"},
    {RamlFault::UnknownInList, RamlFaultPlace::Object, "unknown-in-list", "a list has an unknown element"},
    {RamlFault::UnknownInItem, RamlFaultPlace::Object, "unknown-in-item", "an item has an unknown element"},
}};

/// The row of a fault.
constexpr const RamlFaultText& textOf(RamlFault fault)
{
    return ramlFaults[static_cast<std::size_t>(fault)];
}

/// The fault with this name.
constexpr std::optional<RamlFault> ramlFaultOf(std::string_view name)
{
    for (const RamlFaultText& row : ramlFaults) {
        if (row.name == name) {
            return row.fault;
        }
    }
    return std::nullopt;
}

static_assert([] {
    for (std::size_t index = 0; index < ramlFaults.size(); ++index) {
        if (static_cast<std::size_t>(ramlFaults[index].fault) != index) {
            return false;
        }
    }
    return true;
}());

} // namespace dorn::testkit
