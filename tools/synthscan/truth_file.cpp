#include "synthscan/truth_file.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace xun::synthscan {

nlohmann::json TruthDocument(const Scan& scan, const std::string& template_name,
                             const std::string& marks_source) {
  const Distortions& d = scan.distortions;
  nlohmann::json truth;
  truth["template"] = template_name;
  truth["page"] = scan.page;
  truth["dpi"] = scan.dpi;
  truth["width"] = scan.image.cols;
  truth["height"] = scan.image.rows;
  truth["seed"] = scan.seed;
  truth["marks"] = marks_source;
  truth["distortions"] = {{"rotate", d.rotate},     {"scale", d.scale}, {"shift_x", d.shift_x},
                          {"shift_y", d.shift_y},   {"blur", d.blur},   {"noise", d.noise},
                          {"contrast", d.contrast}, {"jpeg", d.jpeg},   {"dither", d.dither}};
  const cv::Matx23d& m = scan.page_to_pixels;
  truth["page_to_pixels"] = {{m(0, 0), m(0, 1), m(0, 2)}, {m(1, 0), m(1, 1), m(1, 2)}};
  nlohmann::json bubbles = nlohmann::json::array();
  for (const BubbleTruth& b : scan.bubbles)
    bubbles.push_back({{"region", b.at.region},
                       {"row", b.at.row},
                       {"col", b.at.col},
                       {"kind", MarkName(b.mark)},
                       {"truth", TruthName(b.truth)},
                       {"rect",
                        {{"left", b.rect.Left},
                         {"top", b.rect.Top},
                         {"right", b.rect.Right},
                         {"bottom", b.rect.Bottom}}}});
  truth["bubbles"] = std::move(bubbles);
  return truth;
}

std::string TruthFileFor(const std::string& image_file) {
  std::filesystem::path path(image_file);
  path.replace_extension(".truth.json");
  return path.string();
}

void WriteTruthFile(const std::string& file, const nlohmann::json& truth) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out << truth.dump(1) << "\n";
  out.close();
  if (!out) throw std::runtime_error(file + ": cannot be written");
}

}  // namespace xun::synthscan
