// SPDX-License-Identifier: MIT
#include "GreeterS.hpp"

int main(int argc, char** argv)
{
    // The library's 1 is a normal end; a shell's is 0.
    greeter::GreeterS greeter;
    return RunService(greeter, argc, argv) == 1 ? 0 : 1;
}
