// SPDX-License-Identifier: MIT
// Configuration tags: observers.
#include "AaConfigTag.h"
#include "Check.hpp"
#include "OtherProcess.hpp"
#include "Rules.hpp"

#include <array>
#include <atomic>
#include <bit>
#include <condition_variable>
#include <cstddef>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace dorn::conformance {
namespace {

constexpr const char* tagName = "conformance.observed";

/// What the observers of a rule have seen, in its order.
class Sightings {
public:
    void add(const std::string& sighting)
    {
        const std::lock_guard lock(m_mutex);
        m_seen.push_back(sighting);
        m_changed.notify_all();
    }
    /// Waits until there are so many.
    std::vector<std::string> await(std::size_t count)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, bound(), [&] { return m_seen.size() >= count; });
        return m_seen;
    }
    void clear()
    {
        const std::lock_guard lock(m_mutex);
        m_seen.clear();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::string> m_seen;
};

Sightings& seen()
{
    static auto* const instance = new Sightings; // observers may run until the process has ended
    return *instance;
}

std::atomic<bool> isObserving{false};
std::atomic<bool> wasInterrupted{false};
std::atomic<bool> wasOnCallersThread{false};
std::atomic<bool> wasMisaligned{false};
std::thread::id rulesThread;

void observe(const char* name, const void* value, uint32_t length)
{
    wasInterrupted = wasInterrupted || isObserving.exchange(true);
    wasOnCallersThread = wasOnCallersThread || std::this_thread::get_id() == rulesThread;
    wasMisaligned = wasMisaligned || std::bit_cast<std::uintptr_t>(value) % alignof(std::max_align_t) != 0;
    seen().add(std::string(name) + "=" + std::string(static_cast<const char*>(value), length));
    isObserving.store(false);
}

void observeOther(const char* name, const void* value, uint32_t length)
{
    observe(name, value, length);
}

void watch(const char* name, TAaConfigTagObserver observer = observe)
{
    rulesThread = std::this_thread::get_id();
    expectEqual(AaConfigTagRegister(name, observer), 0, std::string("AaConfigTagRegister() of ") + name);
}

void set(const char* name, const std::string& value)
{
    expectEqual(AaConfigTagSetString(name, value.c_str()), 0, "AaConfigTagSetString()");
}

void expectSeen(const std::vector<std::string>& wanted)
{
    const std::vector<std::string> found = seen().await(wanted.size());
    for (std::size_t index = 0; index < wanted.size(); ++index) {
        expect(index < found.size(), "the observer has not been told of " + wanted[index]);
        expect(found[index] == wanted[index],
               "the observer was told of " + found[index] + " and was to be of " + wanted[index]);
    }
    expect(found.size() == wanted.size(), "the observer was told of " + found.back() + " more");
}

void everySetIsTold()
{
    constexpr int sets = 200;
    watch(tagName);
    std::vector<std::string> wanted;
    for (int number = 0; number < sets; ++number) {
        const std::string value = std::to_string(number / 2); // every second set does not change the value
        set(tagName, value);
        wanted.push_back(std::string(tagName) + "=" + value);
    }
    expectSeen(wanted);
    expect(!wasInterrupted.load(), "an observer was called while another call of it ran");
}

void observersRunOnAPlatformThread()
{
    watch(tagName);
    set(tagName, "1");
    expectSeen({std::string(tagName) + "=1"});
    expect(!wasOnCallersThread.load(), "the observer was called on the thread that sets");
}

void presentValueIsNotTold()
{
    set(tagName, "before");
    watch(tagName);
    set(tagName, "after");
    expectSeen({std::string(tagName) + "=after"});
}

void otherTagsAreNotTold()
{
    watch(tagName);
    set("conformance.unobserved", "1");
    set(tagName, "2");
    expectSeen({std::string(tagName) + "=2"});
}

void observerIsRegisteredOnce()
{
    watch(tagName);
    watch(tagName);
    set(tagName, "1");
    set(tagName, "2");
    expectSeen({std::string(tagName) + "=1", std::string(tagName) + "=2"});
}

void severalObserversAreTold()
{
    watch(tagName, observe);
    watch(tagName, observeOther);
    set(tagName, "1");
    expectSeen({std::string(tagName) + "=1", std::string(tagName) + "=1"});
}

/// Sets the tag twice and expects one observer, which is registered here, to be told.
void expectOnlyOneIsTold()
{
    seen().clear();
    watch(tagName, observeOther);
    set(tagName, "2");
    set(tagName, "3");
    expectSeen({std::string(tagName) + "=2", std::string(tagName) + "=3"});
}

void unregisteredIsNotTold()
{
    watch(tagName);
    set(tagName, "1");
    expectSeen({std::string(tagName) + "=1"});
    expectEqual(AaConfigTagUnregister(tagName, observe), 0, "AaConfigTagUnregister()");
    expectOnlyOneIsTold();
    expectEqual(AaConfigTagUnregister(tagName, observe), EAaConfigTagStatus_NotFound,
                "AaConfigTagUnregister() of an observer that is not registered");
}

std::atomic<bool> isInside{false};
std::atomic<bool> mayLeave{false};

void stayInside(const char*, const void*, uint32_t)
{
    isInside.store(true);
    seen().add("inside");
    while (!mayLeave.load()) {
        std::this_thread::yield();
    }
    isInside.store(false);
}

void unregisterWaitsForTheObserver()
{
    watch(tagName, stayInside);
    set(tagName, "1");
    expectSeen({"inside"});
    std::thread allower([] { mayLeave.store(true); });
    const int32_t status = AaConfigTagUnregister(tagName, stayInside);
    const bool isStillInside = isInside.load();
    allower.join();
    expectEqual(status, 0, "AaConfigTagUnregister()");
    expect(!isStillInside, "the observer was running when AaConfigTagUnregister() had returned");
}

void leave(const char* name, const void*, uint32_t)
{
    seen().add("left with " + std::to_string(AaConfigTagUnregister(name, leave)));
}

void observerMayUnregister()
{
    watch(tagName, leave);
    set(tagName, "1");
    expectSeen({"left with 0"});
    expectOnlyOneIsTold();
}

std::atomic<uint32_t> wordSeen{0};

void readAsWord(const char*, const void* value, uint32_t length)
{
    uint32_t word = 0;
    std::memcpy(&word, value, sizeof word);
    wordSeen.store(word);
    seen().add(std::to_string(length));
}

void shortValueIsFilled()
{
    watch(tagName, readAsWord);
    set(tagName, "\xFF");
    expectSeen({"1"});
    std::array<unsigned char, 4> bytes{};
    const uint32_t word = wordSeen.load();
    std::memcpy(bytes.data(), &word, bytes.size());
    expect(bytes == std::array<unsigned char, 4>{0xFF, 0, 0, 0},
           "a value of 1 byte is not followed by zero bytes up to 4");
    watch(tagName);
    set(tagName, "12345");
    seen().await(3);
    expect(!wasMisaligned.load(), "a value was not aligned for every type");
}

void setsOfOtherProcessesAreTold()
{
    constexpr int sets = 100;
    watch(tagName);
    OtherProcess other("sets-tags");
    std::vector<std::string> wanted;
    wanted.reserve(sets);
    for (int number = 0; number < sets; ++number) {
        wanted.push_back(std::string(tagName) + "=" + std::to_string(number));
    }
    expectSeen(wanted);
    expectEqual(other.waitForEnd(), 0, "the end of the other process");
}

void setTags(std::span<char* const>)
{
    for (int number = 0; number < 100; ++number) {
        set(tagName, std::to_string(number));
    }
}

void wrongObserversAreRefused()
{
    expectEqual(AaConfigTagRegister(nullptr, observe), EAaConfigTagStatus_BadArgument,
                "AaConfigTagRegister() without name");
    expectEqual(AaConfigTagRegister("", observe), EAaConfigTagStatus_BadArgument,
                "AaConfigTagRegister() with an empty name");
    expectEqual(AaConfigTagRegister(tagName, nullptr), EAaConfigTagStatus_BadArgument,
                "AaConfigTagRegister() without observer");
}

constexpr std::array rules{
    Rule{"observer.every-set-is-told", "AaConfigTag.h", "AaConfigTagRegister",
         "The observer is called for every set, in the order of the sets, none left out, one call at a time, also when "
         "the value stays the same",
         everySetIsTold},
    Rule{"observer.runs-on-a-platform-thread", "AaConfigTag.h", "AaConfigTagRegister",
         "Observers run on a thread of the platform, not on that of who sets", observersRunOnAPlatformThread},
    Rule{"observer.present-value-is-not-told", "AaConfigTag.h", "AaConfigTagRegister",
         "The value that a tag has at the registration is not reported", presentValueIsNotTold},
    Rule{"observer.other-tags-are-not-told", "AaConfigTag.h", "AaConfigTagRegister",
         "An observer is told of its own tags alone", otherTagsAreNotTold},
    Rule{"observer.is-registered-once", "AaConfigTag.h", "AaConfigTagRegister",
         "An observer that is registered twice for a tag is told once of each set", observerIsRegisteredOnce},
    Rule{"observer.several-are-told", "AaConfigTag.h", "AaConfigTagRegister", "A tag may have several observers",
         severalObserversAreTold},
    Rule{
        "observer.unregistered-is-not-told", "AaConfigTag.h", "AaConfigTagUnregister",
        "After AaConfigTagUnregister() the observer is not called for this tag; one that is not registered is NotFound",
        unregisteredIsNotTold},
    Rule{"observer.unregister-waits", "AaConfigTag.h", "AaConfigTagUnregister",
         "When AaConfigTagUnregister() returns, the observer does not run for this tag", unregisterWaitsForTheObserver},
    Rule{"observer.may-unregister", "AaConfigTag.h", "AaConfigTagUnregister",
         "Called from the observer itself, AaConfigTagUnregister() returns at once", observerMayUnregister},
    Rule{"observer.short-value-is-filled", "AaConfigTag.h", "AaConfigTagRegister",
         "The value is aligned for any type, and zero bytes follow one that is shorter than 4 bytes",
         shortValueIsFilled},
    Rule{"observer.sets-of-other-processes-are-told", "AaConfigTag.h", "AaConfigTagRegister",
         "Sets that another process makes are told in their order, none left out", setsOfOtherProcessesAreTold},
    Rule{"observer.wrong-ones-are-refused", "AaConfigTag.h", "AaConfigTagRegister",
         "No name, an empty name and no observer are bad arguments", wrongObserversAreRefused},
};

constexpr std::array roles{
    Role{"sets-tags", setTags},
};

} // namespace

Rules observerRules()
{
    return rules;
}

Roles observerRoles()
{
    return roles;
}

} // namespace dorn::conformance
