// SPDX-License-Identifier: MIT
#include <chrono>

#include "store/day_task_lines.h"

// A record holds numbers, then the title, then the lines' texts one behind the other:
//
//     length of the title, how many lines
//     of each line: how many lines behind the one before, what it is (see KindBits), indents, start
//     of
//         the box, start of the content, length; if it is scheduled, to which day since the year 0
//
// Numbers have seven bits a byte, the lowest first; all but the last byte have the eighth one set.

namespace tessaly::store {
namespace {

using grammar::LineClass;
using std::chrono::sys_days;

/// What is told of a line in one number.
struct KindBits {
    static constexpr std::uint32_t markerShift = 4;
    static constexpr std::uint32_t typeBits = (1U << markerShift) - 1;
    static constexpr std::uint32_t boxShift = 6;
    static constexpr std::uint32_t markerBits = (1U << (boxShift - markerShift)) - 1;
    static constexpr std::uint32_t hasBox = 1U << boxShift;
    static constexpr std::uint32_t isScheduled = 1U << (boxShift + 1);
    static constexpr std::uint32_t all = 2 * isScheduled - 1;
};

void putNumber(std::string& record, std::uint32_t number) {
    for (; number >= 0x80; number >>= 7) {
        record += static_cast<char>(number | 0x80);
    }
    record += static_cast<char>(number);
}

using std::chrono::December;
using std::chrono::January;
constexpr sys_days firstDay{std::chrono::year{0} / January / 1};
constexpr sys_days lastDay{std::chrono::year{9999} / December / 31};

std::uint32_t kindOf(const DayTaskLine& line) {
    return static_cast<std::uint32_t>(line.line.type) |
           static_cast<std::uint32_t>(line.line.marker) << KindBits::markerShift |
           (line.line.hasBox ? KindBits::hasBox : 0) |
           (line.scheduledTo ? KindBits::isScheduled : 0);
}

/// Takes a record apart. Once something is wrong, all that follows is.
class RecordReader {
public:
    explicit RecordReader(std::string_view record)
        : _next(record.data()), _end(_next + record.size()) {}

    std::uint32_t number() {
        std::uint32_t value = 0;
        for (std::uint32_t shift = 0; shift < 32 && _next != _end; shift += 7) {
            const auto byte = static_cast<unsigned char>(*_next++);
            value |= static_cast<std::uint32_t>(byte & 0x7F) << shift;
            if (byte < 0x80) {
                return value;
            }
        }
        return fail();
    }

    std::uint32_t numberUpTo(std::uint32_t highest) {
        const std::uint32_t value = number();
        return value <= highest ? value : fail();
    }

    /// Of one that follows further behind.
    std::size_t lengthOfText() {
        const std::size_t length = number();
        return length <= rest().size() ? length : fail();
    }

    std::string_view text(std::size_t length) {
        const std::string_view found = rest().substr(0, length);
        _next += found.size();
        return found;
    }

    bool isWrong() const { return _isWrong; }
    std::string_view rest() const { return {_next, static_cast<std::size_t>(_end - _next)}; }

private:
    std::uint32_t fail() {
        _isWrong = true;
        _next = _end;
        return 0;
    }

    const char* _next;
    const char* _end;
    bool _isWrong = false;
};

void putLine(std::string& record, const DayTaskLine& line, std::uint32_t linesBehind) {
    putNumber(record, linesBehind);
    putNumber(record, kindOf(line));
    putNumber(record, line.line.indents);
    putNumber(record, line.line.boxStart);
    putNumber(record, line.line.contentStart);
    putNumber(record, static_cast<std::uint32_t>(line.text.size()));
    if (line.scheduledTo) {
        const auto day = sys_days{*line.scheduledTo} - firstDay;
        putNumber(record, static_cast<std::uint32_t>(day.count()));
    }
}

base::Day readDay(RecordReader& reader) {
    constexpr auto last = static_cast<std::uint32_t>((lastDay - firstDay).count());
    return firstDay + std::chrono::days{reader.numberUpTo(last)};
}

// Reads all but the text, of which the length alone is known yet.
void readLine(RecordReader& reader, DayTaskLine& line) {
    line.index += reader.number();
    const std::uint32_t kind = reader.numberUpTo(KindBits::all);
    line.line = LineClass();
    line.line.type = static_cast<grammar::TodoType>(kind & KindBits::typeBits);
    const std::uint32_t marker = kind >> KindBits::markerShift & KindBits::markerBits;
    line.line.marker = static_cast<base::TodoCharacter>(marker);
    line.line.hasBox = (kind & KindBits::hasBox) != 0;
    line.line.indents = reader.number();
    line.line.boxStart = reader.number();
    line.line.contentStart = reader.number();
    line.text = reader.rest().substr(0, reader.lengthOfText());
    line.scheduledTo.reset();
    if ((kind & KindBits::isScheduled) != 0) {
        line.scheduledTo = readDay(reader);
    }
}

bool isSane(const DayTaskLine& line) {
    const std::size_t length = line.text.size();
    return grammar::isTask(line.line.type) && line.line.marker <= base::TodoCharacter::number &&
           line.line.indents <= length && line.line.boxStart <= length &&
           line.line.contentStart <= length;
}

}  // namespace

std::string recordOfDayTasks(const DayTaskLines& found) {
    std::string record;
    if (found.lines.empty()) {
        return record;
    }
    putNumber(record, static_cast<std::uint32_t>(found.title.size()));
    putNumber(record, static_cast<std::uint32_t>(found.lines.size()));
    std::uint32_t before = 0;
    for (const DayTaskLine& line : found.lines) {
        putLine(record, line, line.index - before);
        before = line.index;
    }
    record += found.title;
    for (const DayTaskLine& line : found.lines) {
        record += line.text;
    }
    return record;
}

bool readDayTasks(std::string_view record, DayTaskLines& found) {
    found.lines.clear();
    RecordReader reader(record);
    const std::size_t titleLength = reader.lengthOfText();
    const std::uint32_t count = reader.number();
    std::size_t textLength = titleLength;
    DayTaskLine line;
    for (std::uint32_t i = 0; i < count; ++i) {
        readLine(reader, line);
        if (reader.isWrong() || !isSane(line) || !(line.scheduledTo || found.noteDay)) {
            return false;
        }
        textLength += line.text.size();
        found.lines.push_back(line);
    }
    if (count == 0 || reader.rest().size() != textLength ||
        reader.rest().find('\n') != std::string_view::npos) {
        return false;
    }
    found.title = reader.text(titleLength);
    for (DayTaskLine& read : found.lines) {
        read.text = reader.text(read.text.size());
    }
    return true;
}

}  // namespace tessaly::store
