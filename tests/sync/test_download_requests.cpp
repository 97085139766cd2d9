// SPDX-License-Identifier: MIT
#include <doctest/doctest.h>

#include "support/log_capture.h"
#include "sync/download_requests.h"
#include "sync_fixture.h"

namespace tessaly::sync {
namespace {

using base::Failure;
using ports::DownloadState;
using Lines = std::vector<std::string>;

constexpr const char file[] = "/data/Notes/a.txt.nextcloud";

struct Row {
    const char* what;
    tests::ScriptedDownloads::State state;
    tests::ScriptedDownloads::Answer answer;
    std::size_t requests;  ///< in two looks
    bool isUnanswered;
    Lines logged;
};

void check(const Row& row) {
    CAPTURE(row.what);
    const tests::LogCapture log;
    tests::ScriptedDownloads client;
    client.nextState = row.state;
    client.nextAnswer = row.answer;
    DownloadRequests downloads(client);
    downloads.ask({file});
    downloads.ask(downloads.unanswered());
    downloads.ask(downloads.waiting());
    CHECK(client.requested.size() == row.requests);
    CHECK(downloads.unanswered().empty() == !row.isUnanswered);
    CHECK(log.lines() == row.logged);
}

}  // namespace

TEST_CASE("a file is asked for once while it waits, and what fails is logged once") {
    using Kind = DownloadState::Kind;
    const Failure noClient{Failure::Kind::unavailable, "no socket"};
    const Failure refused{Failure::Kind::denied, "not below a folder of mine"};
    check({"taken", DownloadState{Kind::waiting, {}}, base::Done{}, 1, false, {}});
    check({"under way", DownloadState{Kind::downloading, {}}, base::Done{}, 0, false, {}});
    check({"no client",
           noClient,
           noClient,
           2,
           true,
           {"could not check if the file is already downloading no socket",
            "could not request download no socket"}});
    check({"state unknown",
           noClient,
           base::Done{},
           1,
           false,
           {"could not check if the file is already downloading no socket"}});
    check({"refused",
           DownloadState{Kind::waiting, {}},
           refused,
           2,
           true,
           {"could not download: /data/Notes/a.txt.nextcloud, error: not below a folder of mine"}});
    check({"failed",
           DownloadState{Kind::failed, "disk full"},
           refused,
           2,
           true,
           {"error downloading file: disk full",
            "could not download: /data/Notes/a.txt.nextcloud, error: not below a folder of mine"}});
}

TEST_CASE("a download that fails after it was asked for is asked for again") {
    const tests::LogCapture log;
    tests::ScriptedDownloads client;
    DownloadRequests downloads(client);
    downloads.ask({file});
    client.nextState = DownloadState{DownloadState::Kind::failed, "disk full"};
    downloads.ask(downloads.waiting());
    CHECK(downloads.unanswered() == Lines{file});
    client.nextState = DownloadState{};
    downloads.ask(downloads.unanswered());
    CHECK(client.requested == Lines{file, file});
    CHECK(log.lines() == Lines{"error downloading file: disk full"});
    downloads.forget(file);
    CHECK(downloads.unanswered().empty());
    CHECK(downloads.waiting().empty());
}

TEST_CASE("files that are refused do not keep others from their turn") {
    const tests::LogCapture log;
    tests::ScriptedDownloads client;
    DownloadRequests downloads(client);
    Lines files;
    for (std::size_t i = 0; i < DownloadRequests::atATime + 3; ++i) {
        files.push_back("/data/Notes/" + std::to_string(100 + i));
    }
    client.nextAnswer = Failure{Failure::Kind::denied, "no"};
    CHECK(downloads.ask(files));
    client.nextAnswer = base::Done{};
    downloads.ask(downloads.unanswered());
    CHECK(client.requested.size() == 2 * DownloadRequests::atATime);
    CHECK(client.requested[DownloadRequests::atATime] == files[DownloadRequests::atATime]);
    CHECK_FALSE(downloads.ask(downloads.unanswered()));
    CHECK(downloads.waiting() == files);
}

}  // namespace tessaly::sync
