// SPDX-License-Identifier: MIT
#include "board/BoardDescription.hpp"

#include "Outcome.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <system_error>

namespace dorn::tool {
namespace {

using namespace std::chrono_literals;

/// A folder with programs and a description, whose name has a blank.
class BoardDescriptionTest : public ::testing::Test {
protected:
    BoardDescriptionTest()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "board XXXXXX").string();
        if (!mkdtemp(pattern.data())) {
            throw std::system_error(errno, std::generic_category(), pattern);
        }
        m_folder = pattern;
        addProgram("DornAExe");
        addProgram("DornBExe");
        addProgram("DornCExe");
    }
    ~BoardDescriptionTest() override { std::filesystem::remove_all(m_folder); }

    void addProgram(const std::string& name) const
    {
        std::ofstream(m_folder / name) << "#!/bin/sh\n";
        std::filesystem::permissions(m_folder / name, std::filesystem::perms::owner_all);
    }
    BoardDescription read(const std::string& text) const
    {
        std::ofstream(path()) << text;
        return readBoardDescription(path(), m_folder);
    }
    /// What is wrong, the file's path left out.
    std::string complaintsOf(const std::string& text) const
    {
        try {
            read(text);
        } catch (const Failure& failure) {
            std::string complaints = failure.what();
            for (std::size_t at = complaints.find(path()); at != std::string::npos; at = complaints.find(path())) {
                complaints.erase(at, path().size());
            }
            return complaints;
        }
        return "";
    }
    std::string path() const { return m_folder / "board.xml"; }

    std::filesystem::path m_folder;
};

TEST_F(BoardDescriptionTest, ServiceNeedsNoMoreThanItsName)
{
    const BoardDescription board = read(R"(<board name="small"><service name="A"/></board>)");

    EXPECT_EQ(board.name, "small");
    EXPECT_EQ(board.tree, "");
    EXPECT_EQ(board.root, "");
    EXPECT_EQ(board.files, "");
    ASSERT_EQ(board.services.size(), 1U);
    const ServiceDescription& service = board.services.front();
    EXPECT_EQ(service.name, "A");
    EXPECT_EQ(service.program, m_folder / "DornAExe");
    EXPECT_TRUE(service.arguments.empty());
    EXPECT_EQ(service.restart, RestartPolicy());
    EXPECT_EQ(service.ready, Readiness::State);
    EXPECT_EQ(service.goodStatus, 1);
    EXPECT_EQ(service.endWithin, 3s);
}

TEST_F(BoardDescriptionTest, EverythingCanBeSaid)
{
    std::ofstream(m_folder / "a.dtb") << "tree";
    std::filesystem::create_directory(m_folder / "files");
    const BoardDescription board = read(R"(<board name="whole" tree="a.dtb" root="../root" files="files">
  <environment name="COLOUR" value="red"/>
  <service name="A"><argument>-v</argument><argument>two words</argument></service>
  <service name="B" program="DornCExe" ready="start" after="A">
    <environment name="SIZE" value=""/>
    <restart when="always" first="0.5" greatest="8" limit="3" within="30"/>
    <end status="0" within="1.5"/>
  </service>
  <service name="C" after="A B"/>
</board>)");

    EXPECT_EQ(board.tree, m_folder / "a.dtb");
    EXPECT_EQ(board.root, m_folder.parent_path() / "root");
    EXPECT_EQ(board.files, m_folder / "files");
    EXPECT_EQ(board.environment, (std::vector<Variable>{{"COLOUR", "red"}}));
    ASSERT_EQ(board.services.size(), 3U);
    EXPECT_EQ(board.services[0].arguments, (std::vector<std::string>{"-v", "two words"}));
    const ServiceDescription& service = board.services[1];
    EXPECT_EQ(service.program, m_folder / "DornCExe");
    EXPECT_EQ(service.environment, (std::vector<Variable>{{"SIZE", ""}}));
    EXPECT_EQ(service.restart, (RestartPolicy{RestartWhen::Always, 500ms, 8s, 3, 30s}));
    EXPECT_EQ(service.after, std::vector<std::size_t>{0});
    EXPECT_EQ(service.ready, Readiness::Start);
    EXPECT_EQ(service.goodStatus, 0);
    EXPECT_EQ(service.endWithin, 1500ms);
    EXPECT_EQ(board.services[2].after, (std::vector<std::size_t>{0, 1}));
}

TEST_F(BoardDescriptionTest, RestartOfTheBoardIsThatOfTheServicesBelow)
{
    const BoardDescription board = read(R"(<board name="b">
<service name="A"/>
<restart when="never" limit="7"/>
<service name="B"/>
<service name="C"><restart when="always"/></service>
</board>)");

    EXPECT_EQ(board.services[0].restart, RestartPolicy());
    EXPECT_EQ(board.services[1].restart.when, RestartWhen::Never);
    EXPECT_EQ(board.services[2].restart.when, RestartWhen::Always);
    EXPECT_EQ(board.services[2].restart.limit, 7U);
}

TEST_F(BoardDescriptionTest, ProgramWithASlashIsRelativeToTheFile)
{
    std::filesystem::create_directory(m_folder / "bin");
    addProgram("bin/tool");

    const BoardDescription board = read(R"(<board name="b"><service name="A" program="bin/tool"/></board>)");

    EXPECT_EQ(board.services.front().program, m_folder / "bin" / "tool");
}

TEST_F(BoardDescriptionTest, InstalledServiceIsFoundWherePackagesHaveThem)
{
    std::filesystem::create_directories(m_folder / "libexec" / "dorn");
    std::filesystem::create_directory(m_folder / "bin");
    addProgram("libexec/dorn/DornAExe");
    addProgram("libexec/dorn/DornBExe");
    addProgram("bin/DornBExe");
    std::ofstream(path()) << R"(<board name="b"><service name="A"/><service name="B"/></board>)";

    const BoardDescription board = readBoardDescription(path(), m_folder / "bin");

    EXPECT_EQ(board.services[0].program, m_folder / "libexec" / "dorn" / "DornAExe");
    EXPECT_EQ(board.services[1].program, m_folder / "bin" / "DornBExe") << "what lies beside the command comes first";
}

struct BadText {
    const char* text;
    const char* complaint;
};

TEST_F(BoardDescriptionTest, EveryMistakeIsToldWithItsLine)
{
    const BadText texts[] = {
        {"<board name='b'>\n<service name='A'>\n</board>", ":3: "},
        {"<boards name='b'/>", ":1: the document element is <boards>, not <board>"},
        {"<board><service name='A'/></board>", ":1: <board> needs the attribute 'name'"},
        {"<board name='b'/>", ":1: the board has no <service>"},
        {"<board name='b'>\n<service/></board>", ":2: <service> needs the attribute 'name'"},
        {"<board name='b'>\n<service name='A'/>\n<service name='A'/></board>", ":3: there is a service 'A' above"},
        {"<board name='b'>\n<service name='A' colour='red'/></board>", ":2: <service> has no attribute 'colour'"},
        {"<board name='b'>\n<servce name='A'/><service name='A'/></board>", ":2: <servce> does not belong here"},
        {"<board name='b'>\n<service name='A'>\n<arg/></service></board>", ":3: <arg> does not belong here"},
        {"<board name='b'>\n<service name='A' after='B'/>\n<service name='B'/></board>",
         ":2: after: no service 'B' is listed above"},
        {"<board name='b'>\n<service name='A' after='A'/></board>", ":2: after: no service 'A' is listed above"},
        {"<board name='b'>\n<service name='A' ready='soon'/></board>", ":2: ready: 'soon' is none of state, start"},
        {"<board name='b'>\n<service name='A'>\n<restart when='often'/></service></board>",
         ":3: when: 'often' is none of never, on-failure, always"},
        {"<board name='b'>\n<service name='A'><restart first='x'/></service></board>", ":2: first: 'x'"},
        {"<board name='b'>\n<service name='A'><restart first='-1'/></service></board>", ":2: first: '-1'"},
        {"<board name='b'>\n<service name='A'><restart limit='ten'/></service></board>", ":2: limit: 'ten'"},
        {"<board name='b'>\n<service name='A'><restart first='9' greatest='8'/></service></board>",
         ":2: the first delay is longer than the greatest"},
        {"<board name='b'>\n<service name='A'><end status='256'/></service></board>", ":2: status: 256 is too great"},
        {"<board name='b'>\n<service name='A'><end within='no'/></service></board>", ":2: within: 'no'"},
        {"<board name='b'>\n<environment name='A=B'/><service name='A'/></board>",
         ":2: 'A=B' is no name of a variable"},
        {"<board name='b'>\n<environment value='x'/><service name='A'/></board>",
         ":2: <environment> needs the attribute 'name'"},
        {"<board name='b'>\n<environment name='A' value='x'><b/></environment><service name='A'/></board>",
         ":2: <b> does not belong here"},
        {"<board name='b'>\n<service name='A'>\n<argument>-v<b/></argument></service></board>",
         ":3: <b> does not belong here"},
        {"<board name='b'>\n<service name='A'>\n<restart><b/></restart></service></board>",
         ":3: <b> does not belong here"},
        {"<board name='b'>\n<service name='A'>\n<end><b/></end></service></board>", ":3: <b> does not belong here"},
    };
    for (const BadText& bad : texts) {
        const std::string complaints = complaintsOf(bad.text);

        EXPECT_TRUE(complaints.starts_with(bad.complaint)) << bad.text << "\nis told: " << complaints;
    }
}

TEST_F(BoardDescriptionTest, MissingProgramIsToldWithItsPath)
{
    EXPECT_EQ(complaintsOf("<board name='b'>\n<service name='D'/></board>"),
              ":2: there is no program '" + (m_folder / "DornDExe").string() + "'");
}

TEST_F(BoardDescriptionTest, FileThatIsNoProgramIsRefused)
{
    std::ofstream(m_folder / "DornDExe") << "text";

    EXPECT_EQ(complaintsOf("<board name='b'>\n<service name='D'/></board>"),
              ":2: there is no program '" + (m_folder / "DornDExe").string() + "'");
}

TEST_F(BoardDescriptionTest, ServiceWithoutANameIsOneMistake)
{
    EXPECT_EQ(complaintsOf("<board name='b'>\n<service/>\n<service name=''/></board>"),
              ":2: <service> needs the attribute 'name'\n:3: <service> needs the attribute 'name'");
}

TEST_F(BoardDescriptionTest, MissingTreeAndFilesAreToldWithTheirPaths)
{
    EXPECT_EQ(complaintsOf("<board name='b' tree='t.dtb' files='f'><service name='A'/></board>"),
              ":1: there is no '" + (m_folder / "t.dtb").string() + "'\n:1: there is no '" + (m_folder / "f").string() +
                  "'");
}

TEST_F(BoardDescriptionTest, ComplaintStaysOnItsLine)
{
    const std::string complaints = complaintsOf("<board name='b'><service name='D&#10;E'/></board>");
    EXPECT_TRUE(complaints.starts_with(":1: there is no program '")) << complaints;
    EXPECT_EQ(complaints.find('\n'), std::string::npos) << complaints;
}

TEST_F(BoardDescriptionTest, AllMistakesAreToldAtOnce)
{
    EXPECT_EQ(
        complaintsOf("<board name='b' size='2'>\n<service name='A' after='C'/>\n<service/></board>")
            .substr(0, sizeof(":1: <board> has no attribute 'size'\n:2: after: no service 'C' is listed above\n") - 1),
        ":1: <board> has no attribute 'size'\n:2: after: no service 'C' is listed above\n");
}

TEST_F(BoardDescriptionTest, FileThatCannotBeReadIsAFailure)
{
    try {
        readBoardDescription(m_folder / "none.xml", m_folder);
        FAIL() << "a file that is not there has been read";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.what(),
                  "'" + (m_folder / "none.xml").string() + "' cannot be read: No such file or directory");
    }
    try {
        readBoardDescription(m_folder, m_folder);
        FAIL() << "a directory has been read";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.what(), "'" + m_folder.string() + "' cannot be read: it is a directory");
    }
}

} // namespace
} // namespace dorn::tool
