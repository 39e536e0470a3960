// SPDX-License-Identifier: MIT
/// @file Options.hpp
/// What the command line asks for, and what it tells of the board.
#pragma once

#include <chrono>
#include <csignal>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace dorn::conformance {

/// A memory range behind RapidIO, "port:device:address".
struct RapidIoPlace {
    std::uint32_t port = 0;
    std::uint16_t device = 0;
    std::uint64_t address = 0;
};

struct Options {
    std::vector<std::string> arguments; ///< as they stood on the command line, without the program's name

    bool isHelp = false;
    bool isList = false;
    bool isDestructive = false;
    bool isVerbose = false;
    bool isHere = false;
    std::vector<std::string> patterns; ///< of rule ids; none: all rules
    std::optional<std::string> function;
    std::chrono::milliseconds bound = std::chrono::seconds(10);
    std::string directory = "/tmp/dorn-conformance";
    int endSignal = SIGTERM; ///< 0: the platform asks processes to end in another way

    std::optional<std::string> tagFile;
    std::optional<std::string> collect;
    std::optional<std::string> bootImage;
    std::optional<std::string> fpgaImage;
    std::optional<std::uint32_t> fpga;
    std::optional<std::uint32_t> fileSystem;
    std::optional<RapidIoPlace> rapidIo;

    std::optional<std::string> rule; ///< this process tries one rule
    int report = -1;                 ///< and writes what came of it to this descriptor
    std::optional<std::string> role; ///< this process plays a role
    std::vector<char*> roleArguments;
};

/// The command line is wrong.
class WrongUse : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads the command line for options(). @throws WrongUse
void readOptions(int argc, char** argv);
/// What readOptions() has read.
const Options& options();
/// The help text.
std::string helpText(const std::string& program);

} // namespace dorn::conformance
