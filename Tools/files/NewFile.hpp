// SPDX-License-Identifier: MIT
/// @file NewFile.hpp
/// A file that a command makes.
#pragma once

#include "port/Descriptor.hpp"
#include "text/Values.hpp"

#include <string>

namespace dorn::tool {

/// Written beside its place and moved there at the end, so that what bears its name is whole: the old file or the new
/// one. Unless it is kept it goes without a trace.
class NewFile {
public:
    /// @throws Failure when it cannot be made, or something bears its name that is no regular file.
    explicit NewFile(std::string path);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    /// @throws Failure
    void write(BytesView bytes);
    /// Stores it and gives it its name. @throws Failure
    void keep();

private:
    [[noreturn]] void fail(const std::string& what, int error) const;

    std::string m_path; ///< as a person named it
    std::string m_place;
    std::string m_unfinished;
    host::Descriptor m_descriptor;
};

} // namespace dorn::tool
