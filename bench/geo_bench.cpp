// SPDX-License-Identifier: GPL-3.0-or-later
// The offline geocoder: loading the place data, a reverse look-up, a search by name, and the
// memory the loaded data holds. bench/geo.sh runs it and sets the figures beside the goals.
#include "PlaceIndex.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QFile>

#include <random>
#include <unistd.h>

namespace {

QString path() { return PlaceIndex::defaultPath(); }

// Resident memory of this process, in bytes.
double residentBytes() {
    QFile f("/proc/self/statm");
    if (!f.open(QIODevice::ReadOnly)) return 0;
    const QList<QByteArray> fields = f.readAll().split(' ');
    return fields.size() > 1 ? fields[1].toDouble() * double(sysconf(_SC_PAGESIZE)) : 0;
}

void BM_Load(benchmark::State& state) {
    double grown = 0, held = 0;
    for (auto _ : state) {
        const double before = residentBytes();
        auto index = PlaceIndex::load(path());
        if (!index) {
            state.SkipWithError("no place data");
            return;
        }
        grown = std::max(grown, residentBytes() - before);
        held = double(index->memoryBytes());
        benchmark::DoNotOptimize(index);
    }
    state.counters["resident_MB"] = grown / 1e6;
    state.counters["data_MB"] = held / 1e6;
}
BENCHMARK(BM_Load)->Unit(benchmark::kMillisecond)->Iterations(10);

std::shared_ptr<const PlaceIndex> loaded() {
    static auto index = PlaceIndex::load(path());
    return index;
}

// Positions where people take photos: within about 20 km of known places of every size, so
// that the look-up works in the dense parts of the tree; and anywhere, sea included.
std::vector<GeoCoordinate> positions(bool nearPlaces) {
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> jitter(-0.2, 0.2), lat(-90, 90), lon(-180, 180);
    std::vector<GeoCoordinate> out;
    if (nearPlaces) {
        for (const auto& m : loaded()->search("e", 4096))  // places with an "e" in the name
            out.push_back({m.coordinate.latitude + jitter(rng), m.coordinate.longitude + jitter(rng)});
    } else {
        for (int i = 0; i < 4096; ++i) out.push_back({lat(rng), lon(rng)});
    }
    return out;
}

void reverse(benchmark::State& state, bool nearPlaces) {
    auto index = loaded();
    if (!index) {
        state.SkipWithError("no place data");
        return;
    }
    const auto where = positions(nearPlaces);
    size_t i = 0, named = 0;
    for (auto _ : state) {
        auto p = index->reverse(where[i++ % where.size()]);
        named += p.has_value();
        benchmark::DoNotOptimize(p);
    }
    state.counters["named_%"] = 100.0 * double(named) / double(std::max<size_t>(1, i));
}
void BM_ReverseNearPlaces(benchmark::State& state) { reverse(state, true); }
void BM_ReverseAnywhere(benchmark::State& state) { reverse(state, false); }
BENCHMARK(BM_ReverseNearPlaces)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ReverseAnywhere)->Unit(benchmark::kMicrosecond);

void BM_Search(benchmark::State& state, const char* text) {
    auto index = loaded();
    if (!index) {
        state.SkipWithError("no place data");
        return;
    }
    for (auto _ : state) benchmark::DoNotOptimize(index->search(text));
}
BENCHMARK_CAPTURE(BM_Search, rome, "rome")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Search, paris_us, "paris, us")->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);  // for the path beside the program
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
