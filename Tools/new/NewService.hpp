// SPDX-License-Identifier: MIT
/// @file NewService.hpp
/// Makes the folder of a new service.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace dorn::tool {

/// What somebody wants.
struct NewService {
    std::string name;      ///< "Fan" gives the class Fan and the executable DornFanExe
    std::string directory; ///< the folder to make
    std::uint16_t cpid;    ///< address of the service
    std::string prefix;    ///< where the library is installed, for CMake to be told; empty where it looks by itself
};

/// A file of the folder.
struct ServiceFile {
    std::string name;
    std::string text;
};

/// @throws UsageError when a service cannot be called so; the text says why.
void checkServiceName(const std::string& name);

/// The files of a service, in alphabetical order. The name has been checked.
std::vector<ServiceFile> filesOf(const NewService& service);

/// Makes the folder with these files, whole or not at all.
/// @throws Failure when there is something of that name already, or it cannot be made.
void makeFolder(const std::string& directory, const std::vector<ServiceFile>& files);

/// @p text as one word of a shell's command line.
std::string shellWord(const std::string& text);

/// " -DCMAKE_PREFIX_PATH=<prefix>", or nothing where CMake looks by itself.
std::string prefixOption(const std::string& prefix);

} // namespace dorn::tool
