// SPDX-License-Identifier: MIT
/// @file PostTest.hpp
/// What tests of POST files share.
#pragma once

#include "PostFile.h"

#include "../../TestKit/OpenDescriptors.hpp"
#include "FailNth.hpp"
#include "NodeTest.hpp"

#include "AaFile.h"
#include "AaMem.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace dorn::test {

/// A record with its tests behind it, as it lies in a message.
template <class Record>
class RecordBuffer {
public:
    /// @param words header and pairs
    explicit RecordBuffer(std::initializer_list<std::uint32_t> words) : m_words(words) {}

    void addPair(std::uint32_t first, std::uint32_t second) { m_words.insert(m_words.end(), {first, second}); }
    const Record* get() const { return reinterpret_cast<const Record*>(m_words.data()); }

private:
    std::vector<std::uint32_t> m_words;
};

/// The words of a result that was read.
template <class Record>
std::vector<std::uint32_t> wordsOf(const Record* record, std::size_t count)
{
    std::vector<std::uint32_t> words(count);
    std::memcpy(words.data(), record, count * sizeof(std::uint32_t));
    return words;
}

/// What a query gives; its memory is released at the end.
template <class Record>
struct Queried {
    EStatus status = EStatus_UndefinedError;
    Record** results = nullptr;
    std::uint32_t count = 0;

    Queried() = default;
    ~Queried()
    {
        for (std::uint32_t index = 0; index < count; ++index) {
            AaMemUnRefDbg(results[index], __FILE__, __LINE__);
        }
        AaMemUnRefDbg(results, __FILE__, __LINE__);
    }
    Queried(const Queried&) = delete;
    Queried& operator=(const Queried&) = delete;
};

/// A board with the file #path, and a look at descriptors at the end.
class PostTest : public testkit::NodeTest {
protected:
    void SetUp() override { ASSERT_EQ(AaFileCreateDir("/ffs/run"), 0); }
    void TearDown() override { EXPECT_EQ(testkit::openDescriptors(), m_descriptors); }

    void write(const std::string& content) const { m_node.writeBoardFile(path, content); }
    std::string content() const { return m_node.readBoardFile(path); }
    bool isThere() const
    {
        AaFile* const file = AaFileOpen(path, "r");
        AaFileClose(file);
        return file != nullptr;
    }

    static constexpr const char* path = "/ffs/run/post.txt";

private:
    std::ptrdiff_t m_descriptors = testkit::openDescriptors();
};

} // namespace dorn::test
