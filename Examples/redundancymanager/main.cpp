// SPDX-License-Identifier: MIT
#include "RedundancyManagerS.hpp"

int main(int argc, char** argv)
{
    dorn::examples::RedundancyManagerS service;
    return vel::hwapi::common::RunService(service, argc, argv);
}
