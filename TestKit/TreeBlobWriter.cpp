// SPDX-License-Identifier: MIT
#include "TreeBlobWriter.hpp"

#include <libfdt.h>
#include <stdexcept>

namespace dorn::testkit {
namespace {

/// Has room for a blob of a mebibyte.
class BlobWriter {
public:
    BlobWriter()
    {
        require(fdt_create(m_blob.data(), static_cast<int>(m_blob.size())));
        require(fdt_finish_reservemap(m_blob.data()));
    }

    void write(const board::TreeNode& node)
    {
        require(fdt_begin_node(m_blob.data(), node.name.c_str()));
        for (const board::TreeProperty& property : node.properties) {
            require(fdt_property(m_blob.data(), property.name.c_str(), property.value.data(),
                                 static_cast<int>(property.value.size())));
        }
        for (const board::TreeNode& child : node.children) {
            write(child);
        }
        require(fdt_end_node(m_blob.data()));
    }

    std::string finish()
    {
        require(fdt_finish(m_blob.data()));
        return m_blob.substr(0, fdt_totalsize(m_blob.data()));
    }

private:
    static void require(int result)
    {
        if (result != 0) {
            throw std::length_error(std::string("a device tree blob cannot be written: ") + fdt_strerror(result));
        }
    }

    std::string m_blob = std::string(std::size_t{1} << 20, '\0');
};

} // namespace

std::string treeBlob(const board::TreeNode& root)
{
    BlobWriter writer;
    writer.write(root);
    return writer.finish();
}

} // namespace dorn::testkit
