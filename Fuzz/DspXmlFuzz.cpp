// SPDX-License-Identifier: MIT
/// @file DspXmlFuzz.cpp
/// Any bytes as a DSP parameter file: it is read without harm, and each field holds what a number of 32 bits can be.
#include "FuzzBoard.hpp"
#include "Require.hpp"
#include "dsp.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace {

using dorn::fuzz::FuzzBoard;
using dorn::fuzz::require;

constexpr std::uint64_t untouched = 0xAAAAAAAAAAAAAAAA;

void requireAddress(std::uint64_t address, bool isRead)
{
    require(address <= UINT32_MAX || (!isRead && address == untouched));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzBoard board;
    board.write("/dsp.xml", std::string(reinterpret_cast<const char*>(data), size));
    SStartUpGlobalParameters config;
    SDspAddressParams addresses;
    std::memset(&config, 0xAA, sizeof config);
    std::memset(&addresses, 0xAA, sizeof addresses);

    const TBoolean result = ApiReadDspXml("/dsp.xml", &config, &addresses);

    require(result <= 1);
    for (const std::uint64_t address :
         {addresses.initSwAddr, addresses.cfgParamAddr, addresses.doorbellAddr, addresses.runtimeSwAddr}) {
        requireAddress(address, result == 1);
    }
    require(addresses.initSwAddr == untouched || config.unit == 0); // the sections are read one after the other
    require(result == 0 || (config.bbTrace == 0 && config.cpuClk == 0 && config.receiverInfo == 0));
    return 0;
}
