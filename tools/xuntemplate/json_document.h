// The template tree as a JSON document and back.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "xun/xun.h"

namespace xuntool {

// Insertion order matters: attributes are an ordered dictionary, and a dump reads best in the
// order of the object model.
using Json = nlohmann::ordered_json;

inline constexpr const char* kJsonFormat = "xuntemplate";
inline constexpr int kJsonFormatVersion = 1;

struct DumpOptions {
  // When set, page images are copied into this folder and the document names the copies
  // (relative to `document_folder`); otherwise a page's ImageFile is empty and HasImage tells
  // that the template has one.
  std::string images_folder;
  std::string document_folder;
};

Json DumpTemplate(xun::clsXUNTemplate& t, const DumpOptions& options);

// Builds a template from a document made by DumpTemplate (or by hand: absent keys keep their
// defaults, unknown keys are refused). Image paths are taken relative to `document_folder`.
// Fails with ToolError naming the JSON pointer of the first bad value.
std::shared_ptr<xun::clsXUNTemplate> BuildTemplate(const Json& document,
                                                   const std::string& document_folder,
                                                   const std::string& document_name);

}  // namespace xuntool
