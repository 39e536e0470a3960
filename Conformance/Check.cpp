// SPDX-License-Identifier: MIT
#include "Check.hpp"

#include "Options.hpp"

namespace dorn::conformance {

void expect(bool holds, const std::string& otherwise)
{
    if (!holds) {
        throw Broken(otherwise);
    }
}

void skip(const std::string& why)
{
    throw Skipped(why);
}

Milliseconds bound()
{
    return options().bound;
}

std::int32_t boundOfSeam()
{
    return static_cast<std::int32_t>(std::chrono::microseconds(bound()).count());
}

Milliseconds durationOf(const std::function<void()>& call)
{
    const auto begin = std::chrono::steady_clock::now();
    call();
    return std::chrono::ceil<Milliseconds>(std::chrono::steady_clock::now() - begin);
}

void expectDuration(Milliseconds least, const std::string& what, const std::function<void()>& call)
{
    constexpr int repetitions = 5;
    for (int repetition = 0; repetition < (least == Milliseconds::zero() ? 1 : repetitions); ++repetition) {
        const Milliseconds taken = durationOf(call);
        const std::string spent = what + " returned after " + std::to_string(taken.count()) + " ms";
        expect(taken + Milliseconds(1) >= least, spent + " and not after " + std::to_string(least.count()) + " ms");
        expect(taken < bound(), spent);
    }
}

} // namespace dorn::conformance
