// SPDX-License-Identifier: MIT
#include "gateway/Keys.hpp"

#include "gateway/KeyText.hpp"

#include <cerrno>
#include <cstring>
#include <zmq.h>

namespace dorn::gateway {
namespace {

/// What ZeroMQ writes: a key's text and a terminating zero.
using KeyBuffer = std::array<char, keyTextLength + 1>;

std::string_view textIn(const KeyBuffer& buffer)
{
    return {buffer.data(), keyTextLength};
}

void requireSuccess(int result, const char* what)
{
    if (result != 0) {
        throw KeyError(std::string(what) + " cannot be made: " + zmq_strerror(zmq_errno()));
    }
}

} // namespace

std::optional<PublicKey> PublicKey::fromText(std::string_view text)
{
    const std::optional<KeyBytes> bytes = keyFromText(text);
    return bytes ? std::optional(PublicKey(*bytes)) : std::nullopt;
}

std::string PublicKey::text() const
{
    return std::string(textIn(keyText(m_bytes)));
}

std::optional<SecretKey> SecretKey::fromText(std::string_view text)
{
    std::optional<KeyBytes> bytes = keyFromText(text);
    if (!bytes) {
        return std::nullopt;
    }
    const SecretKey key(*bytes);
    explicit_bzero(bytes->data(), bytes->size());
    return key;
}

SecretKey::~SecretKey()
{
    explicit_bzero(m_bytes.data(), m_bytes.size());
}

KeyPair makeKeyPair()
{
    KeyBuffer publicText{};
    KeyBuffer secretText{};
    requireSuccess(zmq_curve_keypair(publicText.data(), secretText.data()), "a key pair");
    const KeyPair keys{PublicKey::fromText(textIn(publicText)).value(),
                       SecretKey::fromText(textIn(secretText)).value()};
    explicit_bzero(secretText.data(), secretText.size());
    return keys;
}

KeyPair pairOf(const SecretKey& secretKey)
{
    KeyBuffer publicText{};
    KeyBuffer secretText = keyText(secretKey.bytes());
    const int result = zmq_curve_public(publicText.data(), secretText.data());
    explicit_bzero(secretText.data(), secretText.size());
    requireSuccess(result, "the public key");
    return {PublicKey::fromText(textIn(publicText)).value(), secretKey};
}

} // namespace dorn::gateway
