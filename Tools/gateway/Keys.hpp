// SPDX-License-Identifier: MIT
/// @file Keys.hpp
/// The CURVE keys by which nodes know each other.
///
/// 1. Each node has a key pair: the secret key stays in a file of that node, the public key goes into every node's
///    table.
/// 2. makeKeyPair() makes one, writeKeyFile() stores its secret key, readKeyFile() brings the pair back.
///
/// A key is 32 bytes; people see the public one as 40 characters of Z85 text. A secret key is shown to nobody: it has
/// no way onto a stream or into a log line, and its bytes are wiped where they go out of use.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace dorn::gateway {

constexpr std::size_t keySize = 32;       ///< bytes of a key
constexpr std::size_t keyTextLength = 40; ///< characters of a key: five for every four bytes

/// Where a node's secret key lies unless a person says otherwise; a path of the target.
constexpr const char* defaultKeyFile = "/opt/dorn/gateway.key";

using KeyBytes = std::array<std::uint8_t, keySize>;

/// What is wrong with a file of keys; the text says what, with which file, and what to do.
class KeyError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The key that others know a node by. One made from nothing is 32 zero bytes and belongs to nobody.
class PublicKey {
public:
    PublicKey() = default;
    explicit PublicKey(const KeyBytes& bytes) : m_bytes(bytes) {}

    /// The key that @p text stands for; nothing when it is not 40 characters of Z85, or one of its groups of five is
    /// beyond four bytes.
    static std::optional<PublicKey> fromText(std::string_view text);

    /// 40 characters.
    std::string text() const;
    /// As it stands in a handshake and in an authentication request.
    const KeyBytes& bytes() const { return m_bytes; }

    friend bool operator==(const PublicKey& left, const PublicKey& right) = default;
    friend auto operator<=>(const PublicKey& left, const PublicKey& right) = default;

private:
    KeyBytes m_bytes{};
};

/// The key that a node keeps to itself.
class SecretKey {
public:
    SecretKey() = default;
    explicit SecretKey(const KeyBytes& bytes) : m_bytes(bytes) {}
    /// As PublicKey::fromText().
    static std::optional<SecretKey> fromText(std::string_view text);
    ~SecretKey();
    SecretKey(const SecretKey&) = default;
    SecretKey& operator=(const SecretKey&) = default;

    /// For a socket's option and nothing else.
    const KeyBytes& bytes() const { return m_bytes; }

private:
    KeyBytes m_bytes{};
};

/// Both keys of a node.
struct KeyPair {
    PublicKey publicKey;
    SecretKey secretKey;
};

/// A new pair. @throws KeyError when the machine gives no random numbers, or ZeroMQ was built without CURVE.
KeyPair makeKeyPair();

/// The pair that @p secretKey belongs to. @throws KeyError when ZeroMQ was built without CURVE.
KeyPair pairOf(const SecretKey& secretKey);

/// What becomes of a key file that is there already.
enum class OldKey {
    Kept,    ///< refused: the node would be unknown to all others
    Replaced ///< the old key is gone
};

/// Stores the secret key of @p keys in the file @p path of this machine: mode 0600, written beside its place, stored
/// and moved there, so that the file is whole or not there. What a process that was killed has left beside it goes.
/// @throws KeyError when a file is there and is to be kept, or it cannot be written.
void writeKeyFile(const std::string& path, const KeyPair& keys, OldKey oldKey = OldKey::Kept);

/// The pair whose secret key is in the file @p path of this machine.
/// @throws KeyError when it cannot be read, belongs to another user, can be read or written by others than its owner,
/// is no regular file, or holds anything but comments and one key. The text never quotes what was read.
KeyPair readKeyFile(const std::string& path);

} // namespace dorn::gateway
