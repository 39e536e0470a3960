// SPDX-License-Identifier: MIT
#include "raml/RamlFields.hpp"

#include "raml/RAML_ostream.hpp"

#include <gtest/gtest.h>
#include <sstream>

namespace dorn::tool {
namespace {

using namespace RAML;

TEST(RamlFieldsTest, ResultsHaveTheirNames)
{
    EXPECT_EQ(nameOf(RAML_OK), "RAML_OK");
    EXPECT_EQ(nameOf(RAML_MALFORMED_XML), "RAML_MALFORMED_XML");
    EXPECT_EQ(nameOf(RAML_INVALID_FILE_FORMAT), "RAML_INVALID_FILE_FORMAT");
    EXPECT_EQ(nameOf(RAML_SYNTAX_ERROR), "RAML_SYNTAX_ERROR");
    EXPECT_EQ(nameOf(RAML_RESOURCE_LIMITATION), "RAML_RESOURCE_LIMITATION");
}

/// An operation's name is the text that it is read from, and the one that is written if one is.
TEST(RamlFieldsTest, OperationsHaveTheTextOfTheDocument)
{
    for (int value = RAML_OP_QUERY; value <= RAML_OP_NONE; ++value) {
        const auto operation = static_cast<RAML_MOOperationType>(value);
        const std::string name(nameOf(operation));
        EXPECT_EQ(getOperationType(name), operation) << name;
        std::ostringstream written;
        written << operation;
        EXPECT_TRUE(written.str().empty() || written.str() == name) << name;
    }
    EXPECT_EQ(nameOf(RAML_OP_INVALID), "(invalid)");
}

std::string textOf(const RamlFields& fields, std::string_view name)
{
    for (const RamlField& field : fields) {
        if (field.name == name) {
            return field.text;
        }
    }
    return "absent";
}

TEST(RamlFieldsTest, EnumerationsHaveTheTextOfTheDocument)
{
    RAML_ManagedObjectType object;
    for (const char* const text : {"wholeSubtree", "firstLevelOnly"}) {
        object.setLevelScope(std::string(text));
        EXPECT_EQ(textOf(fieldsOf(object), "levelScope"), text);
    }
    for (const char* const text : {"CM", "PM"}) {
        object.setFilter(std::string(text));
        EXPECT_EQ(textOf(fieldsOf(object), "filter"), text);
    }
    RAML_ItemType item;
    for (const char* const text : {"create", "delete"}) {
        item.setListItemOperation(std::string(text));
        EXPECT_EQ(textOf(fieldsOf(item), "operation"), text);
    }
}

TEST(RamlFieldsTest, WhatIsNotThereIsNoField)
{
    EXPECT_TRUE(fieldsOf(RAML_ManagedObjectType()).empty());
    EXPECT_TRUE(fieldsOf(RAML_ItemType()).empty());
    EXPECT_TRUE(fieldsOf(RAML_LogType()).empty());
    EXPECT_TRUE(fieldsOf(RAML_Type()).empty());
}

/// A field is written exactly when its text gets into a written document.
TEST(RamlFieldsTest, WrittenFieldsAreThose)
{
    const RAML_ManagedObjectType::pointer object = RAML_ManagedObjectType::create();
    object->mOperation = RAML_OP_CREATE;
    object->mVersion = "the version";
    object->mId = "the id";
    object->mName = "the name";
    object->mVendor = "the vendor";
    object->mTimeStamp = "the timeStamp";
    object->mOperationName = "the actionName";
    object->mSequenceNumber = "the sequenceNo";
    object->setLevelScope(std::string("wholeSubtree"));
    object->setFuncScope(std::string("ETH_IF"));
    object->setFilter(std::string("PM"));
    std::ostringstream written;
    written << object;
    const RamlFields fields = fieldsOf(*object);
    EXPECT_EQ(fields.size(), 11U);
    for (const RamlField& field : fields) {
        EXPECT_EQ(written.str().find(field.text) != std::string::npos, field.isWritten) << field.name;
    }
}

} // namespace
} // namespace dorn::tool
