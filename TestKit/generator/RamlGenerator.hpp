// SPDX-License-Identifier: MIT
/// @file RamlGenerator.hpp
/// Makes RAML documents for tests, benchmarks and people who want to try something.
///
/// 1. Say in a RamlShape what the document is to be like.
/// 2. Take its text, piece by piece with a RamlGenerator, which needs no more memory for a great document than for a
///    small one, or whole with ramlText().
#pragma once

#include "generator/ObjectNames.hpp"
#include "generator/RamlShape.hpp"
#include "generator/RandomNumbers.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace dorn::testkit {

/// Makes one document. Needs no node and keeps no state outside; several may work at once.
class RamlGenerator {
public:
    /// A count that is too small for a document is taken as the least that there can be.
    explicit RamlGenerator(RamlShape shape);

    /// The next piece of the document, valid until the next call: the begin of the document, the begin of a block, a
    /// managed object, the end of a block, the end of the document. Empty when there is no more.
    std::string_view next();

    /// How much of the document has been made, from 0 to 1.
    double progress() const;

private:
    enum class Stage { DocumentBegin, BlockBegin, Objects, BlockEnd, DocumentEnd, Over };

    /// Where a fault is to stand.
    struct PlacedFault {
        RamlFault fault;
        double at; ///< part of the document's blocks or objects that stand before it
        bool isDone = false;
    };

    bool isDue(RamlFault fault, double end);
    bool isDueInDocument(RamlFault fault) const;
    bool isDueInBlock(RamlFault fault);
    std::vector<RamlFault> faultsDueInObject();

    void makeDocumentBegin();
    void makeBlockBegin();
    void makeHeader();
    void makeObject();
    void makeNextStep();
    bool isBlockFull() const;
    double blockEnd() const;

    RamlShape m_shape;
    RandomNumbers m_random;
    ObjectNames m_names;
    std::vector<PlacedFault> m_faults;
    Stage m_stage = Stage::DocumentBegin;
    std::string m_piece;
    std::uint64_t m_bytes = 0;   ///< of the pieces before this one
    std::uint64_t m_objects = 0; ///< in them
    std::uint32_t m_blocks = 0;  ///< that are complete
};

/// The whole document.
std::string ramlText(const RamlShape& shape);

} // namespace dorn::testkit
