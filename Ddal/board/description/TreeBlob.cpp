// SPDX-License-Identifier: MIT
#include "description/TreeBlob.hpp"

#include "description/TreeFile.hpp"

#include <cstdio>
#include <libfdt.h>

namespace dorn::board {
namespace {

/// Of blobs, as dtc writes them. libfdt would also read older ones, and its check of those can crash.
constexpr unsigned readVersion = 17;

std::string hexText(std::uint32_t number)
{
    std::string text(8, '0');
    std::snprintf(text.data(), text.size() + 1, "%08x", static_cast<unsigned>(number));
    return text;
}

/// What is wrong with the blob's header, in words that help.
std::string headerFault(std::span<const std::byte> blob, int error)
{
    const void* const fdt = blob.data();
    if (error == -FDT_ERR_BADMAGIC) {
        return "is no device tree blob, which dtc makes of a source: it begins with " + hexText(fdt_magic(fdt)) +
               ", not with " + hexText(FDT_MAGIC);
    }
    if (error == -FDT_ERR_BADVERSION) {
        return "is a device tree blob of version " + std::to_string(fdt_version(fdt)) + ", compatible with " +
               std::to_string(fdt_last_comp_version(fdt)) + "; " + std::to_string(readVersion) + " can be read";
    }
    if (fdt_totalsize(fdt) > blob.size()) {
        return "is truncated: " + std::to_string(blob.size()) + " bytes of " + std::to_string(fdt_totalsize(fdt));
    }
    return std::string("is damaged: ") + fdt_strerror(error);
}

/// Whether each part of the structure is followed by one that lies behind it. A property whose length is 0 minus 12 is
/// followed by itself, and libfdt 1.6.1 goes round there for ever.
bool hasAnEnd(const void* fdt)
{
    int next = 0;
    for (int offset = 0; fdt_next_tag(fdt, offset, &next) != FDT_END; offset = next) {
        if (next <= offset) {
            return false;
        }
    }
    return true;
}

/// Looks at the whole blob, of which the header is there. @return 0, or an error of libfdt
int checkBlob(std::span<const std::byte> blob)
{
    if (const int error = fdt_check_header(blob.data()); error != 0) {
        return error;
    }
    if (fdt_version(blob.data()) < readVersion) {
        return -FDT_ERR_BADVERSION;
    }
    if (fdt_totalsize(blob.data()) > blob.size()) {
        return -FDT_ERR_TRUNCATED;
    }
    return hasAnEnd(blob.data()) ? fdt_check_full(blob.data(), blob.size()) : -FDT_ERR_BADSTRUCTURE;
}

void requireBlob(std::span<const std::byte> blob)
{
    if (blob.size() < sizeof(fdt_header)) {
        throw TreeError("is truncated: " + std::to_string(blob.size()) + " bytes are no device tree blob");
    }
    if (const int error = checkBlob(blob); error != 0) {
        throw TreeError(headerFault(blob, error));
    }
}

/// A name or value that libfdt has looked for. @throws TreeError when it has not found it.
template <class Found>
Found* required(Found* found, int lengthOrError)
{
    if (!found || lengthOrError < 0) {
        throw TreeError(std::string("is damaged: ") + fdt_strerror(lengthOrError));
    }
    return found;
}

TreeProperty readProperty(const void* fdt, int offset)
{
    const char* name = nullptr;
    int length = 0;
    const void* const value = fdt_getprop_by_offset(fdt, offset, &name, &length);
    const auto* const bytes = static_cast<const std::byte*>(required(value, length));
    requireTreeName(name);
    return {name, TreeBytes(bytes, bytes + length)};
}

/// A node and its properties, without what is below it.
TreeNode readNodeAlone(const void* fdt, int offset)
{
    int length = 0;
    const char* const name = fdt_get_name(fdt, offset, &length);
    TreeNode node{std::string(required(name, length), static_cast<std::size_t>(length)), {}, {}};
    int property = 0;
    fdt_for_each_property_offset(property, fdt, offset)
    {
        node.properties.push_back(readProperty(fdt, property));
    }
    return node;
}

TreeNode readNode(const void* fdt, int offset, unsigned depth)
{
    if (depth == deepestTree) {
        throw TreeError("has more than " + std::to_string(deepestTree) + " nodes below each other");
    }
    TreeNode node = readNodeAlone(fdt, offset);
    requireTreeName(node.name);
    int child = 0;
    fdt_for_each_subnode(child, fdt, offset)
    {
        node.children.push_back(readNode(fdt, child, depth + 1));
    }
    return node;
}

} // namespace

TreeNode parseTreeBlob(std::span<const std::byte> blob, const std::string& child)
{
    requireBlob(blob);
    const void* const fdt = blob.data();
    TreeNode root = readNodeAlone(fdt, 0);
    root.name.clear();
    const int offset = fdt_subnode_offset(fdt, 0, child.c_str());
    if (offset >= 0) {
        root.children.push_back(readNode(fdt, offset, 1));
    }
    return root;
}

TreeNode readTreeBlob(const std::string& path, const std::string& child)
{
    return parseTreeBlob(readTreeFile(path, largestTreeBlob), child);
}

} // namespace dorn::board
