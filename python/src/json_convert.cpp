#include "json_convert.h"

namespace py = pybind11;

namespace xunpy {

py::object ToPython(const nlohmann::ordered_json& value) {
  switch (value.type()) {
    case nlohmann::ordered_json::value_t::object: {
      py::dict out;
      for (const auto& [key, item] : value.items())
        out[py::str(key)] = ToPython(item);
      return out;
    }
    case nlohmann::ordered_json::value_t::array: {
      py::list out;
      for (const auto& item : value)
        out.append(ToPython(item));
      return out;
    }
    case nlohmann::ordered_json::value_t::string:
      return py::str(value.get_ref<const std::string&>());
    case nlohmann::ordered_json::value_t::boolean:
      return py::bool_(value.get<bool>());
    case nlohmann::ordered_json::value_t::number_integer:
      return py::int_(value.get<int64_t>());
    case nlohmann::ordered_json::value_t::number_unsigned:
      return py::int_(value.get<uint64_t>());
    case nlohmann::ordered_json::value_t::number_float:
      return py::float_(value.get<double>());
    default:
      return py::none();
  }
}

nlohmann::ordered_json FromPython(const py::handle& value, const std::string& where) {
  if (value.is_none()) return nullptr;
  // bool before int: True is an int to Python.
  if (py::isinstance<py::bool_>(value)) return value.cast<bool>();
  if (py::isinstance<py::int_>(value)) {
    try {
      return value.cast<int64_t>();
    } catch (const py::cast_error&) {
      throw py::type_error((where.empty() ? "/" : where) + ": integer too large");
    }
  }
  if (py::isinstance<py::float_>(value)) return value.cast<double>();
  if (py::isinstance<py::str>(value)) return value.cast<std::string>();
  if (py::isinstance<py::dict>(value)) {
    nlohmann::ordered_json out = nlohmann::ordered_json::object();
    for (const auto& [key, item] : value.cast<py::dict>()) {
      if (!py::isinstance<py::str>(key))
        throw py::type_error((where.empty() ? "/" : where) + ": keys must be strings");
      const std::string name = key.cast<std::string>();
      out[name] = FromPython(item, where + "/" + name);
    }
    return out;
  }
  if (py::isinstance<py::list>(value) || py::isinstance<py::tuple>(value)) {
    nlohmann::ordered_json out = nlohmann::ordered_json::array();
    size_t i = 0;
    for (const auto& item : value)
      out.push_back(FromPython(item, where + "/" + std::to_string(i++)));
    return out;
  }
  throw py::type_error((where.empty() ? "/" : where) + ": " +
                       py::str(py::type::of(value)).cast<std::string>() +
                       " has no JSON counterpart");
}

}  // namespace xunpy
