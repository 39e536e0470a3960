// SPDX-License-Identifier: MIT
/// @file ObjectText.hpp
/// A managed object of a document that is made for a test, as text.
#pragma once

#include "generator/ObjectNames.hpp"
#include "generator/RamlShape.hpp"
#include "generator/RandomNumbers.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace dorn::testkit {

/// Writes one managed object.
class ObjectText {
public:
    /// @param faults what is wrong with this object
    /// @param to where its text is appended
    ObjectText(const RamlShape& shape, const std::vector<RamlFault>& faults, RandomNumbers& random, std::string& to);

    /// Appends one managed object of this name.
    void write(const ObjectName& name);

private:
    bool has(RamlFault fault) const;
    std::string value(bool isSimple);
    void writeBeginTag(const ObjectName& name);
    void writeAttributesThatAreNotWritten();
    void writeContent();
    void writeFaultyContent();
    void writeSomethingIgnored();
    void writeParameter();
    void writeList();
    void writeItem();

    const RamlShape& m_shape;
    const std::vector<RamlFault>& m_faults;
    RandomNumbers& m_random;
    std::string& m_text;
    std::uint64_t m_names = 0; ///< of parameters and lists that have been given
};

} // namespace dorn::testkit
