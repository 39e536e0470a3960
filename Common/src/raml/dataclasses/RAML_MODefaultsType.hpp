// SPDX-License-Identifier: MIT
/// @file RAML_MODefaultsType.hpp
/// The defaults record of a managed object.
#pragma once

#include <string>

namespace RAML {

/// For callers: nothing in the library fills it, and the `defaults` element of a document is skipped.
struct RAML_MODefaultsType {
    /// Name of the defaults.
    std::string name;
    /// Id of the defaults.
    std::string id;
    /// Status of the defaults.
    std::string status;
};

} // namespace RAML
