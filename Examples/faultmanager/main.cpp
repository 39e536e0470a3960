// SPDX-License-Identifier: MIT
#include "FaultManagerS.hpp"

int main(int argc, char** argv)
{
    dorn::examples::FaultManagerS service;
    return static_cast<int>(service.Startup(argc, argv));
}
