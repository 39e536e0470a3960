// SPDX-License-Identifier: MIT
#include "MountS.hpp"

int main(int argc, char** argv)
{
    dorn::examples::MountS service;
    return vel::hwapi::common::RunService(service, argc, argv);
}
