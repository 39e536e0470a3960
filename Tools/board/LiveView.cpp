// SPDX-License-Identifier: MIT
#include "board/LiveView.hpp"

#include "answers/LinkText.hpp"
#include "answers/SfpText.hpp"
#include "driver/DriverFunction.hpp"
#include "node/NodePlace.hpp"

#include <algorithm>
#include <csignal>
#include <utility>

namespace dorn::tool {
namespace {

constexpr auto drawingPeriod = std::chrono::milliseconds(200);
constexpr std::size_t keptEvents = 200;

} // namespace

LiveView::LiveView(Supervisor& supervisor, BoardObserver& observer, Terminal& terminal, bool isColoured)
    : m_supervisor(supervisor),
      m_observer(observer),
      m_terminal(terminal),
      m_screen(terminal.output(), isColoured),
      m_node(NodePlace().nodeName()),
      m_begin(host::Clock::get().monotonic())
{
}

void LiveView::note(const SupervisorEvent& event)
{
    m_events.push_back(event);
    if (m_events.size() > keptEvents) {
        m_events.pop_front();
    }
}

void LiveView::update()
{
    const std::vector<Key> keys = m_keyboard.keysOf(m_terminal.takeKeys());
    for (const Key key : keys) {
        handle(key);
    }
    for (const SupervisorEvent& event : m_observer.takeNews()) {
        note(event);
    }
    m_screen.flush();
    const host::Nanoseconds now = host::Clock::get().monotonic();
    if (now >= m_nextDrawing || !keys.empty()) {
        m_nextDrawing = now + drawingPeriod;
        draw();
    }
}

void LiveView::draw()
{
    if (!m_screen.isBusy()) {
        m_screen.show(boardFrame(content(), m_terminal.size()));
    }
}

BoardContent LiveView::content() const
{
    const host::Nanoseconds now = host::Clock::get().monotonic();
    BoardContent content;
    std::size_t running = 0;
    for (const SupervisedService& service : m_supervisor.services()) {
        content.services.push_back(serviceLine(service, now));
        running += service.phase == ServicePhase::Running && service.health == ServiceHealth::Fine ? 1 : 0;
    }
    content.board = m_supervisor.board().name;
    content.node = m_node;
    content.age = ageText(now - m_begin);
    content.isEnding = isEndWanted() || m_supervisor.isEnding();
    content.condition = content.isEnding ? "ending"
                                         : std::to_string(running) + " of " + std::to_string(content.services.size()) +
                                               (running == 1 ? " runs" : " run");
    content.isWell = !content.isEnding && running == content.services.size();
    content.picture = m_observer.picture();
    content.events = m_events;
    content.menu = m_menu ? &*m_menu : nullptr;
    content.isHelpWanted = m_isHelpWanted;
    return content;
}

void LiveView::handle(Key key)
{
    if (key == interruptKey) {
        askForEnd();
    } else if (key == redrawKey) {
        m_screen.forget();
    } else if (m_isHelpWanted) {
        m_isHelpWanted = false;
    } else if (m_menu) {
        const Menu menu = *std::exchange(m_menu, std::nullopt);
        if (const Menu::Item* const item = menu.chosenBy(key)) {
            item->choose();
        }
    } else {
        switch (key) {
        case 's':
            return offerCages();
        case 'l':
            return offerLinks();
        case 'c':
            return offerReference();
        case 'f':
            return offerFaults();
        case 'r':
            return offerReset();
        case 'o':
            return offerRoles();
        case 'k':
            return offerKills();
        case 'h':
        case '?':
            m_isHelpWanted = true;
            break;
        case 'q':
            return askForEnd();
        default:
            break;
        }
    }
}

void LiveView::askForEnd()
{
    m_isEndUrgent = m_isEndWanted || m_supervisor.isEnding();
    m_isEndWanted = true;
}

void LiveView::open(const std::string& title, std::vector<Menu::Item> items)
{
    m_menu.emplace(items.empty() ? title + " There is nothing to choose from: its service does not answer." : title,
                   std::move(items));
}

Menu::Item LiveView::itemOf(BoardAction action)
{
    std::string label = action.label;
    return {std::move(label), [this, action = std::move(action)] { m_observer.act(action); }};
}

void LiveView::offerCages()
{
    std::vector<Menu::Item> items;
    for (const examples::SSfpCage& cage : m_observer.picture().cages.value) {
        items.push_back(itemOf(plugAction(cage.cage, cage.module == examples::ESfpModule_Empty)));
    }
    open("Which cage?", std::move(items));
}

void LiveView::offerLinks()
{
    std::vector<Menu::Item> items;
    for (const examples::SLink& link : m_observer.picture().links.value) {
        const std::uint32_t parts =
            link.brokenParts != 0 ? 0 : examples::ELinkPart_Receive | examples::ELinkPart_Transmit;
        items.push_back(itemOf(breakAction(link, parts)));
    }
    open("Which link?", std::move(items));
}

void LiveView::offerReference()
{
    open("What happens to the clock?", {itemOf(referenceAction(false)), itemOf(referenceAction(true))});
}

void LiveView::offerFaults()
{
    std::vector<Menu::Item> items;
    for (std::size_t place = 0; place < board::driverFunctionNames.size(); ++place) {
        items.push_back(itemOf(faultAction(board::DriverFunction::at(place))));
        items.back().text = board::driverFunctionNames[place];
    }
    open("Which driver function is to fail at its next call?", std::move(items));
}

void LiveView::offerReset()
{
    open("Reset the board? Every service is killed where it stands.", {itemOf(resetAction())});
}

void LiveView::offerRoles()
{
    open("Which part is this unit to take?", {itemOf(switchAction(true)), itemOf(switchAction(false))});
}

void LiveView::offerKills()
{
    std::vector<Menu::Item> items;
    for (std::size_t place = 0; place < m_supervisor.services().size(); ++place) {
        const SupervisedService& service = m_supervisor.services()[place];
        const std::string without = service.process ? "" : "  (has no process)";
        items.push_back({service.description.name + without, [this, place] { m_supervisor.signal(place, SIGKILL); }});
    }
    open("Which service is to be killed?", std::move(items));
}

} // namespace dorn::tool
