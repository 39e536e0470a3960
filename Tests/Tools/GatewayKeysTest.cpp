// SPDX-License-Identifier: MIT
#include "gateway/Keys.hpp"

#include "FailingFilePort.hpp"
#include "TestNode.hpp"
#include "gateway/KeyText.hpp"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <ostream>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace dorn::gateway {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using testkit::FailingFilePort;
using testkit::FileOperation;

/// What every published text about the encoding shows: these eight bytes are "HelloWorld".
TEST(GatewayKeyTextTest, EncodingIsThatOfItsDefinition)
{
    const KeyBytes bytes{0x86, 0x4F, 0xD2, 0x6F, 0xB5, 0x59, 0xF7, 0x5B};

    EXPECT_EQ(PublicKey(bytes).text(), "HelloWorld000000000000000000000000000000");
}

TEST(GatewayKeyTextTest, TextBecomesTheKeyThatItCameFrom)
{
    KeyBytes bytes{};
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        bytes[index] = static_cast<std::uint8_t>(255 - 7 * index);
    }
    const PublicKey key(bytes);

    ASSERT_TRUE(PublicKey::fromText(key.text()));
    EXPECT_EQ(*PublicKey::fromText(key.text()), key);
    EXPECT_EQ(key.text().size(), keyTextLength);
}

TEST(GatewayKeyTextTest, WhatIsNoKeyIsRefused)
{
    const std::string zeros(keyTextLength, '0');
    ASSERT_TRUE(PublicKey::fromText(zeros));

    EXPECT_FALSE(PublicKey::fromText(""));
    EXPECT_FALSE(PublicKey::fromText(zeros.substr(1)));
    EXPECT_FALSE(PublicKey::fromText(zeros + "0"));
    for (const char outside : {' ', '"', '\'', ',', ';', '\\', '`', '|', '~', '_', '\n', '\0', '\xFF'}) {
        EXPECT_FALSE(PublicKey::fromText(outside + zeros.substr(1))) << static_cast<int>(outside);
    }
}

TEST(GatewayKeyTextTest, GroupBeyondFourBytesIsRefused)
{
    const std::string rest(keyTextLength - 5, '0');

    EXPECT_TRUE(PublicKey::fromText("%nSc0" + rest)); // 0xFFFFFFFF
    EXPECT_FALSE(PublicKey::fromText("%nSc1" + rest));
    EXPECT_FALSE(PublicKey::fromText("#####" + rest));
}

TEST(GatewayKeysTest, PairsAreMadeAnewEachTimeAndBelongTogether)
{
    const KeyPair first = makeKeyPair();
    const KeyPair second = makeKeyPair();

    EXPECT_NE(first.publicKey, second.publicKey);
    EXPECT_NE(first.secretKey.bytes(), second.secretKey.bytes());
    EXPECT_EQ(pairOf(first.secretKey).publicKey, first.publicKey);
    EXPECT_EQ(pairOf(second.secretKey).publicKey, second.publicKey);
}

template <class Type>
concept Printable = requires(std::ostream& stream, const Type& value)
{
    stream << value;
};

/// So that no line of code prints one by accident.
static_assert(!Printable<SecretKey> && !Printable<KeyPair>);

class GatewayKeyFileTest : public ::testing::Test {
protected:
    GatewayKeyFileTest() { std::filesystem::create_directories(m_node.boardPath("/opt/dorn")); }

    static mode_t modeOf(const std::string& path)
    {
        struct stat status {};
        EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
        return status.st_mode & 07777;
    }
    /// Files beside the key file, itself included.
    std::size_t fileCount() const
    {
        const std::filesystem::directory_iterator files(m_node.boardPath("/opt/dorn"));
        return static_cast<std::size_t>(std::distance(begin(files), end(files)));
    }
    /// What readKeyFile() says against the file.
    std::string objection() const
    {
        try {
            readKeyFile(m_path);
        } catch (const KeyError& error) {
            return error.what();
        }
        return "";
    }
    void writeContent(const std::string& content) const
    {
        m_node.writeBoardFile(defaultKeyFile, content);
        chmod(m_path.c_str(), 0600);
    }

    testkit::TestNode m_node;
    std::string m_path = m_node.boardPath(defaultKeyFile);
    KeyPair m_keys = makeKeyPair();
};

TEST_F(GatewayKeyFileTest, KeysComeBackAsTheyWereStored)
{
    writeKeyFile(m_path, m_keys);

    const KeyPair back = readKeyFile(m_path);

    EXPECT_EQ(back.publicKey, m_keys.publicKey);
    EXPECT_EQ(back.secretKey.bytes(), m_keys.secretKey.bytes());
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(GatewayKeyFileTest, FileIsTheOwnersAloneWhateverTheUmask)
{
    const mode_t before = umask(0);
    writeKeyFile(m_path, m_keys);
    umask(before);

    EXPECT_EQ(modeOf(m_path), 0600U);
}

TEST_F(GatewayKeyFileTest, FileThatIsThereIsKept)
{
    writeKeyFile(m_path, m_keys);

    try {
        writeKeyFile(m_path, makeKeyPair());
        FAIL() << "written over";
    } catch (const KeyError& error) {
        EXPECT_EQ(error.what(), "key file '" + m_path +
                                    "' is there already, and the other nodes know this one by it; " +
                                    "--force replaces it");
    }
    EXPECT_EQ(readKeyFile(m_path).publicKey, m_keys.publicKey);
}

TEST_F(GatewayKeyFileTest, FileThatIsThereIsReplacedWhenToldSo)
{
    writeKeyFile(m_path, m_keys);
    const KeyPair other = makeKeyPair();

    writeKeyFile(m_path, other, OldKey::Replaced);

    EXPECT_EQ(readKeyFile(m_path).publicKey, other.publicKey);
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(GatewayKeyFileTest, WhatIsNoFileIsNotReplaced)
{
    std::filesystem::create_directory(m_path);

    EXPECT_THROW(writeKeyFile(m_path, m_keys, OldKey::Replaced), KeyError);
    EXPECT_TRUE(std::filesystem::is_directory(m_path));
}

/// Every call that can fail: the old file stays as it was, and nothing lies beside it.
TEST_F(GatewayKeyFileTest, FailureLeavesTheOldKeys)
{
    writeKeyFile(m_path, m_keys);
    for (const FileOperation operation :
         {FileOperation::Open, FileOperation::Write, FileOperation::Sync, FileOperation::Rename}) {
        const FailingFilePort files(operation, 1, EIO);

        EXPECT_THROW(writeKeyFile(m_path, makeKeyPair(), OldKey::Replaced), KeyError);

        EXPECT_TRUE(files.hasFailed());
        EXPECT_EQ(readKeyFile(m_path).publicKey, m_keys.publicKey);
        EXPECT_EQ(fileCount(), 1U);
    }
}

TEST_F(GatewayKeyFileTest, FailureLeavesNoFirstKeysEither)
{
    struct Failure {
        FileOperation operation;
        unsigned nth;
    };
    for (const auto& [operation, nth] : {Failure{FileOperation::Open, 1}, Failure{FileOperation::Write, 1},
                                         Failure{FileOperation::Sync, 1}, Failure{FileOperation::Rename, 1}}) {
        const FailingFilePort files(operation, nth, EIO);

        EXPECT_THROW(writeKeyFile(m_path, m_keys), KeyError);

        EXPECT_TRUE(files.hasFailed());
        EXPECT_EQ(fileCount(), 0U);
    }
}

/// Runs something before the first keys get their place.
class RenamingFilePort : public host::PosixFilePort {
public:
    explicit RenamingFilePort(std::function<void()> action) : m_action(std::move(action)) {}
    int renameNew(int fromDirectory, const char* from, int toDirectory, const char* to) override
    {
        m_action();
        return PosixFilePort::renameNew(fromDirectory, from, toDirectory, to);
    }

private:
    std::function<void()> m_action;
    host::FilePortScope m_scope{*this};
};

/// Whoever is killed before has left no empty file that has to be replaced by force.
TEST_F(GatewayKeyFileTest, FirstKeysGetTheirPlaceWhole)
{
    bool wasThere = true;
    const RenamingFilePort files([&] { wasThere = std::filesystem::exists(m_path); });

    writeKeyFile(m_path, m_keys);

    EXPECT_FALSE(wasThere);
    EXPECT_EQ(readKeyFile(m_path).publicKey, m_keys.publicKey);
}

TEST_F(GatewayKeyFileTest, OfTwoThatMakeFirstKeysOneFails)
{
    std::string others;
    const RenamingFilePort files([&] {
        writeContent("# of the other one\n");
        others = objection(); // no key pair
    });

    try {
        writeKeyFile(m_path, m_keys);
        FAIL() << "the others' keys are gone";
    } catch (const KeyError& error) {
        EXPECT_STREQ(error.what(), ("key file '" + m_path + "' cannot be written: File exists").c_str());
    }

    EXPECT_EQ(objection(), others);
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(GatewayKeyFileTest, WhatKilledWritersHaveLeftGoes)
{
    const pid_t dead = fork();
    if (dead == 0) {
        _exit(0);
    }
    ASSERT_EQ(waitpid(dead, nullptr, 0), dead);
    const std::string file(defaultKeyFile);
    for (const std::string& left : {std::to_string(dead), std::to_string(getpid())}) {
        m_node.writeBoardFile(file + "." + left + ".part", "secret\n");
    }
    const std::vector<std::string> kept{file + "." + std::to_string(getppid()) + ".part", // its writer lives
                                        file + ".part", file + "..part", file + ".1x.part", "/opt/dorn/a.1.part"};
    for (const std::string& name : kept) {
        m_node.writeBoardFile(name, "");
    }

    writeKeyFile(m_path, m_keys);

    EXPECT_EQ(fileCount(), kept.size() + 1);
    EXPECT_TRUE(std::all_of(kept.begin(), kept.end(), [this](const std::string& name) {
        return std::filesystem::exists(m_node.boardPath(name.c_str()));
    }));
}

TEST_F(GatewayKeyFileTest, PlaceIsStoredAsWell)
{
    FailingFilePort files(FileOperation::Sync, 100, EIO);

    writeKeyFile(m_path, m_keys);

    EXPECT_EQ(files.calls(FileOperation::Sync), 2U) << "the file and its folder";
}

TEST_F(GatewayKeyFileTest, MissingFileSaysWhatToDo)
{
    EXPECT_EQ(objection(),
              "key file '" + m_path + "' cannot be read: No such file or directory; 'dorn gateway keys' makes it");
}

TEST_F(GatewayKeyFileTest, FileThatOthersCanUseIsNotBelieved)
{
    writeKeyFile(m_path, m_keys);
    for (const mode_t mode : {0640U, 0604U, 0620U, 0601U}) {
        chmod(m_path.c_str(), mode);

        EXPECT_THAT(objection(), HasSubstr("can be used by others than its owner")) << mode;
    }
}

TEST_F(GatewayKeyFileTest, FileOfAnotherUserIsNotBelieved)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root gives files away";
    }
    writeKeyFile(m_path, m_keys);
    ASSERT_EQ(chown(m_path.c_str(), 65534, static_cast<gid_t>(-1)), 0);

    EXPECT_THAT(objection(), HasSubstr("belongs to another user"));
}

TEST_F(GatewayKeyFileTest, PipeIsNotWaitedFor)
{
    ASSERT_EQ(mkfifo(m_path.c_str(), 0600), 0);

    EXPECT_THAT(objection(), HasSubstr("is no regular file"));
}

TEST_F(GatewayKeyFileTest, LineThatIsNoneOfAKeyFileIsNamedButNotQuoted)
{
    const std::string secret = PublicKey(m_keys.secretKey.bytes()).text();
    for (const std::string& line : {secret, "secret " + secret + "0", "secret  " + secret, "key " + secret}) {
        writeContent("# comment\n\n" + line + "\n");

        EXPECT_THAT(objection(), HasSubstr("cannot be understood in line 3;")) << line;
        EXPECT_THAT(objection(), Not(HasSubstr(secret)));
    }
}

TEST_F(GatewayKeyFileTest, FileWithoutBothKeysIsNone)
{
    const std::string publicLine = "public " + m_keys.publicKey.text() + "\n";
    for (const std::string& content : {std::string(), std::string("# nothing\n"), publicLine}) {
        writeContent(content);

        EXPECT_THAT(objection(), HasSubstr("holds no key pair;")) << content;
    }
    writeContent(publicLine + publicLine);
    EXPECT_THAT(objection(), HasSubstr("line 2"));
}

TEST_F(GatewayKeyFileTest, KeysThatAreNoPairAreDamaged)
{
    writeContent("public " + makeKeyPair().publicKey.text() + "\nsecret " + PublicKey(m_keys.secretKey.bytes()).text() +
                 "\n");

    EXPECT_THAT(objection(), HasSubstr("is damaged: its two keys are no pair;"));
}

TEST_F(GatewayKeyFileTest, FileTooLongIsNotRead)
{
    writeContent(std::string(5000, '#'));

    EXPECT_THAT(objection(), HasSubstr("is too long for a key"));
}

} // namespace
} // namespace dorn::gateway
