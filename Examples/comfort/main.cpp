// SPDX-License-Identifier: MIT
#include "ComfortS.hpp"

int main(int argc, char** argv)
{
    dorn::examples::ComfortS service;
    return vel::hwapi::common::RunService(service, argc, argv);
}
