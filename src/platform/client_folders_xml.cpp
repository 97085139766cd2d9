// SPDX-License-Identifier: MIT
#include <array>
#include <glib.h>
#include <memory>
#include <utility>

#include "base/utf8.h"
#include "platform/client_files.h"
#include "platform/client_folders.h"

namespace tessaly::platform {

namespace {

struct FreeParser {
    void operator()(GMarkupParseContext* context) const { g_markup_parse_context_free(context); }
};
using Parser = std::unique_ptr<GMarkupParseContext, FreeParser>;

/// What has been read of the file so far.
struct Reading {
    ClientFolders folders;
    ClientFolder folder;
    bool isOneWay = false;
};

/// Whether the element in hand is the last of exactly these, the outermost first.
template <std::size_t count>
bool isAt(GMarkupParseContext* context, const std::array<std::string_view, count>& names) {
    const GSList* element = g_markup_parse_context_get_element_stack(context);
    for (auto name = names.rbegin(); name != names.rend(); ++name, element = element->next) {
        if (element == nullptr || *name != static_cast<const char*>(element->data)) {
            return false;
        }
    }
    return element == nullptr;
}

// Below "defaults" there is a folder, too, which is a pattern for new ones.
constexpr std::array<std::string_view, 2> folderElement{"configuration", "folder"};
constexpr std::array<std::string_view, 3> pausedElement{"configuration", "folder", "paused"};

bool isReceivingOnly(std::string_view type) {
    return type == "receiveonly" || type == "receiveencrypted";
}

void onStart(GMarkupParseContext* context, const char*, const char** names, const char** values,
             void* data, GError**) {
    if (!isAt(context, folderElement)) {
        return;
    }
    Reading& reading = *static_cast<Reading*>(data);
    reading.folder = {};
    reading.isOneWay = false;
    std::string id;
    for (; *names != nullptr; ++names, ++values) {
        const std::string_view name = *names;
        if (name == "path") {
            reading.folder.path = *values;
        } else if (name == "label") {
            reading.folder.label = *values;
        } else if (name == "id") {
            id = *values;
        } else if (name == "type") {
            reading.isOneWay = isReceivingOnly(*values);
        }
    }
    if (reading.folder.label.empty()) {
        reading.folder.label = std::move(id);
    }
}

void onText(GMarkupParseContext* context, const char* text, std::size_t size, void* data,
            GError**) {
    if (isAt(context, pausedElement)) {
        static_cast<Reading*>(data)->folder.isPaused =
            base::trimmed(std::string_view(text, size)) == "true";
    }
}

// The element that ends is still in hand.
void onEnd(GMarkupParseContext* context, const char*, void* data, GError**) {
    Reading& reading = *static_cast<Reading*>(data);
    if (isAt(context, folderElement) && !reading.isOneWay) {
        reading.folders.push_back(std::move(reading.folder));
    }
}

constexpr GMarkupParser callbacks{onStart, onEnd, onText, nullptr, nullptr};

ClientFolders foldersInXml(std::string_view xml) {
    Reading reading;
    const Parser parser(
        g_markup_parse_context_new(&callbacks, GMarkupParseFlags{}, &reading, nullptr));
    const bool isWhole = g_markup_parse_context_parse(parser.get(), xml.data(),
                                                      static_cast<gssize>(xml.size()), nullptr) &&
                         g_markup_parse_context_end_parse(parser.get(), nullptr);
    return isWhole ? std::move(reading.folders) : ClientFolders();
}

}  // namespace

ClientFolders syncthingFolders(const ClientHomes& homes) {
    const std::array<std::string, 4> places{homes.config, homes.home + "/.config", homes.state,
                                            homes.home + "/.local/state"};
    for (const std::string& place : places) {
        const std::string source = place + "/syncthing/config.xml";
        if (const auto xml = clientFile(source)) {
            ClientFolders folders = foldersInXml(*xml);
            for (ClientFolder& folder : folders) {
                folder.source = source;
            }
            return folders;
        }
    }
    return {};
}

}  // namespace tessaly::platform
