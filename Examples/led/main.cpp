// SPDX-License-Identifier: MIT
#include "LedS.hpp"

int main(int argc, char** argv)
{
    dorn::examples::LedS service;
    return static_cast<int>(service.Startup(argc, argv));
}
