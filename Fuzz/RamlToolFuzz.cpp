// SPDX-License-Identifier: MIT
/// @file RamlToolFuzz.cpp
/// Any bytes as a document that an operator looks at: it is shown, counted, compared, sorted and written without harm,
/// and the answers agree with each other.
///
/// What stands in front of the first zero byte is a table of ranks, the document is what follows.
#include "Console.hpp"
#include "Outcome.hpp"
#include "Require.hpp"
#include "raml/RamlDiff.hpp"
#include "raml/RamlRanks.hpp"
#include "raml/RamlReading.hpp"
#include "raml/RamlStats.hpp"
#include "raml/RamlTree.hpp"
#include "raml/RamlWriting.hpp"
#include "text/SourceLines.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>

namespace {

using namespace dorn::tool;
using dorn::fuzz::require;

/// Nothing that is shown says anything to a terminal.
void requireHarmless(const std::string& text)
{
    require(std::all_of(text.begin(), text.end(), [](char c) { return c == '\n' || c == '\t' || c < 0 || c >= ' '; }));
}

void checkFindings(const std::string& text, const RamlReading& reading)
{
    require((reading.result == RAML::RAML_OK) == reading.findings.empty());
    require(reading.findings.size() <= reading.findingCount);
    SourceLines lines(text);
    for (const RamlFinding& finding : reading.findings) {
        requireHarmless(findingText(finding));
        require(finding.line == 0 || !lines.excerpt(finding.line, finding.column).empty());
    }
}

std::string shown(const RAML::RAML_Type& document)
{
    std::ostringstream answer;
    std::ostringstream remarks;
    Console console(answer, remarks, false);
    printRamlTree("document", document, console);
    return answer.str();
}

void checkWriting(const RAML::RAML_Type& document)
{
    const std::string written = writtenRaml(document);
    if (whyNotKept(document, written).empty()) {
        const RamlReading again = readRaml(written, 1);
        require(again.result == RAML::RAML_OK);
        require(diffRaml(document, *again.document, RamlDiffFields::Written).empty());
    }
}

void checkSorting(RAML::RAML_Type& document, const std::string& table)
{
    std::optional<RAML::TmlMoHierarchyMap> ranks;
    try {
        ranks = parseRanks(table, "ranks");
    } catch (const Failure& failure) {
        return;
    }
    const std::uint64_t before = ramlStats(document, 0).all.objects;
    sortRaml(document, *ranks);
    require(ramlStats(document, 0).all.objects == before);
    dropUnranked(document, *ranks);
    for (const auto& block : document.cmDataList) {
        require(
            std::is_sorted(block->managedObjects.begin(), block->managedObjects.end(), RAML::RamlMoPtr_less(*ranks)));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    [[maybe_unused]] static const int isSilent = setenv("DORN_LOG", "none", 1);
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t zero = input.find('\0');
    const std::string table = zero == input.npos ? "" : input.substr(0, zero);
    const std::string text = zero == input.npos ? input : input.substr(zero + 1);
    const RamlReading reading = readRaml(text, 8);
    checkFindings(text, reading);
    if (!reading.document) {
        return 0;
    }
    requireHarmless(shown(*reading.document));
    require(!jsonText(ramlJson(*reading.document)).empty());
    require(diffRaml(*reading.document, *reading.document, RamlDiffFields::All).empty());
    checkWriting(*reading.document);
    checkSorting(*reading.document, table);
    return 0;
}
