// SPDX-License-Identifier: MIT
#include "SfpS.hpp"

int main(int argc, char** argv)
{
    dorn::examples::SfpS service;
    return vel::hwapi::common::RunService(service, argc, argv);
}
