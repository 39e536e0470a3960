// SPDX-License-Identifier: MIT
#include "RamlModelText.hpp"

#include "Require.hpp"
#include "raml/dataclasses/RAML_ItemType.hpp"
#include "raml/dataclasses/RAML_ListParameterType.hpp"
#include "raml/dataclasses/RAML_ListType.hpp"
#include "raml/dataclasses/RAML_ParameterType.hpp"

#include <algorithm>
#include <string_view>

namespace dorn::fuzz {
namespace {

using namespace RAML;

/// Calls what it is given for each text and number of a model, so that each walk over one is written once.
template <class Visitor>
class Walk {
public:
    Walk(Visitor& visitor, ModelFields fields) : m_visitor(visitor), m_isAll(fields == ModelFields::All) {}

    void document(const RAML_Type& document)
    {
        m_visitor.attribute(document.version);
        m_visitor.attribute(document.xmlns);
        for (const RAML_CMDataType::pointer& block : document.cmDataList) {
            m_visitor.number(static_cast<long>(block->type));
            m_visitor.number(static_cast<long>(block->scope));
            m_visitor.attribute(block->id);
            m_visitor.attribute(block->domain);
            m_visitor.attribute(block->adaptationVersionMajor);
            if (m_isAll) {
                m_visitor.attribute(block->name);
            }
            header(block->header);
            for (const RAML_ManagedObjectType::pointer& object : block->managedObjects) {
                managedObject(*object);
            }
            m_visitor.end();
        }
    }

private:
    void header(const RAML_HeaderType& header)
    {
        for (const RAML_LogType& log : header.logs) {
            m_visitor.attribute(log.dateTime);
            m_visitor.attribute(log.action);
            m_visitor.attribute(log.user);
            if (m_isAll) {
                m_visitor.attribute(log.appInfo);
            }
            m_visitor.content(log.text);
        }
        m_visitor.end();
    }

    void managedObject(const RAML_ManagedObjectType& object)
    {
        m_visitor.operation(object.mOperation);
        for (const std::string* text : {&object.mClassname, &object.mDistName, &object.mVersion}) {
            m_visitor.attribute(*text);
        }
        if (m_isAll) {
            for (const std::string* text : {&object.mId, &object.mName, &object.mVendor, &object.mTimeStamp,
                                            &object.mOperationName, &object.mSequenceNumber}) {
                m_visitor.attribute(*text);
            }
            m_visitor.number(object.mLevelScope);
            m_visitor.number(object.mFuncScope);
            m_visitor.number(object.mFilter);
        }
        for (const RAML_MOParameterType::pointer& parameter : object.mParameters) {
            m_visitor.attribute(parameter->name);
            if (const auto* const simple = dynamic_cast<const RAML_ParameterType*>(parameter.get())) {
                m_visitor.value(simple->value);
            } else {
                list(dynamic_cast<const RAML_ListType&>(*parameter));
            }
        }
        m_visitor.end();
    }

    void list(const RAML_ListType& list)
    {
        for (const RAML_ListElementType::pointer& element : list.listElements) {
            m_visitor.number(element->getType());
            if (const auto* const value = dynamic_cast<const RAML_ListParameterType*>(element.get())) {
                m_visitor.content(value->value);
                continue;
            }
            const auto& item = dynamic_cast<const RAML_ItemType&>(*element);
            if (m_isAll) {
                m_visitor.number(item.mListItemOperation);
            }
            for (const RAML_ItemParameterType& parameter : item.params) {
                m_visitor.attribute(parameter.name);
                m_visitor.content(parameter.value);
            }
            m_visitor.end();
        }
        m_visitor.end();
    }

    Visitor& m_visitor;
    bool m_isAll;
};

/// Texts with their lengths in front, so that they cannot run into each other.
struct Text {
    void attribute(const std::string& text) { result += "a" + std::to_string(text.size()) + ":" + text; }
    void content(const std::string& text) { result += "c" + std::to_string(text.size()) + ":" + text; }
    void value(const std::string& text) { result += "v" + std::to_string(text.size()) + ":" + text; }
    void number(long value) { result += "n" + std::to_string(value) + ";"; }
    void operation(RAML_MOOperationType operation) { number(operation); }
    void end() { result += "."; }

    std::string result;
};

/// Whether all that is written can be read back.
struct Keeping {
    void attribute(const std::string& text) { isKept = isKept && text.find_first_of("&<>\"'\r\n\t") == text.npos; }
    void content(const std::string& text) { isKept = isKept && text.find_first_of("&<>\"'\r") == text.npos; }
    void value(const std::string& text)
    {
        const auto isSpecial = [](char c) { return std::string_view("&<>\"'").find(c) != std::string_view::npos; };
        isKept = isKept && std::count_if(text.begin(), text.end(), isSpecial) <= 1 && text.find('\r') == text.npos;
    }
    void number(long) {}
    void operation(RAML_MOOperationType operation)
    {
        isKept = isKept && operation != RAML_OP_SUBSCRIBE && operation != RAML_OP_UNSUBSCRIBE;
    }
    void end() {}

    bool isKept = true;
};

void requireSound(const RAML_ManagedObjectType& object)
{
    require(object.mOperation != RAML_OP_NONE && object.mOperation != RAML_OP_INVALID);
    for (const RAML_MOParameterType::pointer& parameter : object.mParameters) {
        require(parameter && (parameter->getType() == RAML_P || parameter->getType() == RAML_LIST));
        if (const auto* const list = dynamic_cast<const RAML_ListType*>(parameter.get())) {
            require(list->getType() == RAML_LIST);
            for (const RAML_ListElementType::pointer& element : list->listElements) {
                require(element && (element->getType() == RAML_LIST_P || element->getType() == RAML_ITEM));
            }
        } else {
            require(parameter->getType() == RAML_P && !parameter->name.empty());
        }
    }
}

} // namespace

std::string modelText(const RAML_Type& document, ModelFields fields)
{
    Text text;
    Walk(text, fields).document(document);
    return text.result;
}

bool isKeptByWriter(const RAML_Type& document)
{
    Keeping keeping;
    Walk(keeping, ModelFields::Written).document(document);
    return keeping.isKept;
}

void requireSound(const RAML_Type& document, bool isWhole)
{
    if (isWhole) {
        require(document.version == "2.1" || document.version == "2.1E");
        require(!document.cmDataList.empty());
    }
    for (const RAML_CMDataType::pointer& block : document.cmDataList) {
        require(block != nullptr);
        if (isWhole) {
            require(block->type != RAML_PLAN_NONE && block->scope != RAML_SCOPE_NONE &&
                    block->scope != RAML_SCOPE_INVALID && !block->managedObjects.empty());
        }
        for (const RAML_ManagedObjectType::pointer& object : block->managedObjects) {
            require(object != nullptr);
            requireSound(*object);
        }
    }
}

} // namespace dorn::fuzz
