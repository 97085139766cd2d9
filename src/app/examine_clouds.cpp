// SPDX-License-Identifier: MIT
#include "app/examine_clouds.h"

#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "app/cloud_offers.h"
#include "base/localisation.h"

namespace tessaly::app {
namespace {

using Level = Finding::Level;

void tellClient(Services& services, Findings& findings) {
    const auto folder = syncClientOf(services);
    if (!folder) {
        return;
    }
    const std::string text =
        folder->isPaused ? base::tr(
                               "The notes lie in a folder of {}, which does not keep it in step: "
                               "it is paused")
                         : base::tr("Kept in step by {}");
    findings.add({folder->isPaused ? Level::note : Level::fine, "syncClient",
                  fmt::format(fmt::runtime(text), folder->client), folder->path});
}

std::string offerText(const ports::CloudFolder& offer) {
    const std::string text =
        offer.isPaused ? base::tr(
                             "{} knows this folder, but is paused there; as the cloud drive, "
                             "it would hold the notes")
                       : base::tr(
                             "{} keeps this folder in step; as the cloud drive, it would hold "
                             "the notes");
    return fmt::format(fmt::runtime(text), offer.client);
}

void tellOffers(Services& services, Findings& findings) {
    std::vector<Finding> active;
    std::vector<Finding> paused;
    for (const ports::CloudFolder& offer : cloudDriveOffers(services)) {
        (offer.isPaused ? paused : active)
            .push_back({Level::note, "cloudFolder", offerText(offer), offer.path,
                        acceptingCommand(offer)});
    }
    findings.addKind(std::move(active));
    findings.addKind(std::move(paused));
}

}  // namespace

void examineClouds(Services& services, Findings& findings) {
    tellClient(services, findings);
    tellOffers(services, findings);
}

}  // namespace tessaly::app
