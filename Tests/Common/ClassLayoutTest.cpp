// SPDX-License-Identifier: MIT
#include "ClassLayout.hpp"

#include "AbstractWorker.hpp"
#include "ArgParser.hpp"
#include "CHwapiException.hpp"
#include "HwapiAlarm.hpp"
#include "Msg.hpp"
#include "MsgDelegateBase.hpp"
#include "RecordingPlatform.hpp"
#include "Service.hpp"

#include <gmock/gmock.h>

#include <array>
#include <cstring>
#include <memory>
#include <new>

namespace {

using namespace vel::hwapi::common;
using ArgMap = std::map<std::string, std::string>;
using DelegateMap = std::map<unsigned int, MsgDelegateBase*>;

} // namespace

DORN_EXPOSE(ReasonTag, CHwapiException, std::string, m_reason)
DORN_EXPOSE(DescriptionTag, CHwapiException, std::string, m_description)
DORN_EXPOSE(FileTag, CHwapiException, std::string, m_file)
DORN_EXPOSE(LineTag, CHwapiException, ssize_t, m_line)
DORN_EXPOSE(ArgListTag, ArgParser, ArgMap, m_argList)
DORN_EXPOSE(HelpTag, ArgParser, std::string, m_help)
DORN_EXPOSE(MsgIdTag, MsgDelegateBase, const unsigned int, m_msgId)
DORN_EXPOSE(OwnedTag, AbstractWorker::Task, bool, m_ownedByWorker)
DORN_EXPOSE(ExecutingTag, AbstractWorker::Task, AbstractWorker*, m_excecutingWorker)
DORN_EXPOSE(PayloadTag, Service::HwapiRedundancyStateReqMsg, SHwapiRedundancyStateReq*, payload)
DORN_EXPOSE(MsgTag, Service::HwapiRedundancyStateReqMsg, void*, msg)
DORN_EXPOSE(SenderCpidTag, HwapiAlarm, unsigned short, m_senderCpid)
DORN_EXPOSE(FeatureTag, HwapiAlarm, unsigned int, m_feature)
DORN_EXPOSE(UseCommonServiceStateTag, Service, unsigned int, m_useCommonServiceState)
DORN_EXPOSE(RadStateIdTag, Service, ERadHwapiState, m_uRadStateId)
DORN_EXPOSE(NameTag, Service, std::string, m_name)
DORN_EXPOSE(IdTag, Service, unsigned short, m_id)
DORN_EXPOSE(RadIdTag, Service, ERadHwapi, m_radId)
DORN_EXPOSE(DelegatesTag, Service, DelegateMap, m_delegates)
DORN_EXPOSE(CpIdTag, Service, unsigned short, m_cpId)
DORN_EXPOSE(ArgParserTag, Service, ArgParser, m_argParser)
DORN_EXPOSE(VerboseTag, Service, unsigned int, m_verbose)
DORN_EXPOSE(TerminateTag, Service, unsigned int, m_terminate)

namespace {

using namespace dorn::test;
using namespace dorn::test::layout;
using testing::ElementsAre;

class Delegate : public MsgDelegateBase {
public:
    Delegate() : MsgDelegateBase(5) {}
    void HandleMsg(void* /*message*/) override {}
};

class Job : public AbstractWorker::Task {
public:
    void Perform() override {}
};

// The first two places of a class whose destructor comes first are the destructor's.

TEST(ClassLayoutTest, VirtualFunctionsOfTheExceptionRootKeepTheirOrder)
{
    EXPECT_EQ(slotOf(&CHwapiException::what), 2);
    EXPECT_EQ(slotOf(&CHwapiException::getLine), -1);
}

TEST(ClassLayoutTest, VirtualFunctionsOfServiceKeepTheirOrder)
{
    EXPECT_EQ(slotOf(&Service::SetServiceStateRad), 2);
    EXPECT_EQ(slotOf(&Service::PreStartup), 3);
    EXPECT_EQ(slotOf(&Service::Init), 4);
    EXPECT_EQ(slotOf(&Service::Run), 5);
    EXPECT_EQ(slotOf(&Service::Exit), 6);
    EXPECT_EQ(slotOf(&Service::HandleRedundancyStateCommand), 7);
    EXPECT_EQ(slotOf(&Service::HandleConfigTagChange), 8);
}

TEST(ClassLayoutTest, OtherFunctionsOfServiceAreNotVirtual)
{
    EXPECT_EQ(slotOf(&Service::Startup), -1);
    EXPECT_EQ(slotOf(&Service::InitEu), -1);
    EXPECT_EQ(slotOf(&Service::Terminate), -1);
    EXPECT_EQ(slotOf(&Service::AddMsgDelegate), -1);
    EXPECT_EQ(slotOf(&Service::RemoveMsgDelegate), -1);
    EXPECT_EQ(slotOf(&Service::GetSicad), -1);
    EXPECT_EQ(slotOf(&Service::GetServiceStateRad), -1);
    EXPECT_EQ(slotOf(&Service::RegisterRedundancyService), -1);
    EXPECT_EQ(slotOf(&Service::UnRegisterRedundancyService), -1);
    EXPECT_EQ(slotOf(&Service::HandleRedundancyRegisterRespMsg), -1);
    EXPECT_EQ(slotOf(&Service::HandleRedundancyStateReqMsg), -1);
    EXPECT_EQ(slotOf(&Service::isActiveLcp), -1);
    EXPECT_EQ(slotOf(&Service::SetObservedTag), -1);
    EXPECT_EQ(slotOf(&Service::UnSetObservedTag), -1);
    EXPECT_EQ(slotOf(&Service::WaitForConfigTag), -1);
    EXPECT_EQ(slotOf(&Service::GetName), -1);
    EXPECT_EQ(slotOf(&Service::GetRadId), -1);
    EXPECT_EQ(slotOf(&Service::GetArgumentParser), -1);
    EXPECT_EQ(slotOf(&Service::SetVerbose), -1);
    EXPECT_EQ(slotOf(&Service::SetUseCommonServiceState), -1);
}

TEST(ClassLayoutTest, VirtualFunctionsOfMsgDelegateBaseKeepTheirOrder)
{
    EXPECT_EQ(slotOf(&MsgDelegateBase::HandleMsg), 2);
    EXPECT_EQ(slotOf(&MsgDelegateBase::GetMsgId), -1);
}

TEST(ClassLayoutTest, VirtualFunctionsOfTheArgumentParsersKeepTheirOrder)
{
    EXPECT_EQ(slotOf(&ArgParserBase::SetArgumentInfo), 2);
    EXPECT_EQ(slotOf(&ArgParserBase::Parse), 3);
    EXPECT_EQ(slotOf(&ArgParserBase::ReadArgument), 4);
    EXPECT_EQ(slotOf(&ArgParserBase::GetHelp), 5);
    EXPECT_EQ(slotOf(&ArgParser::SetArgumentInfo), 2);
    EXPECT_EQ(slotOf(&ArgParser::Parse), 3);
    EXPECT_EQ(slotOf(&ArgParser::ReadArgument), 4);
    EXPECT_EQ(slotOf(&ArgParser::GetHelp), 5);
}

TEST(ClassLayoutTest, VirtualFunctionsOfTheWorkersKeepTheirOrder)
{
    EXPECT_EQ(slotOf(&SuspendableWorker::SuspendWorking), 0);
    EXPECT_EQ(slotOf(&SuspendableWorker::SuspendAndWaitWorkToComplete), 1);
    EXPECT_EQ(slotOf(&SuspendableWorker::ResumeWorking), 2);
    EXPECT_EQ(slotOf(&SuspendableWorker::IsWorkingSuspended), 3);
    EXPECT_EQ(slotOf(&AbstractWorker::Setup), 6); // behind the destructor's two
    EXPECT_EQ(slotOf(&AbstractWorker::AssignTaskAndGiveOwnership), 7);
    EXPECT_EQ(slotOf(&AbstractWorker::AssignTaskAndKeepOwnership), 8);
    EXPECT_EQ(slotOf(&AbstractWorker::IsSetupDone), 9);
    EXPECT_EQ(slotOf(&AbstractWorker::startWorkerThread), 10);
}

TEST(ClassLayoutTest, VirtualFunctionsOfTaskKeepTheirOrder)
{
    EXPECT_EQ(slotOf(&AbstractWorker::Task::Perform), 2);
    EXPECT_EQ(slotOf(&AbstractWorker::Task::getExecutingWorker), 3);
    EXPECT_EQ(slotOf(&AbstractWorker::Task::isOwnedByWorker), 4);
    EXPECT_EQ(slotOf(&AbstractWorker::Task::setExecutingWorker), 5);
    EXPECT_EQ(slotOf(&AbstractWorker::Task::setOwnedByWorker), 6);
}

TEST(ClassLayoutTest, MembersOfTheExceptionRootKeepTheirPlaces)
{
    const CHwapiException exception("", "", "", 0);

    EXPECT_THAT(
        offsetsIn(exception, exposed(ReasonTag{}), exposed(DescriptionTag{}), exposed(FileTag{}), exposed(LineTag{})),
        ElementsAre(word, word + text, word + 2 * text, word + 3 * text));
}

TEST(ClassLayoutTest, MembersOfArgParserKeepTheirPlaces)
{
    const ArgParser parser;
    constexpr std::size_t map = sizeof(ArgMap);

    EXPECT_THAT(offsetsIn(parser, exposed(ArgListTag{}), exposed(HelpTag{})), ElementsAre(word, word + map));
    EXPECT_EQ(sizeof parser, word + map + text);
}

TEST(ClassLayoutTest, MembersOfMsgKeepTheirPlaces)
{
    const Service::HwapiRedundancyStateReqMsg msg(nullptr);

    EXPECT_THAT(offsetsIn(msg, exposed(PayloadTag{}), exposed(MsgTag{})), ElementsAre(0U, word));
    EXPECT_EQ(sizeof msg, 2 * word);
}

TEST(ClassLayoutTest, MembersOfHwapiAlarmKeepTheirPlaces)
{
    const HwapiAlarm alarm;

    static_assert(!std::is_polymorphic_v<HwapiAlarm>);
    EXPECT_THAT(offsetsIn(alarm, exposed(SenderCpidTag{}), exposed(FeatureTag{})), ElementsAre(0U, 4U));
    EXPECT_EQ(sizeof alarm, 8U);
}

TEST(ClassLayoutTest, MembersOfMsgDelegateBaseKeepTheirPlaces)
{
    const Delegate delegate;

    EXPECT_THAT(offsetsIn<MsgDelegateBase>(delegate, exposed(MsgIdTag{})), ElementsAre(word));
    EXPECT_EQ(sizeof delegate, aligned(word + 4));
}

TEST(ClassLayoutTest, MembersOfTaskKeepTheirPlaces)
{
    const Job job;

    EXPECT_THAT(offsetsIn<AbstractWorker::Task>(job, exposed(OwnedTag{}), exposed(ExecutingTag{})),
                ElementsAre(word, 2 * word));
}

TEST(ClassLayoutTest, MembersOfServiceKeepTheirPlaces)
{
    const dorn::test::RecordingPlatform platform;
    const Service service("Ping", 0x456, ERadHwapi_PrintCtrlTask, ERadHwapiState_CpriState);
    constexpr std::size_t name = aligned(word + 8);
    constexpr std::size_t delegates = aligned(name + text + 8);
    constexpr std::size_t cpId = delegates + sizeof(DelegateMap);
    constexpr std::size_t argParser = aligned(cpId + 2);

    EXPECT_THAT(offsetsIn(service, exposed(UseCommonServiceStateTag{}), exposed(RadStateIdTag{}), exposed(NameTag{}),
                          exposed(IdTag{}), exposed(RadIdTag{}), exposed(DelegatesTag{}), exposed(CpIdTag{}),
                          exposed(ArgParserTag{}), exposed(VerboseTag{}), exposed(TerminateTag{})),
                ElementsAre(word, word + 4, name, name + text, name + text + 4, delegates, cpId, argParser,
                            argParser + sizeof(ArgParser), argParser + sizeof(ArgParser) + 4));
    EXPECT_EQ(sizeof service, aligned(argParser + sizeof(ArgParser) + 8));
}

TEST(ClassLayoutTest, NumbersOfServiceHave32Bits)
{
    EXPECT_EQ(sizeof(unsigned int), 4U);
    EXPECT_EQ(sizeof(ERadHwapi), 4U);
    EXPECT_EQ(sizeof(ERadHwapiState), 4U);
}

TEST(ClassLayoutTest, FreshTaskIsNobodysAndIsNotExecuted)
{
    alignas(Job) std::array<unsigned char, sizeof(Job)> place;
    void* (*volatile const fill)(void*, int, std::size_t) = std::memset;
    fill(place.data(), 0xFF, place.size()); // where what is not set would be seen
    const std::unique_ptr<Job, void (*)(Job*)> job(new (place.data()) Job, [](Job* made) { made->~Job(); });

    EXPECT_FALSE((*job).*exposed(OwnedTag{}));
    EXPECT_EQ((*job).*exposed(ExecutingTag{}), nullptr);
}

TEST(ClassLayoutTest, RedundancyMessagesHaveTheirIdsAndRecords)
{
    static_assert(std::is_same_v<Service::ApiRedundancyIndMsg, Msg<SApiRedundancyInd, 4016>>);
    static_assert(std::is_same_v<Service::HwapiRedundancyRegisterReqMsg, Msg<SHwapiRedundancyRegisterReq, 4017>>);
    static_assert(std::is_same_v<Service::HwapiRedundancyRegisterRespMsg, Msg<SHwapiRedundancyRegisterResp, 4018>>);
    static_assert(std::is_same_v<Service::HwapiRedundancyStateReqMsg, Msg<SHwapiRedundancyStateReq, 4019>>);
    static_assert(std::is_same_v<Service::HwapiRedundancyStateRespMsg, Msg<SHwapiRedundancyStateResp, 4020>>);
    EXPECT_EQ(sizeof(SApiRedundancyInd), 8U);
    EXPECT_EQ(sizeof(SHwapiRedundancyRegisterReq), 12U);
    EXPECT_EQ(sizeof(SHwapiRedundancyRegisterResp), 16U);
    EXPECT_EQ(sizeof(SHwapiRedundancyStateReq), 8U);
    EXPECT_EQ(sizeof(SHwapiRedundancyStateResp), 12U);
}

/// The bytes of a record whose fields are 1, 2, 3...
template <class Record, class... Fields>
std::vector<std::uint32_t> wordsOf(Fields... fields)
{
    const Record record{fields...};
    std::vector<std::uint32_t> words(sizeof record / 4);
    std::memcpy(words.data(), &record, sizeof record);
    return words;
}

TEST(ClassLayoutTest, FieldsOfTheRedundancyRecordsFollowEachOther)
{
    EXPECT_THAT((wordsOf<SApiRedundancyInd>(ERedundancyCommand_EnableActive, ERedundancyState_Timeout)),
                ElementsAre(7U, 255U));
    EXPECT_THAT((wordsOf<SHwapiRedundancyRegisterReq>(11U, ERedundancyMode_All, 12U)), ElementsAre(11U, 4U, 12U));
    EXPECT_THAT((wordsOf<SHwapiRedundancyRegisterResp>(11U, ERedundancyMode_RealTime, 12U, 13)),
                ElementsAre(11U, 2U, 12U, 13U));
    EXPECT_THAT((wordsOf<SHwapiRedundancyStateReq>(11U, ERedundancyCommand_CardState)), ElementsAre(11U, 2U));
    EXPECT_THAT((wordsOf<SHwapiRedundancyStateResp>(11U, ERedundancyCommand_TakeHwLatch, 13)),
                ElementsAre(11U, 8U, 13U));
}

TEST(ClassLayoutTest, RedundancyEnumeratorsHaveTheirValues)
{
    EXPECT_EQ(ERedundancyMode_None, 1U);
    EXPECT_EQ(ERedundancyMode_RealTime, 2U);
    EXPECT_EQ(ERedundancyMode_Switchover, 3U);
    EXPECT_EQ(ERedundancyMode_All, 4U);
    EXPECT_EQ(ERedundancyCommand_None, 1U);
    EXPECT_EQ(ERedundancyCommand_CardState, 2U);
    EXPECT_EQ(ERedundancyCommand_ReplicationState, 3U);
    EXPECT_EQ(ERedundancyCommand_PrepareStandby, 4U);
    EXPECT_EQ(ERedundancyCommand_PrepareActive, 5U);
    EXPECT_EQ(ERedundancyCommand_ReleaseActive, 6U);
    EXPECT_EQ(ERedundancyCommand_EnableActive, 7U);
    EXPECT_EQ(ERedundancyCommand_TakeHwLatch, 8U);
    EXPECT_EQ(ERedundancyCommand_ReleaseHwLatch, 9U);
    EXPECT_EQ(ERedundancyState_Ready, 1U);
    EXPECT_EQ(ERedundancyState_HwapiFailure, 2U);
    EXPECT_EQ(ERedundancyState_TesselFailure, 3U);
    EXPECT_EQ(ERedundancyState_Unfinished, 4U);
    EXPECT_EQ(ERedundancyState_NoMateCard, 5U);
    EXPECT_EQ(ERedundancyState_SelfActive, 6U);
    EXPECT_EQ(ERedundancyState_SelfStandby, 7U);
    EXPECT_EQ(ERedundancyState_MateActive, 8U);
    EXPECT_EQ(ERedundancyState_MateStandby, 9U);
    EXPECT_EQ(ERedundancyState_Timeout, 255U);
}

} // namespace
