// SPDX-License-Identifier: MIT
#include "ResetS.hpp"

int main(int argc, char** argv)
{
    dorn::examples::ResetS service;
    return vel::hwapi::common::RunService(service, argc, argv);
}
