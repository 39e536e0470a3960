// SPDX-License-Identifier: MIT
#include "SwitchedBoards.hpp"

namespace dorn::gateway::test {
namespace {

std::string shell(const Namespace& host, const std::string& commands)
{
    return host.run({"sh", "-e", "-c", commands});
}

std::string port(std::size_t place)
{
    return "port" + std::to_string(place);
}

std::string setLink(const Namespace& host, const std::string& interface, bool isUp)
{
    return host.run({"ip", "link", "set", interface, isUp ? "up" : "down"});
}

} // namespace

std::string SwitchedBoards::make(std::size_t count)
{
    m_switch = std::make_unique<Namespace>();
    if (!m_switch->isThere()) {
        return "no network namespace can be made: " + m_switch->whyNot();
    }
    if (std::string reason = shell(*m_switch, "ip link add switch type bridge; ip link set switch up");
        !reason.empty()) {
        return reason;
    }
    m_boards.resize(count);
    for (std::size_t place = 0; place < count; ++place) {
        if (std::string reason = powerUp(place); !reason.empty()) {
            return reason;
        }
    }
    return "";
}

std::string SwitchedBoards::powerUp(std::size_t place)
{
    auto& board = m_boards[place] = std::make_unique<Namespace>(m_switch->enter());
    if (!board->isThere()) {
        return "no further network namespace can be made: " + board->whyNot();
    }
    const std::string name = port(place);
    const std::string hardware = "02:00:00:00:00:0" + std::to_string(place + 1);
    std::string reason =
        shell(*m_switch, "ip link add " + name + " type veth peer name eth0 address " + hardware + " netns " +
                             board->process() + "; ip link set " + name + " master switch up");
    if (reason.empty()) {
        reason = shell(*board, "ip addr add " + address(place) + "/24 dev eth0; ip addr add " + address6(place) +
                                   "/64 dev eth0 nodad || true; ip link set lo up; ip link set eth0 up");
    }
    return reason;
}

bool SwitchedBoards::hasIpv6() const
{
    return m_boards[0]->outputOf({"ip", "-6", "addr", "show", "dev", "eth0"}).find(address6(0)) != std::string::npos;
}

std::string SwitchedBoards::losePower(std::size_t place)
{
    std::string reason = m_switch->run({"ip", "link", "delete", port(place)});
    m_boards[place].reset();
    return reason;
}

std::string SwitchedBoards::setBoardsEnd(std::size_t place, bool isUp) const
{
    return setLink(*m_boards[place], "eth0", isUp);
}

std::string SwitchedBoards::setSwitchsEnd(std::size_t place, bool isUp) const
{
    return setLink(*m_switch, port(place), isUp);
}

std::string SwitchedBoards::shapeTo(std::size_t place, const std::string& discipline) const
{
    return shape(*m_switch, port(place), discipline);
}

std::string SwitchedBoards::shapeFrom(std::size_t place, const std::string& discipline) const
{
    return shape(*m_boards[place], "eth0", discipline);
}

std::uint64_t SwitchedBoards::packetsLostTo(std::size_t place) const
{
    const std::string label = "dropped ";
    const std::string text = m_switch->outputOf({"tc", "-s", "qdisc", "show", "dev", port(place)});
    const std::size_t found = text.find(label);
    return found == std::string::npos ? 0 : std::stoull(text.substr(found + label.size()));
}

std::string SwitchedBoards::shape(const Namespace& host, const std::string& interface, const std::string& discipline)
{
    return shell(host, discipline.empty() ? "tc qdisc del dev " + interface + " root"
                                          : "tc qdisc replace dev " + interface + " root " + discipline);
}

} // namespace dorn::gateway::test
