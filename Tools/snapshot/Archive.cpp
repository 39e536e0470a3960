// SPDX-License-Identifier: MIT
#include "snapshot/Archive.hpp"

#include "Outcome.hpp"
#include "port/Descriptor.hpp"

#include <archive.h>
#include <archive_entry.h>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace dorn::tool {
namespace {

struct EntryFree {
    void operator()(archive_entry* entry) const { archive_entry_free(entry); }
};
using Entry = std::unique_ptr<archive_entry, EntryFree>;

} // namespace

void Archive::Closer::operator()(archive* writer) const
{
    archive_write_free(writer);
}

/// Is removed with its owner unless it has got its name.
class Archive::PartFile {
public:
    explicit PartFile(const std::string& finalPath) : m_finalPath(finalPath), m_path(finalPath + ".part")
    {
        unlink(m_path.c_str()); // of somebody who has been killed
        m_descriptor.reset(open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    }
    ~PartFile()
    {
        if (m_descriptor) {
            unlink(m_path.c_str());
        }
    }
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    int descriptor() const { return m_descriptor.get(); }
    bool isOpen() const { return static_cast<bool>(m_descriptor); }
    bool giveName()
    {
        if (fsync(m_descriptor.get()) != 0 || rename(m_path.c_str(), m_finalPath.c_str()) != 0) {
            return false;
        }
        m_descriptor.reset();
        return true;
    }

private:
    std::string m_finalPath;
    std::string m_path;
    host::Descriptor m_descriptor;
};

Archive::Archive(std::string path)
    : m_path(std::move(path)), m_file(std::make_unique<PartFile>(m_path)), m_writer(archive_write_new())
{
    if (!m_file->isOpen()) {
        fail(std::strerror(errno));
    }
    if (!m_writer) {
        fail("no memory");
    }
    require(archive_write_add_filter_gzip(m_writer.get()));
    require(archive_write_set_filter_option(m_writer.get(), "gzip", "compression-level", "3")); // time is short
    require(archive_write_set_format_pax_restricted(m_writer.get()));
    require(archive_write_open_fd(m_writer.get(), m_file->descriptor()));
}

Archive::~Archive() = default;

void Archive::fail(const std::string& reason) const
{
    throw Failure("the archive '" + m_path + "' cannot be written: " + reason);
}

void Archive::require(int result)
{
    if (result != ARCHIVE_OK) {
        const char* const reason = archive_error_string(m_writer.get());
        fail(reason ? reason : "no reason is given");
    }
}

void Archive::add(const std::string& name, std::string_view content, std::int64_t seconds)
{
    const Entry entry(archive_entry_new());
    if (!entry) {
        fail("no memory");
    }
    archive_entry_set_pathname(entry.get(), name.c_str());
    archive_entry_set_size(entry.get(), static_cast<la_int64_t>(content.size()));
    archive_entry_set_filetype(entry.get(), S_IFREG);
    archive_entry_set_perm(entry.get(), 0600);
    archive_entry_set_mtime(entry.get(), seconds, 0);
    require(archive_write_header(m_writer.get(), entry.get()));
    if (archive_write_data(m_writer.get(), content.data(), content.size()) != static_cast<la_ssize_t>(content.size())) {
        require(ARCHIVE_FATAL);
    }
}

void Archive::finish()
{
    require(archive_write_close(m_writer.get()));
    if (!m_file->giveName()) {
        fail(std::strerror(errno));
    }
}

} // namespace dorn::tool
