// SPDX-License-Identifier: MIT
/// @file RamlMoPtr_validclass.hpp
/// Which managed objects are valid.
#pragma once

#include "raml/RamlDefs.hpp"
#include "raml/dataclasses/RAML_ManagedObjectType.hpp"

namespace RAML {

/// Tells whether a managed object's class is among the valid ones. The map must outlive the predicate.
class RamlMoPtr_validclass {
public:
    /// @{
    /// Types that function adapters look for.
    using argument_type = RAML_ManagedObjectType::pointer;
    using result_type = bool;
    /// @}

    /// Keeps a reference to @p classes.
    explicit RamlMoPtr_validclass(const TmlMoHierarchyMap& classes) : mrTmlValidClasses(classes) {}

    /// An empty pointer is not valid, and an error line.
    bool operator()(const RAML_ManagedObjectType::pointer& mo) const;

    /// The valid classes; the caller's.
    const TmlMoHierarchyMap& mrTmlValidClasses;
};

} // namespace RAML
