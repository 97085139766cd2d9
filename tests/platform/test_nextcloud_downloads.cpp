// SPDX-License-Identifier: MIT
#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include <doctest/doctest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "platform/file_descriptor.h"
#include "platform/nextcloud_downloads.h"
#include "support/failure_kind.h"
#include "support/temp_folder.h"

namespace tessaly::platform {
namespace {

using base::Failure;
using ports::DownloadState;
using tests::failureKind;
using tests::TempFolder;
using namespace std::chrono_literals;

/// A sync client that greets each caller, and answers each line that it gets; without an answer it
/// hangs up.
class Client {
public:
    using Answer = std::function<std::string(const std::string& line)>;

    Client(const std::string& path, std::string greeting, Answer answer)
        : _listening(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)),
          _greeting(std::move(greeting)),
          _answer(std::move(answer)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        const auto* general = reinterpret_cast<const sockaddr*>(&address);
        REQUIRE(::bind(_listening.get(), general, sizeof address) == 0);
        REQUIRE(::listen(_listening.get(), 5) == 0);
        _thread = std::thread([this] { serve(); });
    }
    ~Client() { end(); }

    static constexpr std::string_view hangUp = "hang up";

    /// What it was asked. It then is gone.
    const std::vector<std::string>& end() {
        if (_thread.joinable()) {
            ::shutdown(_listening.get(), SHUT_RDWR);
            _thread.join();
            _listening = FileDescriptor(-1);
        }
        return _lines;
    }

private:
    void serve() {
        while (const FileDescriptor caller{::accept(_listening.get(), nullptr, nullptr)}) {
            say(caller.get(), _greeting);
            talk(caller.get());
        }
    }

    /// Until the caller hangs up.
    void talk(int caller) {
        std::string received;
        char piece[512];
        for (ssize_t got = 0; (got = ::read(caller, piece, sizeof piece)) > 0;) {
            received.append(piece, static_cast<std::size_t>(got));
            for (auto end = received.find('\n'); end != received.npos; end = received.find('\n')) {
                _lines.push_back(received.substr(0, end));
                received.erase(0, end + 1);
                const std::string answer = _answer(_lines.back());
                if (answer == hangUp) {
                    return;
                }
                say(caller, answer);
            }
        }
    }

    static void say(int caller, std::string_view words) {
        while (!words.empty()) {
            const ssize_t said = ::send(caller, words.data(), words.size(), MSG_NOSIGNAL);
            if (said < 0) {
                return;
            }
            words.remove_prefix(static_cast<std::size_t>(said));
        }
    }

    FileDescriptor _listening;
    std::string _greeting;
    Answer _answer;
    std::vector<std::string> _lines;  ///< the thread's, while it runs
    std::thread _thread;
};

constexpr std::string_view verb = "RETRIEVE_FILE_STATUS:";

/// Answers to questions for a status, with a "%" for the path.
Client::Answer answering(const std::string& words) {
    return [words](const std::string& line) {
        std::string answer = line.starts_with(verb) ? words : std::string();
        if (const auto at = answer.find('%'); at != answer.npos) {
            answer.replace(at, 1, line.substr(verb.size()));
        }
        return answer;
    };
}

TEST_CASE("what the sync client says of a file becomes its state") {
    const TempFolder folder;
    const std::string shell = folder.write("Note: ä%.md.nextcloud", " ");
    const std::string real = folder.write("Note.md", "text");
    using Kind = DownloadState::Kind;
    struct Row {
        std::string file;
        std::string answer;
        Kind kind;
        std::string error;
    };
    for (const Row& row : std::vector<Row>{
             {shell, "STATUS:OK:%\n", Kind::waiting, ""},
             {real, "STATUS:OK:%\n", Kind::here, ""},
             {folder / "gone.md.nextcloud", "STATUS:OK+SWM:%\n", Kind::here, ""},
             {shell, "STATUS:SYNC:%\n", Kind::downloading, ""},
             {shell, "STATUS:ERROR:%\n", Kind::failed, "ERROR"},
             {shell, "STATUS:ODD:%\n", Kind::waiting, ""},
             {shell, "STATUS:ERROR:/other\n\nSTATUS\nSTATUS:SYNC:%\n", Kind::downloading, ""},
         }) {
        CAPTURE(row.answer);
        Client client(folder / "socket", "REGISTER_PATH:/home/u/Cloud\n", answering(row.answer));
        NextcloudDownloads downloads({folder / "none", folder / "socket"});
        const auto state = downloads.state(row.file);
        REQUIRE(state);
        CHECK(state->kind == row.kind);
        CHECK(state->error == row.error);
        CHECK(client.end() == std::vector<std::string>{std::string(verb) + row.file});
        ::unlink((folder / "socket").c_str());
    }
}

TEST_CASE("a request is done when the client has taken it, and the next client is asked else") {
    const TempFolder folder;
    Client stranger(folder / "first", "", answering("STATUS:NOP:%\n"));
    Client client(folder / "second", "REGISTER_PATH:/\n", answering("STATUS:SYNC:%\n"));
    NextcloudDownloads both({folder / "first", folder / "second"});
    CHECK(both.request("/a/b.md"));
    CHECK(client.end() == std::vector<std::string>{"MAKE_AVAILABLE_LOCALLY:/a/b.md",
                                                   "RETRIEVE_FILE_STATUS:/a/b.md"});
    // Now only the stranger is there.
    CHECK(failureKind(both.request("/a/b.md")) == Failure::Kind::other);
    CHECK(failureKind(both.state("/a/b.md")) == Failure::Kind::other);
    NextcloudDownloads gone({folder / "second"});
    CHECK(failureKind(gone.request("/a/b.md")) == Failure::Kind::unavailable);

    const auto asked = stranger.end().size();
    for (const char* name : {"/a\nSHARE:/b", "/a\x1e/b", "relative", "", "/a\r"}) {
        CAPTURE(name);
        CHECK(failureKind(both.request(name)) == Failure::Kind::malformed);
        CHECK(failureKind(both.state(name)) == Failure::Kind::malformed);
    }
    CHECK(asked == 5);
}

TEST_CASE("a client that answers nothing, without end or nonsense holds nobody up") {
    const TempFolder folder;
    const std::string flood(1 << 20, 'x');
    std::string lines;
    for (int i = 0; i < 50000; ++i) {
        lines += "STATUS:OK:/\n";
    }
    struct Row {
        const char* what;
        std::string greeting;
        std::string answer;
    };
    for (const Row& row : std::vector<Row>{
             {"silence", "", ""},
             {"half a line", "", "STATUS:OK:%"},
             {"one long line", flood, "STATUS:OK:%\n"},
             {"lines without end", lines, "STATUS:OK:%\n"},
             {"no path", "", "STATUS:OK\n"},
             {"bytes", "", std::string("\0\xff\n", 3)},
             {"hangs up", "", std::string(Client::hangUp)},
         }) {
        CAPTURE(row.what);
        Client client(folder / "socket", row.greeting, answering(row.answer));
        NextcloudDownloads downloads({folder / "socket"}, 60ms);
        CHECK(failureKind(downloads.state("/a.md")) == Failure::Kind::unavailable);
        client.end();
        ::unlink((folder / "socket").c_str());
    }
    const std::string tooLong = "/" + std::string(200, 'p');
    CHECK(failureKind(NextcloudDownloads({tooLong}).state("/a.md")) == Failure::Kind::unavailable);
    CHECK(failureKind(NextcloudDownloads(NextcloudDownloads::socketsIn("")).state("/a.md")) ==
          Failure::Kind::unavailable);
}

}  // namespace
}  // namespace tessaly::platform
