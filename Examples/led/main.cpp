// SPDX-License-Identifier: MIT
#include "LedS.hpp"

int main(int argc, char** argv)
{
    dorn::examples::LedS service;
    return vel::hwapi::common::RunService(service, argc, argv);
}
