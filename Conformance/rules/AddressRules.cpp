// SPDX-License-Identifier: MIT
// Who can be addressed, and how.
#include "AaSysCom.h"
#include "Check.hpp"
#include "Eu.hpp"
#include "Letter.hpp"
#include "OtherProcess.hpp"
#include "Rules.hpp"

#include <array>
#include <csignal>
#include <string>
#include <thread>

namespace dorn::conformance {
namespace {

/// A cpid that no service has, as far as one can know; the rule that wants a certain one asks for this.
constexpr TAaSysComCpid wantedCpid = 0x5C0F;

void wantedCpidIsGranted()
{
    expectEqual(AaSysComUserRegister(wantedCpid, AaProEuCurrent()), wantedCpid,
                "AaSysComUserRegister() of a cpid that nobody holds");
    expectEqual(AaSysComUserRegister(wantedCpid, AaProEuCurrent()), wantedCpid,
                "AaSysComUserRegister() of a cpid that the EU holds already");
    expectEqual(AaSysComUserDeregister(wantedCpid), 0, "AaSysComUserDeregister()");
}

void anyCpidIsGranted()
{
    const Address first;
    const Address second;
    expect(first.cpid() != second.cpid(), "two registrations of any cpid were granted the same one");
}

void heldCpidIsNotGranted()
{
    const Address held(wantedCpid);
    Eu other([] {
        const TAaSysComCpid granted = AaSysComUserRegister(wantedCpid, AaProEuCurrent());
        AaSysComUserDeregister(granted == wantedCpid ? TAaSysComCpid{0} : granted);
        expect(granted != wantedCpid, "an EU was granted a cpid that another EU of the process holds");
    });
    other.join();
}

void cpidOfAnotherProcessIsNotGranted()
{
    OtherProcess other("holds-a-cpid");
    other.expectToHear("holds it");
    const TAaSysComCpid granted = AaSysComUserRegister(wantedCpid, AaProEuCurrent());
    expect(granted != wantedCpid, "an EU was granted a cpid that another process holds");
    AaSysComUserDeregister(granted);
    other.signal(SIGKILL);
    other.waitForEnd();
    expectEqual(AaSysComUserRegister(wantedCpid, AaProEuCurrent()), wantedCpid,
                "AaSysComUserRegister() of a cpid whose holder has been killed");
}

void holdACpid(std::span<char* const>)
{
    const Address address(wantedCpid);
    say(address.cpid() == wantedCpid ? "holds it" : "was granted another one");
    awaitWord();
}

void deregisteredCpidIsFree()
{
    {
        const Address held(wantedCpid);
    }
    Eu other([] {
        expectEqual(AaSysComUserRegister(wantedCpid, AaProEuCurrent()), wantedCpid,
                    "AaSysComUserRegister() of a cpid that another EU has given up");
        AaSysComUserDeregister(wantedCpid);
    });
    other.join();
    expectEqual(AaSysComUserDeregister(wantedCpid), 1, "AaSysComUserDeregister() of a cpid that is not held");
}

void endedEusCpidIsFree()
{
    Eu other([] { AaSysComUserRegister(wantedCpid, AaProEuCurrent()); });
    other.join();
    // The EU's function has returned; what the platform does at an EU's end may take a moment more.
    const auto deadline = std::chrono::steady_clock::now() + bound();
    while (AaSysComUserRegister(wantedCpid, AaProEuCurrent()) != wantedCpid) {
        expect(std::chrono::steady_clock::now() < deadline, "the cpid of an EU that has ended is not granted");
        std::this_thread::yield();
    }
    AaSysComUserDeregister(wantedCpid);
}

void deadEuIsRefused()
{
    TAaProEuId id = 0;
    {
        Eu other([] {});
        id = other.id();
    }
    const auto deadline = std::chrono::steady_clock::now() + bound();
    while (const TAaSysComCpid granted = AaSysComUserRegister(wantedCpid, id)) {
        AaSysComUserDeregister(granted);
        expect(std::chrono::steady_clock::now() < deadline, "a cpid was granted for an EU that does not live");
        std::this_thread::yield();
    }
}

void sicadIsNodeAndCpid()
{
    expectEqual(AaSysComSicadGet(0x0201, 0x0F02), 0x0F020201U, "AaSysComSicadGet(0x0201, 0x0F02)");
    expectEqual(AaSysComSicadGet(0xFFFF, 0x5FFFF), 0xFFFFFFFFU, "AaSysComSicadGet(0xFFFF, 0x5FFFF)");
}

void ownNodeIsStable()
{
    const TAaSysComNid own = AaSysComGetOwnNid();
    expectEqual(AaSysComGetOwnNid(), own, "AaSysComGetOwnNid() asked again");
    expect(own <= 0xFFFF, "AaSysComGetOwnNid() gave " + std::to_string(own) + ", and 16 bits are used");
    if (own == 0) {
        skip("AaSysComGetOwnNid() gives 0: this node has no id");
    }
}

void nodeMapIsStable()
{
    const TAaSysComSicad own = AaSysComSicadGet(1, AaSysComGetOwnNid());
    const TAaSysComSicad other = AaSysComSicadGet(0x0200, AaSysComGetOwnNid());
    const std::uint32_t board = AaSysComNmapGetBoard(own);
    const std::uint32_t cpu = AaSysComNmapGetCpu(own);
    expectEqual(AaSysComNmapGetBoard(other), board, "the board of the own node, asked with another cpid");
    expectEqual(AaSysComNmapGetCpu(other), cpu, "the CPU of the own node, asked with another cpid");
    expectEqual(AaSysComNmapGetBoard(0), 0U, "the board of node 0, which no map knows");
    expectEqual(AaSysComNmapGetCpu(0), 0U, "the CPU of node 0, which no map knows");
}

constexpr std::array rules{
    Rule{"address.wanted-cpid-is-granted", "AaSysCom.h", "AaSysComUserRegister AaSysComUserDeregister",
         "A cpid that nobody holds is granted, and once more to the EU that holds it", wantedCpidIsGranted},
    Rule{"address.any-cpid-is-granted", "AaSysCom.h", "AaSysComUserRegister",
         "Asked for cpid 0, any free one is granted", anyCpidIsGranted},
    Rule{"address.held-cpid-is-not-granted", "AaSysCom.h", "AaSysComUserRegister",
         "A cpid is not granted while another EU of the process holds it", heldCpidIsNotGranted},
    Rule{"address.cpid-of-another-process-is-not-granted", "AaSysCom.h", "AaSysComUserRegister",
         "A cpid is not granted while another process of the node holds it, and is free when that has died",
         cpidOfAnotherProcessIsNotGranted},
    Rule{"address.deregistered-cpid-is-free", "AaSysCom.h", "AaSysComUserDeregister AaSysComUserRegister",
         "A cpid is free when its holder gives it up; AaSysComUserDeregister() of one that is not held returns 1",
         deregisteredCpidIsFree},
    Rule{"address.ended-eus-cpid-is-free", "AaSysCom.h", "AaSysComUserRegister",
         "A cpid is free when the EU that holds it has ended", endedEusCpidIsFree},
    Rule{"address.dead-eu-is-refused", "AaSysCom.h", "AaSysComUserRegister",
         "No cpid is granted for an EU that does not live", deadEuIsRefused},
    Rule{"address.sicad-is-node-and-cpid", "AaSysCom.h", "AaSysComSicadGet",
         "An address is node id << 16 | cpid; 16 bits of the node id are used", sicadIsNodeAndCpid},
    Rule{"address.own-node-is-stable", "AaSysCom.h", "AaSysComGetOwnNid",
         "AaSysComGetOwnNid() gives the node's id, always the same", ownNodeIsStable},
    Rule{"address.node-map-is-stable", "AaSysCom.h", "AaSysComNmapGetBoard AaSysComNmapGetCpu",
         "The node map goes by the node of an address, and gives 0 for a node that it does not know", nodeMapIsStable},
};

constexpr std::array roles{
    Role{"holds-a-cpid", holdACpid},
};

} // namespace

Rules addressRules()
{
    return rules;
}

Roles addressRoles()
{
    return roles;
}

} // namespace dorn::conformance
