// SPDX-License-Identifier: MIT
#include "RandomModel.hpp"

#include "raml/dataclasses/RAML_ItemType.hpp"
#include "raml/dataclasses/RAML_ListParameterType.hpp"
#include "raml/dataclasses/RAML_ListType.hpp"
#include "raml/dataclasses/RAML_ParameterType.hpp"

#include <array>
#include <random>
#include <string>
#include <string_view>

namespace dorn::test {
namespace {

using namespace RAML;

class Maker {
public:
    explicit Maker(std::uint32_t number) : m_random(number) {}

    RAML_Type::pointer document()
    {
        RAML_Type::pointer made = RAML_Type::create();
        made->version = below(2) == 0 ? "2.1" : "2.1E";
        made->xmlns = text();
        for (std::size_t count = 1 + below(3); count > 0; --count) {
            made->cmDataList.push_back(block());
        }
        return made;
    }

private:
    std::size_t below(std::size_t limit) { return m_random() % limit; }

    /// A text without special characters, and at its ends no white space, which an attribute may not keep.
    std::string text()
    {
        static constexpr std::array<std::string_view, 14> pieces{
            "a", "B", "7", "-", "/", ".", " ", "_x", "%", "\xC3\xA4", "\xE2\x82\xAC", "longer piece", "]", ";"};
        std::string made;
        for (std::size_t count = below(6); count > 0; --count) {
            made += pieces.at(below(pieces.size()));
        }
        return made;
    }

    /// A text with white space anywhere and one special character at most.
    std::string value()
    {
        static constexpr std::string_view blanks = " \t\n";
        static constexpr std::string_view special = "&<>\"'";
        std::string made = text();
        for (std::size_t count = below(3); count > 0; --count) {
            made.insert(made.begin() + static_cast<std::ptrdiff_t>(below(2) * made.size()), blanks[below(3)]);
        }
        if (below(2) == 0) {
            made.insert(below(2) * made.size(), 1, special[below(special.size())]);
        }
        return made;
    }

    RAML_CMDataType::pointer block()
    {
        RAML_CMDataType::pointer made = RAML_CMDataType::create();
        made->type = static_cast<RAML_PlanType>(below(RAML_PLAN_NONE));
        made->scope = static_cast<RAML_ScopeType>(below(RAML_SCOPE_NONE));
        made->id = text();
        made->domain = text();
        made->adaptationVersionMajor = text();
        for (std::size_t count = below(3); count > 0; --count) {
            RAML_LogType& log = made->header.logs.emplace_back();
            log.dateTime = text();
            log.action = text();
            log.user = text();
            log.text = text();
        }
        for (std::size_t count = 1 + below(4); count > 0; --count) {
            made->managedObjects.push_back(object());
        }
        return made;
    }

    RAML_ManagedObjectType::pointer object()
    {
        constexpr std::array operations{RAML_OP_QUERY,  RAML_OP_CREATE, RAML_OP_DELETE,
                                        RAML_OP_UPDATE, RAML_OP_ACTION, RAML_OP_AUTO};
        RAML_ManagedObjectType::pointer made = RAML_ManagedObjectType::create();
        made->setClassName(text());
        made->setDistName(text());
        made->setVersion(text());
        made->setOperation(operations.at(below(operations.size())));
        for (std::size_t count = below(6); count > 0; --count) {
            if (below(3) == 0) {
                made->addMOparams(list());
            } else {
                made->addMOparams(RAML_ParameterType::create("n" + text(), value()));
            }
        }
        return made;
    }

    RAML_ListType::pointer list()
    {
        RAML_ListType::pointer made = RAML_ListType::create();
        made->name = text();
        for (std::size_t count = below(5); count > 0; --count) {
            if (below(2) == 0) {
                RAML_ListParameterType::pointer bare = RAML_ListParameterType::create();
                bare->value = text();
                made->add(bare);
            } else {
                made->add(item());
            }
        }
        return made;
    }

    RAML_ItemType::pointer item()
    {
        RAML_ItemType::pointer made = RAML_ItemType::create();
        for (std::size_t count = below(4); count > 0; --count) {
            made->params.push_back({text(), text()});
        }
        return made;
    }

    std::mt19937 m_random;
};

} // namespace

RAML_Type::pointer randomModel(std::uint32_t number)
{
    return Maker(number).document();
}

} // namespace dorn::test
