// SPDX-License-Identifier: MIT
/// @file Documents.hpp
/// RAML documents of many sizes and shapes.
#pragma once

#include <cstddef>
#include <string>

namespace dorn::benchmarks {

constexpr std::size_t megabyte = 1'000'000;

/// A document as a planning tool writes it, of about @p size bytes: objects with twenty parameters and two lists.
/// The last one that was asked for is kept.
const std::string& siteDocument(std::size_t size);

/// One object with so many parameters.
std::string documentOfParameters(std::size_t count);
/// So many objects with one parameter.
std::string documentOfObjects(std::size_t count);
/// One object with so many lists of an item.
std::string documentOfLists(std::size_t count);

} // namespace dorn::benchmarks
