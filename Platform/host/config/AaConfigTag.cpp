// SPDX-License-Identifier: MIT
#include "AaConfigTag.h"

#include "AaMem.h"
#include "AaSysLog.h"
#include "config/TagFile.hpp"
#include "config/TagStore.hpp"
#include "port/CancellationOff.hpp"
#include "port/StandardStreams.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <exception>
#include <new>
#include <string>

namespace {

using dorn::host::CancellationOff;
using dorn::host::maximumTagName;
using dorn::host::maximumTagValue;
using dorn::host::PerNode;
using dorn::host::TagStore;
using dorn::host::TagView;

bool isName(const char* name)
{
    return name && *name && strnlen(name, maximumTagName + 1) <= maximumTagName;
}

TagView viewOf(const void* data, std::size_t size)
{
    return {static_cast<const std::byte*>(data), size};
}

/// A copy with one zero byte behind it, to be given away; null without memory.
void* copyOf(TagView value)
{
    auto* const copy = static_cast<std::byte*>(AaMemMalloc(static_cast<std::uint32_t>(value.size() + 1)));
    if (copy) {
        if (!value.empty()) {
            std::memcpy(copy, value.data(), value.size());
        }
        copy[value.size()] = std::byte{0};
    }
    return copy;
}

/// Opening must not be left half done; what follows looks after itself.
TagStore& openStore()
{
    const CancellationOff untilDone;
    return PerNode<TagStore>::get();
}

/// Does @p work on the process's store; its failure is logged with what was to be @p done.
template <class Work>
int32_t withStore(const char* name, const char* done, const Work& work)
{
    try {
        return work(openStore());
    } catch (const std::exception& error) {
        AaSysLogPrint(EAaSysLogSeverityLevel_Error, "configuration tag '%s' cannot be %s: %s", name, done,
                      error.what());
        return EAaConfigTagStatus_StoreFailed;
    }
}

/// Reads a tag into a buffer for the caller; when there is no such tag, @p otherwise gives the result.
template <class Otherwise>
int32_t readInto(const char* name, void** value, uint32_t* length, const Otherwise& otherwise)
{
    if (value) {
        *value = nullptr;
    }
    if (!isName(name) || !value) {
        return EAaConfigTagStatus_BadArgument;
    }
    const auto give = [&](TagView found) {
        *value = copyOf(found);
        if (*value && length) {
            *length = static_cast<uint32_t>(found.size());
        }
    };
    return withStore(name, "read", [&](TagStore& store) -> int32_t {
        if (!store.read(name, give)) {
            const int32_t result = otherwise(give);
            if (result != EAaConfigTagStatus_Ok) {
                return result;
            }
        }
        if (!*value) {
            throw std::bad_alloc();
        }
        return EAaConfigTagStatus_Ok;
    });
}

} // namespace

int32_t AaConfigEarlyStartup(void)
{
    dorn::host::openMissingStandardStreams();
    try {
        openStore();
        return 0;
    } catch (const std::exception& error) {
        dorn::host::writeToStandardError(std::string("dorn: ") + error.what() + "\n");
        return 1;
    }
}

int32_t AaConfigTagSet(const char* name, const void* value, uint32_t length)
{
    if (!isName(name) || (!value && length != 0) || length > maximumTagValue) {
        return EAaConfigTagStatus_BadArgument;
    }
    return withStore(name, "set", [&](TagStore& store) -> int32_t {
        return store.set(name, viewOf(value, length)) ? EAaConfigTagStatus_Ok : EAaConfigTagStatus_BadArgument;
    });
}

int32_t AaConfigTagSetString(const char* name, const char* value)
{
    if (!value) {
        return EAaConfigTagStatus_BadArgument;
    }
    return AaConfigTagSet(name, value, static_cast<uint32_t>(strnlen(value, maximumTagValue + 1)));
}

int32_t AaConfigTagSetU16(const char* name, uint16_t value)
{
    return AaConfigTagSet(name, &value, sizeof value);
}

int32_t AaConfigTagSetU32(const char* name, uint32_t value)
{
    return AaConfigTagSet(name, &value, sizeof value);
}

int32_t AaConfigTagGet(const char* name, void** value, uint32_t* length)
{
    return readInto(name, value, length, [](const auto&) { return int32_t{EAaConfigTagStatus_NotFound}; });
}

int32_t AaConfigTagGetDefault(const char* name, void** value, uint32_t* length, const void* defaultValue,
                              uint32_t defaultLength)
{
    return readInto(name, value, length, [&](const auto& give) -> int32_t {
        if ((!defaultValue && defaultLength != 0) || defaultLength > maximumTagValue) {
            return EAaConfigTagStatus_BadArgument;
        }
        give(viewOf(defaultValue, defaultLength));
        return EAaConfigTagStatus_Ok;
    });
}

int32_t AaConfigTagGetU32(const char* name, uint32_t* value)
{
    if (!isName(name) || !value) {
        return EAaConfigTagStatus_BadArgument;
    }
    return withStore(name, "read", [&](TagStore& store) -> int32_t {
        bool fits = false;
        const bool isThere = store.read(name, [&](TagView found) {
            fits = found.size() == sizeof *value;
            if (fits) {
                std::memcpy(value, found.data(), sizeof *value);
            }
        });
        if (!isThere) {
            return EAaConfigTagStatus_NotFound;
        }
        return fits ? EAaConfigTagStatus_Ok : EAaConfigTagStatus_WrongSize;
    });
}

int32_t AaConfigTagRegister(const char* name, TAaConfigTagObserver observer)
{
    if (!isName(name) || !observer) {
        return EAaConfigTagStatus_BadArgument;
    }
    return withStore(name, "observed", [&](TagStore& store) -> int32_t {
        const auto call = [observer](const std::string& tag, TagView value) {
            // An observer may look at the value, as the number that it mostly is, before it looks at its length.
            alignas(std::max_align_t) std::array<std::byte, sizeof(uint32_t)> padded{};
            const bool isShort = value.size() < padded.size();
            if (isShort) {
                std::copy(value.begin(), value.end(), padded.begin());
            }
            observer(tag.c_str(), isShort ? padded.data() : value.data(), static_cast<uint32_t>(value.size()));
        };
        store.observers().add(name, call, observer);
        return EAaConfigTagStatus_Ok;
    });
}

int32_t AaConfigTagUnregister(const char* name, TAaConfigTagObserver observer)
{
    if (!isName(name) || !observer) {
        return EAaConfigTagStatus_BadArgument;
    }
    return withStore(name, "left", [&](TagStore& store) -> int32_t {
        return store.observers().remove(name, observer) ? EAaConfigTagStatus_Ok : EAaConfigTagStatus_NotFound;
    });
}

int32_t AaConfigTagReadFile(const char* path)
{
    return path ? dorn::host::readTagFile(path) : 1;
}
