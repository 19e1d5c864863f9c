// What a scanner does to a page: it lays it a little askew, a little off size and off place,
// softens it, adds sensor noise, flattens its contrast, compresses it, or makes it black and
// white. Each step is optional; the image keeps the page's size, as a scanner's page does.
#pragma once

#include <opencv2/core.hpp>

#include <cstdint>
#include <string>

namespace xun::synthscan {

struct Distortions {
  double rotate = 0;    // degrees, counter-clockwise as the image is viewed, about its centre
  double scale = 1;     // about the image's centre: 1.02 is 2% larger
  double shift_x = 0;   // page units (1/100 inch), to the right
  double shift_y = 0;   // page units, down
  double blur = 0;      // Gaussian, standard deviation in pixels
  double noise = 0;     // Gaussian, standard deviation in grey levels
  double contrast = 1;  // kept share of the contrast about mid grey: 0.5 halves it
  int jpeg = 0;         // a JPEG round trip at this quality (1 to 100); 0 for none
  bool dither = false;  // to black and white by error diffusion
};

// Why `d` is not a scan this generator makes (rotation over 3 degrees, scale off by over 2%,
// shift over 0.3 inch, ...), or empty.
std::string Refusal(const Distortions& d);

// Where a point of the page (page units) lands in the image (pixel edges: (0,0) is the top left
// corner of the top left pixel), for a page printed at `dpi` into an image of `size`.
cv::Matx23d PageToPixels(const Distortions& d, cv::Size size, int dpi);

// The scan of `printed` (8-bit grey, at `dpi`): moved, softened, flattened, noisy, compressed,
// made black and white, in that order. Same seed, same scan. Throws std::invalid_argument for
// distortions Refusal refuses.
cv::Mat Distort(const cv::Mat& printed, const Distortions& d, int dpi, uint32_t seed);

}  // namespace xun::synthscan
