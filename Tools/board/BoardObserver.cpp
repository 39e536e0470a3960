// SPDX-License-Identifier: MIT
#include "board/BoardObserver.hpp"

#include "AaConfigTag.h"
#include "AaPro.h"
#include "RedundancyMessages.hpp"
#include "ddal_error.h"
#include "fault/FaultStore.hpp"
#include "log/LogReader.hpp"
#include "node/AskedService.hpp"
#include "node/PerNode.hpp"
#include "port/SignalsBlocked.hpp"
#include "syscom/MessageTap.hpp"
#include "syscom/Node.hpp"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>
#include <utility>

namespace dorn::tool {
namespace {

using namespace examples;

constexpr auto lookPeriod = std::chrono::milliseconds(100);
constexpr auto endPatience = std::chrono::seconds(1);
constexpr std::size_t keptLines = 200;

template <class Item>
void keep(std::deque<Item>& lines, Item line)
{
    lines.push_back(std::move(line));
    if (lines.size() > keptLines) {
        lines.pop_front();
    }
}

/// The records behind the head of an answer, as many as are there of those announced.
template <class Item, class Head>
std::vector<Item> itemsOf(BytesView payload, std::uint32_t Head::*count)
{
    Head head{};
    if (payload.size() < sizeof head) {
        return {};
    }
    std::memcpy(&head, payload.data(), sizeof head);
    const BytesView tail = payload.subspan(sizeof head);
    std::vector<Item> items(std::min<std::size_t>(head.*count, tail.size() / sizeof(Item)));
    if (!items.empty()) {
        std::memcpy(items.data(), tail.data(), items.size() * sizeof(Item));
    }
    return items;
}

/// An action that has been asked for.
struct OpenAction {
    BoardAction action;
    host::Deadline until;
};

} // namespace

/// What the thread and the others have in common.
struct BoardObserver::Shared {
    std::mutex mutex;
    BoardPicture picture;
    std::vector<BoardAction> actions; ///< to be done
    std::vector<SupervisorEvent> news;
    std::atomic<std::uint32_t> eu{0}; ///< the thread's; 0 until it has one
    std::atomic<bool> isToEnd{false};
    std::atomic<std::uint32_t> hasEnded{0};
};

class BoardObserver::Watcher {
public:
    explicit Watcher(Shared& shared) : m_shared(shared), m_names(m_book.names()) {}

    void run()
    {
        m_shared.eu.store(AaProEuCurrent());
        const CommunicationPoint point;
        m_own = point.cpid();
        host::MessageTap& tap = host::PerNode<host::MessageTap>::get();
        const bool isWatching = tap.addWatcher(m_own);
        if (!isWatching) {
            keep(m_picture.messages, std::string("the messages are watched too often already; end a 'dorn msg watch'"));
        }
        while (!m_shared.isToEnd.load()) {
            const host::Nanoseconds now = host::Clock::get().monotonic();
            if (now >= m_nextLook) {
                m_nextLook = now + lookPeriod;
                look(now);
            }
            if (const MessageHandle message = receive(m_nextLook)) {
                take(message.get());
            }
        }
        if (isWatching) {
            tap.removeWatcher(m_own);
        }
    }

private:
    void look(host::Nanoseconds now)
    {
        for (RepeatedQuestion* const question : {&m_links, &m_cages, &m_clock, &m_alarms}) {
            question->askWhenDue(now);
        }
        startActions(now);
        giveActionsUp(now);
        for (host::LogLine& line : m_log.next(now)) {
            keep(m_picture.log, std::move(line));
        }
        std::uint32_t isActive = 0;
        const bool isKnown = AaConfigTagGetU32(activeUnitTag, &isActive) == 0;
        m_picture.isActiveUnit = isKnown ? std::optional(isActive != 0) : std::nullopt;
        publish();
    }

    void publish()
    {
        m_picture.links.state = m_links.state();
        m_picture.cages.state = m_cages.state();
        m_picture.clock.state = m_clock.state();
        m_picture.alarms.state = m_alarms.state();
        const std::lock_guard lock(m_shared.mutex);
        m_shared.picture = m_picture;
    }

    void take(void* message)
    {
        const BytesView payload = payloadOf(message);
        if (AaSysComMsgGetId(message) == host::MessageTap::recordId) {
            takeSeen(payload);
        } else if (m_links.takes(message)) {
            m_picture.links.value = itemsOf<SLink>(payload, &SLinkShowResp::linkCount);
        } else if (m_cages.takes(message)) {
            m_picture.cages.value = itemsOf<SSfpCage>(payload, &SSfpShowResp::cageCount);
        } else if (m_clock.takes(message)) {
            SClockShowResp& clock = m_picture.clock.value;
            std::memcpy(&clock, payload.data(), std::min(sizeof clock, payload.size()));
        } else if (m_alarms.takes(message)) {
            m_picture.alarms.value = itemsOf<SAlarm>(payload, &SAlarmListResp::activeCount);
        } else {
            takeAnswer(message);
        }
    }

    void takeSeen(BytesView record)
    {
        const std::optional<SeenMessage> seen = readTapRecord(record);
        const auto isOwn = [this](TAaSysComSicad address) { return host::cpidOf(address) == m_own; };
        if (seen && !isOwn(seen->sender) && !isOwn(seen->receiver)) {
            keep(m_picture.messages, withoutDate(messageText(*seen, m_names, false), lengthToMilliseconds));
        }
    }

    void startActions(host::Nanoseconds now)
    {
        std::vector<BoardAction> actions;
        {
            const std::lock_guard lock(m_shared.mutex);
            actions = std::exchange(m_shared.actions, {});
        }
        for (BoardAction& action : actions) {
            if (action.fault) {
                host::PerNode<board::FaultStore>::get().set(*action.fault, DDAL_ERROR_TIMEOUT, 1);
                tell(action, "done", News::Good);
                continue;
            }
            const std::int32_t status = sendToService({action.cpid, "", ""}, action.request, action.payload);
            if (status != EAaSysComStatus_Ok) {
                tell(action, "the service for it does not run", News::Bad);
            } else {
                m_actions.push_back({std::move(action), now + answerPatience});
            }
        }
    }

    void takeAnswer(void* message)
    {
        struct {
            std::uint32_t transaction;
            std::uint32_t status;
        } head{};
        const BytesView payload = payloadOf(message);
        if (payload.size() < sizeof head) {
            return;
        }
        std::memcpy(&head, payload.data(), sizeof head);
        const TAaSysComMsgId id = AaSysComMsgGetId(message);
        const auto found = std::find_if(m_actions.begin(), m_actions.end(), [&](const OpenAction& open) {
            return open.action.answer == id && open.action.transaction() == head.transaction;
        });
        if (found != m_actions.end()) {
            const bool isDone = head.status == 0;
            tell(found->action, isDone ? "done" : "refused, status " + std::to_string(head.status),
                 isDone ? News::Good : News::Bad);
            m_actions.erase(found);
        }
    }

    void giveActionsUp(host::Nanoseconds now)
    {
        std::erase_if(m_actions, [this, now](const OpenAction& open) {
            const bool isLate = now >= open.until;
            if (isLate && !open.action.isSilenceExpected) {
                tell(open.action, "the service does not answer", News::Bad);
            }
            return isLate;
        });
    }

    void tell(const BoardAction& action, const std::string& what, News news)
    {
        const std::lock_guard lock(m_shared.mutex);
        m_shared.news.push_back({host::Clock::get().wall(), "", action.label + ": " + what, news});
    }

    Shared& m_shared;
    BoardPicture m_picture;
    host::LogReader m_log;
    NameBook m_book{NodePlace()};
    Names m_names;
    RepeatedQuestion m_links{linkServiceCpid, LinkShowReqMsg::ID, LinkShowRespMsg::ID};
    RepeatedQuestion m_cages{sfpServiceCpid, SfpShowReqMsg::ID, SfpShowRespMsg::ID};
    RepeatedQuestion m_clock{clockServiceCpid, ClockShowReqMsg::ID, ClockShowRespMsg::ID};
    RepeatedQuestion m_alarms{faultManagerCpid, AlarmListReqMsg::ID, AlarmListRespMsg::ID};
    std::vector<OpenAction> m_actions; ///< not answered yet
    TAaSysComCpid m_own = 0;
    host::Nanoseconds m_nextLook{};
};

BoardObserver::BoardObserver() : m_shared(std::make_shared<Shared>())
{
    host::PerNode<host::EeTable>::get(); // before the thread: what is wrong with the node is said here
    host::PerNode<host::MessageTap>::get();
    AaConfigEarlyStartup();
    const host::SignalsBlocked untilStarted;
    m_thread = std::thread([shared = m_shared] {
        try {
            Watcher(*shared).run();
        } catch (const std::exception& error) {
            const std::lock_guard lock(shared->mutex);
            shared->news.push_back({host::Clock::get().wall(), "",
                                    std::string("the board cannot be looked at: ") + error.what(), News::Bad});
        }
        shared->hasEnded.store(1);
        host::wakeWaiters(shared->hasEnded, 1, false);
    });
}

BoardObserver::~BoardObserver()
{
    m_shared->isToEnd.store(true);
    AaSysComEuWakeUp(static_cast<TAaProEuId>(m_shared->eu.load()));
    host::Clock& clock = host::Clock::get();
    const host::Deadline until = clock.monotonic() + endPatience;
    while (m_shared->hasEnded.load() == 0 && clock.monotonic() < until) {
        clock.waitWhile(m_shared->hasEnded, 0, until, false);
    }
    if (m_shared->hasEnded.load() != 0) {
        m_thread.join();
    } else {
        m_thread.detach();
    }
}

BoardPicture BoardObserver::picture() const
{
    const std::lock_guard lock(m_shared->mutex);
    return m_shared->picture;
}

void BoardObserver::act(BoardAction action)
{
    const std::lock_guard lock(m_shared->mutex);
    m_shared->actions.push_back(std::move(action));
}

std::vector<SupervisorEvent> BoardObserver::takeNews()
{
    const std::lock_guard lock(m_shared->mutex);
    return std::exchange(m_shared->news, {});
}

} // namespace dorn::tool
