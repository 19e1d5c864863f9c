// The template reader's pieces: the section readers ReadTemplate dispatches to, the state they
// share while one file is read, and the checks on what a section produced.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "xun/export.h"
#include "xun/model/fwd.h"
#include "xun/templatefile/check_required.h"
#include "xun/templatefile/section_reader.h"

namespace xun::basTemplate {

namespace detail {

// The text of the older keys that files keep on a region although they belong to its questions,
// as the region being read had them: each of its questions takes them when it has no such key of
// its own. They are kept in the tree as named extra values of the region too (see section_keys).
struct RegionCarriedValues {
  std::optional<std::string> id_add, id_type, id_value, test_version_id;
};

// The state of one read.
struct ReaderContext {
  ReaderContext(clsXUNTemplate& t, LineCursor c, bool edit) : tmpl(t), cursor(c), for_edit(edit) {}

  clsXUNTemplate& tmpl;
  LineCursor cursor;
  bool for_edit;
  int32_t section_line = 0;  // where the section being read begins

  // Link groups: the next number a [Link] opens, the group being filled on the current page,
  // how many of its regions are still to come, and whether the next one is its first.
  int16_t next_link_group = 1;
  int16_t open_link_group = 0;
  int32_t link_regions_left = 0;
  bool link_start_next = false;

  // Of the region read last: questions always follow their region.
  RegionCarriedValues region_carried;
};

// Each reads the section whose header the cursor stands on and leaves the cursor on the line
// that ended it; false stops the read (the failure has then been shown and reported).
bool ReadForm(ReaderContext& ctx);
bool ReadPage(ReaderContext& ctx);
bool ReadLink(ReaderContext& ctx);
bool ReadRegion(ReaderContext& ctx);
bool ReadQuestion(ReaderContext& ctx);

// Shows the failure, reports it at `location` and records it as the read's diagnostic, tied to
// `line` (0: to no section).
void FailRead(const std::string& title, const std::string& text, const std::string& location,
              int32_t line);

}  // namespace detail
}  // namespace xun::basTemplate
