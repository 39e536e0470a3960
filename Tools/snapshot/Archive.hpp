// SPDX-License-Identifier: MIT
/// @file Archive.hpp
/// A compressed archive that is being written.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct archive;

namespace dorn::tool {

/// A tar archive, compressed with gzip, that only its owner can read: what is gathered of a node may be confidential.
///
/// It is written beside, as `<path>.part`, and gets its name in finish(); who never gets there leaves nothing behind.
/// Every function throws Failure when the archive cannot be written.
class Archive {
public:
    explicit Archive(std::string path);
    ~Archive();
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;

    /// Adds a file. @param name relative, with its folders @param seconds when it was changed, since the epoch
    void add(const std::string& name, std::string_view content, std::int64_t seconds);
    void finish();

private:
    struct Closer {
        void operator()(archive* writer) const;
    };

    class PartFile;

    void require(int result);
    [[noreturn]] void fail(const std::string& reason) const;

    std::string m_path;
    std::unique_ptr<PartFile> m_file;
    std::unique_ptr<archive, Closer> m_writer;
};

} // namespace dorn::tool
