// SPDX-License-Identifier: MIT
#include "Finding.hpp"

#include "AaConfigTag.h"
#include "AaStartup.h"
#include "Check.hpp"
#include "Options.hpp"

#include <cstdio>
#include <cstring>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace dorn::conformance {
namespace {

constexpr char endAnnounced = 'e';
constexpr std::string_view verdictLetters = "kbs";

std::string endOf(int status)
{
    if (WIFSIGNALED(status)) {
        return "the process that tried the rule was ended by signal " + std::to_string(WTERMSIG(status)) + " (" +
               strsignal(WTERMSIG(status)) + ")";
    }
    return "the process that tried the rule ended with status " + std::to_string(WEXITSTATUS(status));
}

void write(std::string_view text)
{
    if (options().report >= 0 && ::write(options().report, text.data(), text.size()) < 0) {
        std::perror("report");
    }
}

} // namespace

void startPlatform()
{
    expectEqual(AaConfigEarlyStartup(), 0, "AaConfigEarlyStartup()");
    expectEqual(AaConfigTagSetString("tessel.service.aapro.eename", "Conformance"), 0,
                "AaConfigTagSetString() of the EE's name");
    expectEqual(AaConfigTagSetU16("tessel.service.aatbts.cpid", 0), 0, "AaConfigTagSetU16() of the EE's cpid");
    expectEqual(AaStartupEeStartup(), 0, "AaStartupEeStartup()");
}

Finding tryRule(const Rule& rule)
{
    try {
        if (rule.effect != Effect::Start) {
            startPlatform();
        }
        rule.check();
        return {};
    } catch (const Broken& broken) {
        return {Verdict::Broken, broken.what()};
    } catch (const Skipped& skipped) {
        return {Verdict::Skipped, skipped.what()};
    } catch (const std::exception& error) {
        return {Verdict::Broken, std::string("the rule could not be tried: ") + error.what()};
    }
}

void report(const Finding& finding)
{
    write(verdictLetters[static_cast<std::size_t>(finding.verdict)] + finding.text);
}

void announceEnd()
{
    write(std::string_view(&endAnnounced, 1));
}

Finding readReport(const std::string& text, int status)
{
    std::string_view rest = text;
    const bool isEndAnnounced = rest.starts_with(endAnnounced);
    rest.remove_prefix(isEndAnnounced ? 1 : 0);
    if (rest.empty()) {
        return isEndAnnounced ? Finding{} : Finding{Verdict::Broken, endOf(status) + " in the middle of it"};
    }
    const auto verdict = static_cast<Verdict>(verdictLetters.find(rest.front()));
    if (verdict == Verdict::Kept && (!WIFEXITED(status) || WEXITSTATUS(status) != 0)) {
        return {Verdict::Broken, endOf(status) + " after the rule"};
    }
    return {verdict, std::string(rest.substr(1))};
}

void giveUp(const std::string& why)
{
    report({Verdict::Broken, why});
    std::fprintf(stderr, "%s\n", why.c_str());
    _exit(1);
}

} // namespace dorn::conformance
