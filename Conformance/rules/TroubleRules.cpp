// SPDX-License-Identifier: MIT
// Files that are collected when troubleshooting data is gathered.
#include "AaTrbl.h"
#include "Check.hpp"
#include "Folder.hpp"
#include "Options.hpp"
#include "Rules.hpp"

#include <array>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace dorn::conformance {
namespace {

/// What the callbacks of a rule have been called for.
struct Calls {
    std::mutex mutex;
    std::vector<std::string> made;
    bool wereOnRulesThread = false;
    std::thread::id rulesThread = std::this_thread::get_id();
};

int32_t note(const std::string& what, const char* fileName, void* opaque)
{
    auto& calls = *static_cast<Calls*>(opaque);
    const std::lock_guard lock(calls.mutex);
    calls.wereOnRulesThread = calls.wereOnRulesThread || calls.rulesThread == std::this_thread::get_id();
    calls.made.push_back(what + " " + fileName);
    return 0;
}

int32_t prepare(const char* fileName, void* opaque)
{
    return note("prepare", fileName, opaque);
}

int32_t store(const char* fileName, void* opaque)
{
    writeFile(fileName, "conformance trouble");
    return note("store", fileName, opaque);
}

int32_t removeStored(const char* fileName, void* opaque)
{
    return note("remove", fileName, opaque);
}

void fileIsRegistered()
{
    const Folder folder;
    const std::string path = folder.path("trouble");
    for (const char* const attempt : {"AaTrblFileRegister()", "AaTrblFileRegister() of the same file again"}) {
        expectEqual(AaTrblFileRegister("conformance", path.c_str(), 5, 0, nullptr, nullptr, nullptr, nullptr), 0,
                    attempt);
    }
}

void callbacksAreCalled()
{
    if (!options().collect) {
        skip("name the shell command with which your platform gathers troubleshooting files with --collect");
    }
    const Folder folder;
    const std::string path = folder.path("trouble");
    static Calls calls;
    expectEqual(AaTrblFileRegister("conformance", path.c_str(), 5, 0, prepare, store, removeStored, &calls), 0,
                "AaTrblFileRegister()");
    expectEqual(std::system(options().collect->c_str()), 0, "the status of " + *options().collect); // NOLINT
    const std::lock_guard lock(calls.mutex);
    const std::array<std::string, 3> wanted{"prepare " + path, "store " + path, "remove " + path};
    for (std::size_t index = 0; index < wanted.size(); ++index) {
        expect(index < calls.made.size(), "this was not called: " + wanted[index]);
        expectEqual(calls.made[index], wanted[index], "call " + std::to_string(index + 1));
    }
    expect(!calls.wereOnRulesThread, "a callback was called on a thread that is not the platform's");
}

constexpr std::array rules{
    Rule{"trouble.file-is-registered", "AaTrbl.h", "AaTrblFileRegister",
         "AaTrblFileRegister() takes a file without callbacks, and takes it once more in place of itself",
         fileIsRegistered},
    Rule{"trouble.callbacks-are-called", "AaTrbl.h", "AaTrblFileRegister",
         "When data is gathered, prepare, store and remove are called in this order with path and context, on a thread "
         "of the platform",
         callbacksAreCalled},
};

} // namespace

Rules troubleRules()
{
    return rules;
}

} // namespace dorn::conformance
