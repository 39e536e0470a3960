// SPDX-License-Identifier: MIT
#include "LinkS.hpp"

int main(int argc, char** argv)
{
    dorn::examples::LinkS service;
    return vel::hwapi::common::RunService(service, argc, argv);
}
