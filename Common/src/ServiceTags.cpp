// SPDX-License-Identifier: MIT
#include "Service.hpp"

#include "AaConfigTag.h"
#include "AaSysLog.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <utility>

namespace vel::hwapi::common {
namespace {

/// Guards m_observedTags, which the platform's thread looks at while the main EU changes it. Nothing is called under
/// it.
std::mutex& observedTagsMutex()
{
    static std::mutex mutex;
    return mutex;
}

unsigned int numberAt(const void* value)
{
    unsigned int number = 0;
    std::memcpy(&number, value, sizeof number);
    return number;
}

} // namespace

void Service::SetObservedTag(std::string tag)
{
    {
        const std::lock_guard lock(observedTagsMutex());
        if (std::find(m_observedTags.begin(), m_observedTags.end(), tag) != m_observedTags.end()) {
            return;
        }
        m_observedTags.push_back(tag);
    }
    if (const std::int32_t status = AaConfigTagRegister(tag.c_str(), ConfigTagObserver); status != 0) {
        AaSysLogPrintE(EAaSysLogSeverityLevel_Error, m_radId, "Configuration tag '%s' cannot be observed: %d",
                       tag.c_str(), status);
    }
    std::uint32_t value = 0;
    if (AaConfigTagGetU32(tag.c_str(), &value) == 0) {
        HandleConfigTagChange(std::move(tag), value);
    }
}

void Service::UnSetObservedTag(std::string tag)
{
    {
        const std::lock_guard lock(observedTagsMutex());
        if (std::find(m_observedTags.begin(), m_observedTags.end(), tag) == m_observedTags.end()) {
            return;
        }
    }
    AaConfigTagUnregister(tag.c_str(), ConfigTagObserver);
    const std::lock_guard lock(observedTagsMutex());
    m_observedTags.remove(tag);
}

void Service::ConfigTagObserver(const char* name, const void* value, unsigned int /*length*/)
{
    {
        const std::lock_guard lock(observedTagsMutex());
        if (std::find(m_observedTags.begin(), m_observedTags.end(), name) == m_observedTags.end()) {
            return;
        }
    }
    Service* const service = Get();
    if (value && service) {
        service->HandleConfigTagChange(name, numberAt(value));
    }
}

/// Holds the table of those who wait.
class Service::TagTableLock {
public:
    TagTableLock() : m_isHeld(AaSemReMutexTake(m_wfctMapSem) == 0) {}
    ~TagTableLock()
    {
        if (m_isHeld) {
            AaSemReMutexGive(m_wfctMapSem);
        }
    }
    TagTableLock(const TagTableLock&) = delete;
    TagTableLock& operator=(const TagTableLock&) = delete;
    explicit operator bool() const { return m_isHeld; }

private:
    const bool m_isHeld;
};

/// A thread's place in the table. Whoever releases it takes it out; a thread that gives up does so itself.
class Service::TagWait {
public:
    TagWait(const std::string& tag, unsigned int value) : m_tag(tag), m_value(value) {}
    ~TagWait()
    {
        if (m_isListed) {
            leave();
        }
        AaSemDestroy(&m_semaphore);
    }
    TagWait(const TagWait&) = delete;
    TagWait& operator=(const TagWait&) = delete;

    void enter();
    void sleep();

private:
    void leave();

    const std::string& m_tag;
    const unsigned int m_value;
    AaSem* m_semaphore = nullptr;
    bool m_isListed = false;
};

void Service::TagWait::enter()
{
    const TagTableLock lock;
    m_semaphore = lock ? AaSemCreateC(0) : nullptr;
    if (!m_semaphore) {
        throw RuntimeException("No semaphore to wait for a configuration tag", __FILE__, __LINE__);
    }
    m_isListed = true;
    m_waitForConfigTagSem[m_tag][m_value].push_back(m_semaphore);
    if (std::find(m_awaitedTags.begin(), m_awaitedTags.end(), m_tag) == m_awaitedTags.end()) {
        m_awaitedTags.push_back(m_tag);
    }
    if (AaConfigTagRegister(m_tag.c_str(), WaitForConfigTagObserver) != 0) {
        throw RuntimeException("Configuration tag cannot be observed", __FILE__, __LINE__);
    }
}

void Service::TagWait::sleep()
{
    if (AaSemTake(m_semaphore, AA_WAIT_FOREVER) != 0) {
        throw RuntimeException("Wait for a configuration tag failed", __FILE__, __LINE__);
    }
    m_isListed = false;
}

void Service::TagWait::leave()
{
    const TagTableLock lock;
    const auto tag = m_waitForConfigTagSem.find(m_tag);
    if (tag == m_waitForConfigTagSem.end()) {
        return;
    }
    if (const auto value = tag->second.find(m_value); value != tag->second.end()) {
        value->second.remove(m_semaphore);
        if (value->second.empty()) {
            tag->second.erase(value);
        }
    }
    if (tag->second.empty()) {
        m_waitForConfigTagSem.erase(tag);
    }
}

void Service::WaitForConfigTag(std::string tag, unsigned int value)
{
    TagWait wait(tag, value);
    wait.enter();
    wait.sleep();
}

void Service::WaitForConfigTagObserver(const char* name, const void* value, unsigned int length)
{
    const TagTableLock lock;
    if (!lock || !value || length != sizeof(std::uint32_t)) {
        return;
    }
    const auto tag = m_waitForConfigTagSem.find(name);
    if (tag == m_waitForConfigTagSem.end()) {
        return;
    }
    const auto waiting = tag->second.find(numberAt(value));
    if (waiting == tag->second.end()) {
        return;
    }
    for (AaSem* const semaphore : waiting->second) {
        AaSemGive(semaphore);
    }
    tag->second.erase(waiting);
    if (tag->second.empty()) {
        m_waitForConfigTagSem.erase(tag);
    }
}

/// When this returns, the platform calls none of the observers any more. No lock is held meanwhile: an observer that is
/// running may want it.
void Service::leaveAllTags()
{
    std::list<std::string> observed;
    {
        const std::lock_guard lock(observedTagsMutex());
        observed.swap(m_observedTags);
    }
    for (const std::string& tag : observed) {
        AaConfigTagUnregister(tag.c_str(), ConfigTagObserver);
    }
    std::list<std::string> awaited;
    if (!m_awaitedTags.empty()) {
        const TagTableLock lock;
        awaited.swap(m_awaitedTags);
    }
    for (const std::string& tag : awaited) {
        AaConfigTagUnregister(tag.c_str(), WaitForConfigTagObserver);
    }
}

} // namespace vel::hwapi::common
