// SPDX-License-Identifier: MIT
// Another process that uses configuration tags:
//   set NAME VALUE            sets the tag
//   flood NAME FIRST LAST     sets the tag to FIRST, FIRST + 1 ... LAST again and again, until it is killed
//   observe NAME LAST         prints every change until the tag is LAST
//   wait NAME VALUE           waits until the tag is set to VALUE
#include "AaConfigTag.h"
#include "Service.hpp"

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <future>
#include <span>
#include <string>

namespace {

using namespace vel::hwapi::common;

class TagS : public Service {
public:
    explicit TagS(unsigned int last) : Service("Tag", 0x778, ERadHwapi_LED, ERadHwapiState_LedState), m_last(last) {}
    ~TagS() override { UnSetObservedTag(m_tag); }
    TagS(const TagS&) = delete;
    TagS& operator=(const TagS&) = delete;

    void HandleConfigTagChange(std::string tag, unsigned int value) override
    {
        std::printf("%s=%u\n", tag.c_str(), value);
        std::fflush(stdout);
        if (value == m_last) {
            m_hasCome.set_value();
        }
    }
    void observe(const std::string& tag)
    {
        m_tag = tag;
        SetObservedTag(tag);
        std::printf("observing\n");
        std::fflush(stdout);
        m_hasCome.get_future().wait();
    }

private:
    const unsigned int m_last;
    std::string m_tag;
    std::promise<void> m_hasCome;
};

void setForEver(const char* name, std::uint32_t first, std::uint32_t last)
{
    constexpr timespec pause{0, 20'000}; // a board's pace, not a flood
    for (;;) {
        for (std::uint32_t value = first; value <= last; ++value) {
            AaConfigTagSetU32(name, value);
            nanosleep(&pause, nullptr);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    const std::span words(argv, static_cast<std::size_t>(argc));
    const std::string verb = words[1];
    const char* const name = words[2];
    const auto number = static_cast<std::uint32_t>(std::stoul(words[3]));
    if (verb == "set") {
        AaConfigTagSetU32(name, number);
    } else if (verb == "flood") {
        setForEver(name, number, static_cast<std::uint32_t>(std::stoul(words[4])));
    } else if (verb == "observe") {
        TagS(number).observe(name);
    } else if (verb == "wait") {
        TagS(number).WaitForConfigTag(name, number);
        std::printf("released\n");
    }
    return 0;
}
