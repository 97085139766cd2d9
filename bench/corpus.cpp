// SPDX-License-Identifier: MIT
#include "corpus.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "base/utf8.h"

namespace tessaly::bench {

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> notesBelow(const fs::path& folder) {
    std::vector<fs::path> files;
    for (auto it = fs::recursive_directory_iterator(folder); it != fs::end(it); ++it) {
        if (it->is_directory() && it->path().filename() == "Nasty") {
            it.disable_recursion_pending();
        } else if (it->is_regular_file()) {
            files.push_back(it->path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

Corpus readCorpus(const std::string& folder) {
    Corpus corpus;
    for (const fs::path& file : notesBelow(folder)) {
        std::ifstream stream(file, std::ios::binary);
        const std::string bytes(std::istreambuf_iterator<char>(stream), {});
        if (!base::isUtf8(bytes)) {
            continue;
        }
        corpus.starts.push_back(corpus.text.size());
        corpus.text += bytes;
        if (!bytes.ends_with('\n')) {
            corpus.text += '\n';
        }
    }
    corpus.starts.push_back(corpus.text.size());
    return corpus;
}

Corpus beginningOf(const Corpus& corpus, std::size_t bytes) {
    const auto end = std::lower_bound(corpus.starts.begin(), corpus.starts.end() - 1, bytes);
    return {corpus.text.substr(0, *end), {corpus.starts.begin(), end + 1}};
}

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

}  // namespace tessaly::bench
