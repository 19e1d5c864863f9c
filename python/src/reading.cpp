// Reading filled forms: read_form and read_forms, records with the content of `xuntemplate
// read`'s JSON Lines (one dict a form) and CSV (a table), the GIL released while reading.
#include <png.h>
#include <pybind11/numpy.h>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <atomic>
#include <filesystem>
#include <random>
#include <thread>

#include "bindings.h"
#include "errors.h"
#include "json_convert.h"
#include "read_output.h"
#include "xun/reading/form_reader.h"
#include "xun/xun.h"

namespace py = pybind11;
namespace fs = std::filesystem;

namespace xunpy {
namespace {

using xun::reading::FormRecord;
using xun::reading::ScanPage;

// Images handed over as arrays, written as PNG files in a folder of their own for the reader (the
// reader takes files), and removed with it.
class ArrayImages {
 public:
  ArrayImages() = default;
  ~ArrayImages() {
    std::error_code ec;
    if (!folder_.empty()) fs::remove_all(folder_, ec);
  }
  ArrayImages(const ArrayImages&) = delete;
  ArrayImages& operator=(const ArrayImages&) = delete;

  std::string Write(const py::array& image) {
    if (image.dtype().kind() != 'u' || image.itemsize() != 1)
      throw py::type_error("an image array must be of dtype uint8");
    const bool grey = image.ndim() == 2;
    if (!grey && !(image.ndim() == 3 && image.shape(2) == 3))
      throw py::value_error("an image array must be 2-D (grey) or 3-D with 3 channels (RGB)");
    if (image.shape(0) < 1 || image.shape(1) < 1) throw py::value_error("an image array is empty");
    const auto pixels = py::array_t<uint8_t, py::array::c_style | py::array::forcecast>(image);
    if (folder_.empty()) {
      std::random_device random;
      folder_ = fs::temp_directory_path() / ("xuntemplate-py-" + std::to_string(random()));
      fs::create_directories(folder_);
    }
    const fs::path file = folder_ / ("image" + std::to_string(++count_) + ".png");
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = static_cast<png_uint_32>(image.shape(1));
    png.height = static_cast<png_uint_32>(image.shape(0));
    png.format = grey ? PNG_FORMAT_GRAY : PNG_FORMAT_RGB;
    const bool written =
        png_image_write_to_file(&png, file.c_str(), 0, pixels.data(), 0, nullptr) != 0;
    const std::string why = png.message;
    png_image_free(&png);
    if (!written)
      throw std::runtime_error(file.string() + ": the image could not be written: " + why);
    return file.string();
  }

 private:
  fs::path folder_;
  int count_ = 0;
};

// A path (str or os.PathLike) or an array, as a file the reader opens.
std::string ImageFile(const py::handle& image, ArrayImages& arrays) {
  if (py::isinstance<py::array>(image)) return arrays.Write(image.cast<py::array>());
  if (py::isinstance<py::str>(image) || py::hasattr(image, "__fspath__"))
    return py::str(py::module_::import("os").attr("fspath")(image)).cast<std::string>();
  throw py::type_error("an image is a path or a numpy uint8 array");
}

std::vector<std::string> ImageFiles(const py::iterable& images, ArrayImages& arrays) {
  if (py::isinstance<py::str>(images) || py::isinstance<py::array>(images))
    throw py::type_error("images must be a list of paths or arrays");
  std::vector<std::string> files;
  for (const auto& image : images)
    files.push_back(ImageFile(image, arrays));
  return files;
}

xun::reading::ReadOptions Options(const std::filesystem::path& clip_folder) {
  xun::reading::ReadOptions options;
  options.clip_folder = clip_folder.string();
  return options;
}

py::dict ReadForm(const xun::clsXUNTemplate& t, const py::iterable& images,
                  const std::filesystem::path& clip_folder) {
  ArrayImages arrays;
  const std::vector<std::string> files = ImageFiles(images, arrays);
  const xun::reading::FormReader reader(t, {}, Options(clip_folder));
  FormRecord record;
  {
    py::gil_scoped_release release;
    record = reader.Read(files);
  }
  return ToPython(xuntool::RecordJson(record));
}

// Reads the forms on `jobs` threads (every core for 0), each form on one thread.
std::vector<FormRecord> ReadAll(const xun::reading::FormReader& reader,
                                const std::vector<std::vector<ScanPage>>& forms, size_t jobs) {
  std::vector<FormRecord> records(forms.size());
  std::atomic<size_t> next{0};
  std::exception_ptr failure;
  std::mutex failure_mutex;
  const auto work = [&] {
    InstallOnThisThread();
    for (size_t i = next++; i < forms.size(); i = next++) {
      try {
        records[i] = reader.ReadPages(forms[i]);
      } catch (...) {
        const std::lock_guard lock(failure_mutex);
        if (!failure) failure = std::current_exception();
        next = forms.size();
      }
    }
  };
  if (jobs <= 1) {
    work();
  } else {
    xun::reading::SetImageThreads(1);  // the forms are spread over the cores instead
    std::vector<std::thread> workers;
    for (size_t w = 0; w < jobs; ++w)
      workers.emplace_back(work);
    for (std::thread& worker : workers)
      worker.join();
    xun::reading::SetImageThreads(0);  // a single form read next may use every core again
  }
  if (failure) std::rethrow_exception(failure);
  return records;
}

py::object ReadForms(const xun::clsXUNTemplate& t, const py::iterable& images, int jobs,
                     bool as_frame, const std::filesystem::path& clip_folder) {
  if (jobs < 0) throw py::value_error("jobs must be 0 (one a core) or more");
  ArrayImages arrays;
  const std::vector<std::string> files = ImageFiles(images, arrays);
  const xun::reading::FormReader reader(t, {}, Options(clip_folder));
  std::vector<FormRecord> records;
  {
    py::gil_scoped_release release;
    // The scans of a form are its pages in page order, form after form.
    const size_t pages = static_cast<size_t>(std::max(reader.NumPages(), 1));
    const std::vector<ScanPage> scanned = xun::reading::PagesOf(files);
    std::vector<std::vector<ScanPage>> forms;
    for (size_t i = 0; i < scanned.size(); i += pages)
      forms.emplace_back(
          scanned.begin() + static_cast<std::ptrdiff_t>(i),
          scanned.begin() + static_cast<std::ptrdiff_t>(std::min(scanned.size(), i + pages)));
    const size_t threads = std::clamp<size_t>(
        jobs > 0 ? static_cast<size_t>(jobs) : std::thread::hardware_concurrency(), 1,
        std::max<size_t>(forms.size(), 1));
    records = ReadAll(reader, forms, threads);
  }
  if (as_frame) {
    const auto table = xuntool::ResultsTable(records);
    py::list rows;
    for (size_t i = 1; i < table.size(); ++i)
      rows.append(py::cast(table[i]));
    return py::module_::import("pandas").attr("DataFrame")(rows, py::arg("columns") = table[0]);
  }
  py::list out;
  for (const FormRecord& record : records)
    out.append(ToPython(xuntool::RecordJson(record)));
  return out;
}

}  // namespace

void BindReading(py::module_& m) {
  m.def("read_form", &ReadForm, py::arg("template"), py::arg("images"), py::arg("clip_folder") = "",
        py::call_guard<CallGuard>(),
        "Reads one filled form: its scanned pages in page order (paths, or numpy uint8 arrays, "
        "grey 2-D or RGB 3-D). Returns its record as a dict, the content of one line of "
        "`xuntemplate read --json`: form, images, status (read, review or error), pages, "
        "answers, review. A page that cannot be read is in the record, not raised. Wraps "
        "FormReader::Read");
  m.def("read_forms", &ReadForms, py::arg("template"), py::arg("images"), py::arg("jobs") = 0,
        py::arg("as_frame") = false, py::arg("clip_folder") = "", py::call_guard<CallGuard>(),
        "Reads many filled forms: the scans are the pages of each form in page order, form "
        "after form (a multi-page TIFF gives all its pages). jobs forms are read at once (0: "
        "one a core). Returns a list of records as read_form does, or with as_frame=True a "
        "pandas DataFrame with the columns and cells of `xuntemplate read`'s CSV (form, "
        "status, message, then the items by name). Wraps FormReader::ReadPages");
}

}  // namespace xunpy
