// SPDX-License-Identifier: MIT
#include "Traffic.hpp"

#include "node/PerNode.hpp"
#include "seam/OwnMessages.hpp"
#include "syscom/MessageTap.hpp"
#include "syscom/Node.hpp"

#include <cctype>
#include <cstddef>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace dorn::testkit {
namespace {

using host::cpidOf;

host::MessageTap& tap()
{
    return host::PerNode<host::MessageTap>::get();
}

std::string hexOf(const std::string& bytes)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        text += digits[byte >> 4U];
        text += digits[byte & 0xFU];
    }
    return text;
}

std::string bytesOf(const std::string& digits)
{
    std::string bytes;
    for (std::size_t index = 0; index < digits.size(); index += 2) {
        const std::string pair = digits.substr(index, 2);
        std::size_t used = 0;
        const int byte = pair.size() == 2 && std::isxdigit(static_cast<unsigned char>(pair[0])) != 0
                             ? std::stoi(pair, &used, 16)
                             : 0;
        if (used != 2) {
            throw std::runtime_error("traffic: '" + digits + "' are not pairs of hexadecimal digits");
        }
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

/// "message 3, 0x1012 from 0x0F010211 to 0x0F01F000".
std::string nameOf(std::size_t index, const SentMessage& message)
{
    std::ostringstream name;
    name << "message " << index + 1 << ", 0x" << std::hex << message.id << " from 0x" << message.sender << " to 0x"
         << message.receiver;
    return name.str();
}

} // namespace

TrafficRecorder::TrafficRecorder(TAaSysComSicad service) : m_service(service)
{
    if (!tap().addWatcher(m_watcher.cpid())) {
        throw std::runtime_error("traffic: the node is watched too often already");
    }
}

TrafficRecorder::~TrafficRecorder()
{
    tap().removeWatcher(m_watcher.cpid());
}

Traffic TrafficRecorder::stop()
{
    tap().removeWatcher(m_watcher.cpid());
    m_watcher.send(trafficFenceId, m_watcher.address());
    Traffic traffic;
    for (;;) {
        const Message message = m_watcher.expectAny();
        if (message.id() == trafficFenceId) {
            return traffic;
        }
        add(message, traffic);
    }
}

void TrafficRecorder::add(const Message& record, Traffic& traffic) const
{
    const auto& head = record.as<host::TapRecord>();
    const std::string payload = record.text().substr(sizeof head);
    if (head.lost != 0) {
        throw std::runtime_error("traffic: " + std::to_string(head.lost) + " messages were missed");
    }
    const bool isOurs = head.header.id >= firstOwnId && head.header.id <= lastOwnId;
    if (isOurs || (head.header.sender != m_service && head.header.receiver != m_service)) {
        return;
    }
    if (payload.size() != head.header.payloadSize) {
        throw std::runtime_error("traffic: a message of " + std::to_string(head.header.payloadSize) +
                                 " bytes is shown in part only");
    }
    traffic.push_back({head.header.sender, head.header.receiver, head.header.id, payload});
}

std::string textOf(const Traffic& traffic)
{
    std::ostringstream text;
    text << std::hex;
    for (const SentMessage& message : traffic) {
        text << message.sender << " " << message.receiver << " " << message.id << " " << hexOf(message.payload) << "\n";
    }
    return text.str();
}

Traffic trafficOf(const std::string& text)
{
    Traffic traffic;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        SentMessage message;
        std::string payload;
        if (!(words >> std::hex >> message.sender >> message.receiver >> message.id)) {
            throw std::runtime_error("traffic: '" + line + "' is no message");
        }
        words >> payload;
        message.payload = bytesOf(payload);
        traffic.push_back(message);
    }
    return traffic;
}

void replay(const Traffic& traffic, TAaSysComSicad service)
{
    std::map<TAaSysComCpid, std::unique_ptr<Peer>> others;
    for (const SentMessage& message : traffic) {
        const TAaSysComSicad other = cpidOf(message.receiver) == cpidOf(service) ? message.sender : message.receiver;
        std::unique_ptr<Peer>& peer = others[cpidOf(other)];
        if (!peer) {
            peer = std::make_unique<Peer>(cpidOf(other));
        }
    }
    for (std::size_t index = 0; index < traffic.size(); ++index) {
        const SentMessage& message = traffic[index];
        if (cpidOf(message.receiver) == cpidOf(service)) {
            others[cpidOf(message.sender)]->send(message.id, service, message.payload);
            continue;
        }
        const Message answer = others[cpidOf(message.receiver)]->expect(message.id);
        if (answer.text() != message.payload) {
            throw std::runtime_error("replay: " + nameOf(index, message) + " has the payload " + hexOf(answer.text()) +
                                     " and had " + hexOf(message.payload));
        }
    }
}

} // namespace dorn::testkit
