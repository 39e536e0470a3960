// SPDX-License-Identifier: MIT
/// @file RadView.hpp
/// The arrays behind AaConfigRadViews.
#pragma once

#include "config/RadDomain.hpp"

namespace dorn::host {

/// Has AaConfigRadViews point at the values of @p domain, if its number can have a view and there is address space;
/// AaConfigRadGetValue() works either way.
void showRadView(const RadDomain& domain);

/// Takes a domain's view away. Its 65,536 words stay readable, as zeros, for a thread that is just reading one.
void hideRadView(std::uint16_t number);

} // namespace dorn::host
