// SPDX-License-Identifier: MIT
// Taking messages: waiting, choosing, waking up.
#include "AaSysCom.h"
#include "Check.hpp"
#include "Eu.hpp"
#include "Letter.hpp"
#include "Rules.hpp"

#include <array>
#include <atomic>
#include <string>

namespace dorn::conformance {
namespace {

constexpr TAaSysComMsgId wanted = 0x5C11;
constexpr TAaSysComMsgId other = 0x5C12;
constexpr std::array<uint16_t, 2> wantedOnly{1, wanted};
constexpr std::array<uint16_t, 3> either{2, other, wanted};

void noWaitDoesNotWait()
{
    expectDuration(Milliseconds(0), "AaSysComMsgReceive() without waiting", [] { expectNoLetter("unsent"); });
}

void receiveTimesOut()
{
    expectDuration(Milliseconds(50), "AaSysComMsgReceive(50000 us) of an empty queue", [] {
        expect(!Letter(AaSysComMsgReceive(50'000)), "AaSysComMsgReceive() gave a message that nobody has sent");
    });
}

void receiveWaitsForAMessage()
{
    Signal registered;
    std::atomic<TAaSysComSicad> sicad{0};
    Eu receiver([&] {
        const Address own;
        sicad.store(own.sicad());
        registered.raise();
        const Letter letter(AaSysComMsgReceive(AA_WAIT_FOREVER));
        expectEqual(letter.id(), wanted, "the id of what AaSysComMsgReceive() without limit gave");
    });
    registered.await("a new EU does not run");
    post(wanted, sicad.load());
    receiver.join();
}

void everyEuHasItsQueue()
{
    const Address own;
    Signal registered;
    Signal mayLook;
    std::atomic<TAaSysComSicad> sicad{0};
    Eu receiver([&] {
        const Address others;
        sicad.store(others.sicad());
        registered.raise();
        mayLook.await("the rule does not go on");
        expectLetter(other, "for the other");
        expectNoLetter("and it was for another EU");
    });
    registered.await("a new EU does not run");
    post(wanted, own.sicad(), "for me");
    post(other, sicad.load(), "for the other");
    mayLook.raise();
    receiver.join();
    expectLetter(wanted, "for me");
    expectNoLetter("and it was for another EU");
}

void deregisteredEusMessagesStay()
{
    {
        const Address own;
        post(wanted, own.sicad(), "before");
    }
    expectLetter(wanted, "before");
}

Letter choose(int32_t timeout, const uint16_t* filter)
{
    return Letter(AaSysComMsgReceiveSelective(timeout, filter));
}

void selectiveLeavesTheOthersInOrder()
{
    const Address own;
    for (const char* const text : {"1", "2", "3", "4", "5", "6"}) {
        post(*text % 3 == 0 ? wanted : other, own.sicad(), text); // '3' and '6' are wanted
    }
    for (const char* const text : {"3", "6"}) {
        const Letter letter = choose(boundOfSeam(), wantedOnly.data());
        expect(letter.id() == wanted && letter.text() == text,
               "message " + std::string(text) + " was to come, and '" + letter.text() + "' came");
    }
    expect(!choose(AA_NO_WAIT, wantedOnly.data()), "a message came whose id is not listed");
    for (const char* const text : {"1", "2", "4", "5"}) {
        expectLetter(other, text);
    }
}

void selectiveTakesAnyThatIsListed()
{
    const Address own;
    post(wanted + 5, own.sicad(), "unlisted");
    post(wanted, own.sicad(), "first");
    post(other, own.sicad(), "second");
    expect(choose(boundOfSeam(), either.data()).text() == "first",
           "not the first message came of those whose ids are listed");
    expect(choose(boundOfSeam(), either.data()).text() == "second", "a message whose id is listed last did not come");
    expectLetter(wanted + 5, "unlisted");
}

void selectiveComparesWholeIds()
{
    const Address own;
    post(0x10000 + wanted, own.sicad());
    expect(!choose(AA_NO_WAIT, wantedOnly.data()),
           "a message came whose id equals a listed one only in its low 16 bits");
    take();
}

void emptyFilterAcceptsNothing()
{
    const Address own;
    constexpr std::array<uint16_t, 1> none{0};
    post(wanted, own.sicad());
    expect(!choose(AA_NO_WAIT, none.data()), "a message came although the list of ids is empty");
    expectLetter(wanted, "");
}

void selectiveTimesOut()
{
    const Address own;
    post(other, own.sicad());
    expectDuration(Milliseconds(50), "AaSysComMsgReceiveSelective(50000 us) without a message that is listed",
                   [] { expect(!choose(50'000, wantedOnly.data()), "a message came whose id is not listed"); });
    expectLetter(other, "");
}

void selectiveWaits()
{
    Signal registered;
    std::atomic<TAaSysComSicad> sicad{0};
    Eu receiver([&] {
        const Address own;
        sicad.store(own.sicad());
        registered.raise();
        expect(choose(AA_WAIT_FOREVER, wantedOnly.data()).text() == "this", "another message came than was listed");
        expectLetter(other, "not this");
    });
    registered.await("a new EU does not run");
    post(other, sicad.load(), "not this");
    post(wanted, sicad.load(), "this");
    receiver.join();
}

void wakeUpEndsAWait()
{
    Signal begun;
    Eu receiver([&] {
        begun.raise();
        expect(!Letter(AaSysComMsgReceive(AA_WAIT_FOREVER)),
               "AaSysComMsgReceive() gave a message that nobody has sent");
    });
    begun.await("a new EU does not run");
    AaSysComEuWakeUp(receiver.id());
    receiver.join();
}

void wakeUpIsKept()
{
    const Address own;
    AaSysComEuWakeUp(AaProEuCurrent());
    AaSysComEuWakeUp(AaProEuCurrent());
    post(wanted, own.sicad());
    expectLetter(wanted, ""); // did not have to wait
    expect(!Letter(AaSysComMsgReceive(boundOfSeam())), "AaSysComMsgReceive() gave a message that nobody has sent");
    expectDuration(Milliseconds(50), "the AaSysComMsgReceive(50000 us) after the one that two wake-ups have ended",
                   [] { expect(!Letter(AaSysComMsgReceive(50'000)), "a message that nobody has sent"); });
}

void wakeUpIsNotWaitedOut()
{
    AaSysComEuWakeUp(AaProEuCurrent());
    const Milliseconds taken = durationOf([] {
        const Letter letter(AaSysComMsgReceive(boundOfSeam()));
        expect(!letter, "AaSysComMsgReceive() gave a message that nobody has sent");
    });
    expect(taken < bound(), "AaSysComMsgReceive() waited for its whole time although its EU had been woken");
}

void unknownEuIsPassedOver()
{
    AaSysComEuWakeUp(0);
    AaSysComEuWakeUp(0xFFFFFFFF);
}

constexpr std::array rules{
    Rule{"receive.no-wait-does-not-wait", "AaSysCom.h", "AaSysComMsgReceive",
         "AaSysComMsgReceive() with AA_NO_WAIT gives null at once when there is no message", noWaitDoesNotWait},
    Rule{"receive.times-out", "AaSysCom.h", "AaSysComMsgReceive",
         "AaSysComMsgReceive() waits for as many micro-seconds as it is told, no less, and then gives null",
         receiveTimesOut},
    Rule{"receive.waits-for-a-message", "AaSysCom.h", "AaSysComMsgReceive",
         "AaSysComMsgReceive() with AA_WAIT_FOREVER waits until a message comes", receiveWaitsForAMessage},
    Rule{"receive.every-eu-has-its-queue", "AaSysCom.h", "AaSysComMsgReceive AaSysComUserRegister",
         "An EU takes the messages for its own cpids and no others", everyEuHasItsQueue},
    Rule{"receive.deregistered-eus-messages-stay", "AaSysCom.h", "AaSysComUserDeregister AaSysComMsgReceive",
         "What was sent to a cpid before it was given up stays in the EU's queue", deregisteredEusMessagesStay},
    Rule{"receive.selective-leaves-the-others-in-order", "AaSysCom.h", "AaSysComMsgReceiveSelective",
         "A selective receive takes the first message whose id is listed; the others stay queued in their order",
         selectiveLeavesTheOthersInOrder},
    Rule{"receive.selective-takes-any-that-is-listed", "AaSysCom.h", "AaSysComMsgReceiveSelective",
         "The filter is the number of ids and then the ids; all of them count", selectiveTakesAnyThatIsListed},
    Rule{"receive.selective-compares-whole-ids", "AaSysCom.h", "AaSysComMsgReceiveSelective",
         "A message id has 32 bits; one above 65,535 is never listed", selectiveComparesWholeIds},
    Rule{"receive.empty-filter-accepts-nothing", "AaSysCom.h", "AaSysComMsgReceiveSelective",
         "An empty list accepts nothing", emptyFilterAcceptsNothing},
    Rule{"receive.selective-times-out", "AaSysCom.h", "AaSysComMsgReceiveSelective",
         "A selective receive that finds nothing gives null when its time has passed, and not before",
         selectiveTimesOut},
    Rule{"receive.selective-waits", "AaSysCom.h", "AaSysComMsgReceiveSelective",
         "A selective receive waits over messages that are not listed until one comes that is", selectiveWaits},
    Rule{"receive.wake-up-ends-a-wait", "AaSysCom.h", "AaSysComEuWakeUp",
         "AaSysComEuWakeUp() makes a waiting AaSysComMsgReceive() give null", wakeUpEndsAWait},
    Rule{"receive.wake-up-is-kept", "AaSysCom.h", "AaSysComEuWakeUp",
         "A wake-up before the wait ends the next receive that would have to wait, once, however many there were",
         wakeUpIsKept},
    Rule{"receive.wake-up-is-not-waited-out", "AaSysCom.h", "AaSysComEuWakeUp",
         "A receive whose EU has been woken returns ahead of its time-out", wakeUpIsNotWaitedOut},
    Rule{"receive.wake-up-of-nobody-is-passed-over", "AaSysCom.h", "AaSysComEuWakeUp",
         "A wake-up of an EU that does not live is passed over", unknownEuIsPassedOver},
};

} // namespace

Rules receiveRules()
{
    return rules;
}

} // namespace dorn::conformance
