// SPDX-License-Identifier: MIT
/// @file ClassLayout.hpp
/// What other binaries rely on in a class: the order of its virtual functions and of its members.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace dorn::test {

/// Sizes that most classes are made of.
namespace layout {

constexpr std::size_t word = sizeof(void*);
constexpr std::size_t text = sizeof(std::string);

/// @p offset rounded up to where a pointer may lie.
constexpr std::size_t aligned(std::size_t offset)
{
    return (offset + word - 1) / word * word;
}

} // namespace layout

/// Place of a virtual function in its class's table, counted from 0; -1 for a function that is not virtual.
/// A destructor has two places. Reads the pointer as the Itanium C++ ABI writes it, with the ARM variant.
template <class MemberFunction>
int slotOf(MemberFunction function)
{
    struct {
        std::uintptr_t pointer;
        std::uintptr_t adjustment;
    } words{};
    static_assert(sizeof words == sizeof function);
    std::memcpy(&words, &function, sizeof words);
#if defined(__arm__) || defined(__aarch64__)
    const bool isVirtual = (words.adjustment & 1U) != 0;
    const std::uintptr_t offset = words.pointer;
#else
    const bool isVirtual = (words.pointer & 1U) != 0;
    const std::uintptr_t offset = words.pointer - 1;
#endif
    return isVirtual ? static_cast<int>(offset / sizeof(void*)) : -1;
}

/// Distances of the members from the beginning of @p object, in the order given.
template <class Class, class... Members>
std::vector<std::size_t> offsetsIn(const Class& object, Members Class::*... members)
{
    const auto* const begin = reinterpret_cast<const char*>(&object);
    return {static_cast<std::size_t>(reinterpret_cast<const char*>(&(object.*members)) - begin)...};
}

/// Gives a test the pointer to a member that the class keeps to itself: an explicit instantiation may name it.
template <class Tag, auto member>
struct Expose {
    friend decltype(member) exposed(Tag) { return member; }
};

} // namespace dorn::test

/// After this, `exposed(dorn::test::Tag{})` is `&Class::member`, which has to be of this type; see dorn::test::Expose.
#define DORN_EXPOSE(Tag, Class, Type, member)                                                                          \
    namespace dorn::test {                                                                                             \
    struct Tag {                                                                                                       \
        friend Type Class::*exposed(Tag);                                                                              \
    };                                                                                                                 \
    template struct Expose<Tag, &Class::member>;                                                                       \
    }
