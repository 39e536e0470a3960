// SPDX-License-Identifier: MIT
#include "snapshot/Snapshot.hpp"

#include "Outcome.hpp"
#include "node/PerNode.hpp"
#include "node/RunDirectory.hpp"
#include "snapshot/Archive.hpp"
#include "snapshot/OwnVerb.hpp"
#include "snapshot/TroubleContent.hpp"
#include "text/Values.hpp"
#include "trbl/TroubleCollection.hpp"

#include <array>
#include <cstdio>
#include <ctime>
#include <deque>
#include <exception>
#include <filesystem>

namespace dorn::tool {
namespace {

/// A verb whose answer is a file of the snapshot.
struct Part {
    const char* file;
    std::vector<std::string> arguments;
};

std::vector<Part> parts()
{
    return {{"services.json", {"service", "list", "--json"}}, {"parameters.json", {"rad", "list", "--json"}},
            {"tags.json", {"tag", "list", "--json"}},         {"log.txt", {"log", "-n", "20000"}},
            {"alarms.json", {"alarm", "list", "--json"}},     {"redundancy.json", {"redundancy", "show", "--json"}},
            {"board.json", {"board", "show", "--json"}}};
}

/// A snapshot that is being taken.
class SnapshotBuilder {
public:
    SnapshotBuilder(const std::string& path, std::string folder) : m_archive(path), m_folder(std::move(folder))
    {
        m_report.manifest["node"] = host::nodeIdFromEnvironment();
        m_report.manifest["version"] = DORN_VERSION;
        m_report.manifest["taken"] = timeText(m_wall);
        m_report.manifest["parts"] = Json::array();
        m_report.manifest["files"] = Json::array();
    }

    void addPart(const char* file, OwnVerb& verb, host::Deadline until);
    void addFiles(const SnapshotTimes& times);
    SnapshotReport finish();

private:
    void addFile(const host::CollectedFile& collected);
    void addContent(const std::string& file, const std::string& content, std::int64_t seconds)
    {
        m_archive.add(m_folder + "/" + file, content, seconds);
    }
    std::int64_t now() const { return std::chrono::duration_cast<std::chrono::seconds>(m_wall).count(); }

    host::Nanoseconds m_wall = host::Clock::get().wall();
    Archive m_archive;
    std::string m_folder;
    SnapshotReport m_report;
};

void SnapshotBuilder::addPart(const char* file, OwnVerb& verb, host::Deadline until)
{
    const bool hasEnded = verb.awaitEnd(until);
    const std::string answer = verb.answer();
    const bool isIn = hasEnded && verb.status() >= 0 && !answer.empty();
    if (isIn) {
        addContent(file, answer, now());
    }
    std::string remarks = hasEnded ? verb.remarks() : "no answer in time";
    while (remarks.ends_with('\n')) {
        remarks.pop_back();
    }
    m_report.manifest["parts"].push_back(
        {{"file", file}, {"command", verb.command()}, {"included", isIn}, {"remarks", remarks}});
    if (!isIn) {
        m_report.missing.push_back(std::string(file) + ": " + remarks);
    }
}

void SnapshotBuilder::addFiles(const SnapshotTimes& times)
{
    try {
        host::TroubleCollection collection(host::PerNode<host::TroubleFiles>::get(), times.stored);
        for (const host::CollectedFile& collected : collection.files()) {
            addFile(collected);
        }
        collection.removeUntil(times.removed);
    } catch (const Failure&) {
        throw; // of the archive
    } catch (const std::exception& error) {
        m_report.missing.push_back(std::string("files: ") + error.what());
    }
}

void SnapshotBuilder::addFile(const host::CollectedFile& collected)
{
    const TroubleContent content = readTroubleFile(collected);
    const std::string name = "files" + std::filesystem::path(collected.file.path).lexically_normal().string();
    if (content.isThere) {
        addContent(name, content.bytes, content.changed);
    } else {
        m_report.missing.push_back(name + ": " + content.remark);
    }
    m_report.manifest["files"].push_back({{"file", name},
                                          {"name", collected.file.name},
                                          {"pid", collected.file.pid},
                                          {"included", content.isThere},
                                          {"size", content.bytes.size()},
                                          {"remarks", content.remark}});
}

SnapshotReport SnapshotBuilder::finish()
{
    addContent("manifest.json", jsonText(m_report.manifest), now());
    m_archive.finish();
    return std::move(m_report);
}

} // namespace

std::string snapshotName(std::uint16_t nodeId, host::Nanoseconds wall)
{
    const std::time_t seconds = std::chrono::duration_cast<std::chrono::seconds>(wall).count();
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    std::array<char, 80> name{};
    std::snprintf(name.data(), name.size(), "dorn-snapshot-%04x-%04d%02d%02dT%02d%02d%02dZ", nodeId, utc.tm_year + 1900,
                  utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec);
    return name.data();
}

SnapshotReport takeSnapshot(const std::string& path, const std::string& name, const SnapshotTimes& times)
{
    SnapshotBuilder builder(path, name);
    std::deque<OwnVerb> verbs; // all at once; each has its own time limit
    for (const Part& part : parts()) {
        verbs.emplace_back(part.arguments);
    }
    builder.addFiles(times);
    auto verb = verbs.begin();
    for (const Part& part : parts()) {
        builder.addPart(part.file, *verb++, times.answered);
    }
    return builder.finish();
}

} // namespace dorn::tool
