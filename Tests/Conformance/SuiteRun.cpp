// SPDX-License-Identifier: MIT
#include "SuiteRun.hpp"

#include "Process.hpp"

#include <chrono>
#include <sstream>

namespace dorn::conformance {

std::set<std::string> SuiteRun::rules(const std::string& verdict) const
{
    std::set<std::string> ids;
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string word;
        std::string id;
        if (!line.starts_with(' ') && words >> word >> id && word == verdict) {
            ids.insert(id);
        }
    }
    return ids;
}

SuiteRun runSuite(const std::string& program, const std::vector<std::string>& arguments)
{
    testkit::Process suite(program, arguments);
    SuiteRun run;
    run.status = suite.waitForEnd(std::chrono::minutes(4));
    run.output = suite.standardOutput();
    run.errors = suite.standardError();
    return run;
}

std::map<std::string, std::vector<std::string>> listedRules()
{
    std::istringstream lines(runSuite(DORN_CONFORMANCE, {"--list"}).output);
    std::map<std::string, std::vector<std::string>> rules;
    for (std::string line; std::getline(lines, line);) {
        const std::size_t headerEnd = line.find("]  ");
        if (line.starts_with(' ') || headerEnd == std::string::npos) {
            continue;
        }
        std::istringstream functions(line.substr(headerEnd + 3));
        std::vector<std::string>& all = rules[line.substr(0, line.find(' '))];
        for (std::string function; functions >> function;) {
            all.push_back(function);
        }
    }
    return rules;
}

std::vector<std::string> boardArguments()
{
    return {"--rio", "0:0x10:0x80000000", "--fpga", "0x10002"};
}

} // namespace dorn::conformance
