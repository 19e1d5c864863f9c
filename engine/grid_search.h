// Finding a bubble grid of unknown size: bubble-shaped blobs of the most common size, clustered
// along each axis into evenly spaced rows and columns. The clustering is shared with the grid
// check.
#pragma once

#include <vector>

#include "engine/blobs.h"
#include "engine/page_image.h"

namespace xunrec {

// Positions along one axis that lie together, with the blobs (indexes) at each.
struct Cluster {
  double centre = 0;
  std::vector<int> members;
};

// Sorted values grouped wherever two neighbours are more than `gap` apart.
std::vector<Cluster> ClusterAxis(const std::vector<double>& values, double gap);

// The longest run of clusters at an even pitch of at least `min_pitch` (each step within 20% of
// the pitch); a single cluster when no two are far enough apart.
std::vector<Cluster> EvenRun(const std::vector<Cluster>& clusters, double min_pitch);

struct GridCounts {
  int rows = 0, cols = 0;
};

// The grid inside the rectangle. Counts above 0 are hints: no bubble is larger than the cell they
// give. Throws EngineError NO_GRID when there is none.
GridCounts SearchGrid(const PageImage& page, const UnitRect& rect, int rows_hint, int cols_hint);

}  // namespace xunrec
