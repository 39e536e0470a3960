// SPDX-License-Identifier: MIT
#include "description/TreeDirectory.hpp"

#include "description/TreeFile.hpp"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <system_error>

namespace dorn::board {
namespace {

namespace fs = std::filesystem;

class TreeDirectory {
public:
    /// Reads a node. @param isWanted whether to read the child of a name
    TreeNode read(const fs::path& path, unsigned depth, const std::function<bool(const std::string&)>& isWanted)
    {
        if (depth == deepestTree) {
            throw TreeError("has more than " + std::to_string(deepestTree) + " nodes below each other");
        }
        TreeNode node{path.filename().string(), {}, {}};
        for (const fs::path& entry : entriesOf(path)) {
            readEntry(node, entry, depth, isWanted);
        }
        return node;
    }

private:
    void readEntry(TreeNode& node, const fs::path& path, unsigned depth,
                   const std::function<bool(const std::string&)>& isWanted)
    {
        const std::string name = path.filename().string();
        requireTreeName(name);
        // A link leads out of the tree, or round in it.
        const fs::file_status status = fs::symlink_status(path);
        if (fs::is_directory(status)) {
            if (isWanted(name)) {
                node.children.push_back(read(path, depth + 1, [](const std::string&) { return true; }));
            }
        } else if (fs::is_regular_file(status)) {
            node.properties.push_back({name, readTreeFile(path.string(), largestTreeProperty)});
        } else {
            throw TreeError("is damaged: '" + name + "' in it is neither file nor directory");
        }
    }

    /// In an order that does not depend on the file system.
    std::vector<fs::path> entriesOf(const fs::path& path)
    {
        std::vector<fs::path> entries;
        for (const auto& entry : fs::directory_iterator(path)) {
            if (++m_entries > mostTreeEntries) {
                throw TreeError("has more than " + std::to_string(mostTreeEntries) + " nodes and properties");
            }
            entries.push_back(entry.path());
        }
        std::sort(entries.begin(), entries.end());
        return entries;
    }

    std::size_t m_entries = 0;
};

} // namespace

TreeNode readTreeDirectory(const std::string& path, const std::string& child)
{
    try {
        TreeNode root = TreeDirectory().read(path, 0, [&child](const std::string& name) { return name == child; });
        root.name.clear();
        return root;
    } catch (const fs::filesystem_error& error) {
        throw TreeError("cannot be read: " + error.code().message());
    }
}

} // namespace dorn::board
