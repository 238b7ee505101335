#pragma once

#include "samplecard/Card.h"

#include <vector>

namespace kelvara::samplecard {

/// Jobs for `options.photos` files in folders of 500. A few pictures are painted and encoded here, in
/// parallel; every file is one of them under a capture date of its own.
std::vector<CardJob> benchmarkJobs(const BenchmarkOptions& options);

} // namespace kelvara::samplecard
