// SPDX-License-Identifier: MIT
/// @file RamlDiff.hpp
/// How two RAML documents differ in what they mean, however they are laid out.
///
/// Managed objects belong together by distinguished name, parameters by name; several of the same name in the order in
/// which they stand. The order of objects and of parameters makes no difference, that of a list's elements does. The
/// log entries of headers are history and are not compared.
#pragma once

#include "Console.hpp"
#include "raml/dataclasses/RAML_Type.hpp"
#include "text/Json.hpp"

#include <optional>
#include <string>
#include <vector>

namespace dorn::tool {

/// What a field, a parameter or a part of one was and is.
struct RamlDifference {
    std::string name; ///< "limit", "ports[2]", "ports[2].speed", "@operation"; "limit#2" for the second of that name
    std::optional<std::string> before;
    std::optional<std::string> after;
};

enum class RamlChangeKind { Removed, Added, Changed };

/// A managed object, a block or the document itself that differs.
struct RamlChange {
    RamlChangeKind kind;
    std::string subject;   ///< distinguished name; "raml", "cmData 2"; "...#2" for the second of that name
    std::string className; ///< of an object
    std::vector<RamlDifference> differences{}; ///< of what has changed
};

/// Which fields count.
enum class RamlDiffFields {
    All,
    Written ///< those that a written document keeps
};

std::vector<RamlChange> diffRaml(const RAML::RAML_Type& before, const RAML::RAML_Type& after, RamlDiffFields fields);

std::string ramlChangeText(const RamlChange& change, const Console& console);
Json ramlChangeJson(const RamlChange& change);

} // namespace dorn::tool
