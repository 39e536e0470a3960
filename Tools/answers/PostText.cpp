// SPDX-License-Identifier: MIT
#include "answers/PostText.hpp"

#include "AaMem.h"
#include "Outcome.hpp"
#include "PostFile.h"
#include "files/TargetFile.hpp"
#include "text/Table.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace dorn::tool {
namespace {

struct McuField {
    const char* name;
    EPostState SMcuPostResult::*state;
};
constexpr std::array<McuField, 14> mcuFields{{{"PostRam", &SMcuPostResult::PostRam},
                                              {"PostBootImage", &SMcuPostResult::PostBootImage},
                                              {"PostRuntimeSW", &SMcuPostResult::PostRuntimeSW},
                                              {"PostFpgaImage", &SMcuPostResult::PostFpgaImage},
                                              {"PostCrtmFlash", &SMcuPostResult::PostCrtmFlash},
                                              {"PostBootFlash", &SMcuPostResult::PostBootFlash},
                                              {"PostMount3gFm", &SMcuPostResult::PostMount3gFm},
                                              {"PostMountLtFm", &SMcuPostResult::PostMountLtFm},
                                              {"PostMountVendorFm", &SMcuPostResult::PostMountVendorFm},
                                              {"PostMountDb", &SMcuPostResult::PostMountDb},
                                              {"PostMount3gSdmN", &SMcuPostResult::PostMount3gSdmN},
                                              {"PostMount3gSdmE", &SMcuPostResult::PostMount3gSdmE},
                                              {"PostMountLtSdmA", &SMcuPostResult::PostMountLtSdmA},
                                              {"PostMountLtSdmB", &SMcuPostResult::PostMountLtSdmB}}};
static_assert(mcuFields.size() * sizeof(EPostState) == sizeof(SMcuPostResult));

constexpr std::array<std::pair<const char*, PostKind>, 3> kindNames{
    {{"mcu", PostKind::Mcu}, {"dsp", PostKind::Dsp}, {"data2", PostKind::Data2}}};

std::string hex(std::uint32_t number)
{
    std::array<char, 12> text{};
    std::snprintf(text.data(), text.size(), "0x%08x", number);
    return text.data();
}

[[noreturn]] void explain(const std::string& path, const std::string& reason)
{
    throw Failure("the POST file '" + path + "' cannot be read: " + reason);
}

PostResult resultOf(const SMcuPostResult& record)
{
    PostResult result;
    for (const McuField& field : mcuFields) {
        result.tests.emplace_back(field.name, record.*field.state);
    }
    result.isThere =
        std::ranges::any_of(result.tests, [](const auto& test) { return test.second != POST_FILE_MCU_MARKER; });
    return result;
}

template <class Pair>
void addTests(PostResult& result, const Pair* pairs, std::uint32_t count, std::uint32_t Pair::*number,
              std::uint32_t Pair::*state)
{
    std::for_each(pairs, pairs + std::min(count, POST_FILE_PAIRS_READ_MAX),
                  [&](const Pair& pair) { result.tests.emplace_back(hex(pair.*number), pair.*state); });
}

PostResult resultOf(const DspReadyInd& record)
{
    PostResult result{{{"bootStatus", record.bootStatus},
                       {"boardId", record.boardId},
                       {"chipNumber", record.chipNumber},
                       {"numberOfPosts", record.numberOfPosts}},
                      {}};
    addTests(result, record.postResults, record.numberOfPosts, &SPostResult::testCaseNumber, &SPostResult::resultCode);
    return result;
}

PostResult resultOf(const SApi2PostDataResp& record)
{
    PostResult result{{{"numOfPost", record.numOfPost}}, {}};
    addTests(result, record.post, record.numOfPost, &SPost::postCase, &SPost::postState);
    return result;
}

void release(void* block)
{
    AaMemUnRefDbg(block, __FILE__, __LINE__);
}

bool addResults(const std::string& path, std::vector<PostResult>& results)
{
    SMcuPostResult* records = nullptr;
    std::uint32_t count = 0;
    const EStatus status = QueryMcuPost(path.c_str(), &records, &count);
    std::for_each(records, records + count,
                  [&results](const SMcuPostResult& record) { results.push_back(resultOf(record)); });
    release(records);
    return status == EStatus_NoError;
}

template <class Record>
bool addResults(EStatus (*query)(const char*, Record***, std::uint32_t*), const std::string& path,
                std::vector<PostResult>& results)
{
    Record** records = nullptr;
    std::uint32_t count = 0;
    const EStatus status = query(path.c_str(), &records, &count);
    std::for_each(records, records + count, [&results](Record* record) {
        results.push_back(resultOf(*record));
        release(record);
    });
    release(records);
    return status == EStatus_NoError;
}

std::string headText(const PostResult& result, std::size_t index)
{
    std::string text = index == 0 ? "latest" : "before";
    const char* separator = ": ";
    for (const auto& [name, value] : result.head) {
        text += separator + name + " " + hex(value);
        separator = ", ";
    }
    return text + (result.isThere ? "\n" : ": no result\n");
}

} // namespace

PostKind kindOfLine(std::string_view line)
{
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) {
        return PostKind::Mcu;
    }
    const std::size_t first = line.find_first_not_of(' ');
    const std::size_t blank = line.find(' ', first);
    const std::size_t second = line.find_first_not_of(' ', blank);
    return second < colon ? PostKind::Dsp : PostKind::Data2;
}

const char* kindName(PostKind kind)
{
    return std::ranges::find(kindNames, kind, [](const auto& entry) { return entry.second; })->first;
}

PostKind parseKind(const std::string& name)
{
    const auto* const entry = std::ranges::find(kindNames, name, [](const auto& known) { return known.first; });
    if (entry == kindNames.end()) {
        throw UsageError("--kind: '" + name + "' is none of mcu, dsp, data2");
    }
    return entry->second;
}

PostKind kindOfFile(const std::string& path)
{
    const TargetFile file(AaFileOpen(path.c_str(), "r"));
    if (!file) {
        explain(path, std::strerror(errno));
    }
    std::array<char, 1024> line{};
    const std::int32_t length = AaFileReadLine(file.get(), line.data(), line.size());
    if (length <= 0) {
        explain(path, length < 0 ? std::strerror(errno) : "it is empty");
    }
    return kindOfLine(line.data());
}

PostView readPost(const std::string& path, PostKind kind)
{
    PostView view{kind, {}};
    const bool isRead = kind == PostKind::Mcu   ? addResults(path, view.results)
                        : kind == PostKind::Dsp ? addResults(QueryDspPost, path, view.results)
                                                : addResults(QueryPostData2, path, view.results);
    if (!isRead) {
        explain(path, std::strerror(errno));
    }
    return view;
}

std::string postText(const PostView& view, const Console& console)
{
    std::string text;
    for (std::size_t index = 0; index < view.results.size(); ++index) {
        const PostResult& result = view.results[index];
        text += (index == 0 ? "" : "\n") + headText(result, index);
        if (!result.isThere) {
            continue;
        }
        Table table({"TEST", "RESULT"});
        for (const auto& [name, value] : result.tests) {
            table.add({name, hex(value)});
        }
        text += table.text(console);
    }
    return text;
}

Json postJson(const PostView& view)
{
    Json results = Json::array();
    for (const PostResult& result : view.results) {
        Json tests = Json::array();
        for (const auto& [name, value] : result.tests) {
            tests.push_back({{"test", name}, {"result", value}});
        }
        Json one = Json::object();
        for (const auto& [name, value] : result.head) {
            one[name] = value;
        }
        one["isThere"] = result.isThere;
        one["tests"] = std::move(tests);
        results.push_back(std::move(one));
    }
    return {{"kind", kindName(view.kind)}, {"results", std::move(results)}};
}

} // namespace dorn::tool
