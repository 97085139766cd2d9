// SPDX-License-Identifier: MIT
#include <cstdio>
#include <cstdlib>
#include <md4c.h>

#include "readers.h"

namespace tessaly::bench {

namespace {

MD_PARSER silentParser() {
    MD_PARSER parser{};
    parser.flags = MD_DIALECT_COMMONMARK;
    parser.enter_block = [](MD_BLOCKTYPE, void*, void*) { return 0; };
    parser.leave_block = [](MD_BLOCKTYPE, void*, void*) { return 0; };
    parser.enter_span = [](MD_SPANTYPE, void*, void*) { return 0; };
    parser.leave_span = [](MD_SPANTYPE, void*, void*) { return 0; };
    parser.text = [](MD_TEXTTYPE, const MD_CHAR*, MD_SIZE, void*) { return 0; };
    return parser;
}

class Md4cReader : public Reader {
public:
    explicit Md4cReader(const Corpus& corpus) : _corpus(corpus) {}

    Counts read() override {
        const MD_PARSER parser = silentParser();
        for (std::size_t note = 0; note + 1 < _corpus.starts.size(); ++note) {
            const std::size_t start = _corpus.starts[note];
            const std::size_t size = _corpus.starts[note + 1] - start;
            if (md_parse(_corpus.text.data() + start, static_cast<MD_SIZE>(size), &parser,
                         nullptr) != 0) {
                std::fprintf(stderr, "md4c: a note could not be parsed\n");
                std::exit(1);
            }
        }
        return {};
    }

private:
    const Corpus& _corpus;
};

}  // namespace

std::unique_ptr<Reader> makeMd4cReader(const Corpus& corpus) {
    return std::make_unique<Md4cReader>(corpus);
}

}  // namespace tessaly::bench
