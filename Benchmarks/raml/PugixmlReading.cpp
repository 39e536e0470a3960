// SPDX-License-Identifier: MIT
/// @file PugixmlReading.cpp
/// Registers pugixml with a walk that makes plain structures of its tree. It checks less: neither characters nor
/// references nor doubled attributes.
#include "raml/Reading.hpp"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace dorn::benchmarks;

struct Value {
    std::string name;
    std::string value;
};

struct List {
    std::string name;
    std::vector<std::shared_ptr<std::string>> values;
    std::vector<std::shared_ptr<std::vector<Value>>> items;
};

struct Object {
    std::string className;
    std::string operation;
    std::string distName;
    std::string version;
    std::string id;
    std::vector<std::shared_ptr<Value>> parameters;
    std::vector<std::shared_ptr<List>> lists;
};

struct Log {
    std::string dateTime;
    std::string action;
    std::string user;
    std::string text;
};

struct Block {
    std::string type;
    std::string scope;
    std::string domain;
    std::string adaptationVersionMajor;
    std::string id;
    std::vector<Log> logs;
    std::vector<std::shared_ptr<Object>> objects;
};

struct Document {
    std::string version;
    std::string xmlns;
    std::vector<std::shared_ptr<Block>> blocks;
};

Value valueOf(const pugi::xml_node& node)
{
    return {node.attribute("name").value(), node.child_value()};
}

std::shared_ptr<List> listOf(const pugi::xml_node& node)
{
    auto list = std::make_shared<List>();
    list->name = node.attribute("name").value();
    for (const pugi::xml_node& child : node.children()) {
        if (std::strcmp(child.name(), "item") == 0) {
            auto item = std::make_shared<std::vector<Value>>();
            for (const pugi::xml_node& parameter : child.children("p")) {
                item->push_back(valueOf(parameter));
            }
            list->items.push_back(std::move(item));
        } else {
            list->values.push_back(std::make_shared<std::string>(child.child_value()));
        }
    }
    return list;
}

std::shared_ptr<Object> objectOf(const pugi::xml_node& node)
{
    auto object = std::make_shared<Object>();
    object->className = node.attribute("class").value();
    object->operation = node.attribute("operation").value();
    object->distName = node.attribute("distName").value();
    object->version = node.attribute("version").value();
    object->id = node.attribute("id").value();
    for (const pugi::xml_node& child : node.children()) {
        if (std::strcmp(child.name(), "p") == 0) {
            object->parameters.push_back(std::make_shared<Value>(valueOf(child)));
        } else if (std::strcmp(child.name(), "list") == 0) {
            object->lists.push_back(listOf(child));
        }
    }
    return object;
}

std::shared_ptr<Block> blockOf(const pugi::xml_node& node)
{
    auto block = std::make_shared<Block>();
    block->type = node.attribute("type").value();
    block->scope = node.attribute("scope").value();
    block->domain = node.attribute("domain").value();
    block->adaptationVersionMajor = node.attribute("adaptationVersionMajor").value();
    block->id = node.attribute("id").value();
    for (const pugi::xml_node& child : node.children()) {
        if (std::strcmp(child.name(), "managedObject") == 0) {
            block->objects.push_back(objectOf(child));
            continue;
        }
        for (const pugi::xml_node& log : child.children("log")) {
            block->logs.push_back({log.attribute("dateTime").value(), log.attribute("action").value(),
                                   log.attribute("user").value(), log.child_value()});
        }
    }
    return block;
}

void readDocument(const std::string& text)
{
    pugi::xml_document tree;
    if (!tree.load_buffer(text.data(), text.size())) {
        std::abort();
    }
    const pugi::xml_node raml = tree.child("raml");
    const auto document = std::make_shared<Document>();
    document->version = raml.attribute("version").value();
    document->xmlns = raml.attribute("xmlns").value();
    for (const pugi::xml_node& block : raml.children("cmData")) {
        document->blocks.push_back(blockOf(block));
    }
}

[[maybe_unused]] const bool isRegistered = registerReading("pugixml", readDocument);

} // namespace
