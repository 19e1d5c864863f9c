// The module's one export: the table the template library calls through.
#include "imaging/barcode_reader.h"
#include "imaging/page_image.h"
#include "imaging/print_raster.h"
#include "xun/recognition/imaging_module.h"

extern "C" __attribute__((visibility("default"))) const xun::detail::ImagingModule*
XUNIMG_module() {
  static const xun::detail::ImagingModule module = [] {
    xun::detail::ImagingModule table;
    table.import_page = &xun::imaging::ImportImagePage;
    table.read_barcode = &xun::imaging::ReadBarcode;
    table.print_page = &xun::imaging::PrintRaster;
    return table;
  }();
  return &module;
}
