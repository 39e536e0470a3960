// SPDX-License-Identifier: MIT
#include "board/BoardFrame.hpp"

#include "answers/AlarmText.hpp"
#include "answers/ClockText.hpp"
#include "answers/LinkText.hpp"
#include "answers/SfpText.hpp"
#include "log/LogText.hpp"

#include <algorithm>
#include <array>
#include <cstdio>

namespace dorn::tool {
namespace {

using namespace examples;

constexpr std::size_t hardwareColumn = 50; ///< the services take what is left of it
constexpr std::size_t hardwareRows = 18;   ///< what the hardware of a usual board takes
constexpr std::size_t gutter = 7;          ///< of the lines below: "event  "
constexpr std::size_t eventsColumn = 84;   ///< where the terminal is wide; the hardware takes what is left of it
constexpr std::size_t wideColumns = 132;   ///< of a terminal that is
constexpr const char* endingText = "all services end; q once more kills what still runs";
constexpr const char* keysText = "s SFP  l link  c clock  f fault  r reset  o switch over  k kill  h help  q quit";

constexpr std::array<const char*, 16> helpText{
    "s  plug a module into an SFP cage, or pull it",
    "l  break both fibres of a link, or mend them",
    "c  lose the clock reference, or restore it",
    "f  have the next call of a driver function fail: no answer from the device",
    "r  have the watchdog reset the board: all services are killed, and start again",
    "o  switch over to the other half of the pair: active or standby",
    "k  kill a service; its restart policy says what happens then",
    "q  end all services, and quit, as Ctrl-C does; once more: kill what does not end",
    "Ctrl-L  draw the picture anew",
    "",
    "STATE  what the service publishes: waiting for messages, or handling one",
    "       back-off: has ended, and starts again; held: waits for another one",
    "       stopped: a signal has stopped it; hangs: handles one message for too long",
    "FOR    how long it has been running, starting, held ...",
    "RE     how often it has been started again",
    "Other terminals: dorn service list, dorn alarm list, dorn msg watch, dorn log -f",
};

bool isWide(const Frame& frame)
{
    return frame.size().columns >= wideColumns;
}

/// Lines of a part of the picture, one behind the other.
class Pane {
public:
    Pane(Frame& frame, std::size_t row, std::size_t end, std::size_t column, std::size_t endColumn)
        : m_frame(frame), m_row(row), m_end(end), m_column(column), m_endColumn(endColumn)
    {
    }

    void heading(std::string_view text) { line(text, Colour::Faint); }
    void line(std::string_view text, Colour colour = Colour::None) { line(text, "", colour); }
    /// A text, and a second one behind it in a colour of its own.
    void line(std::string_view text, std::string_view more, Colour colour)
    {
        if (m_row >= m_end) {
            return;
        }
        const Colour first = more.empty() ? colour : Colour::None;
        const std::size_t behind = m_frame.put(m_row, m_column, text, first, m_endColumn - m_column);
        m_frame.put(m_row, behind, more, colour, m_endColumn - behind);
        ++m_row;
    }

private:
    Frame& m_frame;
    std::size_t m_row;
    std::size_t m_end;
    std::size_t m_column;
    std::size_t m_endColumn;
};

template <class... Arguments>
std::string format(const char* text, Arguments... arguments)
{
    std::array<char, 256> buffer{};
    std::snprintf(buffer.data(), buffer.size(), text, arguments...);
    return buffer.data();
}

void putTitle(Frame& frame, const BoardContent& content)
{
    const std::string role = !content.picture.isActiveUnit ? "" : *content.picture.isActiveUnit ? "active" : "standby";
    std::size_t column = frame.put(0, 0, "Dorn board " + content.board + "  ");
    column = frame.put(0, column, content.condition, content.isWell ? Colour::Green : Colour::Yellow);
    frame.put(0, column, "  up " + content.age + "  " + content.node + (role.empty() ? "" : "  unit " + role));
}

void putServices(Frame& frame, const std::vector<ServiceLine>& services, std::size_t end)
{
    constexpr const char* columns = "%-17.17s %7s %-12.12s %4s %3s";
    frame.put(1, 0, format(columns, "SERVICE", "PID", "STATE", "FOR", "RE"), Colour::Faint);
    const std::size_t room = end > 2 ? end - 2 : 0;
    const bool isCut = services.size() > room;
    const std::size_t count = isCut ? room - std::min<std::size_t>(room, 1) : services.size();
    for (std::size_t place = 0; place < count; ++place) {
        constexpr std::size_t stateColumn = 26;
        const ServiceLine& line = services[place];
        frame.put(place + 2, 0,
                  format(columns, line.name.c_str(), line.pid.c_str(), line.state.c_str(), line.age.c_str(),
                         line.restarts.c_str()));
        frame.put(place + 2, stateColumn, format("%-12.12s", line.state.c_str()), line.colour);
    }
    if (isCut && room != 0) {
        frame.put(end - 1, 0, "and " + std::to_string(services.size() - count) + " more, for which there is no room",
                  Colour::Yellow);
    }
}

/// The heading of a part, and whether its service answers.
void putHeading(Pane& pane, const std::string& name, Answering state)
{
    switch (state) {
    case Answering::Unknown:
    case Answering::Yes:
        pane.heading(name);
        break;
    case Answering::No:
        pane.line(name + "  ", "no answer", Colour::Red);
        break;
    case Answering::Gone:
        pane.line(name + "  ", "no service", Colour::Red);
        break;
    }
}

/// @param shown how many there is room for, the latest
void putAlarms(Pane& pane, const Answered<std::vector<SAlarm>>& alarms, std::size_t shown)
{
    const std::size_t count = alarms.value.size();
    putHeading(pane, "ALARMS " + std::to_string(count), alarms.state);
    for (std::size_t place = count - std::min(count, shown); place < count; ++place) {
        const SAlarm& alarm = alarms.value[place];
        pane.line(format("%u %s x%u", alarm.number, alarmFaultText(alarm.faultId).c_str(), alarm.count), Colour::Red);
    }
}

void putLinks(Pane& pane, const Answered<std::vector<SLink>>& links)
{
    putHeading(pane, "LINKS", links.state);
    for (const SLink& link : links.value) {
        const std::string conditions = linkConditionsText(link);
        const std::string state = linkRxText(link) + (conditions == "-" ? "" : "  " + conditions);
        pane.line(format("%-8s", linkName(link).c_str()), state, isLinkUp(link) ? Colour::Green : Colour::Red);
    }
}

void putCages(Pane& pane, const Answered<std::vector<SSfpCage>>& cages)
{
    putHeading(pane, "SFP CAGES", cages.state);
    for (const SSfpCage& cage : cages.value) {
        const Colour colour = cage.module == ESfpModule_Ready   ? Colour::Green
                              : cage.module == ESfpModule_Empty ? Colour::Faint
                                                                : Colour::Yellow;
        pane.line(format("%-8u", cage.cage), sfpModuleText(cage), colour);
    }
}

void putClock(Pane& pane, const Answered<SClockShowResp>& clock)
{
    putHeading(pane, "CLOCK", clock.state);
    if (clock.state != Answering::Yes) {
        return;
    }
    const SClockShowResp& now = clock.value;
    const bool isWell = clockPllText(now).starts_with("track") && clockTimerText(now) == "in-sync";
    pane.line(clockPllText(now) + ", " + clockTimerText(now), isWell ? Colour::Green : Colour::Red);
    pane.line(now.hasReference != 0 ? "reference there" : "reference lost",
              now.hasReference != 0 ? Colour::None : Colour::Red);
    pane.line(format("%+.1f ns  %+.3f ppb", now.timeError, now.frequencyError));
}

void putHardware(Frame& frame, const BoardPicture& picture, std::size_t end)
{
    constexpr std::size_t gap = 2;
    Pane pane(frame, 1, end, hardwareColumn, isWide(frame) ? eventsColumn - gap : frame.size().columns);
    const bool isRoomScarce = end < hardwareRows + 2;
    putAlarms(pane, picture.alarms, isRoomScarce ? 1 : 3);
    putLinks(pane, picture.links);
    putCages(pane, picture.cages);
    putClock(pane, picture.clock);
}

/// One line below the services.
struct NewsLine {
    std::string text;
    Colour colour = Colour::None;
};

/// The last lines of something, the oldest first, as many as there is room for.
void putLatest(Frame& frame, std::size_t row, std::size_t column, std::size_t room, const std::vector<NewsLine>& lines)
{
    const std::size_t count = std::min(room, lines.size());
    for (std::size_t place = 0; place < count; ++place) {
        const NewsLine& line = lines[lines.size() - count + place];
        frame.put(row + place, column, line.text, line.colour);
    }
}

/// The same with its name in front of the first line.
void putNamed(Frame& frame, std::size_t row, std::size_t room, const char* name, const std::vector<NewsLine>& lines)
{
    if (room != 0) {
        frame.put(row, 0, name, Colour::Faint);
    }
    putLatest(frame, row, gutter, room, lines);
}

/// @param room where there is little, only news that are good or bad are told
std::vector<NewsLine> eventLines(const std::deque<SupervisorEvent>& events, std::size_t room)
{
    constexpr std::size_t muchRoom = 6;
    std::vector<NewsLine> lines;
    for (const SupervisorEvent& event : events) {
        const bool isMinor = event.news == News::Said || event.news == News::Plain;
        if (isMinor && room < muchRoom) {
            continue;
        }
        constexpr std::array colours{Colour::None, Colour::Green, Colour::Red, Colour::Faint};
        lines.push_back(
            {withoutDate(eventLine(event), lengthToSeconds), colours[static_cast<std::size_t>(event.news)]});
    }
    return lines;
}

std::vector<NewsLine> messageLines(const std::deque<std::string>& messages)
{
    std::vector<NewsLine> lines;
    for (const std::string& message : messages) {
        lines.push_back({message});
    }
    return lines;
}

std::vector<NewsLine> logLines(const std::deque<host::LogLine>& log)
{
    std::vector<NewsLine> lines;
    for (const host::LogLine& line : log) {
        const bool isBad = line.severity == EAaSysLogSeverityLevel_Error || line.severity == EAaSysLogSeverityLevel_Vip;
        const bool isDoubtful = line.severity == EAaSysLogSeverityLevel_Warning;
        const bool isFeatureTold = !line.featureName.empty() && line.featureName != line.eeName;
        const std::string from = line.eeName + (isFeatureTold ? " " + line.featureName : "");
        lines.push_back({withoutDate(host::formatLogLine(line), lengthToSeconds).substr(0, lengthToSeconds + 1) + from +
                             "  " + line.text,
                         isBad        ? Colour::Red
                         : isDoubtful ? Colour::Yellow
                                      : Colour::None});
    }
    return lines;
}

/// On the right of a wide terminal.
void putEvents(Frame& frame, const std::deque<SupervisorEvent>& events, std::size_t end)
{
    const std::size_t room = end > 2 ? end - 2 : 0;
    frame.put(1, eventsColumn, "EVENTS", Colour::Faint);
    putLatest(frame, 2, eventsColumn, room, eventLines(events, room));
}

/// Below the services: a quarter for events, if they do not stand above; of the rest one half each for messages and
/// log.
void putLines(Frame& frame, const BoardContent& content, std::size_t begin, std::size_t end)
{
    const std::size_t room = end > begin ? end - begin : 0;
    const std::size_t events = isWide(frame) ? 0 : (room + 2) / 4;
    const std::size_t messages = (room - events) / 2;
    putNamed(frame, begin, events, "events", eventLines(content.events, events));
    putNamed(frame, begin + events, messages, "msgs", messageLines(content.picture.messages));
    putNamed(frame, begin + events + messages, room - events - messages, "log", logLines(content.picture.log));
}

/// The columns of a menu are as wide as what stands in them.
void putMenu(Frame& frame, const Menu& menu)
{
    const std::size_t room = frame.size().rows > 4 ? frame.size().rows - 4 : 1;
    std::size_t column = 0;
    std::size_t next = 0;
    frame.put(1, 0, menu.title(), Colour::Yellow);
    for (std::size_t place = 0; place < menu.items().size(); ++place) {
        if (place % room == 0) {
            column = next;
        }
        const std::string text = std::string("  ") + Menu::keyOf(place) + "  " + menu.items()[place].text;
        next = std::max(next, frame.put(3 + place % room, column, text));
    }
}

void putHelp(Frame& frame)
{
    for (std::size_t place = 0; place < helpText.size(); ++place) {
        frame.put(2 + place, 0, helpText[place]);
    }
}

} // namespace

Frame boardFrame(const BoardContent& content, FrameSize size)
{
    Frame frame(size);
    const std::size_t keysRow = size.rows - std::min<std::size_t>(size.rows, 1);
    putTitle(frame, content);
    if (content.menu || content.isHelpWanted) {
        content.menu ? putMenu(frame, *content.menu) : putHelp(frame);
        frame.put(keysRow, 0, content.menu ? "a letter chooses, Esc leaves it" : "any key goes back", Colour::Faint);
        return frame;
    }
    const std::size_t wanted = std::max(content.services.size(), hardwareRows) + 2;
    constexpr std::size_t leastLines = 6;
    const std::size_t most = keysRow > leastLines ? keysRow - leastLines : 0;
    const std::size_t top = std::min(wanted, std::max<std::size_t>(most, 2));
    putServices(frame, content.services, top);
    putHardware(frame, content.picture, top);
    if (isWide(frame)) {
        putEvents(frame, content.events, top);
    }
    putLines(frame, content, top, keysRow);
    frame.put(keysRow, 0, content.isEnding ? endingText : keysText, Colour::Faint);
    return frame;
}

} // namespace dorn::tool
