// SPDX-License-Identifier: MIT
#include "generator/RamlGenerator.hpp"

#include "generator/ObjectText.hpp"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

namespace dorn::testkit {
namespace {

/// Of a block that a written document keeps as it is.
constexpr std::array<std::string_view, 3> planTypes{"actual", "plan", "defaults"};
constexpr std::array<std::string_view, 4> scopes{"all", "hierarchy", "changes", "selection"};

template <std::size_t count>
std::string oneOf(RandomNumbers& random, const std::array<std::string_view, count>& words)
{
    return std::string(random.oneOf(std::span<const std::string_view>(words)));
}

RamlShape possible(RamlShape shape)
{
    shape.blocks = std::max(shape.blocks, 1U);
    shape.classes = std::max(shape.classes, 1U);
    shape.depth = std::max(shape.depth, 1U);
    shape.objects = std::max<std::uint64_t>(shape.objects, shape.blocks);
    return shape;
}

} // namespace

RamlGenerator::RamlGenerator(RamlShape shape)
    : m_shape(possible(std::move(shape))), m_random(m_shape.seed), m_names(m_shape.classes, m_shape.depth)
{
    for (const RamlFault fault : m_shape.faults) {
        m_faults.push_back({fault, m_random.fraction()});
    }
}

std::string_view RamlGenerator::next()
{
    m_bytes += m_piece.size();
    m_piece.clear();
    while (m_piece.empty() && m_stage != Stage::Over) {
        makeNextStep();
    }
    return m_piece;
}

double RamlGenerator::progress() const
{
    if (m_stage == Stage::Over) {
        return 1;
    }
    const double done = m_shape.bytes == 0 ? static_cast<double>(m_objects) / static_cast<double>(m_shape.objects)
                                           : static_cast<double>(m_bytes) / static_cast<double>(m_shape.bytes);
    return std::min(done, 1.0);
}

void RamlGenerator::makeNextStep()
{
    switch (m_stage) {
    case Stage::DocumentBegin:
        makeDocumentBegin();
        break;
    case Stage::BlockBegin:
        makeBlockBegin();
        break;
    case Stage::Objects:
        makeObject();
        break;
    case Stage::BlockEnd:
        m_piece = "  </cmData>\n";
        m_stage = ++m_blocks == m_shape.blocks ? Stage::DocumentEnd : Stage::BlockBegin;
        break;
    case Stage::DocumentEnd:
        m_piece = isDueInDocument(RamlFault::NoRaml) ? "</data>\n" : "</raml>\n";
        m_stage = Stage::Over;
        break;
    case Stage::Over:
        break;
    }
}

bool RamlGenerator::isDue(RamlFault fault, double end)
{
    const auto due = std::find_if(m_faults.begin(), m_faults.end(), [fault, end](const PlacedFault& placed) {
        return placed.fault == fault && !placed.isDone && placed.at < end;
    });
    if (due == m_faults.end()) {
        return false;
    }
    due->isDone = true;
    return true;
}

bool RamlGenerator::isDueInDocument(RamlFault fault) const
{
    return std::find(m_shape.faults.begin(), m_shape.faults.end(), fault) != m_shape.faults.end();
}

bool RamlGenerator::isDueInBlock(RamlFault fault)
{
    return isDue(fault, blockEnd());
}

/// The part of the document that stands before the end of the present block.
double RamlGenerator::blockEnd() const
{
    return static_cast<double>(m_blocks + 1) / static_cast<double>(m_shape.blocks);
}

std::vector<RamlFault> RamlGenerator::faultsDueInObject()
{
    const double end =
        m_shape.bytes == 0 ? static_cast<double>(m_objects + 1) / static_cast<double>(m_shape.objects) : progress();
    std::vector<RamlFault> due;
    for (const RamlFaultText& row : ramlFaults) {
        if (row.place == RamlFaultPlace::Object && isDue(row.fault, end)) {
            due.push_back(row.fault);
        }
    }
    return due;
}

void RamlGenerator::makeDocumentBegin()
{
    if (isDueInDocument(RamlFault::NoText)) {
        m_stage = Stage::Over;
        return;
    }
    m_piece = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    m_piece += isDueInDocument(RamlFault::NoRaml) ? "<data" : "<raml";
    if (!isDueInDocument(RamlFault::NoVersion)) {
        m_piece += isDueInDocument(RamlFault::WrongVersion) ? " version=\"2.0\"" : " version=\"2.1E\"";
    }
    m_piece += isDueInDocument(RamlFault::NoXmlns) ? ">\n" : " xmlns=\"raml21.xsd\">\n";
    m_stage = isDueInDocument(RamlFault::NoBlock) ? Stage::DocumentEnd : Stage::BlockBegin;
}

void RamlGenerator::makeBlockBegin()
{
    m_piece = "  <cmData id=\"" + std::to_string(m_blocks + 1) + "\"";
    const std::string type = oneOf(m_random, planTypes);
    if (!isDueInBlock(RamlFault::NoType)) {
        m_piece += " type=\"" + (isDueInBlock(RamlFault::WrongType) ? "candidate" : type) + "\"";
    }
    m_piece += " scope=\"" + oneOf(m_random, scopes) + "\" domain=\"board\" adaptationVersionMajor=\"1\"";
    m_piece += m_shape.isPlain ? ">\n" : " name=\"generated\">\n";
    makeHeader();
    if (isDueInBlock(RamlFault::UnknownInBlock)) {
        m_piece += "    <managed/>\n";
    }
    m_stage = isDueInBlock(RamlFault::NoObject) ? Stage::BlockEnd : Stage::Objects;
}

void RamlGenerator::makeHeader()
{
    const auto addLog = [this](const char* attributes) {
        m_piece += "      <log" + std::string(attributes) + " user=\"operator\"" +
                   (m_shape.isPlain ? "" : " appInfo=\"generator\"") + ">made</log>\n";
    };
    m_piece += "    <header>\n";
    if (isDueInBlock(RamlFault::UnknownInHeader)) {
        m_piece += "      <entry/>\n";
    }
    for (std::uint32_t index = 0; index < m_shape.logs; ++index) {
        addLog(" dateTime=\"2026-11-21T09:18:01Z\" action=\"created\"");
    }
    if (isDueInBlock(RamlFault::NoLogTime)) {
        addLog(" action=\"created\"");
    }
    if (isDueInBlock(RamlFault::NoLogAction)) {
        addLog(" dateTime=\"2026-11-21T09:18:01Z\"");
    }
    m_piece += "    </header>\n";
}

void RamlGenerator::makeObject()
{
    const std::vector<RamlFault> faults = faultsDueInObject();
    ObjectText(m_shape, faults, m_random, m_piece).write(m_names.next(m_random));
    ++m_objects;
    const bool isCutOff = std::find(faults.begin(), faults.end(), RamlFault::CutOff) != faults.end();
    m_stage = isCutOff ? Stage::Over : isBlockFull() ? Stage::BlockEnd : Stage::Objects;
}

bool RamlGenerator::isBlockFull() const
{
    if (m_shape.bytes == 0) {
        return m_objects >= (m_blocks + 1) * m_shape.objects / m_shape.blocks;
    }
    const bool isLast = m_blocks + 1 == m_shape.blocks;
    const bool wantsMore = std::any_of(m_faults.begin(), m_faults.end(), [](const PlacedFault& placed) {
        return textOf(placed.fault).place == RamlFaultPlace::Object && !placed.isDone;
    });
    const auto bytes = static_cast<double>(m_bytes + m_piece.size());
    return bytes >= static_cast<double>(m_shape.bytes) * blockEnd() && !(isLast && wantsMore);
}

std::string ramlText(const RamlShape& shape)
{
    std::string text;
    RamlGenerator generator(shape);
    for (std::string_view piece = generator.next(); !piece.empty(); piece = generator.next()) {
        text += piece;
    }
    return text;
}

} // namespace dorn::testkit
