// SPDX-License-Identifier: MIT
#include "base/locale_formats.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include <fmt/format.h>
#include <unicode/calendar.h>
#include <unicode/dtfmtsym.h>
#include <unicode/dtptngen.h>
#include <unicode/gregocal.h>
#include <unicode/numfmt.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>
#include <unicode/ures.h>

#include "base/field_wise_format.h"

namespace tessaly::base {

namespace {

constexpr double millisecondsOfDay = 24.0 * 60 * 60 * 1000;

std::string utf8Of(const icu::UnicodeString& text) {
    std::string result;
    text.toUTF8String(result);
    return result;
}

/// ICU would take a locale that it does not know for the process's own.
icu::Locale localeNamed(const std::string& name) {
    UErrorCode status = U_ZERO_ERROR;
    ures_close(ures_open(nullptr, name.c_str(), &status));
    const bool known = U_SUCCESS(status) && status != U_USING_DEFAULT_WARNING;
    return known ? icu::Locale(name.c_str()) : icu::Locale::getRoot();
}

/// A day's first moment in a zone without clock changes.
UDate startOf(Day day) {
    return static_cast<double>(std::chrono::sys_days{day}.time_since_epoch().count()) *
           millisecondsOfDay;
}

/// No calendar puts it on another day.
UDate noonOf(Day day) {
    return startOf(day) + millisecondsOfDay / 2;
}

/// Days in files are Gregorian at all times; ICU's calendars turn Julian before 1582.
void makeProleptic(icu::SimpleDateFormat& format) {
    constexpr double longAgo = -1e5 * 366 * millisecondsOfDay;
    std::unique_ptr<icu::Calendar> calendar(format.getCalendar()->clone());
    if (auto* const gregorian = dynamic_cast<icu::GregorianCalendar*>(calendar.get())) {
        UErrorCode status = U_ZERO_ERROR;
        gregorian->setGregorianChange(longAgo, status);
        format.adoptCalendar(calendar.release());
    }
}

std::string formatted(const icu::DateFormat& format, UDate date) {
    icu::UnicodeString text;
    return utf8Of(format.format(date, text));
}

/// From so many on it pays to take days apart into their fields.
constexpr int manyDays = 64;

/// ICU's formatters for one locale. They are slow to make, so they are made when first asked for
/// and kept.
class Formatters {
public:
    explicit Formatters(const std::string& name) : _locale(localeNamed(name)) {}

    /// The locale's pattern for a skeleton; empty without ICU's data.
    icu::UnicodeString pattern(std::string_view skeleton) {
        UErrorCode status = U_ZERO_ERROR;
        if (!_patterns) {
            _patterns.reset(icu::DateTimePatternGenerator::createInstance(_locale, status));
        }
        return _patterns ? _patterns->getBestPattern(unicodeOf(skeleton), status)
                         : icu::UnicodeString();
    }

    /// How days are written by one skeleton.
    struct DayFormat {
        std::unique_ptr<icu::SimpleDateFormat> format;     ///< null without ICU's data
        std::shared_ptr<const FieldWiseFormat> fieldWise;  ///< null: not worth it, or not possible
        int uses = 0;
    };

    const DayFormat& dayFormat(std::string_view skeleton) {
        const auto [found, isNew] = _dayFormats.try_emplace(std::string(skeleton));
        DayFormat& day = found->second;
        if (isNew) {
            day.format = formatOf(pattern(skeleton));
            if (day.format) {
                makeProleptic(*day.format);
            }
        }
        if (++day.uses == manyDays && day.format) {
            day.fieldWise = fieldWise(*day.format);
        }
        return day;
    }

    const icu::SimpleDateFormat* timeFormat() {
        if (!_timeFormat) {
            _timeFormat = formatOf(hourCycle() == HourCycle::twelve ? u"h:mm a" : u"HH:mm");
            if (_timeFormat) {
                nameHalves(*_timeFormat);
            }
        }
        return _timeFormat.get();
    }

    const icu::DateFormat* dateAndTimeFormat() {
        if (!_dateAndTimeFormat) {
            _dateAndTimeFormat.reset(icu::DateFormat::createDateTimeInstance(
                icu::DateFormat::kMedium, icu::DateFormat::kMedium, _locale));
            if (_dateAndTimeFormat) {
                _dateAndTimeFormat->setTimeZone(*icu::TimeZone::getGMT());
            }
        }
        return _dateAndTimeFormat.get();
    }

    const icu::NumberFormat* numberFormat() {
        if (!_numberFormat) {
            UErrorCode status = U_ZERO_ERROR;
            _numberFormat.reset(icu::NumberFormat::createInstance(_locale, status));
        }
        return _numberFormat.get();
    }

    HourCycle hourCycle() {
        return pattern("j").indexOf(u'a') >= 0 ? HourCycle::twelve : HourCycle::twentyFour;
    }

    DayOfWeek firstDayOfWeek() const {
        UErrorCode status = U_ZERO_ERROR;
        const std::unique_ptr<const icu::Calendar> calendar(
            icu::Calendar::createInstance(_locale, status));
        const auto first = U_SUCCESS(status) ? calendar->getFirstDayOfWeek(status) : UCAL_MONDAY;
        return static_cast<DayOfWeek>(first - UCAL_SUNDAY);
    }

private:
    static icu::UnicodeString unicodeOf(std::string_view text) {
        return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
    }

    static std::shared_ptr<const FieldWiseFormat> fieldWise(const icu::SimpleDateFormat& whole) {
        if (dynamic_cast<const icu::GregorianCalendar*>(whole.getCalendar()) == nullptr) {
            return nullptr;
        }
        icu::UnicodeString pattern;
        whole.toPattern(pattern);
        const std::unique_ptr<icu::SimpleDateFormat> field(whole.clone());
        const auto made =
            FieldWiseFormat::of(utf8Of(pattern), [&](std::string_view fieldPattern, Day day) {
                field->applyPattern(unicodeOf(fieldPattern));
                return formatted(*field, noonOf(day));
            });
        return made ? std::make_shared<const FieldWiseFormat>(*made) : nullptr;
    }

    static void nameHalves(icu::SimpleDateFormat& format) {
        const icu::UnicodeString names[] = {u"AM", u"PM"};
        icu::DateFormatSymbols symbols(*format.getDateFormatSymbols());
        symbols.setAmPmStrings(names, 2);
        format.setDateFormatSymbols(symbols);
    }

    std::unique_ptr<icu::SimpleDateFormat> formatOf(const icu::UnicodeString& pattern) const {
        UErrorCode status = U_ZERO_ERROR;
        auto format = std::make_unique<icu::SimpleDateFormat>(pattern, _locale, status);
        if (U_FAILURE(status)) {
            return nullptr;
        }
        format->setTimeZone(*icu::TimeZone::getGMT());
        return format;
    }

    icu::Locale _locale;
    std::unique_ptr<icu::DateTimePatternGenerator> _patterns;
    std::map<std::string, DayFormat, std::less<>> _dayFormats;
    std::unique_ptr<icu::SimpleDateFormat> _timeFormat;
    std::unique_ptr<icu::DateFormat> _dateAndTimeFormat;
    std::unique_ptr<icu::NumberFormat> _numberFormat;
};

/// Calls `use` with the formatters of a locale. One thread at a time: ICU's formatters are not
/// made for more.
template <class Use>
auto withFormatters(const std::string& locale, Use use) {
    static std::mutex mutex;
    static std::map<std::string, Formatters> kept;
    const std::scoped_lock lock(mutex);
    return use(kept.try_emplace(locale, locale).first->second);
}

}  // namespace

LocaleFormats::LocaleFormats(std::string locale) : _locale(std::move(locale)) {}

std::string LocaleFormats::day(Day day, std::string_view skeleton) const {
    std::shared_ptr<const FieldWiseFormat> fieldWise;
    std::string text = withFormatters(_locale, [&](Formatters& formatters) {
        const Formatters::DayFormat& known = formatters.dayFormat(skeleton);
        fieldWise = known.fieldWise;
        return fieldWise || !known.format ? std::string() : formatted(*known.format, noonOf(day));
    });
    if (fieldWise) {
        return fieldWise->text(day);
    }
    return text.empty() ? tagText(day) : text;
}

std::string LocaleFormats::time(int hour, int minute) const {
    return withFormatters(_locale, [&](Formatters& formatters) {
        const auto* const format = formatters.timeFormat();
        return format == nullptr ? fmt::format("{:02}:{:02}", hour, minute)
                                 : formatted(*format, (hour * 60 + minute) * 60'000.0);
    });
}

std::string LocaleFormats::dateAndTime(const LocalTime& time) const {
    const int seconds = (time.hour * 60 + time.minute) * 60 + time.second;
    return withFormatters(_locale, [&](Formatters& formatters) {
        const auto* const format = formatters.dateAndTimeFormat();
        return format == nullptr ? fmt::format("{} {:02}:{:02}:{:02}", tagText(time.day), time.hour,
                                               time.minute, time.second)
                                 : formatted(*format, startOf(time.day) + seconds * 1000.0);
    });
}

HourCycle LocaleFormats::hourCycle() const {
    return withFormatters(_locale, [](Formatters& formatters) { return formatters.hourCycle(); });
}

DayOfWeek LocaleFormats::firstDayOfWeek() const {
    return withFormatters(_locale,
                          [](Formatters& formatters) { return formatters.firstDayOfWeek(); });
}

std::string LocaleFormats::number(long long value) const {
    return withFormatters(_locale, [&](Formatters& formatters) {
        const auto* const format = formatters.numberFormat();
        icu::UnicodeString text;
        return format == nullptr ? std::to_string(value)
                                 : utf8Of(format->format(static_cast<std::int64_t>(value), text));
    });
}

}  // namespace tessaly::base
