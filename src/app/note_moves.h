// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace tessaly::app {

/// The names that general notes and their folders lose and get while somebody has them open: who
/// saves a note finds its file under the name that it has by then, and never makes one under the
/// name that it had. Names are relative to the folder of general notes.
class NoteMoves {
public:
    NoteMoves() = default;
    NoteMoves(const NoteMoves&) = delete;
    NoteMoves& operator=(const NoteMoves&) = delete;

    /// A point in time: the moves made so far. Any thread.
    std::size_t count() const;
    /// What is called now as `filename` was at that point. Any thread.
    std::string nameNow(const std::string& filename, std::size_t since) const;

    /// While it lives, the note keeps its name; the constructor waits for a move of it that is
    /// under way. Any thread, and never while the thread itself moves something.
    class Stay {
    public:
        Stay(NoteMoves& moves, const std::string& filename, std::size_t since);
        ~Stay();
        Stay(const Stay&) = delete;
        Stay& operator=(const Stay&) = delete;
        const std::string& name() const { return _name; }

    private:
        NoteMoves& _moves;
        std::string _name;
    };

    /// While it lives, a note or a folder with all in it is being moved; the constructor waits for
    /// those that are to stay. Any thread.
    class Move {
    public:
        Move(NoteMoves& moves, std::string from);
        ~Move();
        Move(const Move&) = delete;
        Move& operator=(const Move&) = delete;
        void done(const std::string& to);

    private:
        NoteMoves& _moves;
        const std::string _from;
    };

    // What is on its way to the trash, from the command until the user is told. Main thread.
    void beginRemoval(const std::string& name);
    void endRemoval(const std::string& name);
    /// Whether the note goes, be it within a folder: what is typed into it would be lost.
    bool isGoing(const std::string& filename) const;
    /// Told of each begin and end; may be empty.
    void setOnRemoval(std::function<void()> told) { _onRemoval = std::move(told); }

private:
    std::string nameNowLocked(const std::string& filename, std::size_t since) const;

    mutable std::mutex _mutex;  ///< guards what follows
    std::condition_variable _changed;
    std::vector<std::pair<std::string, std::string>> _made;  ///< from, to; oldest first
    std::vector<std::string> _moving;
    std::vector<std::string> _staying;

    std::vector<std::string> _going;  ///< main thread
    std::function<void()> _onRemoval;
};

}  // namespace tessaly::app
