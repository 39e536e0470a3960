// SPDX-License-Identifier: MIT
#include "node/PerNode.hpp"

#include <vector>

namespace dorn::host {
namespace {

struct CloseList {
    std::mutex mutex;
    std::vector<void (*)()> functions;
};

CloseList& closeList()
{
    static auto* const list = new CloseList; // outlives every static object that may still use the node
    return *list;
}

} // namespace

void atNodeClose(void (*close)())
{
    CloseList& list = closeList();
    const std::lock_guard lock(list.mutex);
    list.functions.push_back(close);
}

void closeNode()
{
    CloseList& list = closeList();
    for (;;) {
        void (*close)() = nullptr;
        {
            const std::lock_guard lock(list.mutex);
            if (list.functions.empty()) {
                return;
            }
            close = list.functions.back();
            list.functions.pop_back();
        }
        close();
    }
}

} // namespace dorn::host
