// SPDX-License-Identifier: MIT
#include "raml/RamlRanks.hpp"

#include "Outcome.hpp"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <sstream>
#include <string_view>
#include <unordered_set>

namespace dorn::tool {
namespace {

using namespace RAML;

struct RankLine {
    std::string className;
    std::optional<int> rank;
};

/// @return nothing when the line is not as it should be.
std::optional<RankLine> parseLine(const std::string& line)
{
    std::istringstream words(line);
    RankLine result;
    std::string rank;
    std::string more;
    words >> result.className >> rank >> more;
    if (!more.empty()) {
        return std::nullopt;
    }
    if (!rank.empty()) {
        const char* const end = rank.data() + rank.size();
        const auto [last, error] = std::from_chars(rank.data(), end, result.rank.emplace());
        if (error != std::errc() || last != end) {
            return std::nullopt;
        }
    }
    return result;
}

/// The rank of a line that gives none itself.
int nextRank(std::optional<int> previous)
{
    constexpr int greatest = std::numeric_limits<int>::max();
    return !previous ? 0 : *previous == greatest ? greatest : *previous + 1;
}

bool isRanked(const RAML_ManagedObjectType::pointer& object, const TmlMoHierarchyMap& ranks)
{
    return RamlMoPtr_validclass(ranks)(object);
}

} // namespace

TmlMoHierarchyMap parseRanks(const std::string& text, const std::string& file)
{
    TmlMoHierarchyMap ranks;
    std::optional<int> previous;
    std::istringstream lines(text);
    std::size_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        const std::string place = file + ", line " + std::to_string(++number) + ": ";
        const std::optional<RankLine> parsed = parseLine(line.substr(0, line.find('#')));
        if (!parsed) {
            throw Failure(place + "is neither CLASS nor CLASS RANK");
        }
        if (parsed->className.empty()) {
            continue;
        }
        previous = parsed->rank ? parsed->rank : nextRank(previous);
        if (!ranks.emplace(parsed->className, *previous).second) {
            throw Failure(place + "'" + parsed->className + "' has a rank already");
        }
    }
    if (ranks.empty()) {
        throw Failure(file + " has no ranks: write a class a line, in the order in which they are to come");
    }
    return ranks;
}

std::vector<std::string> sortRaml(RAML_Type& document, const TmlMoHierarchyMap& ranks)
{
    std::vector<std::string> unranked;
    std::unordered_set<std::string_view> seen;
    for (const RAML_CMDataType::pointer& block : document.cmDataList) {
        for (const RAML_ManagedObjectType::pointer& object : block->managedObjects) {
            if (!isRanked(object, ranks) && seen.insert(object->mClassname).second) {
                unranked.push_back(object->mClassname);
            }
        }
        std::stable_sort(block->managedObjects.begin(), block->managedObjects.end(), RamlMoPtr_less(ranks));
    }
    return unranked;
}

void dropUnranked(RAML_Type& document, const TmlMoHierarchyMap& ranks)
{
    for (const RAML_CMDataType::pointer& block : document.cmDataList) {
        std::erase_if(block->managedObjects,
                      [&ranks](const RAML_ManagedObjectType::pointer& object) { return !isRanked(object, ranks); });
    }
}

} // namespace dorn::tool
