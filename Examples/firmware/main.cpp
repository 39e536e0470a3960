// SPDX-License-Identifier: MIT
#include "FirmwareS.hpp"

int main(int argc, char** argv)
{
    dorn::examples::FirmwareS service;
    return vel::hwapi::common::RunService(service, argc, argv);
}
