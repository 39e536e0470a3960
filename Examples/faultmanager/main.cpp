// SPDX-License-Identifier: MIT
#include "FaultManagerS.hpp"

int main(int argc, char** argv)
{
    dorn::examples::FaultManagerS service;
    return vel::hwapi::common::RunService(service, argc, argv);
}
