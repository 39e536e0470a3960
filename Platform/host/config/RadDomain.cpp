// SPDX-License-Identifier: MIT
#include "config/RadDomain.hpp"

#include "node/FixedText.hpp"
#include "port/FilePort.hpp"

#include <cstdio>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace dorn::host {
namespace {

std::size_t wholePages(std::size_t size)
{
    const auto pageSize = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return (size + pageSize - 1) / pageSize * pageSize;
}

/// A number as operators see it.
std::string hex(std::uint32_t value)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%X", static_cast<unsigned>(value));
    return text.data();
}

std::string describe(const std::string& name, std::uint32_t defaultValue)
{
    return name.empty() ? "none" : "\"" + name + "\" with default " + std::to_string(defaultValue);
}

} // namespace

RadDomain::Layout::Layout(std::size_t size)
    : valuesBegin(wholePages(sizeof(Header))),
      valuesEnd(valuesBegin + wholePages(size * sizeof(std::uint32_t))),
      namesBegin(valuesEnd + size * sizeof(std::uint32_t)),
      end(wholePages(namesBegin + size * nameSize))
{
}

std::string RadDomain::fileName(std::uint16_t number)
{
    return "rad/" + std::to_string(number);
}

std::optional<RadDomain::Sight> RadDomain::look(const RunDirectory& directory, std::uint16_t number)
{
    const int descriptor =
        ::openat(directory.descriptor(), fileName(number).c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        return std::nullopt;
    }
    Header found{};
    struct stat status {};
    const bool isRead = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
                        pread(descriptor, &found, sizeof found, 0) == static_cast<ssize_t>(sizeof found);
    close(descriptor);
    if (!isRead || found.store.magic != magic || found.store.version != version ||
        found.store.size != static_cast<std::uint64_t>(status.st_size)) {
        return std::nullopt;
    }
    const bool isComplete = found.isComplete.load(std::memory_order_relaxed) != 0;
    if (isComplete && (found.size > maximumSize || Layout(found.size).end != found.store.size)) {
        return std::nullopt;
    }
    return Sight{found.size, isComplete};
}

void RadDomain::remove(const RunDirectory& directory, std::uint16_t number)
{
    FilePort::get().remove(directory.descriptor(), fileName(number).c_str());
}

RadDomain::RadDomain(const RunDirectory& directory, std::uint16_t number, std::size_t size)
    : m_number(number),
      m_size(size),
      m_layout(size),
      m_store(directory, fileName(number), SharedStoreFormat{magic, version, m_layout.end}),
      m_values(reinterpret_cast<std::atomic<std::uint32_t>*>(m_store.data() + m_layout.valuesBegin)),
      m_defaults(reinterpret_cast<std::uint32_t*>(m_store.data() + m_layout.valuesEnd)),
      m_names(reinterpret_cast<std::array<char, nameSize>*>(m_store.data() + m_layout.namesBegin))
{
}

bool RadDomain::isCurrent(const RunDirectory& directory) const
{
    struct stat own {};
    struct stat named {};
    return fstat(m_store.descriptor(), &own) == 0 &&
           fstatat(directory.descriptor(), fileName(m_number).c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           own.st_dev == named.st_dev && own.st_ino == named.st_ino;
}

void RadDomain::complete(const RadDeclaration& declaration)
{
    Header& head = header();
    head.number = m_number;
    head.size = static_cast<std::uint32_t>(m_size);
    copyText(head.name, declaration.name);
    for (std::size_t index = 0; index < m_size; ++index) {
        const RadDeclaration::Parameter& parameter = declaration.parameters[index];
        m_values[index].store(parameter.defaultValue, std::memory_order_relaxed);
        m_defaults[index] = parameter.defaultValue;
        copyText(m_names[index], parameter.name);
    }
    head.isComplete.store(1, std::memory_order_release);
}

std::string RadDomain::differenceTo(const RadDeclaration& declaration) const
{
    if (name() != declaration.name) {
        return "its name is \"" + declaration.name + "\" here and \"" + name() + "\" on the node";
    }
    if (m_size != declaration.parameters.size()) {
        return "it has " + std::to_string(declaration.parameters.size()) + " identifiers here and " +
               std::to_string(m_size) + " on the node";
    }
    std::string first;
    std::size_t count = 0;
    for (std::size_t index = 0; index < m_size; ++index) {
        const RadDeclaration::Parameter& here = declaration.parameters[index];
        if (here.name == parameterName(index) && here.defaultValue == m_defaults[index]) {
            continue;
        }
        if (count++ == 0) {
            first = "parameter " + hex(static_cast<std::uint32_t>(m_number) << 16 | static_cast<std::uint32_t>(index)) +
                    " is " + describe(here.name, here.defaultValue) + " here and " +
                    describe(parameterName(index), m_defaults[index]) + " on the node";
        }
    }
    return count > 1 ? first + ", and " + std::to_string(count - 1) + " more differ" : first;
}

std::string RadDomain::name() const
{
    return textOf(header().name);
}

bool RadDomain::mapValuesAt(void* address) const
{
    const std::size_t length = m_layout.valuesEnd - m_layout.valuesBegin;
    return length == 0 || mmap(address, length, PROT_READ, MAP_SHARED | MAP_FIXED, m_store.descriptor(),
                               static_cast<off_t>(m_layout.valuesBegin)) != MAP_FAILED;
}

} // namespace dorn::host
