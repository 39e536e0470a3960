// SPDX-License-Identifier: MIT
#include "RedundancyManagerS.hpp"

int main(int argc, char** argv)
{
    dorn::examples::RedundancyManagerS service;
    return static_cast<int>(service.Startup(argc, argv));
}
