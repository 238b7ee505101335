#pragma once

#include "model/FileURL.h"
#include "samplecard/Card.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kelvara::bench {

using PhotoKind = samplecard::BenchmarkOptions::Kind;

/// `count` photos of 24 megapixels, made below build/bench-photos and kept there for the next run. Ends the
/// program when they can't be written.
std::vector<FileURL> photos(PhotoKind kind, int count);

/// `work` for each file on both cores.
void onBothCores(const std::vector<FileURL>& files, const std::function<void(const FileURL&)>& work);

/// Runs a program with the files as last arguments, two processes with half of them each. False when it can't
/// be started or fails. What it prints is dropped.
bool runOnBothCores(const std::vector<std::string>& command, const std::vector<FileURL>& files);

/// Bytes that this process has read by system calls; a mapped file does not count.
std::uint64_t bytesRead();

} // namespace kelvara::bench
