// SPDX-License-Identifier: MIT
#include "gateway/Keys.hpp"

#include "gateway/KeyText.hpp"
#include "port/Descriptor.hpp"
#include "port/FilePort.hpp"

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace dorn::gateway {
namespace {

using host::Descriptor;
using host::FilePort;

constexpr std::string_view comment = "# The keys of a node's gateway. The secret one stays here, readable by its owner "
                                     "alone; the public one goes\n"
                                     "# into the table of nodes.\n";
constexpr std::string_view publicLabel = "public ";
constexpr std::string_view secretLabel = "secret ";
constexpr std::string_view unfinishedEnd = ".part";
constexpr std::size_t maxKeyFileSize = 4096;
constexpr mode_t othersRights = S_IRWXG | S_IRWXO;

[[noreturn]] void fail(const std::string& path, const std::string& what)
{
    throw KeyError("key file '" + path + "' " + what);
}

/// A text that leaves nothing of itself behind.
class WipedText {
public:
    WipedText() { text.reserve(maxKeyFileSize); } // never moves, so that no copy stays behind
    ~WipedText() { explicit_bzero(text.data(), text.capacity()); }
    WipedText(const WipedText&) = delete;
    WipedText& operator=(const WipedText&) = delete;

    std::string text;
};

void requireNewOrRegular(const std::string& path, OldKey oldKey)
{
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0) {
        return; // what else is wrong with the place is told by the writing
    }
    if (!S_ISREG(status.st_mode)) {
        fail(path, "is no regular file, and is not replaced by one");
    }
    if (oldKey == OldKey::Kept) {
        fail(path, "is there already, and the other nodes know this one by it; --force replaces it");
    }
}

std::filesystem::path folderOf(const std::string& path)
{
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    return folder.empty() ? "." : folder;
}

std::string unfinishedName(const std::string& path, pid_t process)
{
    return (path + "." + std::to_string(process)).append(unfinishedEnd);
}

/// The process that has named a file as unfinishedName() does; nothing for other names.
std::optional<pid_t> writerOf(std::string_view file, std::string_view keyFile)
{
    if (!file.starts_with(keyFile) || !file.ends_with(unfinishedEnd) ||
        file.size() <= keyFile.size() + unfinishedEnd.size()) {
        return std::nullopt;
    }
    const std::string_view name = file.substr(keyFile.size(), file.size() - keyFile.size() - unfinishedEnd.size());
    pid_t process = 0;
    const auto [end, error] = std::from_chars(name.data() + 1, name.data() + name.size(), process);
    const bool isNumber = error == std::errc() && end == name.data() + name.size();
    return name.front() == '.' && isNumber && process > 0 ? std::optional(process) : std::nullopt;
}

/// Removes what writers have left that were killed: there are secret keys in it.
void removeLeftovers(const std::string& path)
{
    const std::string keyFile = std::filesystem::path(path).filename();
    std::error_code ignored; // what is wrong with the place is told by the writing
    for (std::filesystem::directory_iterator entry(folderOf(path), ignored), end; !ignored && entry != end;
         entry.increment(ignored)) {
        const std::optional<pid_t> writer = writerOf(entry->path().filename().native(), keyFile);
        if (writer && (*writer == getpid() || (kill(*writer, 0) != 0 && errno == ESRCH))) {
            FilePort::get().remove(AT_FDCWD, entry->path().c_str());
        }
    }
}

/// A file beside its place until it is kept; 0600.
class UnfinishedKeyFile {
public:
    explicit UnfinishedKeyFile(const std::string& path) : m_path(path), m_unfinished(unfinishedName(path, getpid()))
    {
        removeLeftovers(path);
        const int result =
            FilePort::get().open(AT_FDCWD, m_unfinished.c_str(), O_WRONLY | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR);
        requireSuccess(result);
        m_descriptor.reset(result);
    }
    ~UnfinishedKeyFile()
    {
        if (m_descriptor) {
            FilePort::get().remove(AT_FDCWD, m_unfinished.c_str());
        }
    }
    UnfinishedKeyFile(const UnfinishedKeyFile&) = delete;
    UnfinishedKeyFile& operator=(const UnfinishedKeyFile&) = delete;

    void write(std::string_view text)
    {
        while (!text.empty()) {
            const ssize_t count = FilePort::get().write(m_descriptor.get(), text.data(), text.size());
            if (count != -EINTR) {
                requireSuccess(static_cast<int>(count));
                text.remove_prefix(static_cast<std::size_t>(count));
            }
        }
        requireSuccess(FilePort::get().sync(m_descriptor.get()));
    }

    void keep(OldKey oldKey)
    {
        FilePort& files = FilePort::get();
        if (oldKey == OldKey::Kept) { // of two that write a first key at the same time one fails here
            requireSuccess(files.renameNew(AT_FDCWD, m_unfinished.c_str(), AT_FDCWD, m_path.c_str()));
        } else {
            requireSuccess(files.rename(AT_FDCWD, m_unfinished.c_str(), AT_FDCWD, m_path.c_str()));
        }
        m_descriptor.reset();
        storePlace();
    }

private:
    /// What other nodes' tables get is there after a power cut, too. Not every file system can promise it.
    void storePlace() const
    {
        const Descriptor folder(FilePort::get().open(AT_FDCWD, folderOf(m_path).c_str(), O_RDONLY | O_DIRECTORY, 0));
        if (folder) {
            FilePort::get().sync(folder.get());
        }
    }

    void requireSuccess(int result) const
    {
        if (result < 0) {
            fail(m_path, std::string("cannot be written: ") + std::strerror(-result));
        }
    }

    std::string m_path;
    std::string m_unfinished;
    Descriptor m_descriptor;
};

/// What speaks against believing the file.
std::string objectionTo(const struct stat& status)
{
    if (!S_ISREG(status.st_mode)) {
        return "is no regular file";
    }
    if (status.st_uid != geteuid()) {
        return "belongs to another user; it is expected to belong to who runs the gateway";
    }
    if ((status.st_mode & othersRights) != 0) {
        return "can be used by others than its owner; 'chmod 600' ends that, and new keys are in order";
    }
    return status.st_size > static_cast<off_t>(maxKeyFileSize) ? "is too long for a key" : "";
}

void readWhole(const std::string& path, std::string& text)
{
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!file || fstat(file.get(), &status) != 0) {
        fail(path, std::string("cannot be read: ") + std::strerror(errno) +
                       (errno == ENOENT ? "; 'dorn gateway keys' makes it" : ""));
    }
    if (const std::string objection = objectionTo(status); !objection.empty()) {
        fail(path, objection);
    }
    text.resize(maxKeyFileSize);
    const ssize_t count = read(file.get(), text.data(), text.size());
    if (count < 0) {
        fail(path, std::string("cannot be read: ") + std::strerror(errno));
    }
    text.resize(static_cast<std::size_t>(count));
}

/// The keys of a file, as far as they were in it.
struct ReadKeys {
    std::optional<PublicKey> publicKey;
    std::optional<SecretKey> secretKey;
};

/// @return false when the line is none of a key file.
bool readLine(std::string_view line, ReadKeys& keys)
{
    if (line.empty() || line.starts_with('#')) {
        return true;
    }
    if (line.starts_with(publicLabel) && !keys.publicKey) {
        keys.publicKey = PublicKey::fromText(line.substr(publicLabel.size()));
        return keys.publicKey.has_value();
    }
    if (line.starts_with(secretLabel) && !keys.secretKey) {
        keys.secretKey = SecretKey::fromText(line.substr(secretLabel.size()));
        return keys.secretKey.has_value();
    }
    return false;
}

} // namespace

void writeKeyFile(const std::string& path, const KeyPair& keys, OldKey oldKey)
{
    requireNewOrRegular(path, oldKey);
    WipedText content;
    content.text.append(comment).append(publicLabel).append(keys.publicKey.text()).append("\n").append(secretLabel);
    auto secret = keyText(keys.secretKey.bytes());
    content.text.append(secret.data(), keyTextLength).append("\n");
    explicit_bzero(secret.data(), secret.size());
    UnfinishedKeyFile file(path);
    file.write(content.text);
    file.keep(oldKey);
}

KeyPair readKeyFile(const std::string& path)
{
    WipedText content;
    readWhole(path, content.text);
    ReadKeys keys;
    std::size_t number = 0;
    for (std::string_view rest = content.text; !rest.empty();) {
        const std::size_t end = rest.find('\n');
        ++number;
        if (!readLine(rest.substr(0, end), keys)) {
            fail(path, "cannot be understood in line " + std::to_string(number) +
                           "; 'dorn gateway keys --force' makes new keys");
        }
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    if (!keys.publicKey || !keys.secretKey) {
        fail(path, "holds no key pair; 'dorn gateway keys --force' makes new keys");
    }
    KeyPair pair = pairOf(*keys.secretKey);
    if (pair.publicKey != *keys.publicKey) {
        fail(path, "is damaged: its two keys are no pair; 'dorn gateway keys --force' makes new keys");
    }
    return pair;
}

} // namespace dorn::gateway
