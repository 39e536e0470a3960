// SPDX-License-Identifier: MIT
/// @file RamlMoPtr_less.hpp
/// The order of managed objects.
#pragma once

#include "raml/RamlDefs.hpp"
#include "raml/dataclasses/RAML_ManagedObjectType.hpp"

namespace RAML {

/// Orders managed objects by the rank of their class; classes without a rank come behind, and empty pointers last.
/// Objects of the same rank are equivalent, and so are those without one. The map must outlive the predicate.
class RamlMoPtr_less {
public:
    /// @{
    /// Types that function adapters look for.
    using first_argument_type = RAML_ManagedObjectType::pointer;
    using second_argument_type = RAML_ManagedObjectType::pointer;
    using result_type = bool;
    /// @}

    /// Keeps a reference to @p classes.
    explicit RamlMoPtr_less(const TmlMoHierarchyMap& classes) : mrTmlValidClasses(classes) {}

    /// An empty pointer is an error line.
    bool operator()(const RAML_ManagedObjectType::pointer& mo1, const RAML_ManagedObjectType::pointer& mo2) const;

    /// Rank by class name; the caller's.
    const TmlMoHierarchyMap& mrTmlValidClasses;
};

} // namespace RAML
