// SPDX-License-Identifier: MIT
#include "ComfortS.hpp"

int main(int argc, char** argv)
{
    dorn::examples::ComfortS service;
    return static_cast<int>(service.Startup(argc, argv));
}
