// The template tree as a JSON document and back.
#pragma once

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "xun/xun.h"

namespace xuntool {

// Insertion order matters: attributes are an ordered dictionary, and a dump reads best in the
// order of the object model.
using Json = nlohmann::ordered_json;

// A document that cannot be dumped or built: "DOCUMENT: /json/pointer: what is wrong". The tool
// prefixes its own name; the Python module raises it as it is.
class JsonError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

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
// Fails with JsonError naming the JSON pointer of the first bad value.
std::shared_ptr<xun::clsXUNTemplate> BuildTemplate(const Json& document,
                                                   const std::string& document_folder,
                                                   const std::string& document_name);

}  // namespace xuntool
