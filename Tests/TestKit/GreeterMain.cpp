// SPDX-License-Identifier: MIT
#include "GreeterS.hpp"

int main(int argc, char** argv)
{
    greeter::GreeterS greeter;
    return RunService(greeter, argc, argv);
}
