// The truth file written beside a scan (SCAN.truth.json): how the scan was made and what every
// bubble on it holds.
#pragma once

#include <nlohmann/json.hpp>

#include <string>

#include "synthscan/synthetic_scan.h"

namespace xun::synthscan {

// The truth of `scan`: the template it was made from (as named by the caller), where its marks
// came from ("random 7", a marks file's name), and the scan itself.
nlohmann::json TruthDocument(const Scan& scan, const std::string& template_name,
                             const std::string& marks_source);

// "scans/a.truth.json" for "scans/a.png".
std::string TruthFileFor(const std::string& image_file);

// Writes `truth` to `file`. Throws std::runtime_error when it cannot.
void WriteTruthFile(const std::string& file, const nlohmann::json& truth);

}  // namespace xun::synthscan
