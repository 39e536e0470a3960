// SPDX-License-Identifier: MIT
/// @file RAML_CMDataType.hpp
/// A block of configuration data.
#pragma once

#include "raml/RamlDefs.hpp"
#include "raml/RamlMoPtr_less.hpp"
#include "raml/RamlMoPtr_validclass.hpp"
#include "raml/dataclasses/RAML_HeaderType.hpp"
#include "raml/dataclasses/RAML_ManagedObjectType.hpp"

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

namespace RAML {

/// One `cmData` element: a header and managed objects.
class RAML_CMDataType {
public:
    /// How the model holds it; freed with its last holder.
    using pointer = boost::shared_ptr<RAML_CMDataType>;

    /// A new block without objects, `RAML_PLAN_NONE` and `RAML_SCOPE_NONE`.
    static pointer create() { return boost::make_shared<RAML_CMDataType>(); }

    RAML_CMDataType();
    RAML_CMDataType(const RAML_CMDataType&) = delete;
    RAML_CMDataType& operator=(const RAML_CMDataType&) = delete;
    ~RAML_CMDataType();

    /// Takes all managed objects out; those that somebody else holds live on.
    void clearMOs() { managedObjects.clear(); }

    /// The first managed object of that distinguished name. Passes over empty pointers.
    /// @return an empty pointer when there is none.
    RAML_ManagedObjectType::pointer findManagedObject(const std::string& distName) const;

    /// Brings the objects that are RamlMoPtr_validclass to the front, in the order of RamlMoPtr_less.
    ///
    /// The other objects are written to standard output, as `operator<<` writes them and a line feed after each. They
    /// are not cut off: the vector keeps its size, and behind the valid objects some of the others follow, then empty
    /// pointers. Empty pointers that are there before are not written and come last; each look at one is an error line.
    void sort(const TmlMoHierarchyMap& classes);

    /// "actual", "plan", "defaults", "none"; empty for a value that is none of the enumeration.
    std::string toString(RAML_PlanType plan) const;
    /// "all", "hierarchy", "changes", "selection"; empty for all other values.
    std::string toString(RAML_ScopeType scopeOfBlock) const;

    /// The `header` element; without log entries when the document has none.
    RAML_HeaderType header;
    std::vector<RAML_ManagedObjectType::pointer> managedObjects; ///< in the order of the document
    /// Whether these are actual, planned or default data.
    RAML_PlanType type = RAML_PLAN_NONE;
    /// What part of the configuration the block covers.
    RAML_ScopeType scope = RAML_SCOPE_NONE;
    /// Attribute `name`; read, not written.
    std::string name;
    /// Attribute `id`.
    std::string id;
    /// Attribute `domain`.
    std::string domain;
    /// Attribute `adaptationVersionMajor`.
    std::string adaptationVersionMajor;
};

} // namespace RAML
