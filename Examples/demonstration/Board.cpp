// SPDX-License-Identifier: MIT
#include "Board.hpp"

#include <csignal>

namespace dorn::demonstration {

namespace {

std::filesystem::path programs()
{
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

} // namespace

std::string Board::program(const std::string& name)
{
    return (programs() / ("Dorn" + name + "Exe")).string();
}

std::string Board::command()
{
    return (programs() / "dorn").string();
}

testkit::Process& Board::start(const std::string& name, const std::vector<std::string>& arguments)
{
    return *(m_services[name] = std::make_unique<testkit::Process>(program(name), arguments));
}

std::vector<std::string> Board::running() const
{
    std::vector<std::string> names;
    for (const auto& [name, process] : m_services) {
        if (process->isRunning()) {
            names.push_back(name);
        }
    }
    return names;
}

std::map<std::string, int> Board::end()
{
    for (const auto& [name, process] : m_services) {
        process->signal(SIGTERM);
    }
    return awaitEnd();
}

std::map<std::string, int> Board::awaitEnd()
{
    std::map<std::string, int> statuses;
    for (const auto& [name, process] : m_services) {
        statuses[name] = process->waitForEnd();
    }
    return statuses;
}

std::filesystem::path Board::files()
{
    return DORN_DEMONSTRATION_BOARD;
}

std::string Board::description()
{
    return (programs().parent_path() / "boards" / "tarn-single.dtb").string();
}

} // namespace dorn::demonstration
