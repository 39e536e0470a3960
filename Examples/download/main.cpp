// SPDX-License-Identifier: MIT
#include "DownloadS.hpp"

int main(int argc, char** argv)
{
    dorn::examples::DownloadS service;
    return vel::hwapi::common::RunService(service, argc, argv);
}
