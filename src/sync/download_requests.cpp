// SPDX-License-Identifier: MIT
#include "sync/download_requests.h"

#include <algorithm>

#include "base/log.h"

namespace tessaly::sync {

using base::Failure;
using ports::DownloadState;

bool DownloadRequests::ask(const std::vector<std::string>& placeholders) {
    const std::set<std::string> distinct(placeholders.begin(), placeholders.end());
    std::vector<std::string> turns(distinct.begin(), distinct.end());
    for (const std::string& file : turns) {
        _requests.try_emplace(file);
    }
    // Those that are refused again and again must not keep the others from their turn.
    std::stable_partition(turns.begin(), turns.end(), [this](const std::string& file) {
        return _requests.at(file).step == Step::untried;
    });
    for (std::size_t i = 0; i < turns.size(); ++i) {
        if (i == atATime) {
            return true;
        }
        if (check(turns[i], _requests.at(turns[i])) == Client::isMissing) {
            return false;
        }
    }
    return false;
}

DownloadRequests::Client DownloadRequests::check(const std::string& file, Request& request) {
    const auto state = _downloads.state(file);
    if (!state) {
        logOnce(request, "could not check if the file is already downloading ",
                state.failure().description);
        return request.step == Step::asked ? Client::isMissing : this->request(file, request);
    }
    switch (state->kind) {
        case DownloadState::Kind::here:
        case DownloadState::Kind::downloading: request.step = Step::asked; break;
        case DownloadState::Kind::waiting:
            return request.step == Step::asked ? Client::answers : this->request(file, request);
        case DownloadState::Kind::failed:
            logOnce(request, "error downloading file: ", state->error);
            if (request.step != Step::asked) {
                return this->request(file, request);
            }
            request.step = Step::refused;
            break;
    }
    return Client::answers;
}

DownloadRequests::Client DownloadRequests::request(const std::string& file, Request& request) {
    const auto taken = _downloads.request(file);
    request.step = taken ? Step::asked : Step::refused;
    if (taken) {
        return Client::answers;
    }
    const Failure& failure = taken.failure();
    if (failure.kind == Failure::Kind::unavailable) {
        logOnce(request, "could not request download ", failure.description);
        return Client::isMissing;
    }
    logOnce(request, "could not download: " + file + ", error: ", failure.description);
    return Client::answers;
}

void DownloadRequests::forget(const std::string& file) {
    _requests.erase(file);
}

std::vector<std::string> DownloadRequests::unanswered() const {
    return inStep(false);
}

std::vector<std::string> DownloadRequests::waiting() const {
    return inStep(true);
}

std::vector<std::string> DownloadRequests::inStep(bool isAsked) const {
    std::vector<std::string> files;
    for (const auto& [file, request] : _requests) {
        if ((request.step == Step::asked) == isAsked) {
            files.push_back(file);
        }
    }
    return files;
}

void DownloadRequests::logOnce(Request& request, const std::string& text,
                               const std::string& error) {
    if (request.logged.insert(text + error).second) {
        base::log(text, error);
    }
}

}  // namespace tessaly::sync
