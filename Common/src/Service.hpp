// SPDX-License-Identifier: MIT
/// @file Service.hpp
/// The process of a hardware service.
///
/// Derive one class from Service, construct one object of it in `main` and return what RunService() returns, which
/// calls Startup():
///
/// 1. The constructor is given the service's name, cpid and R&D parameters. Options of the service's own are declared
///    through GetArgumentParser().
/// 2. Startup(), on the process's main thread, reads the command line, calls PreStartup(), brings up the platform and
///    creates the main execution unit (EU). From then on it waits.
/// 3. The main EU connects to the middleware and calls Init(), where the service registers its message handlers.
/// 4. The main EU calls Run() again and again: each call waits for one message and gives it to its delegate.
/// 5. Terminate(), a request to end the process (SIGTERM, Ctrl-C) or an exception ends the main EU and Startup().
///
/// Init(), Run() and every delegate run on the main EU, HandleConfigTagChange() on a thread of the platform beside it.
/// The service's state is published in an R&D parameter: 1
/// starting, 2 waiting for a message, 3 handling one, 4 ended, 5 failed; 7 and above are the service's own.
#pragma once

#include "AaSem.h"
#include "AaSysCom.h"
#include "ArgParser.hpp"
#include "CHwapiException.hpp"
#include "Msg.hpp"
#include "MsgDelegate.hpp"
#include "MsgDelegateBase.hpp"
#include "RedundancyTypes.hpp"
#include "rad/ERadHwapi.h"
#include "rad/ERadHwapiState.h"

#include <list>
#include <map>
#include <memory>
#include <string>
#include <type_traits>

namespace vel::hwapi::common {

/// A hardware service: derive from it, and run one object of the derived class.
class Service {
public:
    class InitFailedException;
    class RuntimeException;

    /// Asks the manager to register the service.
    using HwapiRedundancyRegisterReqMsg = Msg<SHwapiRedundancyRegisterReq, 4017>;
    /// The manager's answer to a registration.
    using HwapiRedundancyRegisterRespMsg = Msg<SHwapiRedundancyRegisterResp, 4018>;
    /// A command of the manager.
    using HwapiRedundancyStateReqMsg = Msg<SHwapiRedundancyStateReq, 4019>;
    /// Acknowledges a command of the manager.
    using HwapiRedundancyStateRespMsg = Msg<SHwapiRedundancyStateResp, 4020>;
    /// Tells the manager what the service has become.
    using ApiRedundancyIndMsg = Msg<SApiRedundancyInd, 4016>;

    /// Makes this object the process's service, see Get().
    /// @param name short name, e.g. "Ping" for the executable DornPingExe; the main EU is called after it
    /// @param id the cpid under which the service is addressed
    /// @param radId R&D parameter that switches the service's prints on; the feature id of its log lines
    /// @param stateRadId R&D parameter in which the service's state is published
    Service(std::string name, unsigned short id, ERadHwapi radId, ERadHwapiState stateRadId);
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    /// Publishes state 4, deletes all delegates and leaves all tags. An exception out of a delegate's destructor ends
    /// the process. A service whose HandleConfigTagChange() uses members of its own leaves its tags in its own
    /// destructor, with UnSetObservedTag(). Nobody may wait in WaitForConfigTag() any more.
    virtual ~Service();

    /// Publishes a service state. Values up to 5 are the framework's and are passed over when they have been switched
    /// off, see SetUseCommonServiceState(); 6 is never published.
    virtual void SetServiceStateRad(unsigned int state);

    /// Called by Startup() when the command line has been read and before the platform is up. Its result is not used.
    virtual unsigned int PreStartup();

    /// Called on the main EU when it has been connected to the middleware: register message handlers here.
    /// @throws InitFailedException to end the service.
    virtual void Init();

    /// Waits for one message and handles it. A message for whose id there is no delegate is logged and destroyed.
    /// @return non-zero while the service is to go on.
    /// @throws RuntimeException when a delegate threw a std::exception.
    virtual unsigned int Run();

    /// Gives up the message queue and the cpid.
    virtual void Exit();

    /// Called when the redundancy manager has given a command, which has been acknowledged already. The default is
    /// ready for everything.
    /// @param command may have a value that no enumerator has
    /// @param state receives what is to be answered
    /// @return true to have the state sent to the manager.
    virtual bool HandleRedundancyStateCommand(ERedundancyCommand command, ERedundancyState* state);

    /// Called when an observed configuration tag was set, on a thread of the platform, one call at a time; and by
    /// SetObservedTag() on its caller's thread. Does nothing unless overridden.
    ///
    /// It runs beside the message loop, so what both use needs a lock or an atomic. It may set, observe and leave tags.
    /// It must not wait for a tag, nor for the main EU, and no exception may leave it: that ends the process.
    /// @param value the first 4 bytes of the tag's value as a number, whatever the value's length is
    virtual void HandleConfigTagChange(std::string tag, unsigned int value);

    /// Returns the service that was constructed last; null before the first and after its end.
    static Service* Get() { return m_impl; }

    /// Runs the service. Blocks until it has ended.
    ///
    /// A request to end the process lets the message in hand be finished and ends the service normally; one that comes
    /// before the main EU waits for its first message is kept until then. One that follows after more than a second
    /// ends the process at once.
    /// @return 1 when the service ended normally or the command line asked for help; 0 when the command line is wrong
    ///   (told on standard error), the main EU could not be created, or it ended because of an exception (both logged).
    /// @throws InitFailedException when the platform could not be brought up.
    unsigned int Startup(int argc, char** argv);

    /// Entry of the main EU. @p args points at a pointer to the word that receives 1 for a normal end and 0 for
    /// another. @return null.
    static void* ServiceMainEu(void* args);

    /// Connects to the middleware and calls Init(). Called on the main EU.
    /// @throws InitFailedException when the cpid was not granted, or out of Init(); the cpid has been given up then.
    void InitEu();

    /// Ends the service after the message in hand. While no message is in hand, the next one is waited for and handled
    /// first. May be called from any thread.
    void Terminate();

    /// Registers a delegate for its message id. Call it from Init() or from a delegate.
    /// @param delegate owned by the service from now on, unless a delegate of its id is registered already: that one
    ///   stays, and @p delegate remains the caller's.
    /// @throws InvalidParameterException when @p delegate is null. Any other failure ends the process.
    void AddMsgDelegate(MsgDelegateBase* delegate);

    /// Deletes the delegate of @p msgId; does nothing when there is none. A delegate may remove itself.
    /// @throws RuntimeException when the delegate's destructor threw a std::exception; it is no longer registered then.
    void RemoveMsgDelegate(unsigned int msgId);

    /// Tells whether a delegate of @p msgId is registered.
    bool HasMsgDelegate(unsigned int msgId) const;

    /// Registers a member function of @p target as the handler of the message id that its parameter names, see
    /// MsgDelegate.hpp. Call it from Init() or from a delegate.
    /// @param target must live as long as the handler is registered.
    /// @return true; false, with an error in the log, when a delegate of this id is registered already: that one stays.
    template <class Target, class Tpayload, unsigned int mid>
    bool AddMsgHandler(std::type_identity_t<Target>& target, void (Target::*handler)(Msg<Tpayload, mid>))
    {
        return addOrDrop(std::make_unique<MsgDelegate<Target, Tpayload, mid>>(target, handler, m_radId));
    }

    /// Registers a member function of this service: `AddMsgHandler(&PingS::HandlePing);`
    template <class Derived, class Tpayload, unsigned int mid>
    bool AddMsgHandler(void (Derived::*handler)(Msg<Tpayload, mid>))
    {
        static_assert(std::is_base_of_v<Service, Derived>, "name the object whose member function this is");
        return AddMsgHandler(static_cast<Derived&>(*this), handler);
    }

    /// Registers with the redundancy manager, the communication point 0x04E4 of the own node, and waits up to ten
    /// seconds for its answer; other messages stay queued meanwhile. Call it on the main EU, from Init() or from a
    /// delegate. What comes of it is logged; without an answer the service runs on unregistered.
    void RegisterRedundancyService(ERedundancyMode mode);

    /// Ends the registration. There is no answer. Call it on the main EU.
    void UnRegisterRedundancyService();

    /// Registers HandleRedundancyStateReqMsg() as the handler of the redundancy manager's commands (message 4019).
    /// @return as AddMsgHandler().
    bool AddRedundancyHandler();

    /// Logs what the redundancy manager has answered.
    /// @param msg message 4018; stays the caller's. Null, or one that is too short, is logged.
    void HandleRedundancyRegisterRespMsg(void* msg);

    /// Acknowledges a command of the redundancy manager, has HandleRedundancyStateCommand() react, and sends the state
    /// that it gives, if it wants that. Failures are logged.
    /// @param msg message 4019; stays the caller's. Null, or one that is too short, is logged and not answered.
    void HandleRedundancyStateReqMsg(void* msg);

    /// Tells whether this unit is the active one of its pair: configuration tag "sys.unit.state.ne-act", 4 bytes.
    /// @return false also when the tag does not exist, cannot be read or has another size.
    bool isActiveLcp() const;

    /// Has HandleConfigTagChange() called for every set of @p tag from now on, whichever process makes it. Does nothing
    /// while the tag is observed already. Call it from the main EU.
    ///
    /// A tag that has a value of 4 bytes is reported with it at once, before this returns. When the tag is set at that
    /// moment, the report of the older value may come last, or both may tell the new one.
    /// That the platform cannot observe a tag is logged. The tag counts as observed all the same, and a value that it
    /// has is reported, but no set of it will be, unless it is left with UnSetObservedTag() and observed anew.
    void SetObservedTag(std::string tag);

    /// Ends what SetObservedTag() began; does nothing for a tag that is not observed. When it returns,
    /// HandleConfigTagChange() is not running for this tag and will not be called again, unless it is called from
    /// there. Call it from the main EU.
    void UnSetObservedTag(std::string tag);

    /// Blocks the calling thread, any but the platform's, until @p tag is set to @p value, a number of 4 bytes. On the
    /// main EU no message is handled meanwhile.
    ///
    /// The value that the tag has is not looked at: setting it counts from now on, also to what it is already. Where
    /// the tag has been waited for before, a set counts when the platform tells of it, so one that was made just before
    /// may count as well. A thread that is cancelled leaves nothing behind.
    /// @throws RuntimeException when the platform has no semaphore, cannot observe the tag or breaks the wait off; the
    ///   thread is no longer among those who wait then.
    void WaitForConfigTag(std::string tag, unsigned int value);

    /// What the platform calls for observed tags. @p value is read as 4 bytes whatever @p length is; null is passed
    /// over.
    static void ConfigTagObserver(const char* name, const void* value, unsigned int length);

    /// What the platform calls for tags that are or were waited for. Releases nobody unless @p length is 4.
    static void WaitForConfigTagObserver(const char* name, const void* value, unsigned int length);

    /// Returns the service's own address.
    TAaSysComSicad GetSicad();
    /// The service's name, which its main EU's and its executable's come from.
    std::string GetName() { return m_name; }
    /// The R&D parameter that switches the service's prints, and the feature id of its log lines.
    ERadHwapi GetRadId() { return m_radId; }
    /// The command line: declare options before Startup(), read them from PreStartup() on.
    ArgParser& GetArgumentParser() { return m_argParser; }

    /// 1 has Startup() switch the service's prints on.
    void SetVerbose(unsigned int verbose) { m_verbose = verbose; }

    /// Returns the published service state.
    unsigned int GetServiceStateRad();

    /// 0 leaves the publishing of states to the service: the framework's own are no longer published.
    void SetUseCommonServiceState(unsigned int use) { m_useCommonServiceState = use; }

protected:
    /// 0 when the service publishes its states itself; see SetUseCommonServiceState().
    unsigned int m_useCommonServiceState;
    /// The R&D parameter that the state is published in.
    ERadHwapiState m_uRadStateId;
    /// See GetName().
    std::string m_name;
    TAaSysComCpid m_id; ///< the cpid that is asked for
    /// See GetRadId().
    ERadHwapi m_radId;
    /// The delegates by message id; owned.
    std::map<unsigned int, MsgDelegateBase*> m_delegates;
    TAaSysComCpid m_cpId; ///< the cpid that was granted; 0 before that
    /// See GetArgumentParser().
    ArgParser m_argParser;
    /// See SetVerbose().
    unsigned int m_verbose;
    /// Other than 0 once the main EU is to end.
    unsigned int m_terminate;

    /// The process's service; null while there is none.
    static Service* m_impl;
    // Inline, so that they outlive a service that is a global object.
    static inline std::list<std::string> m_observedTags; ///< in the order in which they were added
    static AaSemReMutex* m_wfctMapSem;                   ///< guards m_waitForConfigTagSem
    /// By tag and awaited value the semaphores of the threads that wait.
    static inline std::map<std::string, std::map<unsigned int, std::list<AaSem*>>> m_waitForConfigTagSem;

private:
    class TagTableLock;
    class TagWait;

    static void leaveAllTags();
    bool addOrDrop(std::unique_ptr<MsgDelegateBase> delegate);
    bool isHelpWanted();
    unsigned int runMainEu();
    void dispatch(void* message);
    bool sendRegistration(ERedundancyMode mode);
    void sendRedundancyState(TAaSysComSicad receiver, ERedundancyCommand command, ERedundancyState state);

    static inline std::list<std::string> m_awaitedTags; ///< that WaitForConfigTagObserver() is registered for
};

/// The service could not be started.
class Service::InitFailedException : public CHwapiException {
public:
    /// @param description what of the start-up failed
    InitFailedException(const std::string& description, const char* file, ssize_t line)
        : CHwapiException("Initialization failed", description, file, line)
    {
    }
};

/// The service cannot go on.
class Service::RuntimeException : public CHwapiException {
public:
    /// @param description why the service cannot go on
    RuntimeException(const std::string& description, const char* file, ssize_t line)
        : CHwapiException("Runtime error", description, file, line)
    {
    }
};

/// Runs a service as its process's `main` does: `PingS service; return RunService(service, argc, argv);`
///
/// A CHwapiException out of Startup() is told on standard error: "DornPingExe: ", what(), ": ", the description.
/// @return the exit status: what Startup() returns, thus 1 for a normal end; 0 when Startup() threw a CHwapiException.
int RunService(Service& service, int argc, char** argv);

} // namespace vel::hwapi::common
