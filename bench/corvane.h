#pragma once

#include "bench/workload.h"

/// The engine among its peers. It is linked in, as hosts do; the peers come as libraries.
namespace corvane::bench {

AddWorkloads addCorvane;
PrepareLoad prepareCorvane;

}  // namespace corvane::bench
