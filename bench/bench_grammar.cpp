// SPDX-License-Identifier: MIT
// bench_grammar FOLDER [options of Google Benchmark]: reads the notes of FOLDER with our scanner
// and with its peers, and lines made to be slow.
#include <cstdio>
#include <string>

#include <benchmark/benchmark.h>

#include "corpus.h"
#include "grammar/line_scanner.h"
#include "grammar/todo_helper.h"
#include "hostile_lines.h"
#include "readers.h"

namespace tessaly::bench {

namespace {

constexpr std::size_t sampleBytes = 3'000'000;  // what the slowest peer reads in a fair time
constexpr std::size_t shortLine = 64 << 10;
constexpr std::size_t longLine = 4 * shortLine;

using MakeReader = std::unique_ptr<Reader> (*)(const Corpus&);

void report(benchmark::State& state, const Counts& counts) {
    const auto number = [](std::size_t value) { return static_cast<double>(value); };
    state.counters["tasksAndLists"] = number(counts.tasksAndLists);
    state.counters["headingsAndQuotes"] = number(counts.headingsAndQuotes);
    state.counters["hashtags"] = number(counts.hashtags);
    state.counters["mentions"] = number(counts.mentions);
    state.counters["dates"] = number(counts.dates);
    state.counters["doneTags"] = number(counts.doneTags);
}

void benchReader(const std::string& name, const Corpus& corpus, MakeReader make) {
    const auto body = [&corpus, make](benchmark::State& state) {
        const std::unique_ptr<Reader> reader = make(corpus);
        Counts counts;
        for ([[maybe_unused]] auto _ : state) {
            counts = reader->read();
        }
        report(state, counts);
        state.SetBytesProcessed(state.iterations() * static_cast<long>(corpus.text.size()));
    };
    benchmark::RegisterBenchmark(name.c_str(), body)->Unit(benchmark::kMillisecond);
}

std::size_t scan(const std::string& line) {
    static grammar::NoteScanner scanner;
    scanner.start(line, {});
    std::size_t marks = 0;
    while (const grammar::ScannedLine* scanned = scanner.next()) {
        marks += scanned->marks.size();
    }
    return marks;
}

std::size_t makeRecords(const std::string& line) {
    return grammar::TodoHelper::parseNoteContent({line, "Notes/Hostile.txt"}, {}).size();
}

void benchLine(const std::string& name, const HostileFamily& family, std::size_t bytes,
               std::size_t (*work)(const std::string&)) {
    const auto body = [line = hostileLine(family, bytes), work](benchmark::State& state) {
        for ([[maybe_unused]] auto _ : state) {
            benchmark::DoNotOptimize(work(line));
        }
    };
    benchmark::RegisterBenchmark(name.c_str(), body)->Unit(benchmark::kMillisecond);
}

void registerAll(const Corpus& corpus, const Corpus& sample) {
    benchReader("read/tessaly", corpus, makeTessalyReader);
    benchReader("read/pcre2", corpus, makePcre2Reader);
    benchReader("read/md4c", corpus, makeMd4cReader);
    benchReader("sample/tessaly", sample, makeTessalyReader);
    benchReader("sample/icu", sample, makeIcuReader);
    for (const HostileFamily& family : hostileFamilies()) {
        for (const std::size_t bytes : {shortLine, longLine}) {
            const std::string suffix = family.name + ("/" + std::to_string(bytes));
            benchLine("scan/" + suffix, family, bytes, scan);
            benchLine("records/" + suffix, family, bytes, makeRecords);
        }
    }
}

}  // namespace

}  // namespace tessaly::bench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: bench_grammar FOLDER [options of Google Benchmark]\n");
        return 2;
    }
    const tessaly::bench::Corpus corpus = tessaly::bench::readCorpus(argv[1]);
    const tessaly::bench::Corpus sample =
        tessaly::bench::beginningOf(corpus, tessaly::bench::sampleBytes);
    tessaly::bench::registerAll(corpus, sample);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
