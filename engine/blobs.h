// Dark components of a region and the bubble-shaped ones among them: what the grid search, the
// grid check and the alignment start from.
#pragma once

#include <opencv2/core.hpp>

#include <optional>
#include <vector>

namespace xunrec {

// One 8-connected dark component, in page-image pixels.
struct Blob {
  cv::Rect box;
  int area = 0;  // dark pixels
  cv::Point2d Centre() const { return {box.x + box.width / 2.0, box.y + box.height / 2.0}; }
};

// The dark components inside `region` (pixels of the image), cut at its edges.
std::vector<Blob> Components(const cv::Mat& dark, const cv::Rect& region);

// The same for the components at most `max_height` pixels tall (taller ones are left out),
// found band by band so that the labels never cover more than a band of the region: what a
// reader looking for bubbles over most of a page needs, in a small share of the memory.
std::vector<Blob> ComponentsUpTo(const cv::Mat& dark, const cv::Rect& region, int max_height);

// Components that could be bubbles: each side within [min, max] pixels, not drawn inside another
// such component's box (the choice letter inside a bubble's outline). None when more than 20000
// components have a bubble's size: that is noise, not a form.
std::vector<Blob> BubbleShaped(const std::vector<Blob>& blobs, cv::Size2d min, cv::Size2d max);

// The most common size among the blobs (within about 20% either way), as the median of the
// blobs of that size; nothing when there are no blobs.
std::optional<cv::Size2d> ModalSize(const std::vector<Blob>& blobs);

// The blobs within `tolerance` (a fraction) of `size` on both sides.
std::vector<Blob> OfSize(const std::vector<Blob>& blobs, cv::Size2d size, double tolerance);

}  // namespace xunrec
