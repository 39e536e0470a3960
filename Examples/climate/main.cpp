// SPDX-License-Identifier: MIT
#include "ClimateS.hpp"

int main(int argc, char** argv)
{
    dorn::examples::ClimateS service;
    return static_cast<int>(service.Startup(argc, argv));
}
