// SPDX-License-Identifier: MIT
#include "Stage.hpp"

#include "AaConfigTag.h"
#include "RadWait.hpp"
#include "Require.hpp"
#include "ServiceState.hpp"
#include "config/RadStore.hpp"
#include "node/PerNode.hpp"

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace dorn::demonstration {

using vel::hwapi::common::EServiceState_Waiting;

Stage::Stage()
{
    for (const char* const file : {"opt/dorn/dorn.xml", "opt/dorn/plan.xml"}) {
        m_node.writeBoardFile(std::string("/") + file, contentOf(Board::files() / file));
    }
    setenv("DORN_BOARD", Board::description().c_str(), 1);
    require(AaConfigEarlyStartup() == 0, "the board's tags cannot be opened");
}

void Stage::start(const std::string& name, const std::vector<std::string>& arguments)
{
    m_board.start(name, arguments);
    require(testkit::waitForRadChange([&] { return isWaiting(name); }, stepBound), name + " does not get to state 2");
}

bool Stage::isWaiting(const std::string& name) const
{
    const auto info = find(name);
    return info && info->alive && info->pid == m_board.service(name).pid() && !info->published.empty() &&
           info->published.front().value == EServiceState_Waiting;
}

std::optional<host::EeInfo> Stage::find(const std::string& name) const
{
    for (host::EeInfo& info : host::PerNode<host::EeTable>::get().list()) {
        if (info.name == name) {
            return std::move(info);
        }
    }
    return std::nullopt;
}

void Stage::setSwitch(TAaConfigRadId id, std::uint32_t value)
{
    require(host::PerNode<host::RadStore>::get().set(id, value), "the R&D parameter is not known");
}

void Stage::awaitLine(const std::string& ending)
{
    show(m_log.nextLine(ending));
}

std::string contentOf(const std::filesystem::path& path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace dorn::demonstration
