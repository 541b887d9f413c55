// Runs the workloads of the engine that are named, once each: for tools that count instructions.

#include <algorithm>
#include <iostream>

#include "bench/corvane.h"

int main(int argc, char** argv) {
    std::vector<corvane::bench::Workload> workloads;
    corvane::bench::addCorvane(workloads);
    for (int i = 1; i < argc; ++i) {
        const std::string name = std::string(argv[i]) + "/corvane";
        const auto workload =
            std::find_if(workloads.begin(), workloads.end(), [&](const auto& each) { return each.name == name; });
        if (workload == workloads.end()) {
            std::cerr << "no such workload: " << argv[i] << '\n';
            return 64;
        }
        workload->run();
    }
    return 0;
}
