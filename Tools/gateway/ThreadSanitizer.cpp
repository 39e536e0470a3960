// SPDX-License-Identifier: MIT
// What ThreadSanitizer is to know in programs with ZeroMQ, which is not instrumented: how its threads hand messages to
// each other is not seen, so what those threads do is not to be judged. (To suppress each report costs twenty times the
// time.)
#include <cstring>
#include <dlfcn.h>
#include <pthread.h>

extern "C" {
void AnnotateIgnoreReadsBegin(const char* file, int line);
void AnnotateIgnoreReadsEnd(const char* file, int line);
void AnnotateIgnoreWritesBegin(const char* file, int line);
void AnnotateIgnoreWritesEnd(const char* file, int line);
}

namespace {

/// While it lives, its thread is not judged.
struct Unjudged {
    Unjudged()
    {
        AnnotateIgnoreReadsBegin(__FILE__, __LINE__);
        AnnotateIgnoreWritesBegin(__FILE__, __LINE__);
    }
    ~Unjudged()
    {
        AnnotateIgnoreWritesEnd(__FILE__, __LINE__);
        AnnotateIgnoreReadsEnd(__FILE__, __LINE__);
    }
};

} // namespace

/// Each thread of ZeroMQ gives itself its name before it does anything else.
extern "C" int pthread_setname_np(pthread_t thread, const char* name) noexcept
{
    if (pthread_equal(thread, pthread_self()) != 0 && std::strncmp(name, "ZMQbg", 5) == 0) {
        thread_local const Unjudged untilTheThreadEnds;
    }
    static const auto next = reinterpret_cast<decltype(&pthread_setname_np)>(dlsym(RTLD_NEXT, "pthread_setname_np"));
    return next(thread, name);
}
