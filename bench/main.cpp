// Measures every workload of every system with Google Benchmark; one argument before its own ones names the folder of
// the peers' libraries. Repetitions are interleaved, so that what disturbs the machine disturbs all alike.

#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <iostream>

#include "bench/corvane.h"

namespace {

using corvane::bench::AddWorkloads;
using corvane::bench::Workload;

AddWorkloads& workloadsOf(const std::string& library) {
    void* const handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) throw std::runtime_error(dlerror());
    return *reinterpret_cast<AddWorkloads*>(dlsym(handle, "addWorkloads"));
}

void measure(benchmark::State& state, const Workload& workload) {
    try {
        for ([[maybe_unused]] const auto& iteration : state) state.SetIterationTime(workload.run());
        state.SetItemsProcessed(state.iterations() * workload.units);
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "usage: " << argv[0] << " FOLDER [--benchmark_...]\n";
        return 64;
    }
    const std::string folder = argv[1];
    argv[1] = argv[0];
    int count = argc - 1;
    benchmark::Initialize(&count, argv + 1);
    try {
        std::vector<Workload> workloads;
        corvane::bench::addCorvane(workloads);
        for (const char* name : {"lua", "luajit", "duktape", "tcl"})
            workloadsOf(folder + "/libbench_" + name + ".so")(workloads);
        for (const Workload& workload : workloads)
            benchmark::RegisterBenchmark(workload.name.c_str(), measure, workload)->UseManualTime();
        benchmark::RunSpecifiedBenchmarks();
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    return 0;
}
