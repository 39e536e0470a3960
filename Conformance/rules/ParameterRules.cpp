// SPDX-License-Identifier: MIT
// R&D parameters. Values outlive processes, so no rule relies on a value that an earlier run may have set.
#include "AaConfigRad.h"
#include "Check.hpp"
#include "OtherProcess.hpp"
#include "Rules.hpp"

#include <array>
#include <string>
#include <thread>

namespace dorn::conformance {
namespace {

/// One domain that can have a view and one that cannot. No service of the library has them.
constexpr std::array<uint16_t, 2> domains{61, 4001};
constexpr uint32_t domainSize = 10;
constexpr uint32_t neverSet = 3; ///< index of a parameter that no rule sets
constexpr uint32_t neverSetDefault = 0x12345678;
constexpr uint32_t sharedIndex = 5;

constexpr TAaConfigRadId idOf(uint16_t domain, uint32_t index)
{
    return static_cast<TAaConfigRadId>(domain) << 16 | index;
}

unsigned initialisations = 0;
std::thread::id initialisingThread;
int32_t declarationStatus = 0;

void declare(uint16_t domain, uint32_t size, uint32_t defaultValue)
{
    ++initialisations;
    initialisingThread = std::this_thread::get_id();
    declarationStatus |= AaConfigRadSetMaxTagCount(domain, idOf(domain, size));
    for (uint32_t index = 0; index < domainSize; ++index) {
        const std::string name = index < 2 ? "TWIN" : "PARAMETER" + std::to_string(index);
        declarationStatus |=
            AaConfigRadSetDefault(idOf(domain, index), name.c_str(), index == neverSet ? defaultValue : 0);
    }
}

template <uint16_t domain>
void initialise()
{
    declare(domain, domainSize, neverSetDefault);
}

int32_t registerDomain(uint16_t domain)
{
    return AaConfigRadRegisterDomain(domain, domain == domains[0] ? "CONFSMALL" : "CONFLARGE",
                                     domain == domains[0] ? initialise<domains[0]> : initialise<domains[1]>);
}

void registerBoth()
{
    for (const uint16_t domain : domains) {
        expectEqual(registerDomain(domain), 0, "AaConfigRadRegisterDomain(" + std::to_string(domain) + ")");
    }
}

void registrationDeclares()
{
    expectEqual(registerDomain(domains[0]), 0, "AaConfigRadRegisterDomain()");
    expectEqual(initialisations, 1U, "calls of the domain's initialise function");
    expect(initialisingThread == std::this_thread::get_id(), "the initialise function was called on another thread");
    expectEqual(declarationStatus, 0, "what AaConfigRadSetMaxTagCount() and AaConfigRadSetDefault() returned in it");
}

void defaultIsTheValue()
{
    registerBoth();
    for (const uint16_t domain : domains) {
        const TAaConfigRadId id = idOf(domain, neverSet);
        expectEqual(AaConfigRadGetValue(id), neverSetDefault, "the value of a parameter that nobody has set");
        expectEqual(AaConfigRadReadValue(id), neverSetDefault, "AaConfigRadReadValue() of it");
    }
}

void setIsRead()
{
    registerBoth();
    for (const uint16_t domain : domains) {
        for (const uint32_t value : {0xFFFFFFFFU, 7U, 0U}) {
            const TAaConfigRadId id = idOf(domain, domainSize - 1);
            expectEqual(AaConfigRadSetValue(id, value), 0, "AaConfigRadSetValue()");
            expectEqual(AaConfigRadGetValue(id), value, "AaConfigRadGetValue() after it");
            expectEqual(AaConfigRadReadValue(id), value, "AaConfigRadReadValue() after it");
        }
    }
}

void namesNeedNotBeUnique()
{
    registerBoth();
    AaConfigRadSetValue(idOf(domains[0], 0), 10);
    AaConfigRadSetValue(idOf(domains[0], 1), 11);
    expectEqual(AaConfigRadGetValue(idOf(domains[0], 0)), 10U, "the first of two parameters with one name");
    expectEqual(AaConfigRadGetValue(idOf(domains[0], 1)), 11U, "the second of two parameters with one name");
}

void outsideIsRefused()
{
    registerBoth();
    for (const TAaConfigRadId id :
         {idOf(domains[0], domainSize), idOf(domains[1], domainSize), idOf(59, 0), idOf(4999, 0)}) {
        expectEqual(AaConfigRadSetValue(id, 1), 1,
                    "AaConfigRadSetValue() of " + std::to_string(id) + ", which is in no domain of this process");
        expectEqual(AaConfigRadGetValue(id), 0U, "AaConfigRadGetValue() of it");
        expectEqual(AaConfigRadReadValue(id), 0U, "AaConfigRadReadValue() of it");
    }
}

int32_t wrongSize = 0;
int32_t wrongDomain = 0;
int32_t wrongIndex = 0;
int32_t wrongName = 0;

void declareWrongly()
{
    constexpr uint16_t domain = 60;
    wrongDomain = AaConfigRadSetMaxTagCount(domain + 1, idOf(domain + 1, 1));
    wrongSize = AaConfigRadSetMaxTagCount(domain, idOf(domain + 2, 0));
    AaConfigRadSetMaxTagCount(domain, idOf(domain, 2));
    wrongIndex = AaConfigRadSetDefault(idOf(domain, 2), "OUTSIDE", 0);
    wrongName = AaConfigRadSetDefault(idOf(domain, 0), std::string(64, 'N').c_str(), 0);
    AaConfigRadSetDefault(idOf(domain, 0), std::string(63, 'N').c_str(), 0);
    AaConfigRadSetDefault(idOf(domain, 1), "LAST", 0);
}

void wrongDeclarationsAreRefused()
{
    expectEqual(AaConfigRadSetMaxTagCount(60, idOf(60, 2)), 1,
                "AaConfigRadSetMaxTagCount() outside an initialise function");
    expectEqual(AaConfigRadSetDefault(idOf(60, 0), "NAME", 0), 1,
                "AaConfigRadSetDefault() outside an initialise function");
    expectEqual(AaConfigRadRegisterDomain(60, "CONFWRONG", declareWrongly), 0, "AaConfigRadRegisterDomain()");
    expectEqual(wrongDomain, 1, "AaConfigRadSetMaxTagCount() of a domain that is not being registered");
    expectEqual(wrongSize, 1, "AaConfigRadSetMaxTagCount() of an identifier of another domain");
    expectEqual(wrongIndex, 1, "AaConfigRadSetDefault() of an identifier behind the last");
    expectEqual(wrongName, 1, "AaConfigRadSetDefault() with a name of 64 characters");
}

void wrongDomainsAreRefused()
{
    const auto anything = [] {};
    expectEqual(AaConfigRadRegisterDomain(0, "CONF", anything), 1, "AaConfigRadRegisterDomain(0)");
    expectEqual(AaConfigRadRegisterDomain(58, nullptr, anything), 1, "AaConfigRadRegisterDomain() without name");
    expectEqual(AaConfigRadRegisterDomain(58, std::string(32, 'N').c_str(), anything), 1,
                "AaConfigRadRegisterDomain() with a name of 32 characters");
    expectEqual(AaConfigRadRegisterDomain(58, "CONF", nullptr), 1,
                "AaConfigRadRegisterDomain() without initialise function");
}

void valuesAreShared()
{
    registerBoth();
    OtherProcess other("shares-parameters");
    for (const uint16_t domain : domains) {
        AaConfigRadSetValue(idOf(domain, sharedIndex), 100U + domain);
    }
    other.tell();
    other.expectToHear("161 4101");
    for (const uint16_t domain : domains) {
        expectEqual(AaConfigRadGetValue(idOf(domain, sharedIndex)), 200U + domain,
                    "a value that another process has set");
    }
    other.tell();
    expectEqual(other.waitForEnd(), 0, "the end of the other process");
}

void shareParameters(std::span<char* const>)
{
    awaitWord();
    registerBoth();
    std::array<uint32_t, 2> found{};
    for (std::size_t index = 0; index < domains.size(); ++index) {
        found[index] = AaConfigRadGetValue(idOf(domains[index], sharedIndex));
        AaConfigRadSetValue(idOf(domains[index], sharedIndex), 200U + domains[index]);
    }
    say(std::to_string(found[0]) + " " + std::to_string(found[1]));
    awaitWord();
}

void differenceIsRefused()
{
    OtherProcess other("shares-parameters");
    other.tell();
    other.hear();
    constexpr uint16_t domain = domains[0];
    const int32_t defaultDiffers =
        AaConfigRadRegisterDomain(domain, "CONFSMALL", [] { declare(domain, domainSize, neverSetDefault + 1); });
    const int32_t sizeDiffers =
        AaConfigRadRegisterDomain(domain, "CONFSMALL", [] { declare(domain, domainSize + 1, neverSetDefault); });
    const int32_t nameDiffers = AaConfigRadRegisterDomain(domain, "CONFOTHER", initialise<domain>);
    expectEqual(defaultDiffers, 3, "a registration with another default than a living process has");
    expectEqual(sizeDiffers, 3, "a registration with another size than a living process has");
    expectEqual(nameDiffers, 3, "a registration with another name than a living process has");
    expectEqual(registerDomain(domain), 0, "the registration that agrees with the living process");
    expectEqual(AaConfigRadGetValue(idOf(domain, sharedIndex)), 200U + domain,
                "a value after registrations that were refused");
    other.tell();
    expectEqual(other.waitForEnd(), 0, "the end of the other process");
}

void viewsAgree()
{
    registerBoth();
    const uint32_t* const view = __atomic_load_n(&AaConfigRadViews[domains[0]], __ATOMIC_ACQUIRE);
    if (!view) {
        skip("your platform has no views: every read calls AaConfigRadReadValue()");
    }
    const TAaConfigRadId id = idOf(domains[0], domainSize - 1);
    AaConfigRadSetValue(id, 4711);
    expectEqual(__atomic_load_n(&view[domainSize - 1], __ATOMIC_RELAXED), 4711U, "a word of the view after a set");
    AaConfigRadSetValue(id, 0);
    expectEqual(__atomic_load_n(&view[0xFFFF], __ATOMIC_RELAXED), 0U, "the last of the view's 65,536 words");
}

constexpr std::array rules{
    Rule{"parameter.registration-declares", "AaConfigRad.h",
         "AaConfigRadRegisterDomain AaConfigRadSetMaxTagCount AaConfigRadSetDefault",
         "AaConfigRadRegisterDomain() calls the initialise function once, on the calling thread, before it returns",
         registrationDeclares},
    Rule{"parameter.default-is-the-value", "AaConfigRad.h", "AaConfigRadSetDefault AaConfigRadReadValue",
         "A parameter has its default until somebody sets another value", defaultIsTheValue},
    Rule{"parameter.set-is-read", "AaConfigRad.h", "AaConfigRadSetValue AaConfigRadReadValue",
         "What AaConfigRadSetValue() sets is what is read next", setIsRead},
    Rule{"parameter.names-need-not-be-unique", "AaConfigRad.h", "AaConfigRadSetDefault AaConfigRadSetValue",
         "Two parameters with one name are two parameters", namesNeedNotBeUnique},
    Rule{"parameter.outside-is-refused", "AaConfigRad.h", "AaConfigRadSetValue AaConfigRadReadValue",
         "An identifier in no domain of this process cannot be set (1) and reads as 0", outsideIsRefused},
    Rule{"parameter.wrong-declarations-are-refused", "AaConfigRad.h",
         "AaConfigRadSetMaxTagCount AaConfigRadSetDefault AaConfigRadRegisterDomain",
         "Declarations outside an initialise function, of another domain, behind its last identifier or with a name of "
         "more than 63 characters return 1",
         wrongDeclarationsAreRefused},
    Rule{"parameter.wrong-domains-are-refused", "AaConfigRad.h", "AaConfigRadRegisterDomain",
         "Domain 0, no name, a name of more than 31 characters and no initialise function return 1",
         wrongDomainsAreRefused},
    Rule{"parameter.values-are-shared", "AaConfigRad.h",
         "AaConfigRadSetValue AaConfigRadReadValue AaConfigRadRegisterDomain",
         "All processes of a node see a value; registering a domain that another one has registered keeps the values",
         valuesAreShared},
    Rule{"parameter.difference-is-refused", "AaConfigRad.h", "AaConfigRadRegisterDomain",
         "A registration that differs from a living process's in name, size or a default returns 3 and changes nothing",
         differenceIsRefused},
    Rule{"parameter.views-agree", "AaConfigRad.h", "AaConfigRadViews AaConfigRadSetValue",
         "Where there is a view it has 65,536 words, and shows what has been set", viewsAgree},
};

constexpr std::array roles{
    Role{"shares-parameters", shareParameters},
};

} // namespace

Rules parameterRules()
{
    return rules;
}

Roles parameterRoles()
{
    return roles;
}

} // namespace dorn::conformance
