// SPDX-License-Identifier: MIT
#include "ClimateS.hpp"

int main(int argc, char** argv)
{
    dorn::examples::ClimateS service;
    return vel::hwapi::common::RunService(service, argc, argv);
}
