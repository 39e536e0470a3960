// SPDX-License-Identifier: MIT
// What ThreadSanitizer is to know in programs with ZeroMQ, which is not instrumented: how its threads hand messages to
// each other is not seen, so what they do with them is not to be judged.
extern "C" const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions()
{
    return "called_from_lib:libzmq.so\n"
           "race:libzmq.so\n"
           "race:libsodium.so";
}
