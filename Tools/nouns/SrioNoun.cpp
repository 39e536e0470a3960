// SPDX-License-Identifier: MIT
#include "Nouns.hpp"

#include "Program.hpp"
#include "answers/LibraryComplaints.hpp"
#include "rioDio.h"
#include "text/Values.hpp"

#include <CLI/CLI.hpp>
#include <memory>

namespace dorn::tool {
namespace {

struct TransferOptions {
    std::string device;
    std::string address;
    std::string file;
    bool isVerified = false;
};

/// What is to be where.
struct Transfer {
    std::uint16_t device;
    std::uint64_t address;
    std::string file;
};

Transfer transferOf(const TransferOptions& options)
{
    if (!options.file.starts_with('/')) {
        throw UsageError("FILE: '" + options.file + "' is no path on the board, which begins with '/'");
    }
    return {parseUnsigned<std::uint16_t>("DEVICE", options.device),
            parseUnsigned<std::uint64_t>("ADDRESS", options.address), options.file};
}

void verify(const Transfer& transfer)
{
    const LibraryComplaints complaints;
    const std::int32_t count = validateSrioWrite(transfer.device, transfer.address, transfer.file.c_str());
    if (count == 0) {
        return;
    }
    if (const std::string reason = complaints.text(); !reason.empty()) {
        throw Failure(reason);
    }
    throw Failure("device " + hexNumber(transfer.device, 1) + " differs from '" + transfer.file + "' in " +
                  std::to_string(count) + (count == 1 ? " byte" : " bytes") +
                  " of the first 64 KiB in which they differ");
}

void load(const Transfer& transfer)
{
    const LibraryComplaints complaints;
    if (writeBinaryFileToSrio(transfer.device, transfer.address, transfer.file.c_str()) == ERioWrite_Done) {
        return;
    }
    const std::string reason = complaints.text();
    throw Failure(reason.empty() ? "'" + transfer.file + "' is empty: nothing has been written" : reason);
}

CLI::App& addTransfer(Program& program, CLI::App& noun, const VerbText& text,
                      const std::shared_ptr<TransferOptions>& options, Action action)
{
    CLI::App& verb = program.addVerb(noun, text, std::move(action));
    verb.add_option("DEVICE", options->device, "RapidIO id of the device; 'dorn board show' lists them")->required();
    verb.add_option("ADDRESS", options->address, "Address in its memory")->required();
    verb.add_option("FILE", options->file, "Path of the file on the board")->required();
    return verb;
}

} // namespace

void addSrioNoun(Program& program)
{
    CLI::App& noun = program.addNoun("srio", "The memory of the devices behind RapidIO");

    const auto loaded = std::make_shared<TransferOptions>();
    addTransfer(
        program, noun,
        {"load", "Writes a file into a device's memory", "dorn srio load 0x10 0x0C000000 /ram/dsp.bin --verify"},
        loaded,
        [loaded](Console&) {
            const Transfer transfer = transferOf(*loaded);
            load(transfer);
            if (loaded->isVerified) {
                verify(transfer);
            }
            return Outcome::Fine;
        })
        .add_flag("--verify", loaded->isVerified, "Reads it back and compares");

    const auto verified = std::make_shared<TransferOptions>();
    addTransfer(program, noun,
                {"verify", "Compares a device's memory with a file", "dorn srio verify 0x10 0x0C000000 /ram/dsp.bin"},
                verified, [verified](Console&) {
                    verify(transferOf(*verified));
                    return Outcome::Fine;
                });
}

} // namespace dorn::tool
