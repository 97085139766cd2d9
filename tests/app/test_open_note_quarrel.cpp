// SPDX-License-Identifier: MIT
// A note that is open while others write it and the disk fails, in orders that seeds give.
#include <filesystem>
#include <memory>
#include <set>
#include <sstream>

#include <doctest/doctest.h>

#include "app/note_typist.h"

using namespace tessaly;
using app::OpenNote;
using tests::SteppedPlanner;
using Editor = tests::NoteTypist;
using SaveState = OpenNote::SaveState;

namespace {

constexpr const char* file = tests::plansFile;

/// Somebody types, somebody else writes the file, the disk fails and jobs are slow, in an order
/// that the seed gives. Each line written has a word of its own.
class Quarrel {
public:
    explicit Quarrel(unsigned seed) : _planner(seed) {
        if (_planner.draw(4) != 0) {
            outsideWrites("first\nsecond\n" + newWord() + "\n");
        }
        _editor = std::make_unique<Editor>(_planner);
        _planner.files().before([this](int, std::string_view, const std::string&) { meddle(); });
    }

    void run(int steps) {
        for (int i = 0; i < steps; ++i) {
            step();
        }
    }

    /// Everything is well again.
    void calmDown() {
        _planner.files().heal();
        _planner.settle();
        _editor->note().reread();
        for (int trial = 0; trial < 2; ++trial) {
            _planner.settle();
            _planner.pass(OpenNote::retryInterval);
        }
    }

    void check() {
        const std::string held = bytes();
        CHECK(_editor->note().saveState() == SaveState::saved);
        if (const auto& failure = _editor->note().saveFailure()) {
            FAIL_CHECK(failure->description);
        }
        if (held != "-" || _editor->gone == 0) {
            CHECK((held == "-" ? "" : held) == _editor->text);
        }
        const std::string everything = held + "\n" + _editor->text + "\n" + _planner.history();
        std::istringstream stream{everything};
        std::set<std::string> words;
        for (std::string word; stream >> word;) {
            words.insert(word);
        }
        for (const std::string& word : _typed) {
            CHECK_MESSAGE(words.contains(word), word);
        }
        for (const std::string& word : _written) {
            CHECK_MESSAGE(words.contains(word), word);
        }
    }

private:
    using Lines = std::vector<std::string>;

    std::string newWord() { return "w" + std::to_string(++_words); }
    std::string bytes() const { return _planner.textOf(file); }

    static Lines linesOf(const std::string& text) {
        Lines lines;
        std::istringstream stream{text};
        for (std::string line; std::getline(stream, line);) {
            lines.push_back(line);
        }
        return lines;
    }
    static std::string textOf(const Lines& lines) {
        std::string text;
        for (const std::string& line : lines) {
            text += line + "\n";
        }
        return text;
    }

    /// `text` with a new word in a line of its own, or in one that is there.
    std::string withNews(const std::string& text, std::set<std::string>& news) {
        Lines lines = linesOf(text);
        const std::string word = newWord();
        news.insert(word);
        const std::size_t place = _planner.draw(lines.size() + 1);
        if (place < lines.size() && _planner.draw(3) == 0) {
            lines[place] += " " + word;
        } else {
            const char* const marker = _planner.draw(2) == 0 ? "* " : "";
            lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(place), marker + word);
        }
        return textOf(lines);
    }

    void step() {
        switch (_planner.draw(9)) {
            case 0:
            case 1:
            case 2: type(); break;
            case 3: outsideChanges(); break;
            case 4:
            case 5: _planner.step(); break;
            case 6: _planner.mainQueue().runPosted(); break;
            case 7:
                _planner.mainQueue().advance(std::chrono::milliseconds(_planner.draw(900)));
                break;
            default: sayReread();
        }
    }

    void type() {
        if (_planner.draw(6) == 0 && !_editor->text.empty()) {
            forgetLine();
            return;
        }
        _editor->type(withNews(_editor->text, _typed));
    }

    /// What the user deletes is missed by nobody.
    void forgetLine() {
        Lines lines = linesOf(_editor->text);
        const auto place = lines.begin() + static_cast<std::ptrdiff_t>(_planner.draw(lines.size()));
        std::istringstream stream{*place};
        for (std::string word; stream >> word;) {
            _typed.erase(word);
            _written.erase(word);
        }
        lines.erase(place);
        _editor->type(textOf(lines));
    }

    void sayReread() {
        if (_planner.draw(8) == 0) {
            (void)_editor->note().saveNow();  // may fail, as the disk does
        } else {
            _editor->note().reread();
        }
    }

    /// At any call of ours.
    void meddle() {
        if (_planner.draw(50) == 0) {
            _planner.files().failThis(_planner.draw(2) == 0 ? base::Failure::Kind::noSpace
                                                            : base::Failure::Kind::denied);
        } else if (_planner.draw(60) == 0) {
            outsideChanges();
        }
    }

    void outsideChanges() {
        const std::string now = bytes();
        switch (_planner.draw(7)) {
            case 0:
                if (now != "-") {
                    forgetWritten(now, "");
                    std::filesystem::remove(_planner.folder() / _planner.path(file));
                }
                break;
            case 1: _stale = now == "-" ? "" : now; break;  // read, to be written later
            case 2: outsideWrites(withNews(_stale, _written)); break;
            default: outsideWrites(withNews(now == "-" ? "" : now, _written));
        }
    }

    void outsideWrites(const std::string& text) {
        forgetWritten(bytes(), text);
        _planner.write(file, text);
    }

    /// What the other one takes away of his own is his affair. What the user typed is not.
    void forgetWritten(const std::string& before, const std::string& after) {
        std::istringstream stream{before};
        for (std::string word; stream >> word;) {
            if (after.find(word) == after.npos) {
                _written.erase(word);
            }
        }
    }

    SteppedPlanner _planner;
    std::unique_ptr<Editor> _editor;
    std::set<std::string> _typed;
    std::set<std::string> _written;
    std::string _stale;
    int _words = 100;
};

}  // namespace

TEST_CASE("whatever happens, no line is lost, and editor and file agree in the end") {
    for (unsigned seed = 1; seed <= 150; ++seed) {
        CAPTURE(seed);
        Quarrel quarrel{seed};
        quarrel.run(60);
        quarrel.calmDown();
        quarrel.check();
    }
}
