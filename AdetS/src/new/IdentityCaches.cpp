// SPDX-License-Identifier: MIT
#include "new/IdentityCaches.hpp"

namespace vel::hwapi::adet {

IdentityCaches& identityCaches() noexcept
{
    static constinit IdentityCaches caches;
    return caches;
}

} // namespace vel::hwapi::adet
