// SPDX-License-Identifier: MIT
#include "store/line_diff.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <utility>

namespace tessaly::store {

namespace {

using Id = std::uint32_t;

/// The lines of one text that the other has too: their ids, and where they stand in the text.
struct Side {
    std::vector<Id> ids;
    std::vector<std::size_t> places;
    std::vector<bool> isMatched;  ///< of all lines of the text
};

/// Lines [fromStart, fromEnd) of one side against [toStart, toEnd) of the other.
struct Piece {
    std::size_t fromStart;
    std::size_t fromEnd;
    std::size_t toStart;
    std::size_t toEnd;

    std::size_t fromSize() const { return fromEnd - fromStart; }
    std::size_t toSize() const { return toEnd - toStart; }
    bool isOneSided() const { return fromSize() == 0 || toSize() == 0; }
};

struct Match {
    std::size_t from;
    std::size_t to;
};

/// The most of `matches` that ascend in `to`; they ascend in `from`.
std::vector<Match> longestAscending(const std::vector<Match>& matches) {
    constexpr std::size_t none = static_cast<std::size_t>(-1);
    std::vector<std::size_t> before(matches.size(), none);
    std::vector<std::size_t> tails;  // by length: the chain that ends lowest
    for (std::size_t i = 0; i < matches.size(); ++i) {
        const auto at = std::lower_bound(
            tails.begin(), tails.end(), matches[i].to,
            [&](std::size_t tail, std::size_t to) { return matches[tail].to < to; });
        before[i] = at == tails.begin() ? none : *(at - 1);
        if (at == tails.end()) {
            tails.push_back(i);
        } else {
            *at = i;
        }
    }
    std::vector<Match> chain(tails.size());
    std::size_t last = tails.empty() ? none : tails.back();
    for (std::size_t i = chain.size(); i-- > 0; last = before[last]) {
        chain[i] = matches[last];
    }
    return chain;
}

/// The greedy search for the fewest edits: row d of the trace holds, for each diagonal k = x - y
/// from -d to d, the furthest x that d edits reach.
class FewestEdits {
public:
    FewestEdits(std::span<const Id> from, std::span<const Id> to) : _from(from), _to(to) {}

    /// The matches from the last to the first; false when it takes more than `limit` edits.
    bool search(std::size_t limit, std::vector<Match>& matches) {
        const int edits = static_cast<int>(std::min(limit, _from.size() + _to.size()));
        for (int d = 0; d <= edits; ++d) {
            _trace.resize(static_cast<std::size_t>(d + 1) * static_cast<std::size_t>(d + 1));
            if (const int k = advance(d); k <= d) {
                walkBack(d, matches);
                return true;
            }
        }
        return false;
    }

private:
    int& furthest(int d, int k) { return _trace[static_cast<std::size_t>(d * d + d + k)]; }
    int fromSize() const { return static_cast<int>(_from.size()); }
    int toSize() const { return static_cast<int>(_to.size()); }

    bool isInsertion(int d, int k) {
        return k == -d || (k != d && furthest(d - 1, k - 1) < furthest(d - 1, k + 1));
    }
    /// Where edit d on diagonal k ends, before the equal lines that follow it.
    int start(int d, int k) {
        if (d == 0) {
            return 0;
        }
        return isInsertion(d, k) ? furthest(d - 1, k + 1) : furthest(d - 1, k - 1) + 1;
    }

    /// Fills row d; the diagonal on which the end was reached, or one above d.
    int advance(int d) {
        for (int k = -d; k <= d; k += 2) {
            int x = start(d, k);
            while (x < fromSize() && x - k < toSize() && isEqual(x, x - k)) {
                ++x;
            }
            furthest(d, k) = x;
            if (x >= fromSize() && x - k >= toSize()) {
                return k;
            }
        }
        return d + 1;
    }

    void walkBack(int d, std::vector<Match>& matches) {
        int x = fromSize();
        int k = fromSize() - toSize();
        for (; d >= 0; --d) {
            const int first = start(d, k);
            while (x > first) {
                --x;
                matches.push_back({static_cast<std::size_t>(x), static_cast<std::size_t>(x - k)});
            }
            if (d > 0) {
                k += isInsertion(d, k) ? 1 : -1;
                x = furthest(d - 1, k);
            }
        }
    }

    bool isEqual(int x, int y) const {
        return _from[static_cast<std::size_t>(x)] == _to[static_cast<std::size_t>(y)];
    }

    std::span<const Id> _from;
    std::span<const Id> _to;
    std::vector<int> _trace;
};

class Matcher {
public:
    Matcher(Side& from, Side& to, std::size_t idCount)
        : _from(from), _to(to), _occurrences(idCount) {}

    void match() { match({0, _from.ids.size(), 0, _to.ids.size()}, 0); }

private:
    /// Texts can be made in which each look for anchors finds but one; this bounds their cost.
    static constexpr int maxDepth = 50;
    static constexpr std::size_t maxEdits = 1000;

    struct Occurrences {
        std::size_t inFrom = 0;
        std::size_t inTo = 0;
        std::size_t place = 0;  ///< the last in `to`
    };

    void match(Piece piece, int depth) {
        trim(piece);
        if (piece.isOneSided()) {
            return;
        }
        const std::vector<Match> anchors =
            depth < maxDepth ? anchorsIn(piece) : std::vector<Match>();
        if (anchors.empty()) {
            matchWithoutAnchors(piece);
            return;
        }
        for (const Match& anchor : anchors) {
            match({piece.fromStart, anchor.from, piece.toStart, anchor.to}, depth + 1);
            keep(anchor);
            piece.fromStart = anchor.from + 1;
            piece.toStart = anchor.to + 1;
        }
        match(piece, depth + 1);
    }

    void trim(Piece& piece) {
        while (!piece.isOneSided() && _from.ids[piece.fromStart] == _to.ids[piece.toStart]) {
            keep({piece.fromStart++, piece.toStart++});
        }
        while (!piece.isOneSided() && _from.ids[piece.fromEnd - 1] == _to.ids[piece.toEnd - 1]) {
            keep({--piece.fromEnd, --piece.toEnd});
        }
    }

    /// The lines that occur just once on both sides, in the longest common order.
    std::vector<Match> anchorsIn(const Piece& piece) {
        for (std::size_t i = piece.toStart; i < piece.toEnd; ++i) {
            Occurrences& found = _occurrences[_to.ids[i]];
            ++found.inTo;
            found.place = i;
        }
        for (std::size_t i = piece.fromStart; i < piece.fromEnd; ++i) {
            ++_occurrences[_from.ids[i]].inFrom;
        }
        std::vector<Match> unique;
        for (std::size_t i = piece.fromStart; i < piece.fromEnd; ++i) {
            const Occurrences& found = _occurrences[_from.ids[i]];
            if (found.inFrom == 1 && found.inTo == 1) {
                unique.push_back({i, found.place});
            }
        }
        forget(_from, piece.fromStart, piece.fromEnd);
        forget(_to, piece.toStart, piece.toEnd);
        return longestAscending(unique);
    }

    void forget(const Side& side, std::size_t start, std::size_t end) {
        for (; start < end; ++start) {
            _occurrences[side.ids[start]] = {};
        }
    }

    void matchWithoutAnchors(const Piece& piece) {
        std::vector<Match> found;
        const std::span<const Id> from = _from.ids;
        const std::span<const Id> to = _to.ids;
        FewestEdits edits(from.subspan(piece.fromStart, piece.fromSize()),
                          to.subspan(piece.toStart, piece.toSize()));
        if (edits.search(maxEdits, found)) {
            for (const Match& one : found) {
                keep({piece.fromStart + one.from, piece.toStart + one.to});
            }
        }
    }

    void keep(const Match& match) {
        _from.isMatched[_from.places[match.from]] = true;
        _to.isMatched[_to.places[match.to]] = true;
    }

    Side& _from;
    Side& _to;
    std::vector<Occurrences> _occurrences;  // by id; all zero between two looks
};

/// Lines that the other side has nowhere need no comparison.
Side sharedLines(const std::vector<Id>& ids, const std::vector<bool>& isInOther) {
    Side side;
    side.isMatched.resize(ids.size());
    for (std::size_t i = 0; i < ids.size(); ++i) {
        if (isInOther[ids[i]]) {
            side.ids.push_back(ids[i]);
            side.places.push_back(i);
        }
    }
    return side;
}

std::vector<LineHunk> hunksBetween(const std::vector<bool>& from, const std::vector<bool>& to) {
    std::vector<LineHunk> hunks;
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < from.size() || j < to.size()) {
        LineHunk hunk{i, 0, j, 0};
        for (; i < from.size() && !from[i]; ++i) {
            ++hunk.oldCount;
        }
        for (; j < to.size() && !to[j]; ++j) {
            ++hunk.newCount;
        }
        if (hunk.oldCount + hunk.newCount != 0) {
            hunks.push_back(hunk);
        }
        if (i < from.size()) {
            ++i;
            ++j;
        }
    }
    return hunks;
}

/// Gives equal lines equal numbers, from 0.
class Numbering {
public:
    std::vector<Id> idsOf(std::span<const std::string_view> lines) {
        std::vector<Id> ids;
        ids.reserve(lines.size());
        for (const std::string_view line : lines) {
            ids.push_back(_ids.try_emplace(line, static_cast<Id>(_ids.size())).first->second);
        }
        return ids;
    }
    std::vector<bool> occurring(const std::vector<Id>& ids) const {
        std::vector<bool> found(_ids.size());
        for (const Id id : ids) {
            found[id] = true;
        }
        return found;
    }
    std::size_t size() const { return _ids.size(); }

private:
    std::unordered_map<std::string_view, Id> _ids;
};

}  // namespace

std::vector<std::string_view> linesOfText(std::string_view text) {
    std::vector<std::string_view> lines;
    std::size_t start = 0;
    for (std::size_t end; (end = text.find('\n', start)) != std::string_view::npos;
         start = end + 1) {
        lines.push_back(text.substr(start, end - start));
    }
    lines.push_back(text.substr(start));
    return lines;
}

std::vector<LineHunk> diffLines(std::span<const std::string_view> from,
                                std::span<const std::string_view> to) {
    Numbering numbers;
    const std::vector<Id> fromIds = numbers.idsOf(from);
    const std::vector<Id> toIds = numbers.idsOf(to);
    Side fromSide = sharedLines(fromIds, numbers.occurring(toIds));
    Side toSide = sharedLines(toIds, numbers.occurring(fromIds));
    Matcher(fromSide, toSide, numbers.size()).match();
    return hunksBetween(fromSide.isMatched, toSide.isMatched);
}

}  // namespace tessaly::store
