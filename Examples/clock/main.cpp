// SPDX-License-Identifier: MIT
#include "ClockS.hpp"

int main(int argc, char** argv)
{
    dorn::examples::ClockS service;
    return vel::hwapi::common::RunService(service, argc, argv);
}
