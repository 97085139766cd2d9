// SPDX-License-Identifier: MIT
#include "desktop/line_formats.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

using app::SpanKind;
using grammar::TodoType;
using LineKind = app::LineLook::Kind;

constexpr qreal roomBesideGround = 4;

int codeSize(const QFont& font) {
    return std::max(1, static_cast<int>(std::lround(13 * scaleOf(font))));
}

/// Formats of one line, in the order in which they lie above each other.
class LineFormats {
public:
    LineFormats(const app::LineLook& line, const QString& text, Markup markup, const QFont& font)
        : _line(line),
          _text(text),
          _markup(markup),
          _font(font),
          _colors(Theme::instance().colors()) {}

    QList<QTextLayout::FormatRange> make() {
        addLine();
        findMarkup();
        for (const app::LookSpan& span : _line.spans) {
            addSpan(span);
        }
        addMarker();
        // Nothing that lies above it may make it be seen again.
        for (const app::LookSpan& span : _line.spans) {
            if (span.kind == SpanKind::markup || span.kind == SpanKind::address) {
                add(span.range, markupFormat());
            } else if (span.kind == SpanKind::image) {
                addImageMarkup(span.range);
            }
        }
        return std::move(_formats);
    }

private:
    void add(base::TextRange range, const QTextCharFormat& format) {
        const auto size = static_cast<std::size_t>(_text.size());
        const std::size_t start = std::min(range.location, size);
        const std::size_t end = std::min(range.end(), size);
        if (start < end && !format.properties().isEmpty()) {
            _formats.push_back({static_cast<int>(start), static_cast<int>(end - start), format});
        }
    }

    base::TextRange whole() const { return {0, static_cast<std::size_t>(_text.size())}; }

    static QTextCharFormat colored(const QColor& color) {
        QTextCharFormat format;
        format.setForeground(color);
        return format;
    }

    QTextCharFormat codeFormat() const {
        const QFont code = Theme::instance().codeFont(codeSize(_font));
        QTextCharFormat format;
        format.setFontFamilies(code.families());
        format.setProperty(QTextFormat::FontPixelSize, code.pixelSize());
        return format;
    }

    QTextCharFormat markupFormat() const {
        return _markup == Markup::shown ? colored(_colors.text2) : hiddenFormat();
    }

    /// One without a title would not be seen at all.
    void addImageMarkup(base::TextRange span) {
        const base::TextRange title = imageTitle(_text, span);
        if (title.length > 0) {
            add({span.location, title.location - span.location}, markupFormat());
            add({title.end(), span.end() - title.end()}, markupFormat());
        }
    }

    void addLine() {
        QTextCharFormat format;
        switch (_line.kind) {
            case LineKind::heading: {
                const HeadingStyle& style = headingStyle(_line.headingLevel);
                format.setProperty(QTextFormat::FontPixelSize,
                                   static_cast<int>(std::lround(style.size * scaleOf(_font))));
                format.setFontWeight(style.weight);
                format.setFontLetterSpacingType(QFont::AbsoluteSpacing);
                format.setFontLetterSpacing(style.spacing);
                break;
            }
            case LineKind::quote:
                format.setFontItalic(true);
                format.setForeground(_colors.text2);
                break;
            case LineKind::code:
            case LineKind::table: format = codeFormat(); break;
            case LineKind::fence:
                format = codeFormat();
                format.setForeground(_colors.text2);
                break;
            default: break;
        }
        if (isOver(_line)) {
            format.setForeground(_colors.text2);
        }
        add(whole(), format);
        if (isOver(_line) && _line.state == TodoType::cancelled) {
            QTextCharFormat struck;
            struck.setFontStrikeOut(true);
            const std::size_t start = _line.marker.end();
            add({start, static_cast<std::size_t>(_text.size()) - start}, struck);
        }
    }

    void addMarker() {
        if (_line.kind == LineKind::rule) {
            add(whole(), markupFormat());
        } else if (_line.kind == LineKind::fence) {
            add({0, fenceSigns()}, markupFormat());
        } else if (_line.kind == LineKind::numbered) {
            add(_line.marker, colored(_colors.text2));
        } else {
            add(_line.marker, markupFormat());
        }
    }

    /// With the white space before them. The word for the language behind them stays.
    std::size_t fenceSigns() const {
        qsizetype end = 0;
        while (end < _text.size() && _text[end].isSpace()) {
            ++end;
        }
        const QChar sign = end < _text.size() ? _text[end] : QChar();
        while (end < _text.size() && _text[end] == sign) {
            ++end;
        }
        return static_cast<std::size_t>(end);
    }

    void addSpan(const app::LookSpan& span) {
        add(span.range, spanFormat(span.kind));
        if (hasGround(_line, span.kind) && span.kind != SpanKind::marked) {
            std::size_t before = span.range.location;
            std::size_t behind = span.range.end();
            while (before > 0 && isMarkup(before - 1)) {
                --before;
            }
            while (isMarkup(behind)) {
                ++behind;
            }
            addRoom(before - 1);
            addRoom(behind);
        }
    }

    bool isMarkup(std::size_t place) const {
        return place < _markupPlaces.size() && _markupPlaces[place];
    }

    void findMarkup() {
        _markupPlaces.resize(static_cast<std::size_t>(_text.size()));
        for (const app::LookSpan& span : _line.spans) {
            if (span.kind == SpanKind::markup) {
                const std::size_t end = std::min(span.range.end(), _markupPlaces.size());
                for (std::size_t place = span.range.location; place < end; ++place) {
                    _markupPlaces[place] = true;
                }
            }
        }
    }

    /// The ground is wider than the words, and must not touch those beside it.
    void addRoom(std::size_t place) {
        if (place < static_cast<std::size_t>(_text.size()) &&
            _text[static_cast<qsizetype>(place)] == u' ') {
            const bool isBetweenTwo = std::exchange(_lastRoom, place) == place;
            QTextCharFormat format;
            format.setFontLetterSpacingType(QFont::AbsoluteSpacing);
            format.setFontLetterSpacing(isBetweenTwo ? 2 * roomBesideGround : roomBesideGround);
            add({place, 1}, format);
        }
    }

    QTextCharFormat spanFormat(SpanKind kind) const {
        QTextCharFormat format;
        switch (kind) {
            case SpanKind::bold: format.setFontWeight(QFont::DemiBold); return format;
            case SpanKind::italic: format.setFontItalic(true); return format;
            case SpanKind::struck:
                format = colored(_colors.text2);
                format.setFontStrikeOut(true);
                return format;
            case SpanKind::code: return codeFormat();
            case SpanKind::doneTag: return colored(_colors.text2);
            default: break;
        }
        if (isOver(_line)) {
            return format;
        }
        switch (kind) {
            case SpanKind::link:
            case SpanKind::noteLink:
            case SpanKind::image: return colored(_colors.link);
            case SpanKind::hashtag:
            case SpanKind::mention: format = colored(_colors.tag); break;
            case SpanKind::scheduleTag:
            case SpanKind::backLink:
            case SpanKind::plainDate: format = colored(_colors.date); break;
            default: return format;
        }
        format.setFontWeight(QFont::Medium);
        return format;
    }

    const app::LineLook& _line;
    const QString& _text;
    const Markup _markup;
    const QFont& _font;
    const Colors& _colors;
    QList<QTextLayout::FormatRange> _formats;
    std::vector<bool> _markupPlaces;
    std::size_t _lastRoom = std::string::npos;  ///< the place of the one that was added last
};

}  // namespace

QTextCharFormat hiddenFormat() {
    QTextCharFormat format;
    format.setForeground(Qt::transparent);
    // A size that rounds to 0 would have all fonts of the system be tried.
    format.setProperty(QTextFormat::FontPixelSize, 1);
    format.setFontLetterSpacingType(QFont::PercentageSpacing);
    format.setFontLetterSpacing(0.05);
    return format;
}

base::TextRange imageTitle(const QString& text, base::TextRange span) {
    const std::size_t start = span.location + 2;
    // No title holds a bracket.
    const auto end = text.indexOf(u']', static_cast<qsizetype>(start));
    return end < 0 ? base::TextRange{start, 0}
                   : base::TextRange{start, static_cast<std::size_t>(end) - start};
}

QList<QTextLayout::FormatRange> formatsOf(const app::LineLook& line, const QString& text,
                                          Markup markup, const QFont& font) {
    return line.kind == LineKind::plain ? QList<QTextLayout::FormatRange>()
                                        : LineFormats(line, text, markup, font).make();
}

}  // namespace tessaly::desktop
