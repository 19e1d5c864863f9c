// JSON documents as Python objects and back: objects are dicts (in order), arrays lists.
#pragma once

#include <pybind11/pybind11.h>

#include <nlohmann/json.hpp>
#include <string>

namespace xunpy {

pybind11::object ToPython(const nlohmann::ordered_json& value);

// Raises TypeError naming the JSON pointer of a value JSON cannot hold (`where` is the pointer of
// `value`).
nlohmann::ordered_json FromPython(const pybind11::handle& value, const std::string& where);

}  // namespace xunpy
