// SPDX-License-Identifier: MIT
#include "PostS.hpp"

int main(int argc, char** argv)
{
    dorn::examples::PostS service;
    return vel::hwapi::common::RunService(service, argc, argv);
}
