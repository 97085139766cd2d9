// SPDX-License-Identifier: MIT
#include <array>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

#include <doctest/doctest.h>

#include "cli/rpc_lines.h"

using namespace tessaly;

namespace {

/// Two ends that are closed at the latest when the test ends.
class Pipe {
public:
    Pipe() { REQUIRE(::pipe(_ends.data()) == 0); }
    ~Pipe() {
        closeWriting();
        ::close(_ends[0]);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int reading() const { return _ends[0]; }
    void write(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t count = ::write(_ends[1], bytes.data(), bytes.size());
            REQUIRE(count > 0);
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
    }
    void closeWriting() {
        if (_ends[1] >= 0) {
            ::close(_ends[1]);
        }
        _ends[1] = -1;
    }

private:
    std::array<int, 2> _ends{-1, -1};
};

using Texts = std::vector<std::string>;

/// The lines of what is written piece by piece; "!" for one that is too long.
Texts linesOf(const Texts& pieces, std::size_t maxBytes) {
    Pipe in;
    Pipe answers;
    cli::Output out{answers.reading()};  // to which nothing is written
    const std::atomic<bool> cancelled = false;
    cli::RpcLines lines{in.reading(), out, cancelled, maxBytes};
    std::thread writer{[&] {
        for (const std::string& piece : pieces) {
            in.write(piece);
        }
        in.closeWriting();
    }};
    Texts found;
    while (const auto line = lines.next()) {
        found.push_back(line->isTooLong ? "!" : std::string{line->text});
    }
    writer.join();
    CHECK(lines.error().empty());
    return found;
}

}  // namespace

TEST_CASE("lines are told apart however they arrive, and long ones are passed over") {
    const auto check = [](const Texts& pieces, const Texts& expected) {
        CAPTURE(pieces.front().substr(0, 40));
        CHECK(linesOf(pieces, 5) == expected);
    };
    const std::string large(200'000, 'x');
    check({""}, {});
    check({"\n"}, {""});
    check({"a\nb"}, {"a", "b"});
    check({"a\n\n", "b\n"}, {"a", "", "b"});
    check({"a", "b", "\n", "c"}, {"ab", "c"});
    check({"12345\n123456\n1\n"}, {"12345", "!", "1"});
    check({"123456"}, {"!"});
    check({large, large, "\nb\n"}, {"!", "b"});
    check({"a\n" + large}, {"a", "!"});
    check({large + "\n", large}, {"!", "!"});
}

TEST_CASE("lines longer than one reading are whole") {
    const std::string large(300'000, 'x');
    CHECK(linesOf({"a\n" + large + "\nb\n" + large}, large.size()) ==
          Texts{"a", large, "b", large});
}

TEST_CASE("what cannot be read ends the lines, with a reason") {
    cli::Output out{-1};
    const std::atomic<bool> cancelled = false;
    cli::RpcLines lines{-1, out, cancelled};
    CHECK(!lines.next());
    CHECK(!lines.error().empty());
}
