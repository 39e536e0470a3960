/* SPDX-License-Identifier: MIT */
/// @file AaConfigRad.h
/// R&D parameters: 32-bit values by number, shared by all processes of a node, set by an operator while services run.
///
/// A parameter's identifier is domain number << 16 | index. A process registers a domain once with
/// AaConfigRadRegisterDomain(); the platform calls the given function, which declares the domain's size and then each
/// parameter with its name and default. Registering a domain that another process has registered already keeps the
/// values that are there.
#ifndef AA_CONFIG_RAD_H
#define AA_CONFIG_RAD_H

#include "AaTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef uint32_t TAaConfigRadId; ///< domain number << 16 | index

/// Declares a domain's parameters; called by the platform, in the thread that registers the domain.
typedef void (*TAaConfigRadInitialise)(void);

/// Registers a domain.
/// @param domain domain number, 1 to 65535
/// @param name domain name, at most 31 characters; shown to operators
/// @param initialise declares the parameters; called once, before this function returns
/// @return 0; 1 when an argument is wrong; 2 when the domain's store cannot be opened or created; 3 when a living
///   process of this node has it registered with another name, size, parameter name or default (logged, values
///   untouched).
int32_t AaConfigRadRegisterDomain(uint16_t domain, const char* name, TAaConfigRadInitialise initialise);

/// Declares a domain's size; only inside its initialise function.
/// @param domain domain number
/// @param last the identifier after the greatest that the domain uses
/// @return 0; 1 when no such domain is being registered or @p last is not in it.
int32_t AaConfigRadSetMaxTagCount(uint16_t domain, TAaConfigRadId last);

/// Declares a parameter; only inside its domain's initialise function.
/// @param id identifier
/// @param name the name under which operators see it, at most 63 characters; need not be unique
/// @param defaultValue its value until somebody sets another
/// @return 0; 1 when no domain is being registered, @p id is outside it or @p name does not fit.
int32_t AaConfigRadSetDefault(TAaConfigRadId id, const char* name, uint32_t defaultValue);

/// Sets a parameter for all processes of the node.
/// @return 0; 1 when this process has not registered the domain or @p id is outside it.
int32_t AaConfigRadSetValue(TAaConfigRadId id, uint32_t value);

/// Reads a parameter the long way round; what AaConfigRadGetValue() does where there is no view.
/// @return the value; 0 when this process has not registered the domain or @p id is outside it.
uint32_t AaConfigRadReadValue(TAaConfigRadId id);

/// Number of domains that can have a view.
#define AA_CONFIG_RAD_VIEWS 64

/// Values of a domain as an array, so that reading one is a load: `AaConfigRadViews[domain]` points at 65,536 words, or
/// is null, and then AaConfigRadReadValue() is called. A platform without such arrays defines it as all null.
extern const uint32_t* AaConfigRadViews[AA_CONFIG_RAD_VIEWS];

/// Reads a parameter. Costs a few loads where the platform offers a view.
/// @return the value; 0 when this process has not registered the domain or @p id is outside it.
static inline uint32_t AaConfigRadGetValue(TAaConfigRadId id)
{
    if ((id >> 16) < AA_CONFIG_RAD_VIEWS) {
        const uint32_t* values = __atomic_load_n(&AaConfigRadViews[id >> 16], __ATOMIC_ACQUIRE);
        if (values) {
            return __atomic_load_n(&values[id & 0xFFFFU], __ATOMIC_RELAXED);
        }
    }
    return AaConfigRadReadValue(id);
}

#ifdef __cplusplus
}
#endif

#endif
